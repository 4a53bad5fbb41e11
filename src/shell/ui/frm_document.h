#pragma once

#include "shell/area_tool.h"
#include "shell/document.h"

#include <QList>
#include <QWidget>
#include <string_view>

class QAction;
class QMdiSubWindow;
class QMenu;
class QScrollArea;
class QTimer;

namespace lumiran {

class FrmMain;
struct EffectEntry;
class PictureView;

// A document window: one picture with scroll bars and the document's own
// menus, which the frame shows in its menu bar while the window is active.
class FrmDocument : public QWidget {
    Q_OBJECT
  public:
    explicit FrmDocument(FrmMain& frame);

    [[nodiscard]] Document& document() { return document_; }
    [[nodiscard]] const Document& document() const { return document_; }

    // Shows the model's picture anew (after an undo, a load).
    void refreshPicture();
    // Shows a picture already made from the model (at the end of a run).
    void showPicture(QImage picture);
    // Path into caption and the two name labels.
    void setPath(const QString& path);
    // The child window that holds this document; null before it is placed.
    [[nodiscard]] QMdiSubWindow* subWindow() const;
    // Closes the child window, as the menu's close, its button and Ctrl+W do.
    void closeWindow();

    // The top menus in menu-bar order, and MnuProgress behind them.
    [[nodiscard]] const QList<QMenu*>& topMenus() const { return topMenus_; }
    [[nodiscard]] QAction* progressItem() const { return MnuProgress; }
    [[nodiscard]] QMenu* menu(const char* name) const;
    [[nodiscard]] QAction* undoAction() const { return undoAction_; }
    [[nodiscard]] QAction* finalLoadAction() const { return finalLoadAction_; }
    [[nodiscard]] QAction* closeAction() const { return closeAction_; }
    // SetMenusEnabled: every top menu on or off.
    void SetMenusEnabled(bool enable);
    // The rows of the composition menu that need a kept image, on or off.
    void refreshComposeRows(bool imageKept);
    // The browser's click: the row `rowName` ("ColorNo3") of the family
    // submenu `familyMenu` ("ColorNo"), as if clicked. False when nothing ran.
    bool BrowseToPreviewMain(const QString& familyMenu, const QString& rowName);
    // Rebuilds the history rows of the file menu from the frame's history.
    void refreshHistory();

    [[nodiscard]] PictureView& pictureView() { return *Picture2; }
    [[nodiscard]] const PictureView& pictureView() const { return *Picture2; }
    [[nodiscard]] QScrollArea& basicArea() { return *BasicArea; }

    // Zoom of the view; the picture and all coordinates stay in picture pixels.
    void zoomBy(int direction);
    void setZoom(double zoom);
    void zoomToFit();
    [[nodiscard]] double zoom() const;

    // ToolsNo_Click: a row of the tools menu.
    void ToolsNo_Click(int index);
    // The tool's text for the status panel.
    [[nodiscard]] const QString& toolStatus() const { return toolStatus_; }
    // A run is about to start on this document: an area being drawn or
    // ready to move is fixed, and the outline leaves the screen.
    void EffectStartToolsFlag();
    // The run has ended: the outline runs again around the area, if any.
    void EndingToolsFlag();
    // Timer1: the area's running outline.
    [[nodiscard]] QTimer& outlineTimer() const { return *Timer1; }

  signals:
    void zoomChanged(double zoom);
    void toolStatusChanged(const QString& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildMenus();
    void buildEffectMenus(QMenu& effectMenu, QMenu& composeMenu);
    void fillEffectMenu(QMenu& menu, std::string_view menuName);
    void addEffectAction(QMenu& menu, const EffectEntry& entry);
    QMenu* addTopMenu(const char* objectName, int captionId);
    // Zooms keeping the picture point under `anchor` (viewport coordinates) in place.
    void zoomAround(double zoom, QPoint anchor);
    void buildToolsMenu(QMenu& tools);
    void onPressed(QPoint pixel, Qt::MouseButton button);
    void onDragged(QPoint pixel);
    void onReleased(QPoint pixel);
    void onPointer(QPoint pixel);
    void applyStep(const ToolStep& step);
    void setToolStatus(const QString& text);
    // Rubber band, outline and lifted area from the tool's state.
    void updateOverlay();

    FrmMain& frame_;
    Document document_;
    QScrollArea* BasicArea;
    PictureView* Picture2;
    QList<QMenu*> topMenus_;
    QList<QAction*> historyActions_;
    QAction* historySeparator_ = nullptr;
    QAction* MnuProgress = nullptr;
    QAction* undoAction_ = nullptr;
    QAction* finalLoadAction_ = nullptr;
    QAction* closeAction_ = nullptr;
    QAction* discardAction_ = nullptr;
    QAction* exportAction_ = nullptr;
    QList<QAction*> mergeActions_;
    bool menusEnabled_ = true;
    QTimer* Timer1;
    QString toolStatus_;
    QImage lifted_;                 // the lifted area, for the screen
    bool outlineSuspended_ = false; // a run holds the document
};

} // namespace lumiran
