#include "shell/ui/frm_main.h"

#include "catalogue/ui/effect_dialog.h"
#include "catalogue/ui/frm_browse.h"
#include "engine/calculation.h"
#include "engine/drawing/blit.h"
#include "engine/drawing/pixel_calls.h"
#include "engine/picture_memory.h"
#include "engine/picture_memory_prepare.h"
#include "engine/raster_step.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/load_dispatch.h"
#include "platform/qt_picture_decoder.h"
#include "platform/stderr_capture.h"
#include "shell/area_tool.h"
#include "shell/clipboard_paste.h"
#include "shell/string_table.h"
#include "shell/ui/clipboard_picture.h"
#include "shell/ui/desktop_tools.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/dialogs/frm_colorset.h"
#include "shell/ui/frm_capture.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_exploer.h"
#include "shell/ui/frm_picture_save.h"
#include "shell/ui/frm_print.h"
#include "shell/ui/frm_viewer.h"
#include "shell/ui/interface_translator.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "tools/wall_setting.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QProgressDialog>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QTextBrowser>
#include <QThreadPool>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <QtMath>
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <functional>
#include <thread>

namespace lumiran {
namespace {

// Released picture mappings the editor keeps for its next run.
constexpr int KeptPictureMappings = 4;

// The open dialog's filter, as the program has always offered it.
const char* const OpenFilter =
    "(*.bmp;*.dib;*.ico;*.rle;*.wmf;*.emf;*.pcx;*.ppm;*.tga;*.jpg;*.gif;*.pcd)|*.bmp;*.dib;*.ico;"
    "*.rle;*.wmf;*.emf;*.pcx;*.ppm;*.tga;*.jpg;*.gif;*.pcd|Windows Bitmap (*.bmp)|*.bmp|Device "
    "Independent Bitmap (*.dib)|*.dib|Windows Icon (*.ico)|*.ico|Run-Length Encoded "
    "(*.rle)|*.rle|Windows Metafile (*.wmf)|*.wmf|Enhanced Metafile (*.emf)|*.emf|Jpeg File "
    "(*.jpg)|*.jpg|Zsoft Paintbrush (*.pcx)|*.pcx|Portable PixelMap (*.ppm)|*.ppm|Windows "
    "Cursors (*.cur)|*.cur|Truevision Targa (*.tga)|*.tga|Kodak Photo CD (*.pcd)|*.pcd|All "
    "File|*.*|"
    // Today's formats, after the rows the program has always offered.
    "Portable Network Graphics (*.png)|*.png|Tagged Image File (*.tif;*.tiff)|*.tif;*.tiff|WebP "
    "(*.webp)|*.webp|Jpeg File (*.jpeg;*.jpe)|*.jpeg;*.jpe|";

// The "label|mask|label|mask|" filter turned into Qt's "label (masks);;..." form.
QString qtFilter() {
    const QStringList parts = QString(OpenFilter).split('|', Qt::SkipEmptyParts);
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString masks = parts[i + 1];
        masks.replace(';', ' ');
        filters << parts[i] + " (" + masks + ")";
    }
    return filters.join(";;");
}

// The masks of the folder list that the stepping through a folder uses.
QStringList folderPattern() {
    return {"*.bmp", "*.dib", "*.ico", "*.rle", "*.wmf", "*.emf",  "*.pcx",  "*.ppm",  "*.tga",
            "*.jpg", "*.gif", "*.pcd", "*.png", "*.tif", "*.tiff", "*.webp", "*.jpeg", "*.jpe"};
}

// Shows the load percentage in a document's progress entry; the reader runs
// on a worker thread, the entry lives on the GUI thread. A cancel asked for
// on the GUI thread stops the reader at its next percentage.
class MenuProgressSink : public ProgressSink {
  public:
    explicit MenuProgressSink(QAction* item) : item_(item) {}
    void showPercent(int percent) override {
        throwIfStopped();
        if (percent == shown_) return;
        shown_ = percent;
        latest_.store(percent);
        QMetaObject::invokeMethod(
            item_, [item = item_, percent] { item->setText(shown(loadProgressCaption(percent))); },
            Qt::QueuedConnection);
    }
    void showNote(const std::string& note) override { note_ = note; }

    void requestStop() { stop_.store(true); }
    void throwIfStopped() const {
        if (stop_.load()) throw LoadCancelled();
    }
    [[nodiscard]] int latestPercent() const { return latest_.load(); }
    // Read once the worker has ended.
    [[nodiscard]] const std::string& note() const { return note_; }

  private:
    QAction* item_;
    int shown_ = -1;
    std::atomic<int> latest_{0};
    std::atomic<bool> stop_{false};
    std::string note_;
};

// What a load hands back: the picture, its copy for FinalLoadImage and its
// image for the screen, all made on the worker.
struct LoadedPicture {
    std::optional<Surface> picture;
    Surface finalLoadCopy;
    QImage shown;
    std::exception_ptr failure;
    std::string note;
    // What the decoder libraries printed, shown under a failure's details.
    std::string decoderMessages;
};

// A failure's details, and below them what the decoders printed.
QString loadFailureDetail(const ImageLoadError& error, const LoadedPicture& loaded) {
    QString detail = qs(error.detail());
    if (!loaded.decoderMessages.empty()) detail += "\n\n" + qs(loaded.decoderMessages);
    return detail;
}

// Reads the file on a worker thread while the GUI thread repaints; input
// waits until the load is done, as it always has. A load that takes longer
// than longLoadMilliseconds shows a modal window with its percentage, whose
// cancel stops it.
LoadedPicture loadOnWorker(const QString& path, QtPictureDecoder& decoder, const LoadLimits& limits,
                           QAction* progressItem, QWidget* owner, int longLoadMilliseconds) {
    LoadedPicture loaded;
    MenuProgressSink sink(progressItem);
    std::atomic<bool> finished{false};
    QEventLoop wait;
    std::thread worker([&] {
        try {
            StderrCapture decoderMessages;
            try {
                loaded.picture = LoadImageFile(path.toStdString(), &decoder, &sink, limits);
            } catch (...) {
                loaded.decoderMessages = decoderMessages.finish();
                throw;
            }
            loaded.decoderMessages = decoderMessages.finish();
            // Steps after the last percentage (making the picture, drawing a
            // metafile) have no cancel point: a cancel during them still counts.
            sink.throwIfStopped();
            if (loaded.picture) {
                loaded.finalLoadCopy = *loaded.picture;
                loaded.shown = toQImage(*loaded.picture);
            }
            sink.throwIfStopped();
        } catch (...) {
            loaded.failure = std::current_exception();
        }
        finished.store(true);
        QMetaObject::invokeMethod(
            &wait, [&wait] { wait.exit(0); }, Qt::QueuedConnection);
    });
    QTimer::singleShot(longLoadMilliseconds, &wait, [&wait] { wait.exit(1); });
    if (wait.exec(QEventLoop::ExcludeUserInputEvents) == 1 && !finished.load()) {
        // Made with Qt's own, translated, cancel button.
        QProgressDialog window(owner);
        window.setRange(0, 100);
        window.setLabelText(shown(loadProgressCaption(sink.latestPercent())));
        window.setObjectName("LoadProgress");
        window.setWindowModality(Qt::ApplicationModal);
        window.setMinimumDuration(0);
        window.setAutoReset(false);
        window.setAutoClose(false);
        QObject::connect(&window, &QProgressDialog::canceled, &wait,
                         [&sink] { sink.requestStop(); });
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &wait, [&] {
            if (finished.load()) {
                wait.exit(0);
                return;
            }
            window.setValue(sink.latestPercent());
            window.setLabelText(shown(loadProgressCaption(sink.latestPercent())));
        });
        poll.start(100);
        window.show();
        wait.exec();
    }
    worker.join();
    loaded.note = sink.note();
    return loaded;
}

