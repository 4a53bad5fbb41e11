#include "catalogue/processing.h"

#include "effects/colour/class_color_op.h"

namespace lumiran {
namespace {

EffectPlan ready(EffectBody body) {
    return {EffectPlan::Status::Ready, {}, std::move(body)};
}

EffectPlan notAvailable(std::string operation) {
    return {EffectPlan::Status::NotAvailable, std::move(operation), {}};
}

// Runs one in-place operation of a class: fetch kept picture 0, call, write
// into kept picture 1.
template <typename Class, typename Call>
EffectBody inPlace(Call call) {
    return [call](EffectInvocation& run) {
        Class effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        call(effect, run.rect);
        effect.ImageSetDiBits(run.keptPicture1);
    };
}

EffectPlan GrayProcessing(int code, int color) {
    switch (code) {
    case 0:
        if (color == 14) return notAvailable("Class_ColorOp.Hue");
        if (color == 15) return notAvailable("Class_ColorTable.Histgram_Equation");
        return ready(inPlace<Class_ColorOp>([kind = color](Class_ColorOp& e, ProcessRect r) {
            e.Gray_Effect(static_cast<std::uint8_t>(kind), r.left, r.top, r.right, r.bottom);
        }));
    default: return {};
    }
}

} // namespace

EffectPlan planEffect(DialogKind dialog, int code, const ControlValues& values) {
    switch (dialog) {
    case DialogKind::Monotone: return GrayProcessing(code, values.color);
    default: return {};
    }
}

} // namespace lumiran
