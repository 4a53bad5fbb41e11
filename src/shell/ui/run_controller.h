#pragma once

#include "shell/effect_run.h"

#include <QObject>
#include <QPointer>
#include <memory>
#include <thread>

namespace lumiran {

class frm_Progress;

// Runs one effect at a time on a document: the start and the end on the
// GUI thread, the body on a worker thread, with the progress window in
// between. The document is unchanged until the end.
class RunController : public QObject {
    Q_OBJECT
  public:
    explicit RunController(ProgramState& state, QObject* parent = nullptr);
    ~RunController() override;

    // Starts a run; false when one is under way already.
    bool start(Document& document, EffectBody body, int fontSize, bool marqueeBar,
               RunOptions options = {});
    [[nodiscard]] bool running() const { return run_ != nullptr; }
    // Blocks until the current run has ended (tests, and the frame's exit).
    void waitForEnd();

  signals:
    // Menus go off before the first row and come back after the end.
    void runningChanged(bool running);
    // The run ended: applied or cancelled; failures were shown already.
    void finished(lumiran::Document* document, lumiran::RunOutcome outcome);

  private:
    class Sink;
    void complete();

    ProgramState& state_;
    Document* document_ = nullptr;
    std::unique_ptr<EffectRun> run_;
    std::unique_ptr<Sink> sink_;
    std::thread worker_;
    QPointer<frm_Progress> progress_;
};

} // namespace lumiran