// A run copies the picture it starts on (snapshot, kept picture 0, the
// effect's array) and makes a screen picture of its result: the kept
// mappings for them are faulted in while the person picks an effect, after
// a load and after each run, not after OK.
void prepareRunMemory(const Surface& picture, const QImage& shown) {
    const std::size_t pictureBytes = picture.elements().size_bytes();
    const auto shownBytes = static_cast<std::size_t>(shown.sizeInBytes());
    QThreadPool::globalInstance()->start([pictureBytes, shownBytes] {
        const std::array buffers{pictureBytes, pictureBytes, pictureBytes, shownBytes};
        prepareKeptPictureMemory(buffers);
    });
}

// A status panel that reports clicks.
class StatusPanel : public QLabel {
  public:
    using QLabel::QLabel;
};

// A colour panel shows its colour with a caption that stays readable on it.
QString colourStyle(Rgb8 c) {
    const bool dark = c.red * 3 + c.green * 6 + c.blue < 1280;
    return QString("background-color: rgb(%1,%2,%3); color: %4; padding: 0 8px;")
        .arg(c.red)
        .arg(c.green)
        .arg(c.blue)
        .arg(dark ? "white" : "black");
}

} // namespace

FrmMain::FrmMain(KeyValueStore& store, QtPictureDecoder& decoder)
    : store_(store), decoder_(decoder), runs_(std::make_unique<RunController>(state_)),
      mdiArea_(new QMdiArea) {
    setObjectName("FrmMain");
    setWindowTitle("Lumiran");
    // A run frees as many pictures as the next one makes (kept pictures,
    // the effect's array, the screen's copy): kept mappings spare those
    // their page faults, which cost more than the copies themselves.
    keepReleasedPictureMemory(KeptPictureMappings);
    mdiArea_->setObjectName("MDIClient");
    setCentralWidget(mdiArea_);
    setAcceptDrops(true);
    readSettings();
    // The language is fixed for the session: every window takes its texts
    // when it is built.
    state_.language =
        chooseInterfaceLanguage(settings_.interfaceLanguage, std::getenv("LUMIRAN_LANG"));
    translation_ = std::make_unique<InterfaceTranslation>(state_.language);
    buildFrameMenus();
    buildToolBar();
    buildStatusBar();
    connect(mdiArea_, &QMdiArea::subWindowActivated, this, [this] { refreshMenus(); });
    runs_->setOwnerWindow(this);
    connect(runs_.get(), &RunController::runningChanged, this, [this](bool running) {
        setMenusEnabled(!running);
        if (running) messagePanel_->clear();
    });
    connect(runs_.get(), &RunController::finished, this,
            [this](Document* document, RunOutcome outcome, QImage picture) {
                onRunFinished(document, outcome, std::move(picture));
            });
    refreshMenus();
    refreshStatus();
    applyFontSize();
}

FrmMain::~FrmMain() {
    // The documents refer to the frame: they go while it is still whole.
    closing_ = true;
    runs_->waitForEnd();
    for (QMdiSubWindow* sub : mdiArea_->subWindowList())
        delete sub;
}

// Start-up: the keys in the order the frame has always read them.
void FrmMain::readSettings() {
    QSize screen(1280, 1024);
    if (const QScreen* s = QGuiApplication::primaryScreen()) screen = s->availableGeometry().size();
    SettingsReadResult read = lumiran::readSettings(store_, {screen.width(), screen.height()});
    settings_ = std::move(read.settings);
    settingsProblems_ = std::move(read.problems);
    setGeometry(static_cast<int>(settings_.MainLeft), static_cast<int>(settings_.MainTop),
                static_cast<int>(settings_.MainWidth), static_cast<int>(settings_.MainHeight));
    state_.flags.backColor = settings_.backColor;
    state_.flags.drawingColor = settings_.drawingColor;
    state_.cancelFlag = 0;
    state_.ProcessingFlag = 0;
    state_.undo.setMaxUndoCount(settings_.MaxUndoCount);
    state_.undo.release();
    state_.ProgressFlag = 1;
    state_.flags.calculationFlag = settings_.CalculationFlag;
    state_.flags.rasterOpFlag = settings_.RasterOpFlag;
}

void FrmMain::writeSettings() {
    const QRect g = normalGeometry();
    settings_.MainLeft = static_cast<float>(g.x());
    settings_.MainTop = static_cast<float>(g.y());
    settings_.MainWidth = static_cast<float>(g.width());
    settings_.MainHeight = static_cast<float>(g.height());
    settings_.backColor = state_.flags.backColor;
    settings_.drawingColor = state_.flags.drawingColor;
    settings_.CalculationFlag = state_.flags.calculationFlag;
    settings_.RasterOpFlag = state_.flags.rasterOpFlag;
    settings_.MaxUndoCount = state_.undo.maxUndoCount();
    lumiran::writeSettings(store_, settings_);
}

void FrmMain::reportSettingsProblems(const std::vector<SettingsProblem>& problems,
                                     const QString& keptCopy) {
    if (problems.empty() && keptCopy.isEmpty()) return;
    QString detail;
    for (const SettingsProblem& p : problems) {
        detail += qs(p.section) + "/" + qs(p.key) + " = \"" + qs(p.value) + "\"\n";
    }
    QMessageBox box(QMessageBox::Warning, res(ids::SettingsBrokenTitle),
                    res(ids::SettingsBroken) + "\n" + keptCopy, QMessageBox::Ok, this);
    box.setDetailedText(detail);
    box.exec();
}

void FrmMain::buildFrameMenus() {
    auto* file = new QMenu(res(ids::MenuImage), this);
    file->setObjectName("mnuFile");
    file->addAction(res(ids::FileOpen), QKeySequence(Qt::CTRL | Qt::Key_O), this,
                    &FrmMain::openWithDialog);
    file->addAction(res(ids::FileNew), QKeySequence(Qt::CTRL | Qt::Key_N), this,
                    &FrmMain::newImage);
    file->addSeparator();
    file->addAction(res(ids::FileCapture), this, &FrmMain::showCapture)
        ->setObjectName("FileCapture");
    file->addSeparator();
    file->addAction(res(ids::FileViewer), this, &FrmMain::LoadImageViewer)
        ->setObjectName("FileViewer");
    file->addSeparator();
    file->addAction(res(ids::FileExit), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close)
        ->setObjectName("FileExit");
    frameHistorySeparator_ = file->addSeparator();
    for (int i = 0; i < static_cast<int>(LoadHistory::Size); ++i) {
        QAction* row = file->addAction(QString());
        connect(row, &QAction::triggered, this,
                [this, i] { openFile(QString::fromStdString(settings_.history.entry(i))); });
        frameHistory_.append(row);
    }

    auto* edit = new QMenu(res(ids::MenuEdit), this);
    edit->setObjectName("mnuEdit");
    frameFinalLoad_ = edit->addAction(res(ids::EditFinalLoad), this, &FrmMain::openFinalLoadImage);
    frameFinalLoad_->setObjectName("mnueditfinalloadnewopen");
    edit->addAction(res(ids::EditPasteClipboard), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V),
                    this, &FrmMain::PasteAsNewDocument)
        ->setObjectName("mnuEditPasteclipboard");
    edit->addAction(res(ids::EditClipboardClear), this, &FrmMain::ClipboardClear)
        ->setObjectName("ClipboardClear");
    edit->addAction(res(ids::EditHistoryClear), this, &FrmMain::clearHistory)
        ->setObjectName("HistoryClear");
    edit->addAction(res(ids::EditDesktop), this, &FrmMain::openDesktopPicture)
        ->setObjectName("DeskTopOpen");

    auto* view = new QMenu(res(ids::MenuView), this);
    view->setObjectName("mnuView");
    QAction* toolbar = view->addAction(res(ids::ViewToolbar));
    toolbar->setCheckable(true);
    toolbar->setChecked(true);
    connect(toolbar, &QAction::toggled, this, [this](bool on) { tbToolBar->setVisible(on); });
    QAction* status = view->addAction(res(ids::ViewStatusBar));
    status->setCheckable(true);
    status->setChecked(true);
    connect(status, &QAction::toggled, this, [this](bool on) { statusBar()->setVisible(on); });
    autoPreview_ = view->addAction(res(ids::ViewAutoPreview));
    autoPreview_->setObjectName("AutoPreview");
    autoPreview_->setCheckable(true);
    autoPreview_->setChecked(settings_.AutoPreview == 1);
    connect(autoPreview_, &QAction::toggled, this,
            [this](bool on) { settings_.AutoPreview = on ? 1 : 0; });
    view->addSeparator();
    view->addAction(res(ids::ViewOptions), this, &FrmMain::showOptions);

    auto* help = new QMenu(res(ids::MenuHelp), this);
    help->setObjectName("MnuHelp");
    help->addAction(res(ids::HelpContents), QKeySequence(Qt::Key_F1), this, &FrmMain::showHelp);
    help->addAction(res(ids::HelpAbout), this, &FrmMain::showAbout);

    frameMenus_ = {file, edit, view, help};
    frameProgress_ = new QAction(this);
    frameProgress_->setObjectName("MnuProgress");
    frameProgress_->setEnabled(false);
    refreshFrameHistory();
}

