// The cases of the block and cut effects, the directional blurs and the
// diffuse outline. A pair of list rows the catalogue names makes exactly the
// call(s) named; every other pair makes the row's default call, so a named
// pair's call is never carried over to the rows beside it.
#include "catalogue/family_registration.h"
#include "effects/geometry/dispatch_support.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

using namespace geometry_dispatch;

// A list row that picks one of two: rows past the list count as its last.
bool second(int row) {
    return row >= 1;
}

// -1 (True) for the second row of a two-row list, as the calls' f(C) hand it.
std::int16_t flag(int row) {
    return second(row) ? -1 : 0;
}

void registerPixelMoveBlocks(EffectDispatch& d) {
    d.add(DialogKind::Emboss, 65, drawing([](Class_Geometry& e, V v, R r) {
              e.Transform_Scroll(row(v.eType), slider(v, 1), r.left, r.top, r.right, r.bottom,
                                 row(v.color));
          }));
    d.add(DialogKind::Sepia, 22, drawing([](Class_Geometry& e, V v, R r) {
              e.GraduallyEnlarge(r.left, r.top, r.right, r.bottom, slider(v, 1));
          }));
    d.add(DialogKind::Sepia, 23, drawing([](Class_Geometry& e, V v, R r) {
              e.Notches(r.left, r.top, r.right, r.bottom, slider(v, 1));
          }));
    // Slope: the vertical shear is a row of its own, "垂直" with "ﾉｰﾏﾙ",
    // which passes -1; every other pair shears horizontally, the degree row
    // picking the slope, so "垂直" with "逆" is the horizontal reverse.
    d.add(DialogKind::Emboss, 34, drawing([](Class_Geometry& e, V v, R r) {
              if (v.eType == 1 && v.color == 0) {
                  e.Slope_Vertical(slider(v, 1), r.left, r.top, r.right, r.bottom, -1, 0);
              } else {
                  e.Slope_Horizontal(slider(v, 1), r.left, r.top, r.right, r.bottom, flag(v.color),
                                     0);
              }
          }));
    d.add(DialogKind::Negative, 14, drawingOnOwnBackground([](Class_Geometry& e, V v, R r) {
              e.Random_Circle(slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.color));
          }));
    d.add(DialogKind::Emboss, 40, drawing([](Class_Geometry& e, V v, R r) {
              e.BlockReplace(row(v.eType), r.left, r.top, r.right, r.bottom, slider(v, 1),
                             row(v.color));
          }));
    // Replace Processing: both ways in threes, then the list's way in pairs,
    // twice, each over the result of the last.
    const auto both = [](Class_Geometry& e, V v, R r) {
        e.BlockReplace(2, r.left, r.top, r.right, r.bottom, slider(v, 1), 1);
    };
    const auto chosen = [](Class_Geometry& e, V v, R r) {
        e.BlockReplace(row(v.color), r.left, r.top, r.right, r.bottom, slider(v, 1), 0);
    };
    // The four calls draw as one gather where they can; otherwise one by one.
    d.add(DialogKind::Negative, 42, [calls = drawingSteps(both, chosen, both, chosen)](V v) {
        EffectPlan plan = calls(v);
        return EffectPlan::ready(ReplacingBody{[v, oneByOne = std::move(plan.body)](
                                                   EffectInvocation& run) {
            if (!run.keptPicture1.sameSize(run.keptPicture0)) {
                run.keptPicture1 =
                    Surface::uninitialised(run.keptPicture0.width(), run.keptPicture0.height());
            }
            run.context.kept0 = &run.keptPicture0;
            run.context.kept1 = &run.keptPicture1;
            const auto kind = row(v.color);
            const std::array<Class_Geometry::BlockReplaceStep, 4> steps{
                {{2, 1}, {kind, 0}, {2, 1}, {kind, 0}}};
            Class_Geometry effect(run.context);
            const R r = run.rect;
            if (!effect.BlockReplaceInOne(steps, r.left, r.top, r.right, r.bottom, slider(v, 1))) {
                oneByOne(run);
            }
        }});
    });
    // Jagged: rows 0 and 1 are one call; "両辺1" rows then columns, "両辺2"
    // columns then rows.
    const auto jagged = [](std::int16_t direction) {
        return [direction](Class_Geometry& e, V v, R r) {
            e.Transform_Jagged(slider(v, 1), 1, direction, r.left, r.top, r.right, r.bottom, 0);
        };
    };
    d.add(DialogKind::Negative, 53, [jagged](V v) {
        if (v.color == 2) return drawingSteps(jagged(-1), jagged(0))(v);
        if (v.color == 3) return drawingSteps(jagged(0), jagged(-1))(v);
        return drawing([](Class_Geometry& e, V w, R r) {
            e.Transform_Jagged(slider(w, 1), 1, flag(w.color), r.left, r.top, r.right, r.bottom, 0);
        })(v);
    });
    d.add(DialogKind::Level, 17, drawing([](Class_Geometry& e, V v, R r) {
              e.CuttingPicture(slider(v, 1), slider(v, 2), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Level, 19, drawing([](Class_Geometry& e, V v, R r) {
              e.BlockScatter_Type1(slider(v, 1), slider(v, 2), row(v.eType), r.left, r.top, r.right,
                                   r.bottom);
          }));
    d.add(DialogKind::Level, 20, drawing([](Class_Geometry& e, V v, R r) {
              e.BlockScatter_Type2(row(v.eType), slider(v, 2), slider(v, 1), 0, row(v.color),
                                   r.left, r.top, r.right, r.bottom);
          }));
    // Squeeze: the call's 1 is the background kind "背景色", its last 0 rows.
    d.add(DialogKind::Sepia, 20, drawing([](Class_Geometry& e, V v, R r) {
              e.Squeeze(1, slider(v, 1), r.left, r.top, r.right, r.bottom, 0);
          }));
    // Pelican blends each pixel with its crank sample (kinds 3, 4), reading
    // only ImageBits: kept picture 0 is lent, and it starts TransBits itself.
    // Crank moves rows or columns (kinds 0, 1), twice.
    d.add(DialogKind::Negative, 58,
          dispatch::onSourceWithOwnTrans<Class_Geometry>([](Class_Geometry& e, V v, R r) {
              e.Transform_Crank(static_cast<std::uint8_t>(second(v.color) ? 4 : 3), slider(v, 1),
                                r.left, r.top, r.right, r.bottom, 0);
          }));
    const auto crank = [](Class_Geometry& e, V v, R r) {
        e.Transform_Crank(static_cast<std::uint8_t>(second(v.color) ? 1 : 0), slider(v, 1), r.left,
                          r.top, r.right, r.bottom, 0);
    };
    d.add(DialogKind::Negative, 59, drawingSteps(crank, crank));
}

// The blurs: the catalogue names a call of its own for the scroll types 1..8
// with the first direction, the blur maps 0..7; every pair it does not name
// makes the row's default call, the plain blur in the direction picked.
template <typename Plain, typename Mapped>
EffectPlanner plainOrMapped(Plain plain, Mapped mapped) {
    return warp([plain, mapped](Class_Geometry& e, V v, R r) {
        constexpr int MappedScrollTypes = 8;
        if (v.eType == 0 && v.color >= 1 && v.color <= MappedScrollTypes) {
            (e.*mapped)(0, slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.color - 1));
        } else {
            (e.*plain)(row(v.eType), slider(v, 1), r.left, r.top, r.right, r.bottom);
        }
    });
}

void registerBlurs(EffectDispatch& d) {
    d.add(DialogKind::Emboss, 17,
          plainOrMapped(&Class_Geometry::Blur_Normal, &Class_Geometry::Blur_Circle));
    d.add(DialogKind::Emboss, 33,
          plainOrMapped(&Class_Geometry::Blur_Gaussian, &Class_Geometry::Blur_CircleSoften));
    // Diffuse Outline: the direction list is the neighbour's kind. The
    // second spread type is a row of its own for the first direction only;
    // with the others it spreads as the first type does. Both read only
    // ImageBits, so the source is lent.
    d.add(DialogKind::Emboss, 41, warpOnSource([](Class_Geometry& e, V v, R r) {
              if (v.eType == 0 && second(v.color)) {
                  e.DiffuseOutline2(0, r.left, r.top, r.right, r.bottom);
              } else {
                  e.DiffuseOutline1(row(v.eType), r.left, r.top, r.right, r.bottom);
              }
          }));
}

void registerWarpChangeAndBring(EffectDispatch& d) {
    // Slide: the direction and background rows are the call's f(E), f(C).
    d.add(DialogKind::Level, 16, drawing([](Class_Geometry& e, V v, R r) {
              e.Warp_Slide(slider(v, 1), slider(v, 2), row(std::clamp(v.eType, 0, 1)), r.left,
                           r.top, r.right, r.bottom, second(v.color) ? 1 : 0);
          }));
    // Bring: the list is the axis; Left & Top pulls the other way, and
    // Depression sinks the middle of the columns (kind 2) or rows (3).
    d.add(DialogKind::Negative, 54, drawing([](Class_Geometry& e, V v, R r) {
              e.Transform_Bling(slider(v, 1), 2, row(std::clamp(v.color, 0, 1)), r.left, r.top,
                                r.right, r.bottom, 0);
          }));
    d.add(DialogKind::Negative, 55, drawing([](Class_Geometry& e, V v, R r) {
              e.Transform_Bling(slider(v, 1), 2, row(std::clamp(v.color, 0, 1)), r.left, r.top,
                                r.right, r.bottom, -1);
          }));
    d.add(DialogKind::Negative, 56, drawing([](Class_Geometry& e, V v, R r) {
              e.Transform_Bling(roundTo<std::int16_t>(v.sliders[0] / 2), 2,
                                static_cast<std::uint8_t>(second(v.color) ? 3 : 2), r.left, r.top,
                                r.right, r.bottom, 0);
          }));
}

} // namespace

void registerBlockAndBlurEffects(EffectDispatch& d) {
    registerPixelMoveBlocks(d);
    registerBlurs(d);
    registerWarpChangeAndBring(d);
}

} // namespace lumiran
