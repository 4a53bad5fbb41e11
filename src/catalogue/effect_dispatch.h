#pragma once

#include "catalogue/control_values.h"
#include "catalogue/dialog_kind.h"
#include "shell/effect_run.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace lumiran {

// What OK would run for a dialog's code and values.
struct EffectPlan {
    enum class Status {
        Ready,        // body holds the class calls
        NotAvailable, // the effect's class operation has not been built yet
        UnknownCode,  // outside the dialog's switch: nothing runs, no snapshot
    };
    Status status = Status::UnknownCode;
    std::string missingOperation; // for NotAvailable, e.g. "Class_ColorOp.Hue"
    EffectBody body;

    [[nodiscard]] static EffectPlan ready(EffectBody body) {
        return {Status::Ready, {}, std::move(body)};
    }
    [[nodiscard]] static EffectPlan notAvailable(std::string operation) {
        return {Status::NotAvailable, std::move(operation), {}};
    }
};

// The case of one (dialog, code) in its ...Processing routine: from the
// dialog's values to the class calls.
using EffectPlanner = std::function<EffectPlan(const ControlValues&)>;

// The switches of the seven ...Processing routines, filled family by family
// with one explicit register call each.
class EffectDispatch {
  public:
    void add(DialogKind dialog, int code, EffectPlanner planner);
    [[nodiscard]] bool contains(DialogKind dialog, int code) const;
    // A (dialog, code) of the catalogue whose case is not registered yet is
    // NotAvailable; any other unknown pair is UnknownCode.
    [[nodiscard]] EffectPlan plan(DialogKind dialog, int code, const ControlValues& values) const;

  private:
    std::map<std::pair<DialogKind, int>, EffectPlanner> planners_;
};

// The one dispatch of the program, with every family registered.
[[nodiscard]] const EffectDispatch& effectDispatch();

// The switch of the dialog's ...Processing routine.
[[nodiscard]] EffectPlan planEffect(DialogKind dialog, int code, const ControlValues& values);

// The usual shape of a case: fetch kept picture 0 into a fresh object of
// the class, make the call(s) on the process rectangle, write the array
// into kept picture 1. The write-back replaces kept picture 1 whole, so the
// call must not read kept picture 1 through the context.
template <typename Class, typename Call>
[[nodiscard]] EffectBody runInPlace(Call call) {
    return ReplacingBody{[call](EffectInvocation& run) {
        Class effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        call(effect, run.rect);
        effect.ImageSetDiBits(run.keptPicture1);
    }};
}

// The same working on kept picture 0 itself where the run allows it
// (EffectInvocation::keptPicture0Writable), so that no copy of the picture
// is made: for calls that keep every spare byte and read no kept picture
// through the context. fetch(object, kept picture 0) fetches ImageBits
// otherwise.
template <typename Class, typename Call, typename Fetch>
[[nodiscard]] EffectBody runInPlaceOnSource(Call call, Fetch fetch) {
    return ReplacingBody{[call, fetch](EffectInvocation& run) {
        Class effect(run.context);
        if (run.keptPicture0Writable) {
            {
                const typename Class::SourceLoan loan(effect, run.keptPicture0);
                call(effect, run.rect);
            }
            run.resultInKeptPicture0 = true;
            return;
        }
        fetch(effect, run.keptPicture0);
        call(effect, run.rect);
        effect.ImageSetDiBits(run.keptPicture1);
    }};
}

template <typename Class, typename Call>
[[nodiscard]] EffectBody runInPlaceOnSource(Call call) {
    return runInPlaceOnSource<Class>(std::move(call), [](Class& effect, const Surface& source) {
        effect.ImageGetDiBits(source);
    });
}

// The same for effects that write into a separate destination.
template <typename Class, typename Call>
[[nodiscard]] EffectBody runWithTrans(Call call) {
    return ReplacingBody{[call](EffectInvocation& run) {
        Class effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        effect.ImageGetDiBitsTrans(run.keptPicture0);
        call(effect, run.rect);
        effect.ImageSetDiBitsTrans(run.keptPicture1);
    }};
}

namespace detail {
// Kept picture 0 lent to the object as its source, TransBits fetched as a
// copy of it or left to the call.
template <typename Class, bool FetchTrans, typename Call>
[[nodiscard]] EffectBody onLentSource(Call call) {
    return ReplacingBody{[call](EffectInvocation& run) {
        Class effect(run.context);
        if constexpr (FetchTrans) effect.ImageGetDiBitsTrans(run.keptPicture0);
        {
            const typename Class::SourceLoan loan(effect, run.keptPicture0);
            call(effect, run.rect);
        }
        effect.ImageSetDiBitsTrans(run.keptPicture1);
    }};
}
} // namespace detail

// The same with kept picture 0 lent to the object as its source rather
// than copied (PixelFrame::SourceLoan), for calls that only read it.
template <typename Class, typename Call>
[[nodiscard]] EffectBody runWithTransOnSource(Call call) {
    return detail::onLentSource<Class, true>(std::move(call));
}

// The same again with TransBits left unfetched, for calls that make it
// themselves as a copy of ImageBits (by bands, alongside their own rows):
// the copy then runs on every core and never twice.
template <typename Class, typename Call>
[[nodiscard]] EffectBody runOnSourceWithOwnTrans(Call call) {
    return detail::onLentSource<Class, false>(std::move(call));
}

// Whether the later steps of a sequence read the run's source through
// context().kept0, or nothing but the result of the step before.
enum class LaterSteps { MayReadRunSource, ReadOnlyStepBefore };

// Several calls in a row as one run: one snapshot, one progress bar that
// the steps share in equal parts, and a cancel or failure that ends the run
// after the step it hit, so the picture goes back as it was. The first step
// reads kept picture 0, each later one the result of the step before; the
// last one's result is kept picture 1. Kept picture 0 is never written, so
// a document lent to it (RunOptions::oneShot) comes back untouched on
// cancel, and context().kept0 stays the run's source for effects that read
// the original through it. Where no later step reads it and it is free
// (EffectInvocation::keptPicture0Free), the first step may work on it in
// place, its memory serves the later steps instead and the last result is
// left in it (resultInKeptPicture0); a cancelled one-shot run's picture is
// thrown away.
[[nodiscard]] EffectBody runInSequence(std::vector<EffectBody> steps,
                                       LaterSteps later = LaterSteps::MayReadRunSource);

// The case of several calls: each planner is a one-call case. The first
// step that is not Ready decides the plan.
[[nodiscard]] EffectPlanner planInSequence(std::vector<EffectPlanner> steps,
                                           LaterSteps later = LaterSteps::MayReadRunSource);

} // namespace lumiran