namespace {

// The toolbar's buttons by the base of their key; the tool tip is the odd
// string beside it.
struct ToolButton {
    int base;
    QStyle::StandardPixmap icon;
};

constexpr ToolButton ToolButtons[] = {
    {3480, QStyle::SP_DialogOpenButton},
    {3482, QStyle::SP_FileIcon},
    {3484, QStyle::SP_DialogSaveButton},
    {3486, QStyle::SP_FileDialogDetailedView},
    {3488, QStyle::SP_ArrowBack},
    {3490, QStyle::SP_FileLinkIcon},
    {3492, QStyle::SP_FileDialogContentsView},
    {3494, QStyle::SP_DirOpenIcon},
    {3496, QStyle::SP_TitleBarNormalButton},
    {3498, QStyle::SP_ArrowRight},
    {3500, QStyle::SP_DriveFDIcon},
    {3502, QStyle::SP_ComputerIcon},
    {3504, QStyle::SP_DirIcon},
    {3506, QStyle::SP_FileDialogListView},
    {4134, QStyle::SP_FileDialogInfoView},
    {4136, QStyle::SP_DialogHelpButton},
};

// A button's icon with a faded image for its disabled state, so that a
// button without a command reads as off whatever the style draws.
QIcon fadedWhenDisabled(const QIcon& icon, QSize size) {
    const QPixmap normal = icon.pixmap(size);
    QPixmap faded(normal.size());
    faded.setDevicePixelRatio(normal.devicePixelRatio());
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(0.3);
    painter.drawPixmap(0, 0, normal);
    painter.end();
    QIcon result;
    result.addPixmap(normal, QIcon::Normal);
    result.addPixmap(faded, QIcon::Disabled);
    return result;
}

QString toolKey(int base) {
    return QString("LoadResString(%1 + Language)").arg(base);
}

} // namespace

void FrmMain::buildToolBar() {
    tbToolBar = addToolBar("tbToolBar");
    tbToolBar->setObjectName("tbToolBar");
    for (const ToolButton& tool : ToolButtons) {
        // The keys are opaque literals that the click handler compares.
        const QString key = toolKey(tool.base);
        QAction* button = tbToolBar->addAction(
            fadedWhenDisabled(style()->standardIcon(tool.icon), tbToolBar->iconSize()),
            res(tool.base + 1));
        button->setObjectName(QString("Tool%1").arg(tool.base));
        button->setData(key);
        // Print, clipboard, area tools, capture, viewer and browser come with
        // their tools; until then they say so, as unavailable effects do.
        const bool available = routeToolButton(key, false);
        button->setEnabled(available);
        button->setToolTip(available ? res(tool.base + 1)
                                     : res(tool.base + 1) + "\n" + res(ids::NotAvailableYet));
        connect(button, &QAction::triggered, this, [this, key] { routeToolButton(key, true); });
        if (tool.base == 3488) toolUndo_ = button;
    }
}

bool FrmMain::routeToolButton(const QString& key, bool run) {
    const auto command = [&]() -> std::function<void()> {
        if (key == toolKey(3480)) return [this] { openWithDialog(); };
        if (key == toolKey(3482)) return [this] { newImage(); };
        if (key == toolKey(3484)) {
            return [this] {
                if (FrmDocument* doc = activeDocument()) saveDocument(*doc);
            };
        }
        if (key == toolKey(3486)) {
            return [this] {
                if (FrmDocument* doc = activeDocument()) PrintImagePass(*doc);
            };
        }
        if (key == toolKey(3502)) return [this] { showCapture(); };
        if (key == toolKey(3504)) return [this] { LoadImageViewer(); };
        if (key == toolKey(3488)) {
            return [this] {
                if (FrmDocument* doc = activeDocument()) undo(*doc);
            };
        }
        // Copy, paste, open the clipboard, and the three area tools.
        if (key == toolKey(3490)) {
            return [this] {
                if (FrmDocument* doc = activeDocument()) copyToClipboard(*doc);
            };
        }
        if (key == toolKey(3492)) {
            return [this] {
                if (FrmDocument* doc = activeDocument()) pasteIntoDocument(*doc);
            };
        }
        if (key == toolKey(3494)) return [this] { PasteAsNewDocument(); };
        for (const auto& [base, row] :
             {std::pair{3496, tools_menu::Select}, std::pair{3498, tools_menu::MoveArea},
              std::pair{3500, tools_menu::FillArea}}) {
            if (key == toolKey(base)) {
                return [this, row] {
                    if (FrmDocument* doc = activeDocument()) doc->ToolsNo_Click(row);
                };
            }
        }
        if (key == toolKey(4134)) return [this] { showOptions(); };
        if (key == toolKey(4136)) return [this] { showHelp(); };
        return {};
    }();
    if (run && command) command();
    return static_cast<bool>(command);
}

void FrmMain::buildStatusBar() {
    auto makePanel = [this](const char* name) {
        auto* panel = new QLabel;
        panel->setObjectName(name);
        panel->installEventFilter(this);
        statusBar()->addWidget(panel);
        return panel;
    };
    statusBar()->setObjectName("sbStatusBar");
    calculationPanel_ = makePanel("CalculationPanel");
    rasterPanel_ = makePanel("RasterPanel");
    toolPanel_ = makePanel("ToolPanel");
    backColorPanel_ = makePanel("BackColorPanel");
    drawingColorPanel_ = makePanel("DrawingColorPanel");
    // Beside the panels above: what the last command did, and the picture
    // under the pointer, its size and its zoom.
    messagePanel_ = new QLabel;
    messagePanel_->setObjectName("MessagePanel");
    statusBar()->addWidget(messagePanel_, 1);
    auto permanent = [this](const char* name) {
        auto* panel = new QLabel;
        panel->setObjectName(name);
        statusBar()->addPermanentWidget(panel);
        return panel;
    };
    pointerPanel_ = permanent("PointerPanel");
    sizePanel_ = permanent("SizePanel");
    zoomPanel_ = permanent("ZoomPanel");
}

