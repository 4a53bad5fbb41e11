#include "catalogue/ui/frm_browse.h"

#include "engine/calculation.h"
#include "engine/raster_step.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QColorDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPixmap>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <algorithm>
#include <utility>
#include <vector>

namespace lumiran {

namespace {

// A node's identity: a root's menu array ("ColorNo"), a child's menu row
// ("ColorNo3", empty for a separator).
constexpr int RowRole = Qt::UserRole;
constexpr int Gap = 8;

QString colourCss(Rgb8 c) {
    return QStringLiteral("rgb(%1,%2,%3)").arg(c.red).arg(c.green).arg(c.blue);
}

} // namespace

// What the worker needs; the GUI thread only sets `state.cancelFlag`.
struct FrmBrowse::Job {
    ProgramState state;
    std::atomic<bool> stop{false};
};

FrmBrowse::FrmBrowse(FrmMain& frame, FrmDocument& document, KeyValueStore& store, ScreenSize screen)
    : QMainWindow(&frame, Qt::Window), frame_(frame), document_(&document), store_(store),
      settings_(readBrowseSettings(store, screen)) {
    setObjectName("Frm_Browse");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(res(ids::EffectBrowse).remove(QStringLiteral("...")));
    setGeometry(settings_.left, settings_.top, settings_.width, settings_.height);

    TreeView1 = new QTreeWidget;
    TreeView1->setObjectName("TreeView1");
    TreeView1->setHeaderHidden(true);
    Picture1 = new QScrollArea;
    Picture1->setObjectName("Picture1");
    Picture1->setWidgetResizable(false);
    Picture1->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    page_ = new QWidget;
    page_->setObjectName("PicturePage");
    page_->setAutoFillBackground(true);
    for (int i = 0; i < BrowsePageSize; ++i) {
        auto* image = new QLabel(page_);
        image->setObjectName(QStringLiteral("Image1_%1").arg(i));
        image->setAlignment(Qt::AlignCenter);
        image->installEventFilter(this);
        auto* label = new QLabel(page_);
        label->setObjectName(QStringLiteral("Label1_%1").arg(i));
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        // A name wider than its box goes on to a second line.
        label->setWordWrap(true);
        Image1[static_cast<std::size_t>(i)] = image;
        Label1[static_cast<std::size_t>(i)] = label;
    }
    Picture1->setWidget(page_);
    auto* split = new QSplitter;
    split->addWidget(TreeView1);
    split->addWidget(Picture1);
    split->setStretchFactor(1, 1);
    setCentralWidget(split);

    buildMenus();
    showFlags();
    buildTree();
    // The tree as wide as its longest row (English names run longer than
    // the Japanese ones), at least 220 pixels and at most half the window.
    int widest = 0;
    for (QTreeWidgetItemIterator it(TreeView1); *it; ++it)
        widest = std::max(widest, TreeView1->fontMetrics().horizontalAdvance((*it)->text(0)));
    const int treeWidth =
        std::clamp(widest + 2 * TreeView1->indentation() + TreeView1->iconSize().width() +
                       TreeView1->verticalScrollBar()->sizeHint().width() + 16,
                   220, std::max(220, settings_.width / 2));
    split->setSizes({treeWidth, std::max(200, settings_.width - treeWidth)});
    applyColours();
    BrowseImageSetAddIn();
    connect(TreeView1, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { nodeSelected(item); });
    connect(TreeView1, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { nodeSelected(item); });
    // The browser belongs to its document.
    connect(&document, &QObject::destroyed, this, &QWidget::close);
}

FrmBrowse::~FrmBrowse() {
    stopWork();
    writeSettings();
}

void FrmBrowse::buildMenus() {
    QMenu* browse = menuBar()->addMenu(res(ids::EffectBrowse).remove(QStringLiteral("...")));
    browse->setObjectName("mnuEffectBrowse");
    browse->addAction("Image Size", this, &FrmBrowse::askImageSize);
    browse->addAction("Background Color", this, [this] { askColour(true); });
    browse->addAction("Caption Color", this, [this] { askColour(false); });
    browse->addSeparator();
    browse->addAction("Close", this, &QWidget::close);

    QMenu* tree = menuBar()->addMenu(res(ids::BrowseTreeMenu));
    tree->setObjectName("mnuTreeView");
    QAction* collapse = tree->addAction("Node Collapse", this, &FrmBrowse::nodeCollapse);
    QAction* collapseAll = tree->addAction("All Node Collapse", this, &FrmBrowse::allNodeCollapse);
    QAction* nextParent = tree->addAction("Next Parent Node", this, [this] { stepParent(1); });
    QAction* prevParent = tree->addAction("Prev Parent Node", this, [this] { stepParent(-1); });
    QAction* nextChild = tree->addAction("Next Child Node", this, [this] { stepChild(1); });
    QAction* prevChild = tree->addAction("Prev Child Node", this, [this] { stepChild(-1); });
    QAction* refresh = tree->addAction("Refresh", this, &FrmBrowse::refreshPage);

    mnuCaculation = menuBar()->addMenu(res(2063));
    mnuCaculation->setObjectName("mnuCaculation");
    auto* calculations = new QActionGroup(this);
    for (int flag = 0; flag <= 10; ++flag) {
        QAction* row = mnuCaculation->addAction(
            QString::fromUtf8(calculationTypeLabel(static_cast<std::uint8_t>(flag))));
        row->setObjectName(QStringLiteral("mnuCaculationNo%1").arg(flag));
        row->setCheckable(true);
        calculations->addAction(row);
        connect(row, &QAction::triggered, this,
                [this, flag] { setCalculationFlag(static_cast<std::uint8_t>(flag)); });
    }
    mnuRasterOperation = menuBar()->addMenu(res(2065));
    mnuRasterOperation->setObjectName("mnuRasterOperation");
    auto* rasters = new QActionGroup(this);
    for (int flag = 0; flag <= 10; ++flag) {
        // The plain copy has no code name: it reads as in the options' list.
        QAction* row = mnuRasterOperation->addAction(
            flag == 0 ? QStringLiteral("0,") + res(dialog_ids::RasterPlainCopy)
                      : QString::fromUtf8(rasterOpLabel(static_cast<std::uint8_t>(flag))));
        row->setObjectName(QStringLiteral("mnuRasterOperationNo%1").arg(flag));
        row->setCheckable(true);
        rasters->addAction(row);
        connect(row, &QAction::triggered, this,
                [this, flag] { setRasterOpFlag(static_cast<std::uint8_t>(flag)); });
    }

    // Buttons are told apart by these keys, which are only identifiers.
    QToolBar* bar = addToolBar("Toolbar1");
    bar->setObjectName("Toolbar1");
    bar->setMovable(false);
    const std::pair<const char*, QAction*> keyed[] = {
        {"LoadResString(4142 + Language)", collapse},
        {"LoadResString(4146 + Language)", collapseAll},
        {"LoadResString(4148 + Language)", nextParent},
        {"LoadResString(4150 + Language)", prevParent},
        {"LoadResString(4152 + Language)", nextChild},
        {"LoadResString(4170 + Language)", prevChild},
        {"LoadResString(4172 + Language)", refresh},
    };
    const int tips[] = {4143, 4147, 4149, 4151, 4153, 4171, 4173};
    const QStyle::StandardPixmap icons[] = {
        QStyle::SP_TitleBarShadeButton, QStyle::SP_TitleBarMinButton,
        QStyle::SP_ArrowDown,           QStyle::SP_ArrowUp,
        QStyle::SP_ArrowForward,        QStyle::SP_ArrowBack,
        QStyle::SP_BrowserReload};
    for (std::size_t i = 0; i < std::size(keyed); ++i) {
        QAction* button = bar->addAction(style()->standardIcon(icons[i]), res(tips[i]));
        button->setProperty("Key", QString::fromLatin1(keyed[i].first));
        connect(button, &QAction::triggered, keyed[i].second, &QAction::trigger);
    }
    bar->addSeparator();
    QAction* calc =
        bar->addAction(style()->standardIcon(QStyle::SP_FileDialogDetailedView), res(2063));
    calc->setProperty("Key", QStringLiteral("LoadResString(2062 + Language)"));
    calc->setMenu(mnuCaculation);
    QAction* raster =
        bar->addAction(style()->standardIcon(QStyle::SP_FileDialogListView), res(2065));
    raster->setProperty("Key", QStringLiteral("LoadResString(2064 + Language)"));
    raster->setMenu(mnuRasterOperation);
}

void FrmBrowse::buildTree() {
    // Built from the document's menus: each family submenu of the effect
    // menu that has a "Browse..." row is a root, its rows the children but
    // for the separator and "Browse..." that end it. Other submenus (the
    // aggregates) and the composition menu are not looked at.
    QMenu* effect = document_->menu("mnuEffect");
    if (effect == nullptr) return;
    for (QAction* action : effect->actions()) {
        QMenu* sub = action->menu();
        if (sub == nullptr) continue;
        const EffectFamily* family = findFamily(sub->objectName().toStdString());
        if (family == nullptr || family->browseCategoryId == 0) continue;
        auto* root = new QTreeWidgetItem(TreeView1, {sub->title()});
        root->setData(0, RowRole, sub->objectName());
        root->setIcon(0, style()->standardIcon(QStyle::SP_DirIcon));
        const QList<QAction*> rows = sub->actions();
        for (qsizetype i = 0; i + 2 < rows.size(); ++i) {
            QAction* row = rows[i];
            // A doubled ampersand is the menu's way of showing one.
            QString text = row->isSeparator() ? QStringLiteral("-") : row->text();
            text.replace(QStringLiteral("&&"), QStringLiteral("&"));
            auto* child = new QTreeWidgetItem(root, {text});
            child->setData(0, RowRole, row->objectName());
            child->setIcon(0, style()->standardIcon(QStyle::SP_FileIcon));
        }
    }
}

void FrmBrowse::BrowseImageSetAddIn() {
    const Surface& picture = document_->document().picture;
    placement_ = thumbnailPlacement(settings_.imageWidth, settings_.imageHeight, picture.width(),
                                    picture.height());
    work_ = placement_.width > 0 && placement_.height > 0
                ? scalePicture(picture, placement_.width, placement_.height)
                : Surface{};
    ImageSizeAdjust();
}

void FrmBrowse::ImageSizeAdjust() {
    for (int i = 0; i < BrowsePageSize; ++i) {
        Image1[static_cast<std::size_t>(i)]->resize(std::max(1, placement_.width),
                                                    std::max(1, placement_.height));
        Label1[static_cast<std::size_t>(i)]->resize(settings_.imageWidth, captionHeight());
    }
    layoutPage();
}

int FrmBrowse::captionHeight() const {
    // Two lines: English names are often wider than a box.
    return 2 * Label1[0]->fontMetrics().lineSpacing() + 4;
}

void FrmBrowse::layoutPage() {
    // As many boxes across as the page's width allows.
    const int cellWidth = settings_.imageWidth + Gap;
    const int cellHeight = settings_.imageHeight + captionHeight() + Gap;
    const int across = std::max(1, (Picture1->viewport()->width() - Gap) / cellWidth);
    int used = 0;
    for (int i = 0; i < BrowsePageSize; ++i) {
        const bool shown = !Label1[static_cast<std::size_t>(i)]->text().isEmpty();
        Image1[static_cast<std::size_t>(i)]->setVisible(shown);
        Label1[static_cast<std::size_t>(i)]->setVisible(shown);
        if (!shown) continue;
        used = i + 1;
        const int x = Gap + (i % across) * cellWidth;
        const int y = Gap + (i / across) * cellHeight;
        Image1[static_cast<std::size_t>(i)]->move(x + placement_.left, y + placement_.top);
        Label1[static_cast<std::size_t>(i)]->move(x, y + settings_.imageHeight);
    }
    const int rows = (used + across - 1) / across;
    page_->resize(std::max(Picture1->viewport()->width(), Gap + across * cellWidth),
                  std::max(Picture1->viewport()->height(), Gap + rows * cellHeight));
}

void FrmBrowse::applyColours() {
    page_->setStyleSheet(QStringLiteral("#PicturePage { background: %1; } QLabel { color: %2; }")
                             .arg(colourCss(settings_.background), colourCss(settings_.caption)));
}

void FrmBrowse::nodeSelected(QTreeWidgetItem* item) {
    if (item == nullptr) return;
    QTreeWidgetItem* root = item->parent() != nullptr ? item->parent() : item;
    const int first =
        item->parent() != nullptr ? root->indexOfChild(item) / BrowsePageSize * BrowsePageSize : 0;
    root->setExpanded(true);
    if (root == pageRoot_ && first == firstChild_) return;
    showPage(root, first);
}

void FrmBrowse::TreeViewNodeExpand(const QString& familyMenu) {
    // GetNodeNumber: the root of this family, else the first root.
    QTreeWidgetItem* found = nullptr;
    for (int i = 0; i < TreeView1->topLevelItemCount() && found == nullptr; ++i) {
        QTreeWidgetItem* root = TreeView1->topLevelItem(i);
        if (root->data(0, RowRole).toString() == familyMenu) found = root;
    }
    if (found == nullptr && TreeView1->topLevelItemCount() > 0) found = TreeView1->topLevelItem(0);
    if (found == nullptr) return;
    found->setExpanded(true);
    TreeView1->setCurrentItem(found);
    showPage(found, 0);
}

void FrmBrowse::showPage(QTreeWidgetItem* root, int firstChild) {
    stopWork();
    pageRoot_ = root;
    firstChild_ = firstChild;
    ++generation_;
    Picture1->verticalScrollBar()->setValue(0);
    showFlags();
    std::vector<std::pair<int, const EffectEntry*>> todo;
    for (int i = 0; i < BrowsePageSize; ++i) {
        const int child = firstChild + i;
        QLabel* image = Image1[static_cast<std::size_t>(i)];
        image->clear();
        image->setToolTip({});
        thumbnails_[static_cast<std::size_t>(i)] = {};
        done_[static_cast<std::size_t>(i)] = false;
        QString text;
        if (child < root->childCount()) {
            text = root->child(child)->text(0);
            const EffectEntry* effect =
                effectOfMenuRow(root->child(child)->data(0, RowRole).toString().toStdString());
            if (effect != nullptr) {
                todo.emplace_back(i, effect);
                image->setText(QStringLiteral("…"));
            } else if (text != QStringLiteral("-")) {
                image->setText(res(ids::NotAvailableYet));
            }
        }
        Label1[static_cast<std::size_t>(i)]->setText(text);
    }
    layoutPage();
    pending_ = static_cast<int>(todo.size());
    if (pending_ == 0 || work_.empty()) {
        pending_ = 0;
        emit pageFinished();
        return;
    }
    job_ = std::make_shared<Job>();
    // The program's flags and colours, whatever set them last.
    job_->state.flags = frame_.state().flags;
    // The program's one generator: the page goes on from where it stands,
    // and hands it back advanced unless someone drew from it meanwhile.
    randomShared_ = !frame_.busy();
    if (randomShared_) job_->state.random = frame_.state().random;
    randomAtStart_ = job_->state.random.state();
    worker_ = std::jthread([job = job_, todo = std::move(todo), work = work_,
                            generation = generation_, self = QPointer<FrmBrowse>(this)] {
        for (const auto& [index, effect] : todo) {
            if (job->stop.load()) return;
            std::optional<Surface> result = browseThumbnail(job->state, *effect, work);
            if (job->stop.load()) return;
            QImage picture = result ? toQImage(*result) : QImage();
            // Queued to the window; dropped with it if it is gone.
            QMetaObject::invokeMethod(
                self.data(),
                [self, generation, index, picture = std::move(picture)]() mutable {
                    if (self) self->thumbnailReady(generation, index, std::move(picture));
                },
                Qt::QueuedConnection);
        }
    });
}

void FrmBrowse::thumbnailReady(int generation, int index, QImage picture) {
    if (generation != generation_) return;
    QLabel* image = Image1[static_cast<std::size_t>(index)];
    done_[static_cast<std::size_t>(index)] = true;
    if (picture.isNull()) {
        image->setText(res(ids::NotAvailableYet));
    } else {
        image->setPixmap(QPixmap::fromImage(picture));
        image->setToolTip(Label1[static_cast<std::size_t>(index)]->text());
        thumbnails_[static_cast<std::size_t>(index)] = std::move(picture);
    }
    if (--pending_ == 0) {
        // The worker drew its last number before queuing this thumbnail.
        RandomGenerator& program = frame_.state().random;
        if (job_ && randomShared_ && !frame_.busy() && program.state() == randomAtStart_)
            program = job_->state.random;
        emit pageFinished();
    }
}

void FrmBrowse::stopWork() {
    if (job_) {
        job_->stop.store(true);
        job_->state.cancelFlag.store(1);
    }
    if (worker_.joinable()) worker_.join();
    job_.reset();
    pending_ = 0;
}

void FrmBrowse::thumbnailClicked(int index) {
    if (index < 0 || index >= BrowsePageSize || pageRoot_ == nullptr) return;
    const QString text = Label1[static_cast<std::size_t>(index)]->text();
    // A box whose effect failed on the small copy still opens its dialog;
    // one still waiting for its effect does not.
    if (frame_.busy() || text.isEmpty() || text == QStringLiteral("-") ||
        !done_[static_cast<std::size_t>(index)] || !document_)
        return;
    const int child = firstChild_ + index;
    if (child >= pageRoot_->childCount()) return;
    // The row is found by its identity: captions differ between languages
    // and two rows of a family may read alike.
    const QString family = pageRoot_->data(0, RowRole).toString();
    const QString row = pageRoot_->child(child)->data(0, RowRole).toString();
    if (windowState() & Qt::WindowMaximized) showNormal();
    hide();
    stopWork();
    document_->BrowseToPreviewMain(family, row);
    close();
}

void FrmBrowse::setCalculationFlag(std::uint8_t flag) {
    // The program's own flag, as the options and the status bar set it; a
    // run starting meanwhile reads it, so it stays while one is under way.
    if (!frame_.busy()) {
        frame_.state().flags.calculationFlag = flag;
        frame_.refreshStatus();
    }
    refreshPage();
}

void FrmBrowse::setRasterOpFlag(std::uint8_t flag) {
    if (!frame_.busy()) {
        frame_.state().flags.rasterOpFlag = flag;
        frame_.refreshStatus();
    }
    refreshPage();
}

void FrmBrowse::showFlags() {
    const EffectFlags& flags = frame_.state().flags;
    if (QAction* row =
            findChild<QAction*>(QStringLiteral("mnuCaculationNo%1").arg(flags.calculationFlag)))
        row->setChecked(true);
    if (QAction* row =
            findChild<QAction*>(QStringLiteral("mnuRasterOperationNo%1").arg(flags.rasterOpFlag)))
        row->setChecked(true);
}

void FrmBrowse::setImageSize(int width, int height) {
    // A run may be replacing the document's picture: it is read only between runs.
    if (width < 1 || height < 1 || frame_.busy()) return;
    settings_.imageWidth = width;
    settings_.imageHeight = height;
    storeSettings();
    refreshPage();
}

void FrmBrowse::setColours(Rgb8 background, Rgb8 caption) {
    settings_.background = background;
    settings_.caption = caption;
    storeSettings();
    applyColours();
    refreshPage();
}

void FrmBrowse::askImageSize() {
    bool ok = false;
    const int width =
        QInputDialog::getInt(this, res(1913), res(4185), settings_.imageWidth, 1, 32767, 1, &ok);
    if (!ok) return;
    const int height =
        QInputDialog::getInt(this, res(1915), res(4187), settings_.imageHeight, 1, 32767, 1, &ok);
    if (!ok) return;
    setImageSize(width, height);
}

void FrmBrowse::askColour(bool background) {
    const Rgb8 now = background ? settings_.background : settings_.caption;
    const QColor chosen = QColorDialog::getColor(QColor(now.red, now.green, now.blue), this);
    if (!chosen.isValid()) return;
    const Rgb8 colour{static_cast<std::uint8_t>(chosen.red()),
                      static_cast<std::uint8_t>(chosen.green()),
                      static_cast<std::uint8_t>(chosen.blue())};
    setColours(background ? colour : settings_.background, background ? settings_.caption : colour);
}

void FrmBrowse::nodeCollapse() {
    QTreeWidgetItem* item = TreeView1->currentItem();
    if (item == nullptr) return;
    QTreeWidgetItem* root = item->parent() != nullptr ? item->parent() : item;
    root->setExpanded(false);
    TreeView1->setCurrentItem(root);
}

void FrmBrowse::allNodeCollapse() {
    TreeView1->collapseAll();
    if (pageRoot_ != nullptr) TreeView1->setCurrentItem(pageRoot_);
}

void FrmBrowse::stepParent(int step) {
    const int count = TreeView1->topLevelItemCount();
    if (count == 0) return;
    const int now = pageRoot_ != nullptr ? TreeView1->indexOfTopLevelItem(pageRoot_) : -step;
    const int next = now + step;
    if (next < 0 || next >= count) return;
    QTreeWidgetItem* root = TreeView1->topLevelItem(next);
    root->setExpanded(true);
    TreeView1->setCurrentItem(root);
}

void FrmBrowse::stepChild(int step) {
    QTreeWidgetItem* item = TreeView1->currentItem();
    if (item == nullptr) return;
    QTreeWidgetItem* root = item->parent() != nullptr ? item->parent() : item;
    const int now = item->parent() != nullptr ? root->indexOfChild(item) : -1;
    const int next = now + step;
    if (next < 0 || next >= root->childCount()) return;
    root->setExpanded(true);
    TreeView1->setCurrentItem(root->child(next));
}

void FrmBrowse::refreshPage() {
    if (pageRoot_ == nullptr) return;
    // The document may have changed since the work copy was made.
    stopWork();
    if (!frame_.busy() && document_) BrowseImageSetAddIn();
    showPage(pageRoot_, firstChild_);
}

bool FrmBrowse::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        for (int i = 0; i < BrowsePageSize; ++i) {
            if (watched == Image1[static_cast<std::size_t>(i)]) {
                thumbnailClicked(i);
                return true;
            }
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void FrmBrowse::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    layoutPage();
}

void FrmBrowse::writeSettings() {
    if (settingsWritten_) return;
    settingsWritten_ = true;
    storeSettings();
}

void FrmBrowse::storeSettings() {
    const QRect place = normalGeometry();
    settings_.left = place.x();
    settings_.top = place.y();
    settings_.width = place.width();
    settings_.height = place.height();
    writeBrowseSettings(store_, settings_);
}

void FrmBrowse::closeEvent(QCloseEvent* event) {
    stopWork();
    writeSettings();
    QMainWindow::closeEvent(event);
}

} // namespace lumiran
