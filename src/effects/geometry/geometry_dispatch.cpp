// The cases of the dialogs' ...Processing routines served by Class_Geometry.
//
// Where a call's list feeds an argument its caption does not name, the
// argument takes the list that names it: the type list ("ﾀｲﾌﾟ選択", "穴･ﾀｲﾌﾟ")
// the function or kind, the direction list ("方向") the axes. Where a call
// passes 0 for the axes of a warp whose dialog shows the direction list,
// the list's row takes its place: row 0 is that 0, and the list would
// otherwise reach nothing. Constants a call passes beyond the method's
// arguments are left out.
#include "catalogue/family_registration.h"
#include "effects/geometry/dispatch_support.h"

namespace lumiran {
namespace {

using namespace geometry_dispatch;

void registerDistortion(EffectDispatch& d) {
    // Sea Wave: the call's second argument, 0, is the axes the direction
    // list feeds in Vertical Wave.
    d.add(DialogKind::Mani, 46, warp([](Class_Geometry& e, V v, R r) {
              e.Wave_Sea(row(v.color), row(v.eType), slider(v, 1), slider(v, 2), r.left, r.top,
                         r.right, r.bottom, slider(v, 5), slider(v, 3), slider(v, 4));
          }));
    // Blow Up: the type list is the function; the kind stays 0.
    d.add(DialogKind::Mani, 24, warp([](Class_Geometry& e, V v, R r) {
              e.Wave_FishEye(exact(v, 3), row(v.color), 0, r.left, r.top, r.right, r.bottom,
                             slider(v, 1), slider(v, 2));
          }));
    d.add(DialogKind::Mani, 25, warp([](Class_Geometry& e, V v, R r) {
              e.Wave_Suck(exact(v, 3), row(v.color), row(v.eType), r.left, r.top, r.right, r.bottom,
                          slider(v, 1), slider(v, 2));
          }));
    d.add(DialogKind::Level, 14, warp([](Class_Geometry& e, V v, R r) {
              e.Sway1(row(v.eType), row(v.color), slider(v, 1), slider(v, 2), r.left, r.top,
                      r.right, r.bottom, row(v.distance));
          }));
    d.add(DialogKind::Level, 45, warp([](Class_Geometry& e, V v, R r) {
              e.Sway2(row(v.eType), row(v.color), slider(v, 1), slider(v, 2), r.left, r.top,
                      r.right, r.bottom, row(v.distance));
          }));
    // Sphere: the call passes kind 0 whatever its type list shows; the
    // list's rows make that one call. It reads only ImageBits: kept picture
    // 0 is lent, and its rows make TransBits.
    d.add(DialogKind::Mani, 9, warpOnSourceOwnTrans([](Class_Geometry& e, V v, R r) {
              e.Sphere(r.left, r.top, r.right, r.bottom, 0, slider(v, 1), slider(v, 2),
                       slider(v, 3));
          }));
    d.add(DialogKind::Mani, 10, warp([](Class_Geometry& e, V v, R r) {
              e.PowerHole(exact(v, 3), row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom,
                          slider(v, 1), slider(v, 2));
          }));
    d.add(DialogKind::Mani, 11, warp([](Class_Geometry& e, V v, R r) {
              e.Ripploid(slider(v, 3), r.left, r.top, r.right, r.bottom, row(v.color), slider(v, 1),
                         slider(v, 2), row(v.eType));
          }));
    d.add(DialogKind::Mani, 12, warp([](Class_Geometry& e, V v, R r) {
              e.Whirlpool(slider(v, 3), row(v.eType), r.left, r.top, r.right, r.bottom,
                          slider(v, 1), slider(v, 2));
          }));
    d.add(DialogKind::Mani, 13, warp([](Class_Geometry& e, V v, R r) {
              e.EddyingCurrent(row(v.eType), slider(v, 3), r.left, r.top, r.right, r.bottom,
                               slider(v, 1), slider(v, 2), row(v.color));
          }));
    // Vortex: the seven types are the kinds, the direction list the axes.
    d.add(DialogKind::Mani, 14, warp([](Class_Geometry& e, V v, R r) {
              e.Wave_Circle(exact(v, 3), row(v.eType), row(v.color), r.left, r.top, r.right,
                            r.bottom, slider(v, 1), slider(v, 2));
          }));
    d.add(DialogKind::Sepia, 19, drawing([](Class_Geometry& e, V v, R r) {
              e.Nebura(exact(v, 1), 0, r.left, r.top, r.right, r.bottom);
          }));
    // Jiggle: the ripple's centre sliders are hidden in its dialog and stay 0.
    d.add(DialogKind::Mani, 28, warp([](Class_Geometry& e, V v, R r) {
              e.Ripple(slider(v, 1), slider(v, 2), row(v.color), r.left, r.top, r.right, r.bottom,
                       2, row(v.eType), slider(v, 3), slider(v, 4));
          }));
}

void registerPixelMoves(EffectDispatch& d) {
    d.add(DialogKind::Negative, 47, warp([](Class_Geometry& e, V v, R r) {
              e.LatticeGlass(slider(v, 1), r.left, r.top, r.right, r.bottom, row(v.color));
          }));
    d.add(DialogKind::Mani, 51, warp([](Class_Geometry& e, V v, R r) {
              e.Rotate(slider(v, 3), row(v.eType), r.left, r.top, r.right, r.bottom, slider(v, 1),
                       slider(v, 2));
          }));
    d.add(DialogKind::Mani, 7, warp([](Class_Geometry& e, V v, R r) {
              e.Wave_Sea2(row(v.color), row(v.eType), slider(v, 1), slider(v, 2), r.left, r.top,
                          r.right, r.bottom, slider(v, 5), slider(v, 3), slider(v, 4));
          }));
    // Scatterize: the background list reaches no argument; every pixel of
    // the rectangle is written. It reads only ImageBits, so kept picture 0
    // is lent to it rather than copied, and it starts TransBits itself.
    d.add(DialogKind::Emboss, 37,
          dispatch::onSourceWithOwnTrans<Class_Geometry>([](Class_Geometry& e, V v, R r) {
              e.Scatterize(row(v.eType), slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
}

void registerWarpChange(EffectDispatch& d) {
    // Sine, Cosine, Tangent, Sine & Cosine Warp: the kind is the code's.
    for (const auto& [code, kind] :
         {std::pair{10, 0}, std::pair{11, 1}, std::pair{12, 2}, std::pair{22, 3}}) {
        d.add(DialogKind::Level, code, drawing([kind](Class_Geometry& e, V v, R r) {
                  e.Wave_Sin(0, slider(v, 1), slider(v, 2), row(v.eType),
                             static_cast<std::uint8_t>(kind), r.left, r.top, r.right, r.bottom);
              }));
    }
}

} // namespace

void registerGeometryEffects(EffectDispatch& d) {
    registerDistortion(d);
    registerPixelMoves(d);
    registerWarpChange(d);
    registerBlockAndBlurEffects(d);
}

} // namespace lumiran
