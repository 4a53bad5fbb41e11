#pragma once

#include "shell/effect_run.h"
#include "shell/ui/frm_progress.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <atomic>
#include <memory>
#include <optional>
#include <thread>

class QWidget;

namespace lumiran {

// Runs one effect at a time on a document. The progress window shows and
// the menus go off at once, on the GUI thread; everything that copies
// pictures (the snapshot, the kept pictures, the raster step or the undo
// pop, the picture for the screen) happens on a worker thread while the
// window shows, so a large picture never freezes the editor. The document
// is unchanged until the end, and nothing else touches it meanwhile: the
// frame refuses commands while running() is true.
class RunController : public QObject {
    Q_OBJECT
  public:
    explicit RunController(ProgramState& state, QObject* parent = nullptr);
    ~RunController() override;

    // The window the progress window belongs to.
    void setOwnerWindow(QWidget* owner) { owner_ = owner; }

    // Starts a run; false when one is under way already.
    bool start(Document& document, EffectBody body, int fontSize, bool smoothBar,
               RunOptions options = {});
    [[nodiscard]] bool running() const { return active_; }
    [[nodiscard]] const Document* document() const { return document_; }
    // Asks the run to stop after its current row.
    void cancel();
    // Blocks until the current run has ended (tests, and the frame's exit).
    void waitForEnd();
    // The progress window of the current run; null between runs.
    [[nodiscard]] frm_Progress* progressWindow() const { return progress_; }

  signals:
    // Menus go off before the first copy and come back after the end.
    void runningChanged(bool running);
    // The run ended: applied or cancelled; failures were shown already.
    // `picture` is the document's new picture, ready for the screen; null
    // when the screen's picture stands (a cancelled run put it back).
    void finished(lumiran::Document* document, lumiran::RunOutcome outcome, QImage picture);

  private:
    class Sink;
    void bodyDone();
    void finishDone();
    void joinWorker();

    ProgramState& state_;
    QWidget* owner_ = nullptr;
    Document* document_ = nullptr;
    RunOptions options_;
    bool active_ = false;
    std::atomic<bool> cancelRequested_{false};
    std::unique_ptr<EffectRun> run_; // made and ended on the worker
    std::unique_ptr<Sink> sink_;
    std::optional<EffectError> startFailure_;
    RunOutcome outcome_ = RunOutcome::Applied;
    QImage picture_;
    std::thread worker_;
    QPointer<frm_Progress> progress_;
};

} // namespace lumiran
