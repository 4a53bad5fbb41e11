// The cases of the dialogs' ...Processing routines served by Class_Pattern,
// among them "Color Spread" of the Color menu.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/colour/class_color_op.h"
#include "effects/geometry/dispatch_support.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "effects/texture/pattern/class_pattern.h"

namespace lumiran {

void registerPatternEffects(EffectDispatch& d) {
    using dispatch::row;
    using dispatch::slider;
    using dispatch::sliderByte;
    using E = Class_Pattern;
    using V = const ControlValues&;
    using R = const ProcessRect&;
    auto add = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::inPlace<Class_Pattern>(call));
    };
    add(DialogKind::ColorScale, 10, [](E& e, V v, R r) {
        const Rgb8 c = v.processColor;
        e.ColorSpread(row(v.eType), r.left, r.top, r.right, r.bottom, c.red, c.green, c.blue,
                      slider(v, 1));
    });
    add(DialogKind::ColorScale, 5, [](E& e, V v, R r) {
        const Rgb8 c = v.processColor;
        e.ShadePatternMethod(row(v.eType), r.left, r.top, r.right, r.bottom, c.red, c.green,
                             c.blue);
    });
    // Checked Pattern: rows 0..2 the operation; row 3 ("2値化") copies blocks
    // from random places, and the result is then binarized at 128.
    // Its block calls keep the spare bytes: on the source itself where the
    // run allows it.
    const EffectPlanner checked = dispatch::inPlaceOnSource<Class_Pattern>([](E& e, V v, R r) {
        e.CheckedPattern(true, slider(v, 1), slider(v, 2), r.left, r.top, r.right, r.bottom,
                         row(v.eType));
    });
    const EffectPlanner binarized =
        planInSequence({dispatch::inPlace<Class_Pattern>([](E& e, V v, R r) {
                            e.CheckedPattern(true, slider(v, 1), slider(v, 2), r.left, r.top,
                                             r.right, r.bottom, 8);
                        }),
                        dispatch::withTrans<Class_Binarization>([](Class_Binarization& e, V, R r) {
                            e.Binarization(128, 0, r.left, r.top, r.right, r.bottom);
                        })});
    d.add(DialogKind::Level, 13,
          [checked, binarized](V v) { return v.eType == 3 ? binarized(v) : checked(v); });
    // Sin Light (periods as given) and Smoke Pattern (periods drawn at random).
    for (const auto& [code, random] : {std::pair{53, false}, std::pair{20, true}}) {
        add(DialogKind::Mani, code, [random](E& e, V v, R r) {
            e.Smoke(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom, slider(v, 1),
                    slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6), random);
        });
    }
    add(DialogKind::Mani, 21, [](E& e, V v, R r) {
        e.FF1(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom, slider(v, 1),
              slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6));
    });
    add(DialogKind::Mani, 22, [](E& e, V v, R r) {
        e.FF2(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom, slider(v, 1),
              slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6), slider(v, 7));
    });
    // Cycle 3 and the colour sways are called with weight 0 and type 0
    // whatever the dialog's list and weight slider show.
    add(DialogKind::Mani, 23, [](E& e, V v, R r) {
        e.FF3(0, 0, r.left, r.top, r.right, r.bottom, slider(v, 1), slider(v, 2), slider(v, 3),
              slider(v, 4), slider(v, 5), slider(v, 6), v.sliders[6]);
    });
    using Sway = void (E::*)(std::int16_t, std::uint8_t, std::int16_t, std::int16_t, std::int16_t,
                             std::int16_t, std::int16_t, std::int16_t, std::int16_t, std::int16_t,
                             std::int16_t, std::int16_t);
    for (const auto& [code, sway] :
         {std::pair<int, Sway>{26, &E::Color_Sway1}, std::pair<int, Sway>{27, &E::Color_Sway2},
          std::pair<int, Sway>{69, &E::Color_Sway3}, std::pair<int, Sway>{70, &E::Color_Sway4}}) {
        add(DialogKind::Mani, code, [sway](E& e, V v, R r) {
            (e.*sway)(0, 0, r.left, r.top, r.right, r.bottom, slider(v, 1), slider(v, 2),
                      slider(v, 3), slider(v, 4), slider(v, 5), slider(v, 6));
        });
    }
    add(DialogKind::ColorScale, 11, [](E& e, V v, R r) {
        const Rgb8 c = v.processColor;
        e.Wamai(row(v.eType), r.left, r.top, r.right, r.bottom, c.red, c.green, c.blue,
                slider(v, 1), slider(v, 2));
    });
    add(DialogKind::ColorScale, 12, [](E& e, V v, R r) {
        const Rgb8 c = v.processColor;
        e.FF4(r.left, r.top, r.right, r.bottom, c.red, c.green, c.blue, slider(v, 1), slider(v, 2));
    });
    add(DialogKind::ColorScale, 13, [](E& e, V v, R r) {
        const Rgb8 c = v.processColor;
        e.ColorTile1(row(v.eType), r.left, r.top, r.right, r.bottom, c.red, c.green, c.blue,
                     slider(v, 1), slider(v, 2));
    });
    // Type 0 whatever the list shows; S1..S3 the colour.
    add(DialogKind::Mani, 88, [](E& e, V v, R r) {
        e.ColorTile2(0, r.left, r.top, r.right, r.bottom, sliderByte(v, 1), sliderByte(v, 2),
                     sliderByte(v, 3), slider(v, 4), slider(v, 5), slider(v, 6), slider(v, 7),
                     slider(v, 8));
    });
    // The walls change the source in place where the run allows it, and
    // otherwise copy it row by row on the threads of their loops.
    auto addWall = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, [call](V v) {
            return EffectPlan::ready(runInPlaceOnSource<E>(
                [call, v](E& e, R r) {
                    call(e, v, r);
                    e.finishRows();
                },
                [](E& e, const Surface& source) { e.ImageGetDiBitsByRows(source); }));
        });
    };
    addWall(DialogKind::Level, 43, [](E& e, V v, R r) {
        e.LineInput_Normal(slider(v, 1), slider(v, 2), r.left, r.top, r.right, r.bottom, true,
                           row(v.eType));
    });
    // The direction row "垂直" shifts columns of tiles, "水平" rows.
    addWall(DialogKind::Level, 44, [](E& e, V v, R r) {
        e.LineInput_Gap(slider(v, 1), slider(v, 2), r.left, r.top, r.right, r.bottom, v.color == 0,
                        row(v.eType));
    });
    addWall(DialogKind::Emboss, 49, [](E& e, V v, R r) {
        e.Draw_ArcCrest(slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.eType), row(v.color),
                        0);
    });
    addWall(DialogKind::Emboss, 50, [](E& e, V v, R r) {
        e.LineInput_Lozenge(slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.eType),
                            row(v.color));
    });
    addWall(DialogKind::Emboss, 59, [](E& e, V v, R r) {
        e.LineInput_Circle(slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.eType),
                           row(v.color));
    });
    // Sakuramai: pink petals: the pink tint, circles of the picture at
    // random places, then the polar turn about the chosen point.
    d.add(DialogKind::Mani, 50,
          planInSequence(
              {// The tint reads the picture only: lent, not copied.
               dispatch::onSourceWithOwnTrans<Class_ColorOp>([](Class_ColorOp& e, V, R r) {
                   e.tintIntoOwnTrans();
                   e.SakuraFilter(0, 0, r.left, r.top, r.right, r.bottom);
               }),
               geometry_dispatch::drawingOnOwnBackground([](Class_Geometry& e, V v, R r) {
                   e.Random_Circle(slider(v, 4), r.left, r.top, r.right, r.bottom, 0);
               }),
               // The turn reads the circles' picture only: lent, not
               // copied, and its rows make the result as they go.
               geometry_dispatch::warpOnSourceOwnTrans([](Class_Geometry& e, V v, R r) {
                   e.Sphere(r.left, r.top, r.right, r.bottom, 0, slider(v, 1), slider(v, 2),
                            slider(v, 3));
               })},
              LaterSteps::ReadOnlyStepBefore));
}

} // namespace lumiran
