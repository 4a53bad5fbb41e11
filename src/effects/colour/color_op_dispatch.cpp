// The cases of the dialogs' ...Processing routines served by Class_ColorOp.
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/colour/class_color_op.h"

namespace lumiran {

void registerColorOpEffects(EffectDispatch& d) {
    // Monotone: the list row is the kind; rows 14 and 15 pick other methods.
    d.add(DialogKind::Monotone, 0, [](const ControlValues& v) {
        if (v.color == 14) return EffectPlan::notAvailable("Class_ColorOp.Hue");
        if (v.color == 15) return EffectPlan::notAvailable("Class_ColorTable.Histgram_Equation");
        const auto kind = static_cast<std::uint8_t>(v.color);
        return EffectPlan::ready(runInPlace<Class_ColorOp>([kind](Class_ColorOp& e, ProcessRect r) {
            e.Gray_Effect(kind, r.left, r.top, r.right, r.bottom);
        }));
    });
}

} // namespace lumiran
