// The cases whose noise from Class_FalseColor is then filtered by
// Class_NeighborhoodOp: "Water Noise" (a median of the stamps), "Stone
// Emboss" and "Concrete Emboss" (an emboss of the noise).
#include "catalogue/family_registration.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/dispatch_support.h"

namespace lumiran {
namespace {

using dispatch::row;
using dispatch::slider;
using V = const ControlValues&;
using R = ProcessRect;
using Noise = Class_FalseColor;
using Op = Class_NeighborhoodOp;

// The noise in place into kept picture 1, then the filter from kept picture
// 1 into itself through the Trans array. A failed noise ends the run there.
template <typename First, typename Second>
EffectPlanner noiseThen(First first, Second second) {
    return [first, second](V v) {
        return EffectPlan::ready([first, second, v](EffectInvocation& run) {
            runInPlace<Noise>([&](Noise& e, R r) { first(e, v, r); })(run);
            if (run.context.cancelled()) return;
            Op effect(run.context);
            effect.ImageGetDiBits(run.keptPicture1);
            effect.ImageGetDiBitsTrans(run.keptPicture1);
            second(effect, v, run.rect);
            effect.ImageSetDiBitsTrans(run.keptPicture1);
        });
    };
}

void emboss(Op& e, V v, R r, std::uint8_t kind) {
    e.Embossing(row(v.eType), row(v.color), kind, r.left, r.top, r.right, r.bottom, slider(v, 1),
                slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5));
}

} // namespace

void registerNoiseFilterEffects(EffectDispatch& d) {
    // Water Noise: the list's types 1 to 4 are the stamps after the single
    // dot (circle, caltrop, cross, plus), which the median would wipe out;
    // the colour row with the first type scatters colour dots instead.
    d.add(DialogKind::Emboss, 32,
          noiseThen(
              [](Noise& e, V v, R r) {
                  if (v.eType == 0 && v.color == 1) {
                      e.RandamNoise_Color(slider(v, 1), 0, 0, 0, 0, 0, r.left, r.top, r.right,
                                          r.bottom);
                  } else {
                      e.RandamNoise_Mono(slider(v, 1), 0, row(v.eType + 1), r.left, r.top, r.right,
                                         r.bottom);
                  }
              },
              [](Op& e, V, R r) { e.MedianFilter(0, 0, r.left, r.top, r.right, r.bottom); }));
    d.add(DialogKind::Mani, 78,
          noiseThen([](Noise& e, V,
                       R r) { e.RandamNoise_Mono(1, 0, 0, r.left, r.top, r.right, r.bottom); },
                    [](Op& e, V v, R r) { emboss(e, v, r, 1); }));
    d.add(DialogKind::Mani, 79,
          noiseThen(
              [](Noise& e, V, R r) {
                  e.RandamNoise_Color(2, 0, 0, 0, 0, 0, r.left, r.top, r.right, r.bottom);
              },
              [](Op& e, V v, R r) { emboss(e, v, r, 6); }));
}

} // namespace lumiran