bool FrmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && !busy()) {
        // A click steps a flag, wrapping after 10, or opens the colour dialog.
        if (watched == calculationPanel_) {
            state_.flags.calculationFlag = (state_.flags.calculationFlag + 1) % 11;
            refreshStatus();
            return true;
        }
        if (watched == rasterPanel_) {
            state_.flags.rasterOpFlag = (state_.flags.rasterOpFlag + 1) % 11;
            refreshStatus();
            return true;
        }
        if (watched == backColorPanel_ || watched == drawingColorPanel_) {
            showColorSet();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void FrmMain::refreshStatus() {
    calculationPanel_->setText(res(ids::StatusCalculation) +
                               calculationTypeLabel(state_.flags.calculationFlag));
    rasterPanel_->setText(res(ids::StatusRaster) + rasterOpLabel(state_.flags.rasterOpFlag));
    showToolStatus();
    backColorPanel_->setText(res(ids::StatusBackColor));
    backColorPanel_->setStyleSheet(colourStyle(state_.flags.backColor));
    drawingColorPanel_->setText(res(ids::StatusDrawingColor));
    drawingColorPanel_->setStyleSheet(colourStyle(state_.flags.drawingColor));
}

FrmDocument* FrmMain::activeDocument() const {
    QMdiSubWindow* sub = mdiArea_->activeSubWindow();
    if (sub == nullptr) {
        const auto list = mdiArea_->subWindowList();
        if (list.size() == 1) sub = list.front();
    }
    return sub != nullptr ? qobject_cast<FrmDocument*>(sub->widget()) : nullptr;
}

QList<FrmDocument*> FrmMain::documents() const {
    QList<FrmDocument*> list;
    for (QMdiSubWindow* sub : mdiArea_->subWindowList()) {
        if (auto* doc = qobject_cast<FrmDocument*>(sub->widget())) list.append(doc);
    }
    return list;
}

void FrmMain::refreshMenus() {
    if (closing_) return;
    menuBar()->clear();
    FrmDocument* doc = activeDocument();
    const QList<QMenu*>& menus = doc != nullptr ? doc->topMenus() : frameMenus_;
    for (QMenu* m : menus)
        menuBar()->addMenu(m);
    menuBar()->addAction(doc != nullptr ? doc->progressItem() : frameProgress_);
    setMenusEnabled(!runs_->running());
    refreshCommands();
    refreshPicturePanels();
    showToolStatus();
}

void FrmMain::showToolStatus() {
    const FrmDocument* doc = activeDocument();
    toolPanel_->setText(doc != nullptr ? doc->toolStatus() : res(ids::StatusTool));
}

bool FrmMain::busy() const {
    return runs_->running();
}

bool FrmMain::busyWith(const FrmDocument& document) const {
    return runs_->running() && runs_->document() == &document.document();
}

void FrmMain::refreshCommands() {
    // The run's worker owns the undo stack until the end, which calls this again.
    if (busy()) return;
    const std::uint8_t count = state_.undo.UndoCount();
    QString name;
    if (count > 0 && state_.undo.slot(0)) name = qs(state_.undo.slot(0)->nameLabel);
    // The stack is global: the caption tells whose picture comes back.
    const QString caption =
        name.isEmpty() ? res(ids::EditUndo) : res(ids::EditUndo) + " (" + name + ")";
    for (FrmDocument* doc : documents()) {
        doc->undoAction()->setEnabled(count > 0);
        doc->undoAction()->setText(caption);
        doc->finalLoadAction()->setEnabled(imageLoaded_);
        doc->refreshComposeRows(!state_.keep.ComposeImage.empty());
    }
    frameFinalLoad_->setEnabled(imageLoaded_);
    if (toolUndo_ != nullptr) {
        toolUndo_->setEnabled(count > 0 && activeDocument() != nullptr);
        toolUndo_->setToolTip(name.isEmpty() ? res(3489) : res(3489) + " (" + name + ")");
    }
}

void FrmMain::refreshPicturePanels() {
    const FrmDocument* doc = activeDocument();
    if (doc == nullptr) {
        sizePanel_->clear();
        zoomPanel_->clear();
        pointerPanel_->clear();
        return;
    }
    // The screen's copy of the picture: the model may be in a run's hands.
    const QSize picture = doc->pictureView().image().size();
    sizePanel_->setText(res(ids::StatusSize).arg(picture.width()).arg(picture.height()));
    const double percent = doc->zoom() * 100.0;
    zoomPanel_->setText(
        res(ids::StatusZoom).arg(QString::number(percent, 'f', percent < 10 ? 1 : 0)));
}

void FrmMain::showPointer(const FrmDocument& document, QPoint pixel) {
    // The screen's copy of the picture: the model may be in a run's hands.
    const QImage& shown = document.pictureView().image();
    if (!shown.rect().contains(pixel)) {
        clearPointer();
        return;
    }
    if (frm_Pixel* window = pixelWindow()) window->showPixel(shown, pixel);
    const QRgb c = shown.pixel(pixel);
    pointerPanel_->setText(res(ids::StatusPointer)
                               .arg(pixel.x())
                               .arg(pixel.y())
                               .arg(qRed(c))
                               .arg(qGreen(c))
                               .arg(qBlue(c)));
}

void FrmMain::clearPointer() {
    pointerPanel_->clear();
    if (frm_Pixel* window = pixelWindow()) window->showOutside();
}

QString FrmMain::statusMessage() const {
    return messagePanel_->text();
}

void FrmMain::setMenusEnabled(bool enable) {
    for (QMenu* m : frameMenus_)
        m->setEnabled(enable);
    for (FrmDocument* doc : documents())
        doc->SetMenusEnabled(enable);
    tbToolBar->setEnabled(enable);
}

void FrmMain::refreshFrameHistory() {
    const std::size_t visible = settings_.history.visibleCount();
    frameHistorySeparator_->setVisible(settings_.history.separatorVisible());
    for (std::size_t i = 0; i < LoadHistory::Size; ++i) {
        QAction* row = frameHistory_[static_cast<int>(i)];
        row->setVisible(i < visible);
        row->setText(i < visible ? QString::fromStdString(settings_.history.entry(i)) : QString());
    }
    for (FrmDocument* doc : documents())
        doc->refreshHistory();
}

void FrmMain::applyFontSize() {
    QFont f = QApplication::font();
    // The same range as every form: Qt ignores a size of 0, and 255 would
    // leave the frame's menus unusable.
    f.setPointSize(UsableFontSize(settings_.FontSize));
    QApplication::setFont(f);
}

bool FrmMain::CheckWindowLimit() {
    const int limit = settings_.LoadingAmountLimitation;
    if (limit > 0 && documentCount_ >= limit + 1) {
        QMessageBox::warning(this, res(ids::WindowLimitTitle), res(ids::WindowLimitText));
        return false;
    }
    return true;
}

void FrmMain::ApplyRegulation() {
    arrange(settings_.AutoRegulation);
}

namespace {

// The offset from one window of a cascade to the next: its title bar.
int cascadeStep(const QMdiArea& area) {
    return std::max(16, area.style()->pixelMetric(QStyle::PM_TitleBarHeight) + 4);
}

// A document window's size when it shows its whole picture.
QSize wholePictureSize(QMdiSubWindow& sub) {
    auto* doc = qobject_cast<FrmDocument*>(sub.widget());
    if (doc == nullptr) return sub.size();
    const QSize frame = sub.size() - sub.widget()->size();
    // A tiny picture still gets a window whose caption and buttons fit.
    return (doc->pictureView().size() + frame + QSize(4, 4)).expandedTo(sub.minimumSizeHint());
}

} // namespace

QPoint FrmMain::nextWindowPlace(QSize size, const QMdiSubWindow* placed) const {
    const QSize room = mdiArea_->viewport()->size();
    const int step = cascadeStep(*mdiArea_);
    int others = 0;
    for (QMdiSubWindow* sub : mdiArea_->subWindowList()) {
        if (sub != placed && sub->isVisible()) ++others;
    }
    // As many places down the diagonal as keep the whole window inside.
    const int places = 1 + std::max(0, std::min((room.width() - size.width()) / step,
                                                (room.height() - size.height()) / step));
    const int place = others % places;
    return {place * step, place * step};
}

void FrmMain::arrange(int mode) {
    QList<QMdiSubWindow*> windows;
    for (QMdiSubWindow* sub : mdiArea_->subWindowList()) {
        if (sub->isVisible() && !sub->isMinimized()) windows.append(sub);
    }
    if (windows.isEmpty()) return;
    const QSize room = mdiArea_->viewport()->size();
    const int n = static_cast<int>(windows.size());
    if (mode == 1) {
        // Cascade: each window as large as its picture wants, at least half
        // the workspace where that much is wanted, and whole inside it; the
        // active window comes last, on top.
        if (QMdiSubWindow* active = mdiArea_->activeSubWindow(); windows.removeOne(active)) {
            windows.append(active);
        }
        const int step = cascadeStep(*mdiArea_);
        const QSize least = room / 2;
        const int places = 1 + std::max(0, std::min((room.width() - least.width()) / step,
                                                    (room.height() - least.height()) / step));
        for (int i = 0; i < n; ++i) {
            QMdiSubWindow* sub = windows[i];
            sub->showNormal();
            const QPoint at((i % places) * step, (i % places) * step);
            const QSize size = wholePictureSize(*sub).boundedTo(
                QSize(room.width() - at.x(), room.height() - at.y()));
            sub->setGeometry(QRect(at, size));
            sub->raise();
        }
        return;
    }
    if (mode != 2 && mode != 3) return;
    // Tiled across: one above the other, full width; tiled down: side by side.
    for (int i = 0; i < n; ++i) {
        windows[i]->showNormal();
        if (mode == 2) {
            const int h = room.height() / n;
            windows[i]->setGeometry(0, i * h, room.width(), h);
        } else {
            const int w = room.width() / n;
            windows[i]->setGeometry(i * w, 0, w, room.height());
        }
    }
}

void FrmMain::arrangeIcons() {
    // Minimised windows line up along the bottom edge.
    int x = 0;
    const int bottom = mdiArea_->viewport()->height();
    for (QMdiSubWindow* sub : mdiArea_->subWindowList()) {
        if (!sub->isMinimized()) continue;
        sub->move(x, bottom - sub->height());
        x += sub->width();
    }
}

FrmDocument* FrmMain::makeDocument() {
    auto* doc = new FrmDocument(*this);
    QMdiSubWindow* sub = mdiArea_->addSubWindow(doc);
    sub->setAttribute(Qt::WA_DeleteOnClose);
    // The document's close entry carries Ctrl+W and Ctrl+F4; the child
    // window's own menu giving them too would make both keys ambiguous.
    if (QMenu* system = sub->systemMenu()) {
        for (QAction* action : system->actions()) {
            for (const QKeySequence& key : doc->closeAction()->shortcuts()) {
                if (action->shortcuts().contains(key)) action->setShortcuts({});
            }
        }
    }
    connect(&doc->pictureView(), &PictureView::pointerMoved, this,
            [this, doc](QPoint pixel) { showPointer(*doc, pixel); });
    connect(&doc->pictureView(), &PictureView::pointerLeft, this, &FrmMain::clearPointer);
    connect(doc, &FrmDocument::zoomChanged, this, &FrmMain::refreshPicturePanels);
    connect(doc, &FrmDocument::toolStatusChanged, this, [this, doc] {
        if (activeDocument() == doc) showToolStatus();
    });
    ++documentCount_;
    return doc;
}

void FrmMain::placeNewDocument(FrmDocument& doc) {
    QMdiSubWindow* sub = doc.subWindow();
    if (sub == nullptr) return;
    // The window follows the picture's size, within the frame's client area,
    // and opens at the next place of a cascade that keeps it whole inside.
    sub->show();
    const QSize size = wholePictureSize(*sub).boundedTo(mdiArea_->viewport()->size());
    sub->setGeometry(QRect(nextWindowPlace(size, sub), size));
}

LoadLimits FrmMain::loadLimits() const {
    LoadLimits limits;
    limits.maxPixels = settings_.MaxLoadPixels;
    // A run keeps kept pictures 0 and 1 and up to MaxUndoCount - 1 undo levels.
    limits.keptCopies = 2 + std::max(0, static_cast<int>(state_.undo.maxUndoCount()) - 1);
    return limits;
}

FrmDocument* FrmMain::openFile(const QString& given) {
    if (given.isEmpty() || busy() || !CheckWindowLimit()) return nullptr;
    // The caption and the history hold the whole path: a name relative to
    // the folder the editor was started in would open nothing from the
    // history of a later start elsewhere.
    const QString path = QFileInfo(given).absoluteFilePath();
    FrmDocument* doc = makeDocument();
    doc->setPath(path);
    // The new document's progress entry stands in the menu bar while it loads.
    menuBar()->addAction(doc->progressItem());
    QApplication::setOverrideCursor(Qt::WaitCursor);
    LoadedPicture loaded = loadOnWorker(path, decoder_, loadLimits(), doc->progressItem(), this,
                                        longLoadMilliseconds_);
    QApplication::restoreOverrideCursor();
    QCoreApplication::sendPostedEvents(doc->progressItem());
    doc->progressItem()->setText(QString());
    if (loaded.failure) {
        std::optional<ImageLoadError> failure;
        try {
            std::rethrow_exception(loaded.failure);
        } catch (const LoadCancelled&) {
            // The user stopped it: nothing to report, nothing else changes.
            doc->closeWindow();
            refreshMenus();
            return nullptr;
        } catch (const ImageLoadError& error) {
            failure = error;
        } catch (const std::bad_alloc&) {
            const EffectError memory = EffectError::outOfMemory();
            failure = ImageLoadError(memory.number(), memory.description(), path.toStdString());
        }
        QMessageBox box(QMessageBox::Warning, errorTitleText(failure->number()),
                        shown(failure->description()), QMessageBox::Ok, this);
        box.setDetailedText(loadFailureDetail(*failure, loaded));
        box.exec();
        // The document that was to hold it goes again; the others stay as they were.
        doc->closeWindow();
        refreshMenus();
        return nullptr;
    }
    if (loaded.picture) {
        doc->document().picture = std::move(*loaded.picture);
        state_.keep.FinalLoadImage = std::move(loaded.finalLoadCopy);
        prepareRunMemory(doc->document().picture, loaded.shown);
        doc->showPicture(std::move(loaded.shown));
    } else {
        // An extension the program does not know leaves the blank picture.
        doc->document().picture = Surface(320, 240, makePixel(255, 255, 255));
        state_.keep.FinalLoadImage = doc->document().picture;
        doc->refreshPicture();
    }
    finalLoadFolder_ = doc->document().folderLabel;
    finalLoadName_ = doc->document().nameLabel;
    imageLoaded_ = true;
    if (!loaded.note.empty()) messagePanel_->setText(shown(loaded.note));
    placeNewDocument(*doc);
    ApplyRegulation();
    settings_.history.add(path.toStdString());
    settings_.OpenFolder = QFileInfo(path).absolutePath().toStdString();
    refreshFrameHistory();
    refreshMenus();
    return doc;
}

void FrmMain::openCommandLine(const QString& commandLine) {
    const QString own = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    if (commandLine.isEmpty() || commandLine == own || commandLine.size() <= 1) return;
    for (const QString& piece : commandLine.split(' ', Qt::SkipEmptyParts))
        openFile(piece);
}

void FrmMain::openEffectDialog(FrmDocument& document, const EffectEntry& entry) {
    if (busy()) return;
    const std::uint8_t tool = document.document().ToolsFlag;
    if (tool == tools::ReadyToMove || tool == tools::AreaDrawn)
        document.ToolsNo_Click(tools_menu::FixArea);
    // The forms are loaded afresh for every effect.
    if (effectDialog_) effectDialog_->close();
    auto* dialog = new EffectDialog(entry.dialog, *this, document);
    effectDialog_ = dialog;
    dialog->configure(entry);
    state_.PreviewReady = 1;
    dialog->show();
}

FrmBrowse* FrmMain::effectBrowser() const {
    return browser_;
}

void FrmMain::showEffectBrowser(FrmDocument& document, const QString& family) {
    if (busy()) return;
    if (browser_) browser_->close();
    ScreenSize screen;
    if (const QScreen* s = QGuiApplication::primaryScreen()) {
        screen = {s->size().width(), s->size().height()};
    }
    auto* browser = new FrmBrowse(*this, document, store_, screen);
    browser_ = browser;
    browser->show();
    browser->TreeViewNodeExpand(family);
}

void FrmMain::openWithDialog() {
    if (busy()) return;
    QString start;
    if (settings_.OpenFolder != LoadHistory::Empty) start = qs(settings_.OpenFolder);
    const QString path =
        QFileDialog::getOpenFileName(this, res(ids::OpenDialogTitle), start, qtFilter());
    if (!path.isEmpty()) openFile(path);
}

void FrmMain::newImage() {
    if (busy() || !CheckWindowLimit()) return;
    const std::optional<NewImageRequest> request = showCreateDialog(settings_, this);
    if (!request) return;
    FrmDocument* doc = makeDocument();
    doc->document().picture =
        Surface(request->width, request->height, toPixel(state_.flags.backColor));
    doc->document().nameLabel = request->name.toStdString();
    doc->setWindowTitle(request->name);
    doc->refreshPicture();
    placeNewDocument(*doc);
    refreshMenus();
}

void FrmMain::saveDocument(FrmDocument& doc) {
    if (busy()) return;
    QString folder = qs(doc.document().folderLabel);
    if (folder.isEmpty() && settings_.OpenFolder != LoadHistory::Empty) {
        folder = qs(settings_.OpenFolder) + "/";
    }
    const QString suggested = proposedSaveName(folder, qs(doc.document().nameLabel));
    frm_PictureSave dialog(doc.document().picture, suggested, settings_.FontSize, this);
    dialog.exec();
    // Some window managers leave the keyboard nowhere after nested dialogs.
    activateWindow();
    if (!dialog.savedPath().isEmpty()) doc.setPath(dialog.savedPath());
}

void FrmMain::undo(FrmDocument& doc) {
    if (busy() || state_.undo.UndoCount() == 0) return;
    try {
        state_.undo.PopUndo(doc.document());
    } catch (...) {
        QMessageBox::warning(this, res(ids::UndoErrorTitle), res(ids::UndoFailed));
        return;
    }
    doc.setWindowTitle(qs(doc.document().caption()));
    doc.refreshPicture();
    clearPointer();
    messagePanel_->setText(res(ids::StatusUndone).arg(qs(doc.document().nameLabel)));
    refreshCommands();
    refreshPicturePanels();
}

void FrmMain::releaseUndo() {
    if (busy()) return;
    state_.undo.release();
    refreshCommands();
    QMessageBox::information(this, res(ids::EditUndoRelease), res(ids::Done));
}

void FrmMain::openFinalLoadImage() {
    if (busy() || !imageLoaded_ || !CheckWindowLimit()) return;
    FrmDocument* doc = makeDocument();
    doc->document().picture = state_.keep.FinalLoadImage;
    doc->document().folderLabel = finalLoadFolder_;
    doc->document().nameLabel = finalLoadName_;
    doc->setWindowTitle(qs(doc->document().caption()));
    doc->refreshPicture();
    placeNewDocument(*doc);
    refreshMenus();
}

void FrmMain::keepPicture(FrmDocument& document) {
    if (busy()) return;
    state_.keep.ComposeImage = document.document().picture;
    refreshCommands();
    QMessageBox::information(this, res(ids::ComposeKeepTitle), res(ids::ComposeKept));
}

void FrmMain::discardKeptImage() {
    if (busy()) return;
    state_.keep.ComposeImage = Surface();
    refreshCommands();
    QMessageBox::information(this, res(ids::ComposeDiscardTitle), res(ids::ComposeDiscarded));
}

void FrmMain::exportKeptImage() {
    if (busy() || state_.keep.ComposeImage.empty() || !CheckWindowLimit()) return;
    FrmDocument* doc = makeDocument();
    doc->document().picture = state_.keep.ComposeImage;
    doc->document().nameLabel = res(ids::ComposeExportName).toStdString();
    doc->setWindowTitle(qs(doc->document().caption()));
    doc->refreshPicture();
    placeNewDocument(*doc);
    refreshMenus();
}

void FrmMain::clearHistory() {
    const auto answer =
        QMessageBox::question(this, res(ids::HistoryClearTitle), res(ids::HistoryClearQuestion),
                              QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes) return;
    settings_.history.clear();
    refreshFrameHistory();
    QMessageBox::information(this, res(ids::HistoryClearTitle), res(ids::Done));
}

void FrmMain::openSibling(FrmDocument& doc, int step) {
    const QString folder = qs(doc.document().folderLabel);
    if (doc.windowTitle().isEmpty() || folder.isEmpty()) return;
    QDir dir(folder);
    const QStringList names =
        dir.entryList(folderPattern(), QDir::Files, QDir::Name | QDir::IgnoreCase);
    const QString name = qs(doc.document().nameLabel).toLower();
    int found = -1;
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].toLower() == name) found = i;
    }
    const int target = found + step;
    if (found < 0 || target < 0 || target >= names.size()) return;
    openFile(dir.filePath(names[target]));
}

