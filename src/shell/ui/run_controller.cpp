#include "shell/ui/run_controller.h"

#include "shell/string_table.h"
#include "shell/ui/frm_progress.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"

#include <QEventLoop>
#include <QMessageBox>

namespace lumiran {

// Hands the worker's percentages to the progress window on the GUI thread.
class RunController::Sink : public ProgressSink {
  public:
    explicit Sink(RunController& owner) : owner_(owner) {}
    void showPercent(int percent) override {
        // One queued call per change of the shown value, not per row.
        if (percent == last_) return;
        last_ = percent;
        QMetaObject::invokeMethod(
            &owner_,
            [owner = &owner_, percent] {
                if (owner->progress_) owner->progress_->setPercent(percent);
            },
            Qt::QueuedConnection);
    }
    void showCaption(int stringId) override {
        QMetaObject::invokeMethod(
            &owner_,
            [this, stringId] {
                if (owner_.progress_) owner_.progress_->setLabel(res(stringId));
            },
            Qt::QueuedConnection);
    }

  private:
    RunController& owner_;
    int last_ = -1;
};

RunController::RunController(ProgramState& state, QObject* parent)
    : QObject(parent), state_(state) {}

RunController::~RunController() {
    if (worker_.joinable()) {
        state_.cancelFlag = 1;
        worker_.join();
    }
    if (progress_) progress_->end();
}

bool RunController::start(Document& document, EffectBody body, int fontSize, bool smoothBar,
                          RunOptions options) {
    if (active_ || state_.ProcessingFlag == 1) return false;
    active_ = true;
    document_ = &document;
    options_ = options;
    cancelRequested_ = false;
    state_.cancelFlag = 0;
    state_.ProcessingFlag = 1;
    sink_ = std::make_unique<Sink>(*this);
    if (state_.ProgressFlag == 1) {
        progress_ = new frm_Progress(state_.cancelFlag, smoothBar, fontSize, owner_);
        progress_->setAttribute(Qt::WA_DeleteOnClose);
        connect(progress_, &frm_Progress::cancelRequested, this, &RunController::cancel);
        progress_->show();
        progress_->raise();
    }
    // The window shows and the menus go off before the first copy.
    emit runningChanged(true);
    worker_ = std::thread([this, &document, options, body = std::move(body)] {
        try {
            run_ = std::make_unique<EffectRun>(state_, document, options);
        } catch (const EffectError& error) {
            startFailure_ = error;
        } catch (const std::bad_alloc&) {
            startFailure_ = EffectError::outOfMemory();
        }
        if (run_) {
            // A cancel pressed while the copies were made is not lost to the
            // run's own reset of the flag.
            if (cancelRequested_) run_->context().requestCancel();
            if (!run_->context().cancelled()) run_->execute(body, sink_.get());
        }
        QMetaObject::invokeMethod(this, &RunController::bodyDone, Qt::QueuedConnection);
    });
    return true;
}

void RunController::cancel() {
    if (!active_) return;
    cancelRequested_ = true;
    state_.cancelFlag = 1;
}

void RunController::joinWorker() {
    if (worker_.joinable()) worker_.join();
}

void RunController::bodyDone() {
    joinWorker();
    if (!run_) {
        // The frame itself failed before the first row (no memory for the
        // copies): the message, and the editor back as it was.
        if (startFailure_) {
            QMessageBox::warning(owner_, errorTitleText(startFailure_->number()),
                                 shown(startFailure_->description()));
        }
        startFailure_.reset();
        state_.ProcessingFlag = 0;
        state_.cancelFlag = 0;
        outcome_ = RunOutcome::Cancelled;
        finishDone();
        return;
    }
    // The effects' handlers show their messages before the run ends.
    for (const EffectError& failure : run_->failures()) {
        QMessageBox::warning(owner_, errorTitleText(failure.number()),
                             shown(failure.description()));
    }
    worker_ = std::thread([this] {
        outcome_ = run_->finish();
        run_.reset();
        // A cancelled run put its own snapshot back: the screen shows that
        // picture already. Without a snapshot the pop brought an older level.
        if (outcome_ == RunOutcome::Applied || options_.noUndo) {
            try {
                picture_ = toQImage(document_->picture);
            } catch (const std::bad_alloc&) {
                picture_ = QImage(); // the frame converts it again
            }
        }
        QMetaObject::invokeMethod(this, &RunController::finishDone, Qt::QueuedConnection);
    });
}

void RunController::finishDone() {
    joinWorker();
    if (progress_) progress_->end();
    sink_.reset();
    Document* document = document_;
    document_ = nullptr;
    QImage picture = std::move(picture_);
    picture_ = QImage();
    active_ = false;
    emit runningChanged(false);
    emit finished(document, outcome_, std::move(picture));
}

void RunController::waitForEnd() {
    if (!active_) return;
    // The end arrives as queued calls from the worker: an event loop of our own takes them.
    QEventLoop wait;
    connect(this, &RunController::runningChanged, &wait, [&wait](bool running) {
        if (!running) wait.quit();
    });
    wait.exec();
}

} // namespace lumiran
