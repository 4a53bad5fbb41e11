#pragma once

#include "engine/effect_error.h"
#include "engine/process_rect.h"
#include "engine/run_context.h"
#include "shell/document.h"
#include "shell/program_state.h"

#include <functional>
#include <vector>

namespace lumiran {

// What the effect body of a run works on: the source in kept picture 0, the
// result to be written into kept picture 1, and the process rectangle.
struct EffectInvocation {
    RunContext& context;
    Surface& keptPicture0;
    Surface& keptPicture1;
    ProcessRect rect;
    // Set by the run when kept picture 0 is the document's own picture, lent
    // for a one-shot run over the whole picture whose raster step is a plain
    // copy (RunOptions::oneShot): the raster step would then replace every
    // colour of kept picture 0 by kept picture 1's and keep its spare bytes.
    // A body that works in place may so work on kept picture 0 itself,
    // keeping every spare byte, and set resultInKeptPicture0 instead of
    // writing kept picture 1; the run then lays nothing over it.
    bool keptPicture0Writable = false;
    bool resultInKeptPicture0 = false;
    // Set with keptPicture0Writable when the caller reads no spare byte of
    // the result (RunOptions::spareBytesUnread): kept picture 0 may then be
    // overwritten whole, and the result left in it need not keep its spare
    // bytes.
    bool keptPicture0Free = false;
};

// The class calls of one effect, as OK would make them.
using EffectBody = std::function<void(EffectInvocation&)>;

// A body whose write-back replaces kept picture 1 whole and that reads
// nothing of kept picture 1 before it (the usual shape of a case): the run
// does not fill kept picture 1 with the background colour first, since no
// one could see that fill.
struct ReplacingBody {
    std::function<void(EffectInvocation&)> call;
    void operator()(EffectInvocation& run) const { call(run); }
};

[[nodiscard]] inline bool replacesKeptPicture1(const EffectBody& body) {
    return body.target<ReplacingBody>() != nullptr;
}

struct RunOptions {
    bool noUndo = false; // no snapshot is taken
    // The caller looks at neither the document nor the kept pictures until
    // finish returns (the command line). The document's picture may then be
    // lent to kept picture 0 instead of copied.
    bool oneShot = false;
    // The caller reads no spare byte of the result (it saves at 24, 8 or 1
    // bits): a lent picture's spare bytes need not survive the run.
    bool spareBytesUnread = false;
};

enum class RunOutcome {
    Applied,   // the raster step laid the result over the document
    Cancelled, // cancelled or failed: the snapshot went back into the document
};

// One run of an effect on a document, in three steps so that a front end
// may execute the body on a worker thread: the constructor does what happens
// before the first row (snapshot, kept pictures, process rectangle), execute
// touches only the kept pictures, and finish lays the result over the
// document or restores it. The document is not changed before finish.
class EffectRun {
  public:
    EffectRun(ProgramState& state, Document& document, RunOptions options = {});
    EffectRun(const EffectRun&) = delete;
    EffectRun& operator=(const EffectRun&) = delete;
    ~EffectRun();

    [[nodiscard]] const ProcessRect& rect() const { return rect_; }
    [[nodiscard]] RunContext& context() { return context_; }

    // Runs the body; may be called from another thread than the others.
    void execute(const EffectBody& body, ProgressSink* progress = nullptr);
    // Ends the run. Safe to call once; the destructor calls it if needed.
    RunOutcome finish(bool keepObjects = false);

    [[nodiscard]] const std::vector<EffectError>& failures() const { return context_.failures; }
    // Whether the start pushed a level of its own: without one, a cancel
    // pops an older level, which the screen does not show yet.
    [[nodiscard]] bool snapshotTaken() const { return snapshotTaken_; }

  private:
    ProgramState& state_;
    Document& document_;
    RunContext context_;
    ProcessRect rect_;
    // Kept picture 0 holds the document's own picture until finish.
    bool documentLent_ = false;
    bool spareBytesUnread_ = false;
    // The body left its result in kept picture 0 (EffectInvocation).
    bool resultInKeptPicture0_ = false;
    bool snapshotTaken_ = false;
    bool finished_ = false;
    RunOutcome outcome_ = RunOutcome::Applied;
};

// Begin, body and finish on the calling thread.
struct RunReport {
    RunOutcome outcome = RunOutcome::Applied;
    std::vector<EffectError> failures;
};
RunReport runEffect(ProgramState& state, Document& document, const EffectBody& body,
                    ProgressSink* progress = nullptr, RunOptions options = {});

} // namespace lumiran