void FrmMain::showOptions() {
    Settings edited = settings_;
    edited.CalculationFlag = state_.flags.calculationFlag;
    edited.RasterOpFlag = state_.flags.rasterOpFlag;
    edited.backColor = state_.flags.backColor;
    edited.drawingColor = state_.flags.drawingColor;
    edited.MaxUndoCount = state_.undo.maxUndoCount();
    if (!showOptionDialog(edited, this)) return;
    settings_ = edited;
    autoPreview_->setChecked(settings_.AutoPreview == 1);
    state_.flags.calculationFlag = edited.CalculationFlag;
    state_.flags.rasterOpFlag = edited.RasterOpFlag;
    state_.flags.backColor = edited.backColor;
    state_.flags.drawingColor = edited.drawingColor;
    state_.undo.setMaxUndoCount(edited.MaxUndoCount);
    applyFontSize();
    refreshStatus();
    refreshCommands();
}

void FrmMain::showColorSet() {
    // Modeless, so that a colour can be picked from a picture meanwhile.
    if (colorSet_) {
        colorSet_->raise();
        colorSet_->activateWindow();
        return;
    }
    Settings shown = settings_;
    shown.backColor = state_.flags.backColor;
    shown.drawingColor = state_.flags.drawingColor;
    auto* dialog = new frm_ColorSet(shown, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    colorSet_ = dialog;
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        Settings edited = settings_;
        dialog->storeInto(edited);
        state_.flags.backColor = settings_.backColor = edited.backColor;
        state_.flags.drawingColor = settings_.drawingColor = edited.drawingColor;
        refreshStatus();
    });
    connect(dialog, &frm_ColorSet::pickingChanged, this, [this, dialog](bool on) {
        if (on && explorerWindow()) explorerWindow()->setPickState(0);
        pickTarget_ = dialog;
        state_.ColorPickMode = on ? 2 : 0;
        dialog->setPickState(state_.ColorPickMode);
    });
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        if (pickTarget_ == dialog) state_.ColorPickMode = 0;
    });
    dialog->show();
}

