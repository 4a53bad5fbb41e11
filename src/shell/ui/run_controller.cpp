#include "shell/ui/run_controller.h"

#include "shell/string_table.h"
#include "shell/ui/frm_progress.h"
#include "shell/ui/ui_text.h"

#include <QApplication>
#include <QMessageBox>

namespace lumiran {

// Hands the worker's percentages to the progress window on the GUI thread.
class RunController::Sink : public ProgressSink {
  public:
    explicit Sink(RunController& owner) : owner_(owner) {}
    void showPercent(int percent) override {
        QMetaObject::invokeMethod(
            &owner_,
            [this, percent] {
                if (owner_.progress_) owner_.progress_->setPercent(percent);
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
};

RunController::RunController(ProgramState& state, QObject* parent)
    : QObject(parent), state_(state) {}

RunController::~RunController() {
    if (worker_.joinable()) {
        state_.cancelFlag = 1;
        worker_.join();
    }
}

bool RunController::start(Document& document, EffectBody body, int fontSize, bool marqueeBar,
                          RunOptions options) {
    if (running() || state_.ProcessingFlag == 1) return false;
    document_ = &document;
    run_ = std::make_unique<EffectRun>(state_, document, options);
    sink_ = std::make_unique<Sink>(*this);
    if (state_.ProgressFlag == 1) {
        progress_ = new frm_Progress(state_.cancelFlag, marqueeBar, fontSize);
        progress_->setAttribute(Qt::WA_DeleteOnClose);
        progress_->show();
        progress_->raise();
    }
    emit runningChanged(true);
    worker_ = std::thread([this, body = std::move(body)] {
        run_->execute(body, sink_.get());
        QMetaObject::invokeMethod(this, &RunController::complete, Qt::QueuedConnection);
    });
    return true;
}

void RunController::complete() {
    if (!run_) return;
    if (worker_.joinable()) worker_.join();
    // The effects' handlers show their messages before the run ends.
    for (const EffectError& failure : run_->failures()) {
        QMessageBox::warning(nullptr, qs(errorTitle(failure.number())), qs(failure.description()));
    }
    const RunOutcome outcome = run_->finish();
    if (progress_) progress_->close();
    run_.reset();
    sink_.reset();
    Document* document = document_;
    document_ = nullptr;
    emit runningChanged(false);
    emit finished(document, outcome);
}

void RunController::waitForEnd() {
    while (running()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
}

} // namespace lumiran
