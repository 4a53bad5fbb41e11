#pragma once

#include "shell/effect_run.h"
#include "shell/program_state.h"
#include "shell/settings.h"

#include <QImage>
#include <QMainWindow>
#include <QPointer>
#include <QTextBrowser>
#include <memory>

class QAction;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;

class QToolBar;
class QDialog;

namespace lumiran {

class FrmDocument;
class InterfaceTranslation;
class KeyValueStore;
class QtPictureDecoder;
class RunController;
struct EffectEntry;
class EffectDialog;
class FrmBrowse;
class frm_ColorSet;
class frm_Exploer;
class frm_Pixel;
class frm_Viewer;

// The main frame: the document windows, the frame's own menu while no
// document is open, toolbar, status bar, settings and the commands both
// menus route to.
class FrmMain : public QMainWindow {
    Q_OBJECT
  public:
    // The store and decoder outlive the frame; the store is read here and
    // written when the frame closes.
    FrmMain(KeyValueStore& store, QtPictureDecoder& decoder);
    ~FrmMain() override;

    [[nodiscard]] ProgramState& state() { return state_; }
    [[nodiscard]] Settings& settings() { return settings_; }
    [[nodiscard]] RunController& runs() { return *runs_; }
    [[nodiscard]] int DocumentCount() const { return documentCount_; }
    [[nodiscard]] FrmDocument* activeDocument() const;
    [[nodiscard]] QList<FrmDocument*> documents() const;
    [[nodiscard]] QMdiArea& workspace() const { return *mdiArea_; }
    // True from the start of a run until its end: commands that touch a
    // picture, the undo stack or a document wait until then.
    [[nodiscard]] bool busy() const;
    // True while a run holds this document.
    [[nodiscard]] bool busyWith(const FrmDocument& document) const;

    // Problems met while reading the settings, shown once the frame is up.
    [[nodiscard]] const std::vector<SettingsProblem>& settingsProblems() const {
        return settingsProblems_;
    }
    void reportSettingsProblems(const std::vector<SettingsProblem>& problems,
                                const QString& keptCopy);

    // The command line: blank-separated paths, ignored when one character long.
    void openCommandLine(const QString& commandLine);
    // Window-count check, a new document, the load; null when refused or failed.
    FrmDocument* openFile(const QString& given);
    // How long a load runs before its progress window offers a cancel: a
    // second, shorter in tests that cancel a load whatever the machine's speed.
    void setLongLoadMilliseconds(int milliseconds) { longLoadMilliseconds_ = milliseconds; }
    // true when one more document may open; shows the message otherwise.
    bool CheckWindowLimit();
    void ApplyRegulation();
    // Window arrangement: 1 cascade, 2 tiled across, 3 tiled down.
    void arrange(int mode);
    void arrangeIcons();
    // Where a new document window of this size goes: the next place of a
    // cascade that keeps the whole window inside the workspace. `placed` is
    // the window being placed, which does not count among the others.
    [[nodiscard]] QPoint nextWindowPlace(QSize size, const QMdiSubWindow* placed = nullptr) const;

    // Runs an effect body on a document through the run frame. Until the
    // effect menus exist this is how a run is started (tests).
    bool runEffect(FrmDocument& document, EffectBody body, RunOptions options = {});

    // An effect's menu entry: the running area tool ends, the entry's form is
    // configured for it and shown modeless.
    void openEffectDialog(FrmDocument& document, const EffectEntry& entry);

    // "Browse...": the effect browser for the document, opened on the family
    // of this menu array, e.g. "ColorNo" (the first family when empty or not
    // found).
    void showEffectBrowser(FrmDocument& document, const QString& family);
    [[nodiscard]] FrmBrowse* effectBrowser() const;
    [[nodiscard]] KeyValueStore& store() { return store_; }

    // Commands of the menus and the toolbar.
    void openWithDialog();
    void newImage();
    void saveDocument(FrmDocument& document);
    void undo(FrmDocument& document);
    void releaseUndo();
    void openFinalLoadImage();
    // The composition menu's own rows: keep the document's picture, discard
    // the kept image, open it as a new document.
    void keepPicture(FrmDocument& document);
    void discardKeptImage();
    void exportKeptImage();
    void clearHistory();
    void openSibling(FrmDocument& document, int step);
    void showOptions();
    void showColorSet();
    // The colour dialog, while it is open; null otherwise.
    [[nodiscard]] frm_ColorSet* colorSetWindow() const;
    // Colour pick: the colour under the pointer goes to the waiting form; a
    // click on the picture holds or frees it (ColorPickMode 2 and 3).
    void colourPicked(Rgb8 colour);
    void toggleColourPick();

