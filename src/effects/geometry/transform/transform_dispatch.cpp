// The cases of the dialogs' ...Processing routines served by Class_Transform.
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/geometry/transform/class_transform.h"

#include <algorithm>

namespace lumiran {
namespace {

using V = const ControlValues&;
using Run = const EffectInvocation&;

// The transforms draw from kept picture 0 onto kept picture 1 themselves.
template <typename Call>
EffectPlanner onKeptPictures(Call call) {
    return [call](V values) {
        return EffectPlan::ready([call, values](EffectInvocation& run) {
            run.context.kept0 = &run.keptPicture0;
            run.context.kept1 = &run.keptPicture1;
            Class_Transform effect(run.context);
            call(effect, values, run);
        });
    };
}

// The same for a call that makes kept picture 1 itself when it is handed
// over unmade (Transform_Cross), so the run does not fill it first.
template <typename Call>
EffectPlanner makingKeptPicture1(Call call) {
    return [call](V values) {
        return EffectPlan::ready(ReplacingBody{[call, values](EffectInvocation& run) {
            run.context.kept0 = &run.keptPicture0;
            run.context.kept1 = &run.keptPicture1;
            Class_Transform effect(run.context);
            call(effect, values, run);
        }});
    };
}

// A list row that picks one of two: rows past the list count as its last.
bool second(int row) {
    return row >= 1;
}

} // namespace

void registerTransformEffects(EffectDispatch& d) {
    // Trapezoids: the processing type sets the narrow edge and the
    // background list what is uncovered ("背景色" row 0 the program's
    // background colour, "画像" row 1 the picture); the call handed the two
    // rows on as colour bytes, which the method's colour arguments replace.
    for (const auto& [code, vertical] : {std::pair{52, false}, std::pair{53, true}}) {
        d.add(
            DialogKind::Emboss, code, onKeptPictures([vertical](Class_Transform& e, V v, Run run) {
                const Rgb8 back = run.context.flags.backColor;
                const ProcessRect r = run.rect;
                const std::int16_t backgroundKind = second(v.eType) ? 0 : 1;
                const auto kind = static_cast<std::uint8_t>(second(v.color) ? 1 : 0);
                if (vertical) {
                    e.Transform_TrapzoidVertical(kind, r.left, r.top, r.right, r.bottom,
                                                 backgroundKind, back.red, back.green, back.blue);
                } else {
                    e.Transform_TrapzoidHorizontal(kind, r.left, r.top, r.right, r.bottom,
                                                   backgroundKind, back.red, back.green, back.blue);
                }
            }));
    }
    // Triangles: the entry decides which strips shrink, the list row ("水平"
    // apex first, "垂直" apex last) the triangle's way; the picture first.
    for (const auto& [code, columns] : {std::pair{54, std::uint8_t{0}}, std::pair{55, ByColumns}}) {
        d.add(DialogKind::Emboss, code, onKeptPictures([columns](Class_Transform& e, V v, Run run) {
                  const ProcessRect r = run.rect;
                  const std::uint8_t shape =
                      second(v.eType) ? ShapeTriangleApexLast : ShapeTriangleApexFirst;
                  e.Transform_Ellipse(shape | columns, r.left, r.top, r.right, r.bottom, 0);
              }));
    }
    // Ellipse: the type list ("Ellipse", "Round Rect", "菱形", "六角形") is
    // the shape and the direction list which strips shrink; the call fed
    // the type list to the background kind, whose row 0 is the picture.
    d.add(DialogKind::Emboss, 56, onKeptPictures([](Class_Transform& e, V v, Run run) {
              const ProcessRect r = run.rect;
              const auto shape = static_cast<std::uint8_t>(std::clamp(v.eType, 0, 3));
              const std::uint8_t columns = second(v.color) ? ByColumns : 0;
              e.Transform_Ellipse(shape | columns, r.left, r.top, r.right, r.bottom, 0);
          }));
    d.add(DialogKind::Monotone, 54, makingKeptPicture1([](Class_Transform& e, V v, Run run) {
              const ProcessRect r = run.rect;
              e.Transform_Cross(static_cast<std::uint8_t>(std::clamp(v.color, 0, 255)), r.left,
                                r.top, r.right, r.bottom, -1);
          }));
}

} // namespace lumiran
