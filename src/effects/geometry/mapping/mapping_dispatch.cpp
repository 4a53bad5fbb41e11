// The cases of the dialogs' ...Processing routines served by Class_3DMapping.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/geometry/mapping/class_3d_mapping.h"

namespace lumiran {
namespace {

using V = const ControlValues&;
using dispatch::slider;
using dispatch::sliderByte;

// The mapping reads kept picture 0 and draws on kept picture 1.
template <typename Call>
EffectPlanner mapping(Call call) {
    return [call](V values) {
        return EffectPlan::ready([call, values](EffectInvocation& run) {
            Class_3DMapping effect(run.context);
            call(effect, values, run.keptPicture0, run.keptPicture1);
        });
    };
}

} // namespace

void register3DMappingEffects(EffectDispatch& d) {
    // 3D Ripple: the arguments in the method's order, the drawing type
    // "ﾒｯｼｭ" a mesh in the colour of the three sliders, "画像" the picture.
    d.add(DialogKind::Mani, 63,
          mapping([](Class_3DMapping& e, V v, const Surface& source, Surface& target) {
              const std::uint8_t type = v.eType == 1 ? PictureOnSurface : MeshInColour;
              e.Mapping(source, target, slider(v, 1), slider(v, 2), type, 0, sliderByte(v, 3),
                        sliderByte(v, 4), sliderByte(v, 5), slider(v, 6), slider(v, 7));
          }));
    // Thin Book: mesh type 1 on surface 5, the mesh in the picture's colours.
    d.add(DialogKind::Level, 15,
          mapping([](Class_3DMapping& e, V v, const Surface& source, Surface& target) {
              e.Mapping(source, target, slider(v, 1), slider(v, 2), MeshInPicture, 5, 0, 0, 0, 0,
                        0);
          }));
}

} // namespace lumiran