frm_ColorSet* FrmMain::colorSetWindow() const {
    return qobject_cast<frm_ColorSet*>(colorSet_.data());
}

void FrmMain::colourPicked(Rgb8 colour) {
    if (pickTarget_ && pickTarget_ == explorer_) {
        explorerWindow()->showPicked(colour);
    } else if (frm_ColorSet* dialog = colorSetWindow()) {
        dialog->showPicked(colour);
    }
}

void FrmMain::toggleColourPick() {
    if (state_.ColorPickMode == 2) {
        state_.ColorPickMode = 3;
    } else if (state_.ColorPickMode == 3) {
        state_.ColorPickMode = 2;
    }
    if (pickTarget_ && pickTarget_ == explorer_) {
        explorerWindow()->setPickState(state_.ColorPickMode);
    } else if (frm_ColorSet* dialog = colorSetWindow()) {
        dialog->setPickState(state_.ColorPickMode);
    }
}

AreaRect FrmMain::clipboardPart(const FrmDocument& doc) const {
    const Document& d = doc.document();
    const int width = d.picture.width();
    const int height = d.picture.height();
    if (outlineShows(d.ToolsFlag)) {
        const AreaRect r = normalisedInPicture(d.area, width, height);
        if (r.left < r.right && r.top < r.bottom) return r;
    }
    return {0, 0, width, height};
}

