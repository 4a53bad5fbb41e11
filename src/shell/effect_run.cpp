#include "shell/effect_run.h"

#include "engine/raster_step.h"

#include <new>

namespace lumiran {
namespace {

// Tool commands that a run's start carries out on the area tool.
constexpr std::uint8_t ToolAreaFixed = 3;
constexpr std::uint8_t ToolNone = 0;

void applyRectDecision(Document& document, const ProcessRectDecision& decision, int width,
                       int height) {
    if (decision.endRunningTool) document.ToolsFlag = ToolAreaFixed;
    if (decision.endTool) document.ToolsFlag = ToolNone;
    if (decision.resetAreas) {
        const AreaRect whole{0, 0, width, height};
        document.drag = whole;
        document.area = whole;
    }
}

} // namespace

EffectRun::EffectRun(ProgramState& state, Document& document, RunOptions options)
    : state_(state), document_(document), context_(state.cancelFlag, state.random) {
    context_.flags = state.flags;
    context_.progressFlag = state.ProgressFlag;
    state.cancelFlag = 0;
    if (!options.noUndo) {
        // A snapshot that cannot be taken is reported; the run goes on without it.
        try {
            state.undo.PushUndo(document);
            snapshotTaken_ = true;
        } catch (const EffectError& error) {
            context_.failures.push_back(error);
        } catch (const std::bad_alloc&) {
            context_.failures.push_back(EffectError::outOfMemory());
        }
    }
    state.ProcessingFlag = 1;

    KeepStore& keep = state.keep;
    const int width = document.picture.width();
    const int height = document.picture.height();
    const ProcessRectDecision decision =
        fixProcessRectangle(document.ToolsFlag, document.area, width, height);
    applyRectDecision(document, decision, width, height);
    rect_ = decision.rect;

    // A result laid over the whole picture by a plain copy takes nothing
    // but the spare bytes from the document, and those stay in kept picture
    // 0: where no one looks at the document meanwhile, it need not be copied.
    documentLent_ = options.oneShot && context_.flags.rasterOpFlag == 0 &&
                    rect_ == ProcessRect::wholePicture(width, height);
    spareBytesUnread_ = documentLent_ && options.spareBytesUnread;
    if (documentLent_) {
        keep.keptPicture0 = std::move(document.picture);
    } else {
        keep.keptPicture0 = document.picture;
    }
    // Filled with the background colour by execute, unless the body
    // replaces it whole.
    keep.keptPicture1 = Surface();
    context_.kept0 = &keep.keptPicture0;
    context_.kept1 = &keep.keptPicture1;
    context_.composeImage = &keep.ComposeImage;
}

EffectRun::~EffectRun() {
    if (!finished_) finish();
}

void EffectRun::execute(const EffectBody& body, ProgressSink* progress) {
    context_.progress = progress;
    Surface& kept0 = state_.keep.keptPicture0;
    Surface& kept1 = state_.keep.keptPicture1;
    EffectInvocation invocation{context_, kept0, kept1, rect_};
    invocation.keptPicture0Writable = documentLent_;
    invocation.keptPicture0Free = spareBytesUnread_;
    try {
        if (!replacesKeptPicture1(body)) {
            kept1 = Surface(kept0.width(), kept0.height(), toPixel(context_.flags.backColor));
        }
        body(invocation);
        resultInKeptPicture0_ = documentLent_ && invocation.resultInKeptPicture0;
    } catch (const EffectError& error) {
        // Errors outside an effect's own handler end the run the same way.
        context_.failures.push_back(error);
        context_.requestCancel();
    } catch (const std::bad_alloc&) {
        context_.failures.push_back(EffectError::outOfMemory());
        context_.requestCancel();
    }
    context_.progress = nullptr;
}

RunOutcome EffectRun::finish(bool keepObjects) {
    if (finished_) return outcome_;
    finished_ = true;
    state_.ProcessingFlag = 0;
    KeepStore& keep = state_.keep;
    if (state_.cancelFlag == 1) {
        // A lent picture comes back as kept picture 0 is: with what an
        // effect that draws there (the gradations) drew before it stopped.
        // The one-shot caller throws a cancelled run's picture away.
        if (documentLent_) document_.picture = std::move(keep.keptPicture0);
        state_.undo.PopUndo(document_);
        state_.cancelFlag = 0;
        outcome_ = RunOutcome::Cancelled;
    } else if (documentLent_) {
        if (!resultInKeptPicture0_) {
            rasterStep(context_.flags.rasterOpFlag, keep.keptPicture1, keep.keptPicture0, rect_);
        }
        document_.picture = std::move(keep.keptPicture0);
    } else {
        rasterStep(context_.flags.rasterOpFlag, keep.keptPicture1, document_.picture, rect_);
    }
    if (!keepObjects) {
        state_.keep.keptPicture0 = Surface();
        state_.keep.keptPicture1 = Surface();
    }
    return outcome_;
}

RunReport runEffect(ProgramState& state, Document& document, const EffectBody& body,
                    ProgressSink* progress, RunOptions options) {
    EffectRun run(state, document, options);
    run.execute(body, progress);
    RunReport report;
    report.outcome = run.finish();
    report.failures = run.failures();
    return report;
}

} // namespace lumiran
