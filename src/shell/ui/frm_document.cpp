#include "shell/ui/frm_document.h"

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/ui/effect_texts.h"
#include "engine/drawing/pixel_calls.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QAction>
#include <QCloseEvent>
#include <QCursor>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <map>

namespace lumiran {
namespace {

// The rows of the document's file menu before the history.
constexpr int HistoryFirstRow = 16;

// The outline's dots move on at this tick.
constexpr int OutlineTickMs = 150;

PointerButton toolButton(Qt::MouseButton button) {
    if (button == Qt::LeftButton) return PointerButton::Left;
    if (button == Qt::RightButton) return PointerButton::Right;
    return PointerButton::Other;
}

// The pixels a rectangle of picture coordinates covers, right and bottom exclusive.
QRect coveredPixels(const AreaRect& r) {
    return {QPoint(std::min(r.left, r.right), std::min(r.top, r.bottom)),
            QSize(std::abs(r.right - r.left), std::abs(r.bottom - r.top))};
}

} // namespace

FrmDocument::FrmDocument(FrmMain& frame)
    : frame_(frame), BasicArea(new QScrollArea), Picture2(new PictureView),
      Timer1(new QTimer(this)) {
    setObjectName("FrmDocument");
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::StrongFocus);
    BasicArea->setObjectName("BasicArea");
    BasicArea->setWidget(Picture2);
    BasicArea->setWidgetResizable(false);
    BasicArea->setBackgroundRole(QPalette::Dark);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(BasicArea);
    BasicArea->viewport()->installEventFilter(this);
    Timer1->setObjectName("Timer1");
    Timer1->setInterval(OutlineTickMs);
    connect(Timer1, &QTimer::timeout, Picture2, &PictureView::stepOutline);
    connect(Picture2, &PictureView::pressed, this, &FrmDocument::onPressed);
    connect(Picture2, &PictureView::dragged, this, &FrmDocument::onDragged);
    connect(Picture2, &PictureView::released, this, [this](QPoint pixel, Qt::MouseButton button) {
        // Only the button that draws and drags ends a drag.
        if (button == Qt::LeftButton) onReleased(pixel);
    });
    connect(Picture2, &PictureView::pointerMoved, this, &FrmDocument::onPointer);
    toolStatus_ = res(ids::StatusTool);
    buildMenus();
}

void FrmDocument::buildToolsMenu(QMenu& menu) {
    struct Row {
        int index;
        int caption;
    };
    static constexpr Row rows[] = {
        {tools_menu::Select, ids::ToolsSelect},
        {tools_menu::FixArea, ids::ToolsFix},
        {tools_menu::MoveArea, ids::ToolsMove},
        {tools_menu::EndTool, ids::ToolsEnd},
        {4, 0},
        {tools_menu::FillArea, ids::ToolsFill},
    };
    for (const Row& row : rows) {
        // Row 4 has no caption and no command.
        if (row.caption == 0) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(res(row.caption), this,
                                         [this, index = row.index] { ToolsNo_Click(index); });
        action->setObjectName(QString("ToolsNo%1").arg(row.index));
    }
}

void FrmDocument::ToolsNo_Click(int index) {
    if (frame_.busy()) return;
    applyStep(lumiran::ToolsNo_Click(frame_.state(), document_, index));
}

void FrmDocument::setToolStatus(const QString& text) {
    toolStatus_ = text;
    emit toolStatusChanged(text);
}

void FrmDocument::applyStep(const ToolStep& step) {
    if (step.status) setToolStatus(shown(*step.status));
    if (step.pictureChanged) {
        refreshPicture();
        frame_.refreshCommands();
    } else if (step.overlayChanged) {
        updateOverlay();
    }
    if (step.failure) {
        QMessageBox::warning(this, errorTitleText(step.failure->number()),
                             shown(step.failure->description()));
    }
}