void FrmMain::copyToClipboard(FrmDocument& doc) {
    if (busy()) return;
    const Document& d = doc.document();
    const AreaRect r = clipboardPart(doc);
    if (r.left == 0 && r.top == 0 && r.right == d.picture.width() &&
        r.bottom == d.picture.height()) {
        putPictureOnClipboard(d.picture);
        return;
    }
    Surface part(r.right - r.left, r.bottom - r.top);
    BitBlt(part, 0, 0, part.width(), part.height(), d.picture, r.left, r.top, SRCCOPY);
    putPictureOnClipboard(part);
}

void FrmMain::cutToClipboard(FrmDocument& doc) {
    if (busy() || doc.document().picture.empty()) return;
    copyToClipboard(doc);
    const AreaRect r = clipboardPart(doc);
    Document& d = doc.document();
    // A snapshot that cannot be taken is reported; the cut goes on without it.
    std::optional<EffectError> failure;
    try {
        state_.undo.PushUndo(d);
    } catch (const EffectError& error) {
        failure = error;
    } catch (const std::bad_alloc&) {
        failure = EffectError::outOfMemory();
    }
    if (failure) {
        QMessageBox::warning(this, errorTitleText(failure->number()),
                             shown(failure->description()));
    }
    const Pixel back = toPixel(state_.flags.backColor);
    for (int y = r.top; y < r.bottom; ++y) {
        for (int x = r.left; x < r.right; ++x)
            d.picture.at(x, y) = (d.picture.at(x, y) & 0xFF000000u) | back;
    }
    doc.refreshPicture();
    refreshCommands();
}

void FrmMain::pasteIntoDocument(FrmDocument& doc) {
    if (busy()) return;
    const ClipboardPicture clip = readClipboardPicture(QGuiApplication::clipboard()->mimeData());
    if (clip.format == clipboard_format::None) {
        QMessageBox::warning(this, res(ids::ClipboardEmptyPasteTitle),
                             res(ids::ClipboardEmptyPaste));
        return;
    }
    if (!clip.picture) {
        QMessageBox box(QMessageBox::Warning, res(ids::ClipboardEmptyPasteTitle),
                        res(ids::ClipboardTooLarge), QMessageBox::Ok, this);
        box.setDetailedText(clip.problem);
        box.exec();
        return;
    }
    Document& d = doc.document();
    const AreaRect place = pastePlace(d, clip.picture->width(), clip.picture->height());
    if (const auto failure =
            PasteWithRaster(state_, d, *clip.picture, state_.flags.rasterOpFlag, place)) {
        QMessageBox::warning(this, errorTitleText(failure->number()),
                             shown(failure->description()));
    }
    doc.refreshPicture();
    refreshCommands();
}

void FrmMain::PasteAsNewDocument() {
    if (busy() || !CheckWindowLimit()) return;
    const ClipboardPicture clip = readClipboardPicture(QGuiApplication::clipboard()->mimeData());
    if (clip.format == clipboard_format::None) {
        QMessageBox::warning(this, res(ids::ClipboardEmptyOpenTitle), res(ids::ClipboardEmptyOpen));
        return;
    }
    if (!clip.picture) {
        QMessageBox box(QMessageBox::Warning, res(ids::ClipboardEmptyOpenTitle),
                        res(ids::ClipboardTooLarge), QMessageBox::Ok, this);
        box.setDetailedText(clip.problem);
        box.exec();
        return;
    }
    FrmDocument* doc = makeDocument();
    doc->document().picture = std::move(*clip.picture);
    doc->document().nameLabel = res(ids::ClipboardDocumentName).toStdString();
    doc->setWindowTitle(res(ids::ClipboardDocumentName));
    doc->refreshPicture();
    placeNewDocument(*doc);
    refreshFrameHistory();
    ApplyRegulation();
    refreshMenus();
}

void FrmMain::ClipboardClear() {
    QGuiApplication::clipboard()->clear();
    QMessageBox::information(this, res(ids::ClipboardClearTitle), res(ids::Done));
}

void FrmMain::showPictureInfo(FrmDocument& doc) {
    PictureInfo info;
    info.path = doc.windowTitle();
    info.width = doc.document().picture.width();
    info.height = doc.document().picture.height();
    const QFileInfo file(info.path);
    info.fileSize = file.exists() ? file.size() : -1;
    lumiran::showPictureInfo(info, doc.document().picture, settings_, this);
}

void FrmMain::showHelp() {
    // A window of the editor's own, so help shows on any desktop.
    // The English page where there is one; the Japanese page otherwise.
    QString page = QStringLiteral(":/help/index.html");
    if (state_.language == InterfaceLanguage::English &&
        QFileInfo::exists(QStringLiteral(":/help/index_en.html"))) {
        page = QStringLiteral(":/help/index_en.html");
    }
    const QUrl help("qrc" + page);
    if (!QFileInfo::exists(page)) {
        QMessageBox::warning(this, res(ids::ErrorTitle), res(ids::HelpMissing));
        return;
    }
    if (!helpWindow_) {
        helpWindow_ = new QTextBrowser(this);
        helpWindow_->setObjectName("HelpWindow");
        helpWindow_->setWindowFlag(Qt::Window);
        helpWindow_->setAttribute(Qt::WA_DeleteOnClose);
        helpWindow_->setOpenExternalLinks(true);
        helpWindow_->setSource(help);
        helpWindow_->setWindowTitle(helpWindow_->documentTitle());
        // Over the frame, where the user is looking.
        const QSize size = QSize(720, 600).boundedTo(this->size());
        helpWindow_->setGeometry(
            QRect(geometry().center() - QPoint(size.width(), size.height()) / 2, size));
    }
    helpWindow_->show();
    helpWindow_->raise();
    helpWindow_->activateWindow();
}

void FrmMain::showAbout() {
    showVersionDialog(settings_, this);
}

void FrmMain::easterEgg() {
    QMessageBox::warning(this, "Easter Egg", res(ids::EasterEgg));
}

void FrmMain::setAutoPreview(bool on) {
    settings_.AutoPreview = on ? 1 : 0;
}

