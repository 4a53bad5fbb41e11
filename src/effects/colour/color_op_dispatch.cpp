// The cases of the dialogs' ...Processing routines served by Class_ColorOp.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/colour/class_color_op.h"
#include "effects/colour/class_color_table.h"

namespace lumiran {
namespace {

using dispatch::row;
using dispatch::slider;

// A case that makes its calls on one Class_ColorOp over the process
// rectangle. The conversions of the dialog's values happen inside the run,
// where the original's error trap catches them.
template <typename Call>
EffectPlan colorOp(Call call) {
    return EffectPlan::ready(runInPlace<Class_ColorOp>(call));
}

template <typename Call>
EffectPlanner planner(Call call) {
    return [call](const ControlValues& v) {
        return colorOp([call, v](Class_ColorOp& e, ProcessRect r) { call(e, v, r); });
    };
}

void registerColor(EffectDispatch& d) {
    using V = const ControlValues&;
    using R = ProcessRect;
    // Monotone: the list row is the kind; rows 14 and 15 pick other methods.
    d.add(DialogKind::Monotone, 0, [](V values) {
        if (values.color == 15) {
            return EffectPlan::ready(runInPlace<Class_ColorTable>([](Class_ColorTable& e, R r) {
                e.Histgram_Equation(0, r.left, r.top, r.right, r.bottom);
            }));
        }
        return colorOp([values](Class_ColorOp& e, R r) {
            if (values.color == 14) {
                e.Hue(1, 0, r.left, r.top, r.right, r.bottom);
            } else {
                e.Gray_Effect(row(values.color), r.left, r.top, r.right, r.bottom);
            }
        });
    });
    d.add(DialogKind::Mani, 67, planner([](Class_ColorOp& e, V v, R r) {
              e.HSVCycle(r.left, r.top, r.right, r.bottom, 0, slider(v, 1), slider(v, 2),
                         slider(v, 3), slider(v, 4), slider(v, 5));
          }));
    d.add(DialogKind::Mani, 66, planner([](Class_ColorOp& e, V v, R r) {
              e.HSVInvert(r.left, r.top, r.right, r.bottom, 0, slider(v, 1), slider(v, 2),
                          slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6));
          }));
    d.add(DialogKind::ColorScale, 0, planner([](Class_ColorOp& e, V v, R r) {
              const Rgb8 c = v.processColor;
              e.OneColorStyle(row(v.color), row(v.eType), c.red, c.green, c.blue, r.left, r.top,
                              r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 2, planner([](Class_ColorOp& e, V v, R r) {
              e.RGBExchange(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    // Deterioration and Black Widow: the colour row is the type and the type
    // row the keep flag, in this order of the arguments.
    for (const auto& [code, base] : {std::pair{17, 0}, std::pair{18, 1}}) {
        d.add(DialogKind::Mani, code, planner([base](Class_ColorOp& e, V v, R r) {
                  e.Deterioration(row(v.color), static_cast<std::uint8_t>(base), row(v.eType),
                                  r.left, r.top, r.right, r.bottom, slider(v, 1), slider(v, 2),
                                  slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6),
                                  slider(v, 7));
              }));
    }
    // Difference Addition (-1, True) and Subtraction (0, False); the
    // dialog's slider reaches no argument.
    for (const auto& [code, reverse] : {std::pair{12, true}, std::pair{13, false}}) {
        d.add(DialogKind::Emboss, code, planner([reverse](Class_ColorOp& e, V v, R r) {
                  e.DifferenceOperation(row(v.color), row(v.eType), r.left, r.top, r.right,
                                        r.bottom, reverse);
              }));
    }
    // Blackend's amount is the slider over 26, held in single precision.
    d.add(DialogKind::Negative, 13, planner([](Class_ColorOp& e, V v, R r) {
              const float amount =
                  static_cast<float>(static_cast<std::int16_t>(v.sliders[0]) / 26.0);
              e.Blackend(amount, row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    // Pink (hue 0) and Mount Marilyn (hue 1).
    for (const auto& [code, hue] : {std::pair{5, 0}, std::pair{6, 1}}) {
        d.add(DialogKind::Monotone, code, planner([hue](Class_ColorOp& e, V v, R r) {
                  e.SakuraFilter(static_cast<std::uint8_t>(hue), row(v.color), r.left, r.top,
                                 r.right, r.bottom);
              }));
    }
    // Autumns Yellow: "ﾀｲﾌﾟ 1" is type 0, "ﾀｲﾌﾟ 2" type 3.
    d.add(DialogKind::Monotone, 7, planner([](Class_ColorOp& e, V v, R r) {
              e.AutumnsColor(v.color == 1 ? 3 : 0, r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 8, planner([](Class_ColorOp& e, V, R r) {
              e.AutumnsColor(1, r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 33, planner([](Class_ColorOp& e, V v, R r) {
              e.SilverMountain(row(v.color), slider(v, 1), 1, 0, 0, 0, 0, 0, r.left, r.top, r.right,
                               r.bottom);
          }));
    d.add(DialogKind::Sepia, 0, planner([](Class_ColorOp& e, V v, R r) {
              e.Hue(0, slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Emboss, 16, planner([](Class_ColorOp& e, V v, R r) {
              e.GrayatSaturation(row(v.color), slider(v, 1), r.left, r.top, r.right, r.bottom,
                                 row(v.eType));
          }));
    d.add(DialogKind::Sepia, 12, planner([](Class_ColorOp& e, V v, R r) {
              e.BlightnessAdjust(1, slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Mani, 8, planner([](Class_ColorOp& e, V v, R r) {
              e.Momo_Effect(slider(v, 1), slider(v, 2), slider(v, 3), slider(v, 4), r.left, r.top,
                            r.right, r.bottom, slider(v, 5), slider(v, 6));
          }));
}

void registerColorModel(EffectDispatch& d) {
    // RGB, YCbCr, HSV, HLS, CMYK, YUV: the code is the model.
    for (int model = 0; model <= 5; ++model) {
        d.add(DialogKind::Mani, model,
              planner([model](Class_ColorOp& e, const ControlValues& v, ProcessRect r) {
                  e.ColorBalanceAdjust(static_cast<std::uint8_t>(model), slider(v, 1), slider(v, 2),
                                       slider(v, 3), slider(v, 4), r.left, r.top, r.right,
                                       r.bottom);
              }));
    }
}

void registerInvasion(EffectDispatch& d) {
    // Red, Green, Blue, Max, Middle, Min, Brightness: codes 11..17, sources 0..6.
    for (int source = 0; source <= 6; ++source) {
        d.add(DialogKind::Monotone, 11 + source,
              planner([source](Class_ColorOp& e, const ControlValues& v, ProcessRect r) {
                  e.Invasion_Effect(static_cast<std::uint8_t>(source), row(v.color), r.left, r.top,
                                    r.right, r.bottom);
              }));
    }
}

} // namespace

void registerColorOpEffects(EffectDispatch& d) {
    registerColor(d);
    registerColorModel(d);
    registerInvasion(d);
}

} // namespace lumiran
