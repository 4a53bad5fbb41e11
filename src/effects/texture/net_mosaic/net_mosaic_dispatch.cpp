// The cases of the dialogs' ...Processing routines served by
// Class_NetMosaic: "Fractal Mosaic" and "Tile Wall Net".
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/net_mosaic/class_net_mosaic.h"

namespace lumiran {
namespace {

// The class draws from kept picture 0 straight into kept picture 1.
template <typename Call>
EffectPlanner onKeptPictures(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready([call, v](EffectInvocation& run) {
            Class_NetMosaic net(run.context);
            call(net, v, run);
        });
    };
}

} // namespace

void registerNetMosaicEffects(EffectDispatch& d) {
    using dispatch::row;
    using dispatch::slider;
    using V = const ControlValues&;
    using I = EffectInvocation&;
    d.add(DialogKind::Level, 21, onKeptPictures([](Class_NetMosaic& e, V v, I run) {
              const ProcessRect& r = run.rect;
              e.Mosaic_Net(run.keptPicture0, run.keptPicture1, r.left, r.top, r.right, r.bottom,
                           slider(v, 1), slider(v, 2), row(v.eType));
          }));
    // The joints are drawn in black.
    d.add(DialogKind::Level, 18, onKeptPictures([](Class_NetMosaic& e, V v, I run) {
              const ProcessRect& r = run.rect;
              e.Net_Line(run.keptPicture0, run.keptPicture1, r.left, r.top, r.right, r.bottom,
                         slider(v, 1), slider(v, 2), row(v.eType), 0, 0, 0);
          }));
}

} // namespace lumiran
