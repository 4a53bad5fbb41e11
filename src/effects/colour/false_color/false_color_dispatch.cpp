// The cases of the dialogs' ...Processing routines served by
// Class_FalseColor, among them "Water Noise", whose median then runs on
// Class_NeighborhoodOp.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/neighbourhood/class_neighborhood_op.h"

#include <array>
#include <utility>

namespace lumiran {
namespace {

using dispatch::row;
using dispatch::slider;
using V = const ControlValues&;
using R = ProcessRect;

template <typename Call>
EffectPlanner planner(Call call) {
    return dispatch::inPlace<Class_FalseColor>(call);
}

// "Water Noise" rows ﾀｲﾌﾟ 1..4: the four marks. A lone dot would not
// outlive the median that follows.
constexpr std::array<std::uint8_t, 4> WaterMarks{1, 2, 3, 4};

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
    // Water Noise: stamps, then the 3x3 median blots them into the
    // picture. The colour row ｶﾗｰ with the first type lays dots of random
    // colours, as the call says; the other types keep their marks. Neither
    // step reads a kept picture: the stamps may go on the lent picture and
    // the median reads it lent.
    const EffectPlanner median =
        dispatch::onSourceWithOwnTrans<Class_NeighborhoodOp>([](Class_NeighborhoodOp& e, V, R r) {
            e.MedianFilter(0, 0, r.left, r.top, r.right, r.bottom);
        });
    const auto stamps = [](auto call) { return dispatch::inPlaceOnSource<Class_FalseColor>(call); };
    const EffectPlanner monoWater = planInSequence(
        {stamps([](Class_FalseColor& e, V v, R r) {
             if (v.eType < 0 || v.eType >= static_cast<int>(WaterMarks.size())) {
                 throw EffectError::overflow();
             }
             e.RandamNoise_Mono(slider(v, 1), 0, WaterMarks[static_cast<std::size_t>(v.eType)],
                                r.left, r.top, r.right, r.bottom);
         }),
         median},
        LaterSteps::ReadOnlyStepBefore);
    const EffectPlanner colourWater = planInSequence(
        {stamps([](Class_FalseColor& e, V v, R r) {
             e.RandamNoise_Color(slider(v, 1), 0, 0, 0, 0, 0, r.left, r.top, r.right, r.bottom);
         }),
         median},
        LaterSteps::ReadOnlyStepBefore);
    d.add(DialogKind::Emboss, 32, [monoWater, colourWater](V v) {
        return v.eType == 0 && v.color == 1 ? colourWater(v) : monoWater(v);
    });
    // Noise Corrdinate: wavelength, amplitude, function. It reads the
    // source while it writes, so it has the Trans array, which it makes
    // itself; the source is lent, not copied.
    d.add(DialogKind::Level, 48,
          dispatch::onSourceWithOwnTrans<Class_FalseColor>([](Class_FalseColor& e, V v, R r) {
              e.NoiserizeWater(slider(v, 2), slider(v, 1), row(v.color), r.left, r.top, r.right,
                               r.bottom);
          }));
}

} // namespace lumiran