void FrmDocument::updateOverlay() {
    const Document& d = document_;
    PictureView::Overlay overlay;
    if (d.ToolsFlag == tools::Selecting && d.DragFlag) overlay.rubberBand = coveredPixels(d.drag);
    if (outlineShows(d.ToolsFlag) && !outlineSuspended_) {
        if (d.ToolsFlag == tools::Moving) {
            overlay.outline = coveredPixels(d.drag);
        } else {
            // An area left beyond a picture that has since become smaller
            // shows only where it lies on the picture.
            overlay.outline =
                coveredPixels(normalisedInPicture(d.area, d.picture.width(), d.picture.height()));
        }
    }
    if (d.ToolsFlag == tools::Moving && d.DragFlag) {
        overlay.lifted = lifted_;
        overlay.liftedAt = coveredPixels(d.drag).topLeft();
    }
    const bool running = overlay.outline.has_value();
    Picture2->setOverlay(std::move(overlay));
    if (running && !Timer1->isActive()) Timer1->start();
    if (!running) Timer1->stop();
}

void FrmDocument::onPressed(QPoint pixel, Qt::MouseButton button) {
    if (frame_.busy()) return;
    ProgramState& state = frame_.state();
    if (state.ColorPickMode > 0) {
        // A click holds or frees the colour instead of any tool.
        frame_.toggleColourPick();
        return;
    }
    if (document_.ToolsFlag == tools::ReadyToMove && button == Qt::LeftButton) {
        lifted_ = toQImage(state.keep.SelectAreaImage);
    }
    applyStep(toolMouseDown(state, document_, toolButton(button), pixel.x(), pixel.y()));
}

void FrmDocument::onDragged(QPoint pixel) {
    if (frame_.busy()) return;
    applyStep(toolMouseMove(document_, pixel.x(), pixel.y()));
}

void FrmDocument::onReleased(QPoint pixel) {
    if (frame_.busy()) return;
    applyStep(toolMouseUp(frame_.state(), document_, pixel.x(), pixel.y()));
    if (document_.ToolsFlag != tools::Moving) lifted_ = QImage();
}

void FrmDocument::onPointer(QPoint pixel) {
    if (frame_.busy() || frame_.state().ColorPickMode != 2) return;
    const ColourRef c = GetPixel(document_.picture, pixel.x(), pixel.y());
    if (c == NoColour) return;
    frame_.colourPicked({static_cast<std::uint8_t>(c & 0xFF),
                         static_cast<std::uint8_t>((c >> 8) & 0xFF),
                         static_cast<std::uint8_t>((c >> 16) & 0xFF)});
}

void FrmDocument::EffectStartToolsFlag() {
    if (document_.ToolsFlag == tools::AreaDrawn || document_.ToolsFlag == tools::ReadyToMove)
        ToolsNo_Click(tools_menu::FixArea);
    outlineSuspended_ = true;
    updateOverlay();
}

void FrmDocument::EndingToolsFlag() {
    outlineSuspended_ = false;
    // The run may have ended the tool (an empty area) or fixed it.
    if (document_.ToolsFlag != tools::AreaDrawn) setToolStatus(shown(toolStatusText(document_)));
    updateOverlay();
}

QMenu* FrmDocument::addTopMenu(const char* objectName, int captionId) {
    auto* menu = new QMenu(res(captionId), this);
    menu->setObjectName(objectName);
    topMenus_.append(menu);
    return menu;
}

QMenu* FrmDocument::menu(const char* name) const {
    for (QMenu* m : topMenus_) {
        if (m->objectName() == QLatin1String(name)) return m;
    }
    return nullptr;
}

