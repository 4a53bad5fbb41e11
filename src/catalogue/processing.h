#pragma once

#include <string>

#include "catalogue/control_values.h"
#include "catalogue/dialog_kind.h"
#include "shell/effect_run.h"

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
};

// The switch of the dialog's ...Processing routine.
[[nodiscard]] EffectPlan planEffect(DialogKind dialog, int code, const ControlValues& values);

} // namespace lumiran
