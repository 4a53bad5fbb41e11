#include "shell/ui/frm_viewer.h"

#include "shell/key_value_store.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStorageInfo>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>
#include <cmath>

namespace lumiran {

namespace {

constexpr const char* Section = "Settings";
// Positions are kept in twips, 15 to a pixel at 96 dpi.
constexpr int TwipsPerPixel = 15;
constexpr int ThumbnailSide = 48;
// The list view reads at most this many pictures for its thumbnails.
constexpr int ThumbnailLimit = 300;
// The file list's own pattern until a row of the pattern combo is clicked:
// without the Photo CD files that row 0 lists.
constexpr const char* DesignPattern =
    "*.bmp;*.dib;*.ico;*.rle;*.wmf;*.emf;*.gif;*.pcx;*.ppm;*.tga;*.jpg";

int readTwips(const KeyValueStore& store, const char* key, int fallback) {
    const auto text = store.get(Section, key);
    if (!text) return fallback;
    bool ok = false;
    const double value = QString::fromStdString(*text).toDouble(&ok);
    return ok && std::isfinite(value) ? static_cast<int>(std::lround(value)) : fallback;
}

QImage thumbnail(const QString& path) {
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > ThumbnailSide || size.height() > ThumbnailSide))
        reader.setScaledSize(size.scaled(ThumbnailSide, ThumbnailSide, Qt::KeepAspectRatio));
    return reader.read();
}

} // namespace

frm_Screen::frm_Screen(const QImage& picture, bool fitToScreen, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint) {
    setObjectName("frm_Screen");
    setAttribute(Qt::WA_DeleteOnClose);
    const QRect screen = (parent != nullptr && parent->screen() != nullptr)
                             ? parent->screen()->geometry()
                             : QGuiApplication::primaryScreen()->geometry();
    auto* label = new QLabel;
    label->setAlignment(Qt::AlignCenter);
    QPixmap shown = QPixmap::fromImage(picture);
    if (fitToScreen)
        shown = shown.scaled(screen.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    label->setPixmap(shown);
    auto* area = new QScrollArea;
    area->setAlignment(Qt::AlignCenter);
    area->setFrameShape(QFrame::NoFrame);
    area->setStyleSheet("background: black;");
    area->setWidget(label);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    setGeometry(screen);
}

void frm_Screen::keyPressEvent(QKeyEvent*) {
    close();
}
void frm_Screen::mousePressEvent(QMouseEvent*) {
    close();
}

frm_Viewer::frm_Viewer(KeyValueStore& store, ViewerLoader loader, QWidget* parent)
    : QMainWindow(parent, Qt::Window), store_(store), loader_(std::move(loader)) {
    setObjectName("frm_Viewer");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Image Viewer ");

    drvList = new QComboBox;
    drvList->setObjectName("drvList");
    dirList = new QTreeView;
    dirList->setObjectName("dirList");
    folders_ = new QFileSystemModel(this);
    folders_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders_->setRootPath(QString());
    dirList->setModel(folders_);
    for (int column = 1; column < folders_->columnCount(); ++column)
        dirList->hideColumn(column);
    dirList->setHeaderHidden(true);
    filList = new QListWidget;
    filList->setObjectName("filList");
    PatternCombo = new QComboBox;
    PatternCombo->setObjectName("PatternCombo");
    for (const char* row : viewerPatternRows())
        PatternCombo->addItem(row);
    // No row is chosen until one is clicked; the list has its own pattern.
    PatternCombo->setCurrentIndex(-1);
    pattern_ = DesignPattern;

    // Places stand for the drives: the roots of the mounted volumes and home.
    drvList->addItem(QDir::homePath(), QDir::homePath());
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady()) continue;
        const QString root = volume.rootPath();
        if (drvList->findData(root) < 0) drvList->addItem(root, root);
    }

    auto* lists = new QWidget;
    auto* listLayout = new QVBoxLayout(lists);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->addWidget(drvList);
    listLayout->addWidget(dirList, 1);
    listLayout->addWidget(filList, 1);
    listLayout->addWidget(PatternCombo);
    // An explicit minimum, so the splitter may narrow the lists below their hints.
    lists->setMinimumWidth(120);

    ViewImage = new QLabel;
    ViewImage->setObjectName("ViewImage");
    ViewImage->setScaledContents(true);
    Picture1 = new QScrollArea;
    Picture1->setObjectName("Picture1");
    Picture1->setAlignment(Qt::AlignCenter);
    Picture1->setWidget(ViewImage);
    Picture1->setWidgetResizable(false);

    auto* split = new QSplitter;
    split_ = split;
    split->addWidget(lists);
    split->addWidget(Picture1);
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);

    ListView1 = new QListWidget;
    ListView1->setObjectName("ListView1");
    ListView1->setViewMode(QListView::IconMode);
    ListView1->setIconSize(QSize(ThumbnailSide, ThumbnailSide));
    ListView1->setResizeMode(QListView::Adjust);
    ListView1->setGridSize(QSize(ThumbnailSide + 60, ThumbnailSide + 30));
    ListView1->setWordWrap(true);

    views_ = new QStackedWidget;
    views_->addWidget(split);
    views_->addWidget(ListView1);
    setCentralWidget(views_);

    DatePanel = new QLabel;
    DatePanel->setObjectName("DatePanel");
    SizePanel = new QLabel;
    SizePanel->setObjectName("SizePanel");
    PicturePanel = new QLabel;
    PicturePanel->setObjectName("PicturePanel");
    statusBar()->setObjectName("StatusBar1");
    statusBar()->addWidget(DatePanel, 2);
    statusBar()->addWidget(SizePanel, 1);
    statusBar()->addWidget(PicturePanel, 1);

    buildMenus();

    connect(drvList, &QComboBox::activated, this,
            [this](int row) { showFolder(drvList->itemData(row).toString()); });
    connect(dirList, &QTreeView::clicked, this,
            [this](const QModelIndex& index) { showFolder(folders_->filePath(index)); });
    connect(filList, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { selectFile(item->text()); });
    connect(PatternCombo, &QComboBox::activated, this, &frm_Viewer::PatternCombo_Click);
    connect(ListView1, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { selectFile(item->text()); });
    connect(ListView1, &QListWidget::itemDoubleClicked, this, [this] { showView(0); });

    const auto pixels = [](int twips) {
        return static_cast<int>(std::lround(static_cast<double>(twips) / TwipsPerPixel));
    };
    setGeometry(pixels(readTwips(store_, "ViewerLeft", 1000)),
                pixels(readTwips(store_, "ViewerTop", 1000)),
                std::max(200, readTwips(store_, "ViewerWidth", 8200) / TwipsPerPixel),
                std::max(150, readTwips(store_, "ViewerHeight", 5200) / TwipsPerPixel));
    showFolder(QDir::homePath());
    tickZoom();
}

