#pragma once

#include "catalogue/browse_thumbnails.h"

#include <QImage>
#include <QMainWindow>
#include <QPointer>
#include <array>
#include <atomic>
#include <memory>
#include <thread>

class QLabel;
class QMenu;
class QScrollArea;
class QTreeWidget;
class QTreeWidgetItem;

namespace lumiran {

class FrmDocument;
class FrmMain;
class KeyValueStore;

// The effect browser: the document's effect families as a tree and a page
// of thumbnails of the document for the chosen family. Thumbnails are made
// one by one on a worker thread and appear as they finish.
class FrmBrowse : public QMainWindow {
    Q_OBJECT
  public:
    FrmBrowse(FrmMain& frame, FrmDocument& document, KeyValueStore& store, ScreenSize screen);
    ~FrmBrowse() override;

    // Expands and shows the family of this menu array ("ColorNo"); the first
    // family when none has it. Families go by identity, never by their
    // caption, so both languages find them.
    void TreeViewNodeExpand(const QString& familyMenu);
    // Image1 click.
    void thumbnailClicked(int index);

    // The program's calculation type and raster flag, set from the browser's
    // menus (not while a run is under way); the page is made anew.
    void setCalculationFlag(std::uint8_t flag);
    void setRasterOpFlag(std::uint8_t flag);
    // The thumbnail box; stored and the page made anew.
    void setImageSize(int width, int height);
    void setColours(Rgb8 background, Rgb8 caption);

    [[nodiscard]] QTreeWidget& tree() const { return *TreeView1; }
    [[nodiscard]] QLabel& image(int index) const {
        return *Image1[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] QLabel& caption(int index) const {
        return *Label1[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] const QImage& thumbnail(int index) const {
        return thumbnails_[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] const Surface& workCopy() const { return work_; }
    [[nodiscard]] const BrowseSettings& browseSettings() const { return settings_; }
    // True while thumbnails of the page are still being made.
    [[nodiscard]] bool pageBusy() const { return pending_ > 0; }
    // The root of the page shown; null before a family is chosen.
    [[nodiscard]] QTreeWidgetItem* pageRoot() const { return pageRoot_; }

    // Tree menu commands.
    void nodeCollapse();
    void allNodeCollapse();
    void stepParent(int step);
    void stepChild(int step);
    void refreshPage();

  signals:
    // Every thumbnail of the page is done (or left empty).
    void pageFinished();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Job;
    void buildTree();
    void buildMenus();
    void BrowseImageSetAddIn();
    void ImageSizeAdjust();
    void showPage(QTreeWidgetItem* root, int firstChild);
    // The room under a thumbnail for its name.
    [[nodiscard]] int captionHeight() const;
    void layoutPage();
    void stopWork();
    void thumbnailReady(int generation, int index, QImage picture);
    void applyColours();
    // The menus' ticks at the program's flags.
    void showFlags();
    void askImageSize();
    void askColour(bool background);
    void nodeSelected(QTreeWidgetItem* item);
    // At unload, once.
    void writeSettings();
    // Size, colours and place into the store: at once on a change, again at unload.
    void storeSettings();

    FrmMain& frame_;
    QPointer<FrmDocument> document_;
    KeyValueStore& store_;
    BrowseSettings settings_;
    Surface work_; // Picture4
    PreviewPlacement placement_;

    QTreeWidget* TreeView1;
    QScrollArea* Picture1;
    QWidget* page_;
    std::array<QLabel*, BrowsePageSize> Image1{};
    std::array<QLabel*, BrowsePageSize> Label1{};
    std::array<QImage, BrowsePageSize> thumbnails_{};
    // The box's effect has run, with a picture or without (it failed).
    std::array<bool, BrowsePageSize> done_{};
    QMenu* mnuCaculation = nullptr;
    QMenu* mnuRasterOperation = nullptr;

    QTreeWidgetItem* pageRoot_ = nullptr;
    int firstChild_ = 0;
    int generation_ = 0;
    int pending_ = 0;
    std::uint32_t randomAtStart_ = 0; // the program's generator when the page began
    bool randomShared_ = false;       // the page took the program's generator
    std::shared_ptr<Job> job_;
    std::jthread worker_;
    bool settingsWritten_ = false;
};

} // namespace lumiran
