// The one entry of "Gift": DLA plots on kept picture 0, the document's copy,
// and the plot is the result.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/dla/class_dla.h"

namespace lumiran {

void registerDLAEffects(EffectDispatch& d) {
    d.add(DialogKind::Mani, 52, [](const ControlValues& v) {
        return EffectPlan::ready(ReplacingBody{[v](EffectInvocation& run) {
            using dispatch::slider;
            Class_DLA effect(run.context);
            const ProcessRect r = run.rect;
            // "範囲" and "太さ" are not in the call's arguments; the sliders
            // give them.
            effect.Draw_DLA(run.keptPicture0, r.left, r.top, r.right, r.bottom, slider(v, 1),
                            slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6));
            if (run.context.cancelled()) return;
            run.keptPicture1 = run.keptPicture0;
        }});
    });
}

} // namespace lumiran