void FrmDocument::buildMenus() {
    FrmMain& f = frame_;
    QMenu* file = addTopMenu("mnuFile", ids::MenuImage);
    file->addAction(res(ids::FileOpen), QKeySequence(Qt::CTRL | Qt::Key_O), &f,
                    &FrmMain::openWithDialog);
    file->addAction(res(ids::FileNew), QKeySequence(Qt::CTRL | Qt::Key_N), &f, &FrmMain::newImage);
    file->addSeparator();
    file->addAction(res(ids::FileSave), QKeySequence(Qt::CTRL | Qt::Key_S), this,
                    [this] { frame_.saveDocument(*this); });
    closeAction_ = file->addAction(res(ids::FileClose), this, &FrmDocument::closeWindow);
    closeAction_->setObjectName("FileClose");
    closeAction_->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)});
    file->addAction(res(ids::FilePrint), QKeySequence(Qt::CTRL | Qt::Key_P), this,
                    [this] { frame_.PrintImagePass(*this); })
        ->setObjectName("FilePrint");
    file->addSeparator();
    file->addAction(res(ids::FileOpenNext), this, [this] { frame_.openSibling(*this, 1); });
    file->addAction(res(ids::FileOpenPrev), this, [this] { frame_.openSibling(*this, -1); });
    file->addAction(res(ids::FileInfo), this, [this] { frame_.showPictureInfo(*this); });
    QMenu* wall = file->addMenu(res(ids::WallMenu));
    wall->setObjectName("WallPaper");
    for (const auto& [row, caption] :
         {std::pair{0, "To Wallpaper Center"}, std::pair{1, "To Wallpaper All"},
          std::pair{2, "To Wallpaper Screen"}}) {
        wall->addAction(caption, this, [this, row] { frame_.WallPaperNo_Click(*this, row); })
            ->setObjectName(QString("WallPaperNo_%1").arg(row));
    }
    file->addSeparator();
    file->addAction(res(ids::FileCapture), &f, &FrmMain::showCapture)->setObjectName("FileCapture");
    file->addAction(res(ids::FileViewer), &f, &FrmMain::LoadImageViewer)
        ->setObjectName("FileViewer");
    file->addAction(res(ids::FileExit), QKeySequence(Qt::CTRL | Qt::Key_Q), &f, &QWidget::close);
    // Pad to the fixed index of the history rows.
    while (file->actions().size() < HistoryFirstRow - 1)
        file->addSeparator()->setVisible(false);
    historySeparator_ = file->addSeparator();
    for (int i = 0; i < static_cast<int>(LoadHistory::Size); ++i) {
        QAction* row = file->addAction(QString());
        connect(row, &QAction::triggered, this, [this, i] {
            frame_.openFile(QString::fromStdString(frame_.settings().history.entry(i)));
        });
        historyActions_.append(row);
    }
    refreshHistory();

    QMenu* edit = addTopMenu("mnuEdit", ids::MenuEdit);
    undoAction_ = edit->addAction(res(ids::EditUndo), QKeySequence(Qt::CTRL | Qt::Key_Z), this,
                                  [this] { frame_.undo(*this); });
    undoAction_->setObjectName("EditUndo");
    edit->addAction(res(ids::EditUndoRelease), &f, &FrmMain::releaseUndo);
    edit->addSeparator();
    edit->addSeparator();
    edit->addAction(res(ids::EditCopy), QKeySequence::Copy, this,
                    [this] { frame_.copyToClipboard(*this); })
        ->setObjectName("EditCopy");
    edit->addAction(res(ids::EditCut), QKeySequence::Cut, this,
                    [this] { frame_.cutToClipboard(*this); })
        ->setObjectName("EditCut");
    edit->addAction(res(ids::EditPaste), QKeySequence::Paste, this,
                    [this] { frame_.pasteIntoDocument(*this); })
        ->setObjectName("EditPaste");
    edit->addSeparator();
    edit->addAction(res(ids::EditPasteClipboard), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V),
                    &f, &FrmMain::PasteAsNewDocument)
        ->setObjectName("mnuEditPasteclipboard");
    edit->addAction(res(ids::EditClipboardClear), &f, &FrmMain::ClipboardClear)
        ->setObjectName("ClipboardClear");
    edit->addSeparator();
    finalLoadAction_ = edit->addAction(res(ids::EditFinalLoad), &f, &FrmMain::openFinalLoadImage);
    finalLoadAction_->setObjectName("mnueditfinalloadnewopen");
    edit->addAction(res(ids::EditHistoryClear), &f, &FrmMain::clearHistory);

    QMenu* view = addTopMenu("mnuView", ids::MenuView);
    // One action in every view menu, so its tick is the same everywhere.
    view->addAction(f.autoPreviewAction());
    view->addSeparator();
    QAction* zoomIn = view->addAction(res(ids::ViewZoomIn), this, [this] { zoomBy(1); });
    zoomIn->setObjectName("ZoomIn");
    zoomIn->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    view->addAction(res(ids::ViewZoomOut), QKeySequence(Qt::CTRL | Qt::Key_Minus), this,
                    [this] { zoomBy(-1); })
        ->setObjectName("ZoomOut");
    view->addAction(res(ids::ViewZoomActual), QKeySequence(Qt::CTRL | Qt::Key_0), this,
                    [this] { setZoom(1.0); })
        ->setObjectName("ZoomActual");
    view->addAction(res(ids::ViewZoomFit), this, &FrmDocument::zoomToFit)->setObjectName("ZoomFit");
    view->addSeparator();
    view->addAction(res(ids::ViewOptions), &f, &FrmMain::showOptions);

    buildToolsMenu(*addTopMenu("mnuTools", ids::MenuTools));
    QMenu* effect = addTopMenu("mnuEffect", ids::MenuEffect);
    QMenu* compose = addTopMenu("mnuCompose", ids::MenuCompose);
    buildEffectMenus(*effect, *compose);

    QMenu* raster = addTopMenu("mnuRaster", ids::MenuRaster);
    raster->addAction(res(ids::StatusBackColor) + "/" + res(ids::StatusDrawingColor) + "...", &f,
                      &FrmMain::showColorSet);
    raster->addAction(res(ids::ExplorerTitle), &f, &FrmMain::showExplorer)
        ->setObjectName("ColourExplorer");
    raster->addAction(res(ids::PixelTitle), &f, &FrmMain::showPixelWindow)
        ->setObjectName("PixelWindow");

    QMenu* window = addTopMenu("mnuWindow", ids::MenuWindow);
    window->addAction(res(ids::WindowCascade), &f, [&f] { f.arrange(1); });
    window->addAction(res(ids::WindowTileHorizontal), &f, [&f] { f.arrange(2); });
    window->addAction(res(ids::WindowTileVertical), &f, [&f] { f.arrange(3); });
    window->addAction(res(ids::WindowArrangeIcons), &f, &FrmMain::arrangeIcons);

    QMenu* help = addTopMenu("MnuHelp", ids::MenuHelp);
    help->addAction(res(ids::HelpContents), QKeySequence(Qt::Key_F1), &f, &FrmMain::showHelp);
    help->addAction(res(ids::HelpAbout), &f, &FrmMain::showAbout);

    MnuProgress = new QAction(this);
    MnuProgress->setObjectName("MnuProgress");
    MnuProgress->setEnabled(false);
}

