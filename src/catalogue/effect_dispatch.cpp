#include "catalogue/effect_dispatch.h"

#include "catalogue/effect_table.h"
#include "catalogue/family_registration.h"
#include "engine/picture_memory_reuse.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace lumiran {
namespace {

// Step i of n reports its percentages within its own share of the bar.
class StepProgress final : public ProgressSink {
  public:
    StepProgress(ProgressSink& whole, std::size_t steps) : whole_(whole), steps_(steps) {}
    void beginStep(std::size_t index) { index_ = index; }
    void showPercent(int percent) override {
        const auto done = static_cast<long long>(index_) * 100 + percent;
        whole_.showPercent(static_cast<int>(done / static_cast<long long>(steps_)));
    }
    void showCaption(int stringId) override { whole_.showCaption(stringId); }

  private:
    ProgressSink& whole_;
    std::size_t steps_;
    std::size_t index_ = 0;
};

// What a step may change in the shared context goes back after it, also
// when the step throws.
class ContextRestore {
  public:
    explicit ContextRestore(RunContext& context)
        : context_(context), progress_(context.progress), kept0_(context.kept0),
          kept1_(context.kept1) {}
    ContextRestore(const ContextRestore&) = delete;
    ContextRestore& operator=(const ContextRestore&) = delete;
    ~ContextRestore() {
        context_.progress = progress_;
        context_.kept0 = kept0_;
        context_.kept1 = kept1_;
    }

  private:
    RunContext& context_;
    ProgressSink* progress_;
    Surface* kept0_;
    Surface* kept1_;
};

} // namespace

void EffectDispatch::add(DialogKind dialog, int code, EffectPlanner planner) {
    planners_[{dialog, code}] = std::move(planner);
}

bool EffectDispatch::contains(DialogKind dialog, int code) const {
    return planners_.contains({dialog, code});
}

EffectPlan EffectDispatch::plan(DialogKind dialog, int code, const ControlValues& values) const {
    const auto it = planners_.find({dialog, code});
    if (it != planners_.end()) return it->second(values);
    const auto catalogue = effectCatalogue();
    const auto entry = std::ranges::find_if(
        catalogue, [&](const EffectEntry& e) { return e.dialog == dialog && e.code == code; });
    if (entry == catalogue.end()) return {};
    return EffectPlan::notAvailable(std::string(entry->call));
}

const EffectDispatch& effectDispatch() {
    static const EffectDispatch dispatch = [] {
        EffectDispatch d;
        registerColorOpEffects(d);
        registerColorTableEffects(d);
        registerDitheringEffects(d);
        registerBinarizationEffects(d);
        registerSoftenEffects(d);
        registerNeighborhoodEffects(d);
        registerEdgeEffects(d);
        registerFalseColorEffects(d);
        registerGradationEffects(d);
        registerHideEffectEffects(d);
        registerDLAEffects(d);
        registerMosaicEffects(d);
        registerNetMosaicEffects(d);
        registerPatternEffects(d);
        registerGeometryEffects(d);
        registerTransformEffects(d);
        register3DMappingEffects(d);
        registerCompositionEffects(d);
        return d;
    }();
    return dispatch;
}

EffectBody runInSequence(std::vector<EffectBody> steps, LaterSteps later) {
    return ReplacingBody{[steps = std::move(steps), later](EffectInvocation& run) {
        RunContext& context = run.context;
        std::optional<StepProgress> shared;
        if (context.progress != nullptr) shared.emplace(*context.progress, steps.size());
        // A step's source and the picture it replaced go as the next step
        // makes its own of the same size.
        const KeepPictureMemoryWhile reuse(2);
        // A lent picture no later step reads lends its memory to them once
        // the first has read it, and takes the last result back: one fresh
        // picture fewer, and no copy of the result into it.
        const bool recycleSource =
            run.keptPicture0Free && later == LaterSteps::ReadOnlyStepBefore && steps.size() > 1;
        Surface previous; // the result of the step before
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (i > 0) {
                if (context.cancelled()) return;
                previous = std::exchange(run.keptPicture1, Surface());
                if (i == 1 && recycleSource) run.keptPicture0 = Surface();
            }
            Surface& source = i == 0 ? run.keptPicture0 : previous;
            // As a run does for a body that draws over a blank result.
            if (!replacesKeptPicture1(steps[i])) {
                run.keptPicture1 =
                    Surface(source.width(), source.height(), toPixel(context.flags.backColor));
            }
            const ContextRestore restore(context);
            if (shared) {
                shared->beginStep(i);
                context.progress = &*shared;
            }
            EffectInvocation step{context, source, run.keptPicture1, run.rect};
            // No one reads the source after the first step, so that step may
            // work on it in place, as a lone run on a free picture does.
            if (i == 0 && recycleSource) {
                step.keptPicture0Writable = true;
                step.keptPicture0Free = true;
            }
            steps[i](step);
            // A first step that worked in place hands on its result as any
            // other step does.
            if (step.resultInKeptPicture0) {
                run.keptPicture1 = std::exchange(run.keptPicture0, Surface());
            }
        }
        if (recycleSource && !context.cancelled()) {
            run.keptPicture0 = std::exchange(run.keptPicture1, Surface());
            run.resultInKeptPicture0 = true;
        }
    }};
}

EffectPlanner planInSequence(std::vector<EffectPlanner> steps, LaterSteps later) {
    return [steps = std::move(steps), later](const ControlValues& values) {
        std::vector<EffectBody> bodies;
        bodies.reserve(steps.size());
        for (const EffectPlanner& step : steps) {
            EffectPlan plan = step(values);
            if (plan.status != EffectPlan::Status::Ready) return plan;
            bodies.push_back(std::move(plan.body));
        }
        return EffectPlan::ready(runInSequence(std::move(bodies), later));
    };
}

EffectPlan planEffect(DialogKind dialog, int code, const ControlValues& values) {
    return effectDispatch().plan(dialog, code, values);
}

} // namespace lumiran
