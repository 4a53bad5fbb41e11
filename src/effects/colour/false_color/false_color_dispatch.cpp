// The cases of the dialogs' ...Processing routines served by
// Class_FalseColor.
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/colour/false_color/class_false_color.h"
#include "engine/numeric.h"

#include <utility>

namespace lumiran {
namespace {

std::int16_t slider(const ControlValues& v, int number) {
    return roundTo<std::int16_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

std::uint8_t row(int index) {
    if (index < 0 || index > 255) throw EffectError::overflow();
    return static_cast<std::uint8_t>(index);
}

using V = const ControlValues&;
using R = ProcessRect;

template <typename Call>
EffectPlanner planner(Call call) {
    return [call](V v) {
        return EffectPlan::ready(
            runInPlace<Class_FalseColor>([call, v](Class_FalseColor& e, R r) { call(e, v, r); }));
    };
}

} // namespace

void registerFalseColorEffects(EffectDispatch& d) {
    d.add(DialogKind::Monotone, 10, planner([](Class_FalseColor& e, V v, R r) {
              e.FalseColor(r.left, r.top, r.right, r.bottom, row(v.color));
          }));
    d.add(DialogKind::ColorScale, 1, planner([](Class_FalseColor& e, V v, R r) {
              const Rgb8 c = v.processColor;
              e.Color_Adjusten(0, row(v.eType), c.red, c.green, c.blue, r.left, r.top, r.right,
                               r.bottom);
          }));
    d.add(DialogKind::Negative, 79, planner([](Class_FalseColor& e, V v, R r) {
              e.FluorescenceRevision(row(v.color), slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 18, planner([](Class_FalseColor& e, V v, R r) {
              e.Retrospection(0, v.sliders[0] / 4, row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    // Sunset, Lemon Yellow, Photo Sepia and Reddish Purple; Night-fall, Sax
    // Blue, Marine Snow and Purplish Red: the code gives the type.
    for (const auto& [code, type] :
         {std::pair{4, 0}, std::pair{5, 1}, std::pair{6, 2}, std::pair{28, 3}}) {
        d.add(DialogKind::Negative, code, planner([type](Class_FalseColor& e, V v, R r) {
                  e.YellowOperation(static_cast<std::uint8_t>(type), slider(v, 1), row(v.color),
                                    r.left, r.top, r.right, r.bottom);
              }));
    }
    for (const auto& [code, type] :
         {std::pair{7, 0}, std::pair{8, 1}, std::pair{9, 2}, std::pair{44, 3}}) {
        d.add(DialogKind::Negative, code, planner([type](Class_FalseColor& e, V v, R r) {
                  e.BlueSepia(static_cast<std::uint8_t>(type), slider(v, 1), row(v.color), r.left,
                              r.top, r.right, r.bottom);
              }));
    }
    d.add(DialogKind::Emboss, 14, planner([](Class_FalseColor& e, V v, R r) {
              e.RandamNoise_Mono(slider(v, 1), row(v.color), row(v.eType), r.left, r.top, r.right,
                                 r.bottom);
          }));
    d.add(DialogKind::Negative, 17, planner([](Class_FalseColor& e, V v, R r) {
              e.RandamNoise_Color(slider(v, 1), 0, 0, 0, 0, row(v.color), r.left, r.top, r.right,
                                  r.bottom);
          }));
    d.add(DialogKind::ColorScale, 4, planner([](Class_FalseColor& e, V v, R r) {
              const Rgb8 c = v.processColor;
              e.RandamNoise_Color(slider(v, 1), 1, c.red, c.green, c.blue, row(v.eType), r.left,
                                  r.top, r.right, r.bottom);
          }));
    // Noise Corrdinate: wavelength, amplitude, function. It reads the
    // source while it writes, so it has the Trans array.
    d.add(DialogKind::Level, 48, [](V v) {
        return EffectPlan::ready(runWithTrans<Class_FalseColor>([v](Class_FalseColor& e, R r) {
            e.NoiserizeWater(slider(v, 2), slider(v, 1), row(v.color), r.left, r.top, r.right,
                             r.bottom);
        }));
    });
}

} // namespace lumiran