void FrmDocument::buildEffectMenus(QMenu& effectMenu, QMenu& composeMenu) {
    fillEffectMenu(effectMenu, "Effect1No");
    fillEffectMenu(composeMenu, "mnueditanding");
}

void FrmDocument::fillEffectMenu(QMenu& menu, std::string_view menuName) {
    menu.setToolTipsVisible(true);
    // A row of the menu array is an effect, a submenu of another family, or
    // (a gap in the indices) a separator.
    std::map<int, const EffectEntry*> effects;
    std::map<int, const EffectFamily*> submenus;
    for (const EffectEntry& entry : effectCatalogue()) {
        if (entry.menu == menuName) effects[entry.index] = &entry;
    }
    for (const EffectFamily& family : effectFamilies()) {
        if (family.parentMenu == menuName) submenus[family.parentIndex] = &family;
    }
    int last = -1;
    if (!effects.empty()) last = std::max(last, effects.rbegin()->first);
    if (!submenus.empty()) last = std::max(last, submenus.rbegin()->first);
    for (int row = 0; row <= last; ++row) {
        if (const auto e = effects.find(row); e != effects.end()) {
            addEffectAction(menu, *e->second);
        } else if (const auto f = submenus.find(row); f != submenus.end()) {
            const EffectFamily& family = *f->second;
            QMenu* sub = menu.addMenu(family.browseCategoryId != 0 ? res(family.browseCategoryId)
                                                                   : qs(family.caption));
            sub->setObjectName(qs(family.menu));
            fillEffectMenu(*sub, family.menu);
        } else if (menuName == "mnueditanding" && row == 0) {
            QAction* keep =
                menu.addAction(res(ids::ComposeKeep), this, [this] { frame_.keepPicture(*this); });
            keep->setObjectName("mnueditanding0");
        } else if (menuName == "Effect1No" && row == 23) {
            QAction* browse = menu.addAction(res(ids::EffectBrowse));
            browse->setObjectName("Effect1No23");
            // The browser opens on the first family.
            connect(browse, &QAction::triggered, this,
                    [this] { frame_.showEffectBrowser(*this, {}); });
        } else {
            menu.addSeparator();
        }
    }
    if (menuName == "mnueditanding") {
        menu.addSeparator();
        discardAction_ =
            menu.addAction(res(ids::ComposeDiscard), &frame_, &FrmMain::discardKeptImage);
        discardAction_->setObjectName("mnueditanding16");
        exportAction_ = menu.addAction(res(ids::ComposeExport), &frame_, &FrmMain::exportKeptImage);
        exportAction_->setObjectName("mnueditanding17");
    }
    const EffectFamily* own = findFamily(menuName);
    if (own != nullptr && own->browseCategoryId != 0) {
        menu.addSeparator();
        QAction* browse = menu.addAction(res(ids::EffectBrowse));
        browse->setObjectName(qs(own->menu) + "Browse");
        const QString family = qs(own->menu);
        connect(browse, &QAction::triggered, this,
                [this, family] { frame_.showEffectBrowser(*this, family); });
    }
}

