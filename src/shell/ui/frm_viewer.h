#pragma once

#include "tools/viewer_zoom.h"

#include <QDialog>
#include <QImage>
#include <QMainWindow>
#include <functional>

class QAction;
class QComboBox;
class QFileSystemModel;
class QLabel;
class QListWidget;
class QScrollArea;
class QSplitter;
class QStackedWidget;
class QTreeView;

namespace lumiran {

class KeyValueStore;

// What the load path gave the viewer: the picture, or its message.
struct ViewerLoad {
    QImage picture;
    QString title;
    QString text;
    QString detail;
    [[nodiscard]] bool ok() const { return !picture.isNull(); }
};

// Loads a file by the editor's load path, showing the percentage in `progress`.
using ViewerLoader = std::function<ViewerLoad(const QString& path, QAction* progress)>;

// The borderless window that shows the viewer's picture at its own size or
// fitted to the screen; a click or a key closes it.
class frm_Screen : public QWidget {
    Q_OBJECT
  public:
    frm_Screen(const QImage& picture, bool fitToScreen, QWidget* parent);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
};

// The image viewer: places, folders and files at the left, the selected
// file's picture at the right with its zoom. It touches no document until
// "Open" hands the path to the frame.
class frm_Viewer : public QMainWindow {
    Q_OBJECT
  public:
    frm_Viewer(KeyValueStore& store, ViewerLoader loader, QWidget* parent);
    ~frm_Viewer() override;

    // The selected file; empty while none is.
    [[nodiscard]] const QString& path() const { return path_; }
    [[nodiscard]] const ViewerZoom& zoom() const { return zoom_; }
    [[nodiscard]] QSize shownSize() const;

    void showFolder(const QString& folder);
    // A click on a row of the file list (by its name).
    void selectFile(const QString& name);
    void ZoomNo1_Click(int index);
    void PatternCombo_Click(int row);
    void LoadImageMenu_Click();
    void ImageShowNo_Click(int index);
    // 0 the lists with the picture, 1 the list view of files.
    void showView(int view);
    void refresh();

    QComboBox* drvList = nullptr;
    QTreeView* dirList = nullptr;
    QListWidget* filList = nullptr;
    QComboBox* PatternCombo = nullptr;
    QListWidget* ListView1 = nullptr;
    QScrollArea* Picture1 = nullptr;
    QLabel* ViewImage = nullptr;
    QAction* MnuProgress = nullptr;
    QList<QAction*> ZoomNo1;
    QLabel* DatePanel = nullptr;
    QLabel* SizePanel = nullptr;
    QLabel* PicturePanel = nullptr;

  signals:
    void openRequested(const QString& path);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void buildMenus();
    void showPicture();
    void tickZoom();
    [[nodiscard]] QString folder() const;
    [[nodiscard]] QStringList patterns() const;
    void fillListView();

    KeyValueStore& store_;
    ViewerLoader loader_;
    QString folder_;
    QString path_;
    QString pattern_; // the file list's Pattern
    QImage BigImage;
    ViewerZoom zoom_;
    QFileSystemModel* folders_ = nullptr;
    QStackedWidget* views_ = nullptr;
    QSplitter* split_ = nullptr;
    bool sized_ = false;
};

} // namespace lumiran