    // The clipboard: the picture, or the area when one is drawn or fixed,
    // copied or cut (the cut part takes the background colour); the
    // clipboard's picture laid over the document by the raster flag at the
    // area's place or the top left; a new document from the clipboard; and
    // emptying it.
    void copyToClipboard(FrmDocument& document);
    void cutToClipboard(FrmDocument& document);
    void pasteIntoDocument(FrmDocument& document);
    void PasteAsNewDocument();
    void ClipboardClear();
    void showPictureInfo(FrmDocument& document);

    // The tools beside the documents.
    void showCapture();
    // A picture as a new document named `name`, with no folder.
    FrmDocument* openPictureAsDocument(const QImage& picture, const QString& name);
    void openDesktopPicture();
    void LoadImageViewer();
    [[nodiscard]] frm_Viewer* viewerWindow() const;
    void PrintImagePass(FrmDocument& document);
    // The wallpaper rows: 0 centred, 1 tiled, 2 stretched.
    void WallPaperNo_Click(FrmDocument& document, int index);
    void showExplorer();
    [[nodiscard]] frm_Exploer* explorerWindow() const;
    void showPixelWindow();
    [[nodiscard]] frm_Pixel* pixelWindow() const;
    void showHelp();
    // The help window of the editor's own; null until help was asked for.
    [[nodiscard]] QTextBrowser* helpWindow() const { return helpWindow_; }
    void showAbout();
    void easterEgg();
    void setAutoPreview(bool on);
    // "Auto Preview", shared by the frame's and every document's view menu.
    [[nodiscard]] QAction* autoPreviewAction() const { return autoPreview_; }

    // Called by a document window on its way out.
    void documentClosed(FrmDocument* document);
    // Menu bar, status panels and history rows anew.
    void refreshMenus();
    void refreshStatus();
    // Undo entries (enabled, named after the next level's document) and the
    // entries that need a loaded image.
    void refreshCommands();
    // The panels beside the frame's own: the active picture's size and zoom,
    // the pixel under the pointer, the last message.
    void refreshPicturePanels();
    void showPointer(const FrmDocument& document, QPoint pixel);
    void clearPointer();
    [[nodiscard]] QString statusMessage() const;

  signals:
    // The user confirmed the exit; the settings are written.
    void exited();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The limits a load is checked against: the options' pixel limit and
    // the copies a run keeps with the current undo levels.
    [[nodiscard]] LoadLimits loadLimits() const;
    void readSettings();
    void writeSettings();
    void buildFrameMenus();
    void buildToolBar();
    void buildStatusBar();
    void refreshFrameHistory();
    void setMenusEnabled(bool enable);
    // The command of a toolbar key; runs it when asked. False for a key
    // with no command yet.
    bool routeToolButton(const QString& key, bool run);
    FrmDocument* makeDocument();
    // Shows a new document window inside the workspace, sized to its picture.
    void placeNewDocument(FrmDocument& document);
    void applyFontSize();
    void onRunFinished(Document* document, RunOutcome outcome, QImage picture);
    // The part of the document that copy and cut take.
    [[nodiscard]] AreaRect clipboardPart(const FrmDocument& document) const;
    void showToolStatus();

    KeyValueStore& store_;
    QtPictureDecoder& decoder_;
    ProgramState state_;
    Settings settings_;
    // The interface language's translators, installed while the frame lives.
    std::unique_ptr<InterfaceTranslation> translation_;
    std::unique_ptr<RunController> runs_;
    QMdiArea* mdiArea_;
    int documentCount_ = 0;
    bool imageLoaded_ = false;
    bool closing_ = false;
    int longLoadMilliseconds_ = 1000;
    std::vector<SettingsProblem> settingsProblems_;
    std::string finalLoadFolder_; // MLabel1: the name parts of FinalLoadImage
    std::string finalLoadName_;

    QList<QMenu*> frameMenus_;
    QList<QAction*> frameHistory_;
    QAction* frameHistorySeparator_ = nullptr;
    QAction* frameProgress_ = nullptr;
    QAction* autoPreview_ = nullptr;
    QToolBar* tbToolBar = nullptr;
    QLabel* calculationPanel_ = nullptr;
    QLabel* rasterPanel_ = nullptr;
    QLabel* toolPanel_ = nullptr;
    QLabel* backColorPanel_ = nullptr;
    QLabel* drawingColorPanel_ = nullptr;
    QLabel* messagePanel_ = nullptr;
    QLabel* pointerPanel_ = nullptr;
    QLabel* sizePanel_ = nullptr;
    QLabel* zoomPanel_ = nullptr;
    QAction* frameFinalLoad_ = nullptr;
    QAction* toolUndo_ = nullptr;
    QPointer<EffectDialog> effectDialog_;
    QPointer<QTextBrowser> helpWindow_;
    QPointer<QDialog> colorSet_;
    QPointer<FrmBrowse> browser_;
    QPointer<QDialog> explorer_;
    QPointer<QDialog> pixelWindow_;
    QPointer<QWidget> viewer_;
    // Which colour form the picked colour goes to.
    QPointer<QDialog> pickTarget_;
};

} // namespace lumiran