bool FrmMain::runEffect(FrmDocument& doc, EffectBody body, RunOptions options) {
    if (runs_->running()) return false;
    // An area being drawn or ready to move is fixed first, and the run takes
    // it as its rectangle; the outline leaves the screen until the end.
    doc.EffectStartToolsFlag();
    const bool started = runs_->start(doc.document(), std::move(body), settings_.FontSize,
                                      settings_.ProcessBarType, options);
    if (!started) doc.EndingToolsFlag();
    return started;
}

void FrmMain::onRunFinished(Document* document, RunOutcome outcome, QImage picture) {
    for (FrmDocument* doc : documents()) {
        if (&doc->document() != document) continue;
        doc->setWindowTitle(qs(document->caption()));
        if (!picture.isNull()) {
            doc->showPicture(std::move(picture));
        } else if (outcome == RunOutcome::Applied) {
            doc->refreshPicture();
        }
        doc->EndingToolsFlag();
        // The snapshot stays on the undo stack: the next run needs a fresh one.
        prepareRunMemory(document->picture, doc->pictureView().image());
    }
    clearPointer();
    refreshCommands();
    refreshPicturePanels();
}

void FrmMain::documentClosed(FrmDocument* document) {
    --documentCount_;
    if (documentCount_ == 0) messagePanel_->clear();
    // A form configured for this document has nothing left to work on.
    if (effectDialog_ && &effectDialog_->document() == document) effectDialog_->close();
    // The closing window still counts among the subwindows until it is gone.
    QTimer::singleShot(0, this, &FrmMain::refreshMenus);
}

void FrmMain::closeEvent(QCloseEvent* event) {
    if (closing_) {
        event->accept();
        return;
    }
    const auto answer = QMessageBox::question(this, res(ids::ExitTitle), res(ids::ExitQuestion),
                                              QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    closing_ = true;
    // A run in progress is cancelled and ends its current row first, so the
    // document is as it was before the run when the settings are written.
    if (runs_->running()) {
        runs_->cancel();
        runs_->waitForEnd();
    }
    // Windows of their own that would otherwise keep the program alive.
    if (effectDialog_) effectDialog_->close();
    if (helpWindow_) helpWindow_->close();
    if (colorSet_) colorSet_->close();
    if (explorer_) explorer_->close();
    if (pixelWindow_) pixelWindow_->close();
    // The viewer keeps its place in the settings as it closes.
    if (viewer_) viewer_->close();
    mdiArea_->closeAllSubWindows();
    writeSettings();
    event->accept();
    emit exited();
}

void FrmMain::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void FrmMain::dropEvent(QDropEvent* event) {
    if (busy()) return;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) openFile(url.toLocalFile());
    }
    event->acceptProposedAction();
}

void FrmMain::showCapture() {
    if (busy()) return;
    auto* dialog = new frm_Capture(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &frm_Capture::captured, this, [this](const QImage& picture, bool toClipboard) {
        if (toClipboard) {
            QGuiApplication::clipboard()->setImage(picture);
        } else if (!busy() && CheckWindowLimit()) {
            openPictureAsDocument(picture, res(ids::CaptureDocumentName));
        }
    });
    connect(dialog, &frm_Capture::refused, this,
            [this] { QMessageBox::warning(this, res(ids::CaptureRun), res(ids::CaptureRefused)); });
    dialog->show();
}

FrmDocument* FrmMain::openPictureAsDocument(const QImage& picture, const QString& name) {
    FrmDocument* doc = makeDocument();
    doc->document().picture = toSurface(picture);
    doc->document().nameLabel = name.toStdString();
    doc->setWindowTitle(name);
    doc->refreshPicture();
    placeNewDocument(*doc);
    refreshFrameHistory();
    ApplyRegulation();
    refreshMenus();
    return doc;
}

void FrmMain::openDesktopPicture() {
    ProcessRunner runner;
    const QString path = currentWallpaperFile(runner, runningDesktop());
    if (path.isEmpty()) {
        QMessageBox::information(this, res(ids::WallTitle), res(ids::DesktopNoWallpaper));
        return;
    }
    openFile(path);
}

void FrmMain::LoadImageViewer() {
    if (viewer_) {
        viewer_->raise();
        viewer_->activateWindow();
        return;
    }
    const auto loader = [this](const QString& path, QAction* progress) {
        ViewerLoad result;
        QApplication::setOverrideCursor(Qt::WaitCursor);
        LoadedPicture loaded =
            loadOnWorker(path, decoder_, loadLimits(), progress, viewer_, longLoadMilliseconds_);
        QApplication::restoreOverrideCursor();
        QCoreApplication::sendPostedEvents(progress);
        if (loaded.failure) {
            try {
                std::rethrow_exception(loaded.failure);
            } catch (const ImageLoadError& error) {
                result.title = errorTitleText(error.number());
                result.text = shown(error.description());
                result.detail = loadFailureDetail(error, loaded);
            } catch (const std::bad_alloc&) {
                const EffectError memory = EffectError::outOfMemory();
                result.title = errorTitleText(memory.number());
                result.text = shown(memory.description());
            }
        } else if (loaded.picture) {
            result.picture = std::move(loaded.shown);
        } else {
            // An extension the load path does not read gives its blank picture.
            result.picture = QImage(320, 240, QImage::Format_RGB32);
            result.picture.fill(Qt::white);
        }
        return result;
    };
    auto* viewer = new frm_Viewer(store_, loader, this);
    viewer_ = viewer;
    connect(viewer, &frm_Viewer::openRequested, this,
            [this](const QString& path) { openFile(path); });
    viewer->show();
}

frm_Viewer* FrmMain::viewerWindow() const {
    return qobject_cast<frm_Viewer*>(viewer_.data());
}

void FrmMain::PrintImagePass(FrmDocument& doc) {
    if (busy()) return;
    frm_Print dialog(doc.pictureView().image(), doc.windowTitle(), store_, this);
    dialog.exec();
}

void FrmMain::WallPaperNo_Click(FrmDocument& doc, int index) {
    ProcessRunner runner;
    Class_WallSetting wall(store_, runner, runningDesktop());
    const auto message =
        WallPaperNo(index, doc.document().folderLabel, doc.document().nameLabel, wall);
    if (message) QMessageBox::information(this, res(message->title), res(message->text));
}

void FrmMain::showExplorer() {
    if (explorer_) {
        explorer_->raise();
        explorer_->activateWindow();
        return;
    }
    auto* dialog = new frm_Exploer(state_.flags.drawingColor, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    explorer_ = dialog;
    connect(dialog, &frm_Exploer::pickingChanged, this, [this, dialog](bool on) {
        if (on && colorSetWindow()) colorSetWindow()->setPickState(0);
        pickTarget_ = dialog;
        state_.ColorPickMode = on ? 2 : 0;
        dialog->setPickState(state_.ColorPickMode);
    });
    connect(dialog, &frm_Exploer::drawingColourChosen, this, [this](Rgb8 colour) {
        state_.flags.drawingColor = settings_.drawingColor = colour;
        refreshStatus();
    });
    connect(dialog, &frm_Exploer::backColourChosen, this, [this](Rgb8 colour) {
        state_.flags.backColor = settings_.backColor = colour;
        refreshStatus();
    });
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        if (pickTarget_ == dialog) state_.ColorPickMode = 0;
    });
    dialog->show();
}

frm_Exploer* FrmMain::explorerWindow() const {
    return qobject_cast<frm_Exploer*>(explorer_.data());
}

void FrmMain::showPixelWindow() {
    if (!pixelWindow_) {
        auto* window = new frm_Pixel(this);
        window->setAttribute(Qt::WA_DeleteOnClose);
        pixelWindow_ = window;
    }
    pixelWindow_->show();
    pixelWindow_->raise();
}

frm_Pixel* FrmMain::pixelWindow() const {
    return qobject_cast<frm_Pixel*>(pixelWindow_.data());
}

} // namespace lumiran
