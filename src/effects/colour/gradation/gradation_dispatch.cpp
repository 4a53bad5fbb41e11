// The cases of frm_ColorScale served by Class_Gradation: the drawing alone,
// or the drawing blended with the document.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/colour/gradation/class_gradation.h"

#include <optional>

namespace lumiran {
namespace {

using dispatch::row;
using dispatch::slider;

// The source is fetched before the drawing covers kept picture 0; the plain
// gradation then takes the drawing itself as its result.
EffectPlanner gradation(std::optional<std::uint8_t> blend) {
    return [blend](const ControlValues& v) {
        return EffectPlan::ready(ReplacingBody{[blend, v](EffectInvocation& run) {
            run.context.kept0 = &run.keptPicture0;
            Class_Gradation effect(run.context);
            effect.ImageGetDiBits(run.keptPicture0);
            const ProcessRect r = run.rect;
            const Rgb8 c = v.processColor;
            effect.Gradation_Draw(row(v.color), static_cast<std::int16_t>(-slider(v, 1)), 0, r.left,
                                  r.top, r.right, r.bottom, c.red, c.green, c.blue, row(v.eType),
                                  row(v.check), slider(v, 2));
            if (run.context.cancelled()) return;
            if (blend) {
                effect.Gradation_Blend(*blend, r.left, r.top, r.right, r.bottom);
                effect.ImageSetDiBits(run.keptPicture1);
            } else {
                run.keptPicture1 = run.keptPicture0;
            }
        }});
    };
}

} // namespace

void registerGradationEffects(EffectDispatch& d) {
    d.add(DialogKind::ColorScale, 2, gradation(std::nullopt));
    // Mean, Addition, Subtraction, Negative, Xor.
    constexpr int blendCodes[] = {3, 6, 7, 8, 9};
    for (std::uint8_t mode = 0; mode < 5; ++mode) {
        d.add(DialogKind::ColorScale, blendCodes[mode], gradation(mode));
    }
}

} // namespace lumiran