frm_Viewer::~frm_Viewer() = default;

void frm_Viewer::buildMenus() {
    QMenu* file = menuBar()->addMenu("Image(&I)");
    file->setObjectName("mnuFile");
    QAction* open = file->addAction("Open(&O)...", this, &frm_Viewer::LoadImageMenu_Click);
    open->setObjectName("LoadImageMenu");
    QMenu* show = file->addMenu("Image Show(&S)");
    show->setObjectName("ImageShow");
    show->addAction("Actual Size", this, [this] { ImageShowNo_Click(0); });
    show->addAction("Screen Size", this, [this] { ImageShowNo_Click(1); });
    file->addAction("Close(&C)", this, &QWidget::close)->setObjectName("mnuFileExit");

    QMenu* zoom = menuBar()->addMenu("Zoom(&Z)");
    zoom->setObjectName("mnuZoom");
    for (int i = 0; i < viewer_zoom::Count; ++i) {
        QAction* entry = nullptr;
        if (i == 2) {
            entry = zoom->addSeparator();
        } else {
            entry = zoom->addAction(ViewerZoomCaptions[static_cast<std::size_t>(i)], this,
                                    [this, i] { ZoomNo1_Click(i); });
            entry->setCheckable(i >= viewer_zoom::Quarter);
        }
        entry->setObjectName(QString("ZoomNo1_%1").arg(i));
        ZoomNo1.append(entry);
    }

    QMenu* view = menuBar()->addMenu("View(&V)");
    view->setObjectName("mnuView");
    view->addAction("Refresh", this, &frm_Viewer::refresh)->setObjectName("mnuRefresh");
    view->addAction("ListBox & Image", this, [this] { showView(0); })
        ->setObjectName("mnuViewImage");
    view->addAction("LIstView", this, [this] { showView(1); })->setObjectName("mnuViewListView");

    MnuProgress = menuBar()->addAction(QString());
    MnuProgress->setObjectName("MnuProgress");
    MnuProgress->setEnabled(false);

    QToolBar* tools = addToolBar("Toolbar1");
    tools->setObjectName("Toolbar1");
    tools->setMovable(false);
    tools->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), "Open", this,
                     &frm_Viewer::LoadImageMenu_Click);
    tools->addAction(style()->standardIcon(QStyle::SP_ArrowUp), ViewerZoomCaptions[0], this,
                     [this] { ZoomNo1_Click(viewer_zoom::In); });
    tools->addAction(style()->standardIcon(QStyle::SP_ArrowDown), ViewerZoomCaptions[1], this,
                     [this] { ZoomNo1_Click(viewer_zoom::Out); });
    tools->addAction(style()->standardIcon(QStyle::SP_TitleBarMaxButton), "Actual Size", this,
                     [this] { ImageShowNo_Click(0); });
    tools->addAction(style()->standardIcon(QStyle::SP_FileDialogListView), "ListBox & Image", this,
                     [this] { showView(0); });
    tools->addAction(style()->standardIcon(QStyle::SP_FileDialogContentsView), "LIstView", this,
                     [this] { showView(1); });
    tools->addAction(style()->standardIcon(QStyle::SP_BrowserReload), "Refresh", this,
                     &frm_Viewer::refresh);
}