void FrmDocument::addEffectAction(QMenu& menu, const EffectEntry& entry) {
    QAction* action = menu.addAction(effectMenuText(entry, frame_.state().language));
    action->setObjectName(qs(entry.menu) + QString::number(entry.index));
    if (needsKeptImage(entry)) mergeActions_.append(action);
    if (effectDispatch().contains(entry.dialog, entry.code)) {
        connect(action, &QAction::triggered, this,
                [this, &entry] { frame_.openEffectDialog(*this, entry); });
    } else {
        // Until its class operation exists an effect is shown but cannot start.
        action->setEnabled(false);
        action->setToolTip(res(ids::NotAvailableYet));
    }
}

void FrmDocument::refreshComposeRows(bool imageKept) {
    for (QAction* merge : mergeActions_)
        merge->setEnabled(imageKept);
    discardAction_->setEnabled(imageKept);
    exportAction_->setEnabled(imageKept);
}

bool FrmDocument::BrowseToPreviewMain(const QString& familyMenu, const QString& rowName) {
    QMenu* effect = menu("mnuEffect");
    if (effect == nullptr || rowName.isEmpty()) return false;
    for (QAction* family : effect->actions()) {
        if (family->menu() == nullptr || family->menu()->objectName() != familyMenu) continue;
        for (QAction* row : family->menu()->actions()) {
            if (row->objectName() != rowName) continue;
            if (row->isSeparator() || !row->isEnabled()) return false;
            row->trigger();
            return true;
        }
        return false;
    }
    return false;
}

void FrmDocument::refreshHistory() {
    const LoadHistory& history = frame_.settings().history;
    const std::size_t visible = history.visibleCount();
    historySeparator_->setVisible(history.separatorVisible());
    for (std::size_t i = 0; i < LoadHistory::Size; ++i) {
        QAction* row = historyActions_[static_cast<int>(i)];
        row->setVisible(i < visible);
        row->setText(i < visible ? QString::fromStdString(history.entry(i)) : QString());
    }
}

void FrmDocument::SetMenusEnabled(bool enable) {
    menusEnabled_ = enable;
    for (QMenu* m : topMenus_)
        m->setEnabled(enable);
}

