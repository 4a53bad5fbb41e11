// The cases of the dialogs' ...Processing routines served by Class_Soften,
// among them "Glass Painting", whose edges then come from Class_Edge.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/neighbourhood/class_edge.h"
#include "effects/smoothing/class_soften.h"

#include <array>

namespace lumiran {
namespace {

using V = const ControlValues&;
using R = ProcessRect;
using dispatch::row;
using dispatch::slider;

// Every Class_Soften case reads ImageBits and writes TransBits.
template <typename Call>
EffectPlanner planner(Call call) {
    return dispatch::withTrans<Class_Soften>(call);
}

// The same with kept picture 0 lent to ImageBits, for calls that only read it.
template <typename Call>
EffectPlanner onSource(Call call) {
    return dispatch::withTransOnSource<Class_Soften>(call);
}

// "Glass Painting" rows ﾀｲﾌﾟ 1..6: the smoothing, then the differential
// of what is left, so that only the outlines of the colour areas glow on
// black, like the lines of a painting on glass. Types 1 to 3 draw them as
// the squares of the differences (bold, saturated lines), 4 to 6 as their
// roots (fine lines in the areas' own colours); within each half a wider
// smoothing leaves broader strokes.
struct GlassPaint {
    std::uint8_t smoothing;
    std::uint8_t differential;
};
constexpr std::array<GlassPaint, 6> GlassPaints{{
    {3, 0},
    {7, 0},
    {12, 0},
    {0, 2},
    {3, 2},
    {7, 2},
}};

const GlassPaint& glassPaint(int listRow) {
    if (listRow < 0 || listRow >= static_cast<int>(GlassPaints.size())) {
        throw EffectError::overflow();
    }
    return GlassPaints[static_cast<std::size_t>(listRow)];
}

// "Moving Average": rows 3x3, 5x5, 7x7 are the Smoothing means, rows
// 9x9, 11x11, 13x13 MovingAverage's first three sizes.
constexpr std::array<std::uint8_t, 3> MeanKinds{3, 7, 12};

} // namespace

void registerSoftenEffects(EffectDispatch& d) {
    d.add(DialogKind::Monotone, 23, planner([](Class_Soften& e, V v, R r) {
              e.Smoothing(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 24, planner([](Class_Soften& e, V v, R r) {
              const std::uint8_t c = row(v.color);
              if (c < MeanKinds.size()) {
                  e.Smoothing(MeanKinds[c], r.left, r.top, r.right, r.bottom);
              } else if (c <= 5) {
                  e.MovingAverage(static_cast<std::uint8_t>(c - 3), 0, r.left, r.top, r.right,
                                  r.bottom);
              }
          }));
    // Sharpen, Highpass Filter 3x3 and 5x5: filter kinds 0, 1, 2.
    for (const auto& [code, kind] : {std::pair{20, 0}, std::pair{21, 1}, std::pair{22, 2}}) {
        d.add(DialogKind::Emboss, code, planner([kind](Class_Soften& e, V v, R r) {
                  e.HighpassFilter(slider(v, 1), static_cast<std::uint8_t>(kind), row(v.color),
                                   r.left, r.top, r.right, r.bottom, row(v.eType));
              }));
    }
    d.add(DialogKind::Monotone, 21, planner([](Class_Soften& e, V v, R r) {
              e.Sharpen(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 26, planner([](Class_Soften& e, V, R r) {
              e.Smoothing(13, r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 21, planner([](Class_Soften& e, V v, R r) {
              e.Soften_Circle(0, slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.color));
          }));
    d.add(DialogKind::Emboss, 51, planner([](Class_Soften& e, V v, R r) {
              e.Edge_SavingSmooth(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 61, planner([](Class_Soften& e, V v, R r) {
              e.Edge_PreservingSmoothing(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 40,
          planInSequence({planner([](Class_Soften& e, V v, R r) {
                              e.Smoothing(glassPaint(v.color).smoothing, r.left, r.top, r.right,
                                          r.bottom);
                          }),
                          dispatch::withTrans<Class_Edge>([](Class_Edge& e, V v, R r) {
                              e.DifferentalFilter(glassPaint(v.color).differential, r.left, r.top,
                                                  r.right, r.bottom);
                          })}));
    // The afterimages hand the list captioned "方向" on as the smooth type
    // and the one captioned "平滑･ﾀｲﾌﾟ" as the direction, as the calls stand.
    // They read only ImageBits, so the source is lent rather than copied.
    d.add(DialogKind::Mani, 83, onSource([](Class_Soften& e, V v, R r) {
              e.AfterImage_Ripple(slider(v, 5), row(v.color), row(v.eType), r.left, r.top, r.right,
                                  r.bottom, slider(v, 1), slider(v, 2), slider(v, 3), slider(v, 4));
          }));
    d.add(DialogKind::Mani, 84, onSource([](Class_Soften& e, V v, R r) {
              e.AfterImage_Wave(slider(v, 5), row(v.color), row(v.eType), r.left, r.top, r.right,
                                r.bottom, slider(v, 1), slider(v, 2), slider(v, 3), slider(v, 4));
          }));
    d.add(DialogKind::Mani, 85, onSource([](Class_Soften& e, V v, R r) {
              e.AfterImage_Vortex(slider(v, 2), row(v.color), row(v.eType), r.left, r.top, r.right,
                                  r.bottom, slider(v, 1), slider(v, 3), slider(v, 4));
          }));
}

} // namespace lumiran