QString frm_Viewer::folder() const {
    return folder_;
}

QStringList frm_Viewer::patterns() const {
    return pattern_.split(';', Qt::SkipEmptyParts);
}

void frm_Viewer::showFolder(const QString& folder) {
    const QFileInfo info(folder);
    if (!info.isDir()) return;
    folder_ = info.absoluteFilePath();
    const QModelIndex index = folders_->index(folder_);
    dirList->setCurrentIndex(index);
    dirList->scrollTo(index);
    refresh();
}

void frm_Viewer::refresh() {
    filList->clear();
    QDir dir(folder_);
    const QStringList names =
        // Files that cannot be read are listed too; a click says why.
        dir.entryList(patterns(), QDir::Files, QDir::Name | QDir::IgnoreCase);
    filList->addItems(names);
    if (views_->currentIndex() == 1) fillListView();
}

void frm_Viewer::fillListView() {
    ListView1->clear();
    int read = 0;
    for (int i = 0; i < filList->count(); ++i) {
        const QString name = filList->item(i)->text();
        QIcon icon = style()->standardIcon(QStyle::SP_FileIcon);
        if (read < ThumbnailLimit) {
            ++read;
            const QImage small =
                thumbnail(qs(joinViewerPath(folder_.toStdString(), name.toStdString())));
            if (!small.isNull()) icon = QIcon(QPixmap::fromImage(small));
        }
        ListView1->addItem(new QListWidgetItem(icon, name));
    }
}

void frm_Viewer::showView(int view) {
    views_->setCurrentIndex(view == 1 ? 1 : 0);
    if (view == 1) fillListView();
}

void frm_Viewer::PatternCombo_Click(int row) {
    if (row < 0 || row >= PatternCombo->count()) return;
    PatternCombo->setCurrentIndex(row);
    pattern_ = qs(patternOfRow(PatternCombo->itemText(row).toStdString()));
    refresh();
}