void FrmDocument::refreshPicture() {
    Picture2->setImage(toQImage(document_.picture));
    updateOverlay();
}

void FrmDocument::showPicture(QImage picture) {
    Picture2->setImage(std::move(picture));
    updateOverlay();
}

QMdiSubWindow* FrmDocument::subWindow() const {
    return qobject_cast<QMdiSubWindow*>(parentWidget());
}

void FrmDocument::closeWindow() {
    // The child window goes with its document; closing only this widget
    // would leave an empty frame behind.
    if (QMdiSubWindow* sub = subWindow()) {
        sub->close();
    } else {
        close();
    }
}

double FrmDocument::zoom() const {
    return Picture2->zoom();
}

void FrmDocument::setZoom(double zoom) {
    const QRect view = BasicArea->viewport()->rect();
    zoomAround(zoom, view.center());
}

void FrmDocument::zoomBy(int direction) {
    setZoom(PictureView::nextZoom(zoom(), direction));
}

void FrmDocument::zoomToFit() {
    const QSize picture = Picture2->image().size();
    if (picture.isEmpty()) return;
    const QSize room = BasicArea->maximumViewportSize();
    const double zoom = std::min(static_cast<double>(room.width()) / picture.width(),
                                 static_cast<double>(room.height()) / picture.height());
    setZoom(zoom);
}

void FrmDocument::zoomAround(double zoom, QPoint anchor) {
    const double before = Picture2->zoom();
    const QPointF picturePoint = QPointF(anchor - Picture2->pos()) / before;
    Picture2->setZoom(zoom);
    if (Picture2->zoom() == before) return;
    // The scroll area has taken the new size: scroll so the same point stays put.
    QScrollBar* h = BasicArea->horizontalScrollBar();
    QScrollBar* v = BasicArea->verticalScrollBar();
    h->setValue(static_cast<int>(std::lround(picturePoint.x() * Picture2->zoom() - anchor.x())));
    v->setValue(static_cast<int>(std::lround(picturePoint.y() * Picture2->zoom() - anchor.y())));
    emit zoomChanged(Picture2->zoom());
}

bool FrmDocument::eventFilter(QObject* watched, QEvent* event) {
    if (watched == BasicArea->viewport() && event->type() == QEvent::Wheel) {
        auto* wheel = static_cast<QWheelEvent*>(event);
        if (wheel->modifiers() & Qt::ControlModifier) {
            const int steps = wheel->angleDelta().y();
            if (steps != 0) {
                zoomAround(PictureView::nextZoom(zoom(), steps > 0 ? 1 : -1),
                           wheel->position().toPoint());
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FrmDocument::setPath(const QString& path) {
    const QFileInfo info(path);
    QString folder = info.path();
    if (!folder.endsWith('/')) folder += '/';
    document_.folderLabel = folder.toStdString();
    document_.nameLabel = info.fileName().toStdString();
    setWindowTitle(path);
}

void FrmDocument::keyPressEvent(QKeyEvent* event) {
    // Only while all top menus are on, so never during a run.
    if (!menusEnabled_ || frame_.busy()) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->modifiers() == Qt::ShiftModifier) {
        // I, E, V, T, F, C, R pop up the top menus in menu-bar order.
        static constexpr int keys[] = {Qt::Key_I, Qt::Key_E, Qt::Key_V, Qt::Key_T,
                                       Qt::Key_F, Qt::Key_C, Qt::Key_R};
        for (int i = 0; i < 7; ++i) {
            if (event->key() == keys[i]) {
                topMenus_[i]->popup(QCursor::pos());
                return;
            }
        }
    }
    if (event->modifiers() == Qt::AltModifier && event->key() == Qt::Key_P) {
        frame_.easterEgg();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FrmDocument::closeEvent(QCloseEvent* event) {
    // A run holds this document until its end.
    if (frame_.busyWith(*this)) {
        event->ignore();
        return;
    }
    document_.ToolsFlag = 0;
    Timer1->stop();
    frame_.documentClosed(this);
    event->accept();
}

} // namespace lumiran