void frm_Viewer::selectFile(const QString& name) {
    path_ = qs(joinViewerPath(folder_.toStdString(), name.toStdString()));
    setWindowTitle("Image Viewer [" + path_ + "]   ");
    const QFileInfo info(path_);
    DatePanel->setText(res(ids::ViewerFileDate) +
                       QLocale::system().toString(info.lastModified(), QLocale::ShortFormat));
    SizePanel->setText(res(ids::ViewerFileSize) + QString::number(info.size()));
    PicturePanel->clear();
    ViewerLoad loaded = loader_ ? loader_(path_, MnuProgress) : ViewerLoad{};
    MnuProgress->setText(QString());
    if (!loaded.ok()) {
        setWindowTitle("Image Viewer ");
        path_.clear();
        BigImage = QImage();
        ViewImage->clear();
        ViewImage->resize(0, 0);
        filList->clearSelection();
        ListView1->clearSelection();
        QMessageBox box(QMessageBox::Warning, loaded.title, loaded.text, QMessageBox::Ok, this);
        if (!loaded.detail.isEmpty()) box.setDetailedText(loaded.detail);
        box.exec();
        return;
    }
    BigImage = std::move(loaded.picture);
    const QSize pane = Picture1->viewport()->size();
    if (zoomNewPicture(zoom_, {double(BigImage.width()), double(BigImage.height())},
                       {double(pane.width()), double(pane.height())}) == ZoomOutcome::Failed) {
        // The picture too large for the ticked zoom is shown fitted.
        applyZoom(zoom_, viewer_zoom::Auto, {double(BigImage.width()), double(BigImage.height())},
                  {double(pane.width()), double(pane.height())}, true);
    }
    showPicture();
    tickZoom();
    PicturePanel->setText(res(ids::ViewerPictureSize) +
                          QString("%1 x %2").arg(BigImage.width()).arg(BigImage.height()));
}

QSize frm_Viewer::shownSize() const {
    return {static_cast<int>(std::lround(zoom_.shown.width)),
            static_cast<int>(std::lround(zoom_.shown.height))};
}

void frm_Viewer::showPicture() {
    if (BigImage.isNull()) return;
    const QSize size = shownSize();
    ViewImage->setPixmap(QPixmap::fromImage(BigImage));
    ViewImage->resize(size);
}

void frm_Viewer::tickZoom() {
    for (int i = viewer_zoom::Quarter; i < viewer_zoom::Count; ++i)
        ZoomNo1[i]->setChecked(i == zoom_.ticked);
}

void frm_Viewer::ZoomNo1_Click(int index) {
    const QSize pane = Picture1->viewport()->size();
    const ZoomOutcome outcome = applyZoom(
        zoom_, index, {double(BigImage.width()), double(BigImage.height())},
        {double(pane.width()), double(pane.height())}, !path_.isEmpty() && !BigImage.isNull());
    tickZoom();
    if (outcome == ZoomOutcome::Failed) {
        QMessageBox::warning(this, res(ids::ViewerZoomErrorTitle), res(ids::ViewerZoomError));
        return;
    }
    if (outcome == ZoomOutcome::Applied) showPicture();
}

void frm_Viewer::LoadImageMenu_Click() {
    if (path_.isEmpty()) {
        // A message without a title of its own carries the program's name.
        QMessageBox::information(this, QGuiApplication::applicationDisplayName(),
                                 res(ids::ViewerSelectPicture));
        return;
    }
    emit openRequested(path_);
}

void frm_Viewer::ImageShowNo_Click(int index) {
    if (path_.isEmpty() || BigImage.isNull()) return;
    auto* screen = new frm_Screen(BigImage, index == 1, this);
    screen->show();
    screen->activateWindow();
}

void frm_Viewer::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    // The picture gets the larger part; the lists' size hints would take most.
    if (!sized_) {
        QTimer::singleShot(0, this, [this] {
            const int total = split_->width();
            split_->setSizes({total * 2 / 5, total - total * 2 / 5});
        });
    }
    sized_ = true;
}

void frm_Viewer::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // "Auto" follows the pane.
    if (zoom_.ticked == viewer_zoom::Auto && !BigImage.isNull()) ZoomNo1_Click(viewer_zoom::Auto);
}

void frm_Viewer::closeEvent(QCloseEvent* event) {
    const QRect g = geometry();
    store_.set(Section, "ViewerLeft", std::to_string(g.x() * TwipsPerPixel));
    store_.set(Section, "ViewerTop", std::to_string(g.y() * TwipsPerPixel));
    store_.set(Section, "ViewerWidth", std::to_string(g.width() * TwipsPerPixel));
    store_.set(Section, "ViewerHeight", std::to_string(g.height() * TwipsPerPixel));
    event->accept();
}

} // namespace lumiran
