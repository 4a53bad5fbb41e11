// The cases of the dialogs' ...Processing routines that call
// Class_NeighborhoodOp first, and the embosses of a noise.
#include "catalogue/dispatch_values.h"
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/smoothing/class_soften.h"

#include <array>
#include <tuple>

namespace lumiran {
namespace {

using Op = Class_NeighborhoodOp;
using V = const ControlValues&;
using R = ProcessRect;
using dispatch::row;
using dispatch::slider;

// The emboss direction of a list row "上から" .. "右下から" where the effect
// derives it: the light comes from the named side, so the sample weighted
// +d lies on the far side and the edges facing the light come out bright.
constexpr std::array<std::uint8_t, 8> LightFromRow{3, 2, 0, 1, 7, 5, 6, 4};

// The sample Glass_Impression compares with for the same rows: the ring
// position on the side the light comes from.
constexpr std::array<std::uint8_t, 8> SampleTowardsLight{2, 7, 4, 5, 1, 3, 6, 8};

template <std::size_t N>
std::uint8_t derived(const std::array<std::uint8_t, N>& table, int listRow) {
    if (listRow < 0 || listRow >= static_cast<int>(N)) throw EffectError::overflow();
    return table[static_cast<std::size_t>(listRow)];
}

template <typename Call>
EffectPlanner inPlace(Call call) {
    return dispatch::inPlace<Op>(call);
}
template <typename Call>
EffectPlanner withTrans(Call call) {
    return dispatch::withTrans<Op>(call);
}
// For calls that read only ImageBits and make TransBits themselves when it
// is left unfetched (fetchTransOnCores): the source is lent, not copied.
template <typename Call>
EffectPlanner onSource(Call call) {
    return dispatch::onSourceWithOwnTrans<Op>(call);
}

void embossWith(Op& e, V v, R r, std::uint8_t kind) {
    e.Embossing(row(v.eType), row(v.color), kind, r.left, r.top, r.right, r.bottom, slider(v, 1),
                slider(v, 2), slider(v, 3), slider(v, 4), slider(v, 5));
}

void registerColour(EffectDispatch& d) {
    d.add(DialogKind::Sepia, 11, inPlace([](Op& e, V v, R r) {
              e.Kakekomi(v.sliders[0], r.left, r.top, r.right, r.bottom);
          }));
    // Cold Seed (False) and Snow White (True).
    for (const auto& [code, isSnow] : {std::pair{25, false}, std::pair{26, true}}) {
        d.add(DialogKind::Emboss, code, inPlace([snow = isSnow](Op& e, V v, R r) {
                  e.ColdSeed(row(v.color), row(v.eType), r.left, r.top, r.right, r.bottom, snow,
                             slider(v, 1));
              }));
    }
}

void registerNoiseAndOutline(EffectDispatch& d) {
    d.add(DialogKind::Sepia, 18, onSource([](Op& e, V v, R r) {
              e.Moire(slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Level, 4, onSource([](Op& e, V v, R r) {
              e.ForceFields(row(v.eType), r.left, r.top, r.right, r.bottom, slider(v, 2),
                            slider(v, 1));
          }));
    d.add(DialogKind::Negative, 32, withTrans([](Op& e, V v, R r) {
              e.Glass_Impression(row(v.color), 0, slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Emboss, 68, onSource([](Op& e, V v, R r) {
              e.Glass_Painting(row(v.color), row(v.eType), r.left, r.top, r.right, r.bottom);
          }));
}

void registerEmbossing(EffectDispatch& d) {
    // Normal, Monotone, Sine, RGB Average, Relief 1, Relief 2 and Brightness.
    constexpr std::array<std::pair<int, std::uint8_t>, 7> kinds{
        {{72, 0}, {73, 1}, {74, 2}, {75, 3}, {76, 4}, {77, 5}, {81, 7}}};
    for (const auto& [code, embossKind] : kinds) {
        d.add(DialogKind::Mani, code,
              onSource([kind = embossKind](Op& e, V v, R r) { embossWith(e, v, r, kind); }));
    }
    // Piece Emboss: the sine-shaped impression, then a normal emboss of it.
    d.add(DialogKind::Mani, 80,
          planInSequence({onSource([](Op& e, V v, R r) {
                              e.Glass_Impression(1, derived(SampleTowardsLight, v.eType), 0, r.left,
                                                 r.top, r.right, r.bottom);
                          }),
                          onSource([](Op& e, V v, R r) { embossWith(e, v, r, 0); })}));
    // Stone Emboss: black and white dots, then a relief of kind 1; Concrete
    // Emboss: dots of random colours, then kind 6.
    for (const auto& [code, colourNoise, embossKind] :
         {std::tuple{78, false, std::uint8_t{1}}, std::tuple{79, true, std::uint8_t{6}}}) {
        d.add(DialogKind::Mani, code,
              planInSequence(
                  {dispatch::inPlace<Class_FalseColor>([colourNoise](Class_FalseColor& e, V, R r) {
                       if (colourNoise) {
                           e.RandamNoise_Color(2, 0, 0, 0, 0, 0, r.left, r.top, r.right, r.bottom);
                       } else {
                           e.RandamNoise_Mono(1, 0, 0, r.left, r.top, r.right, r.bottom);
                       }
                   }),
                   onSource([kind = embossKind](Op& e, V v, R r) { embossWith(e, v, r, kind); })}));
    }
    d.add(DialogKind::Mani, 87, onSource([](Op& e, V v, R r) {
              e.WallEmboss(derived(LightFromRow, v.eType), row(v.color), r.left, r.top, r.right,
                           r.bottom, slider(v, 1), slider(v, 2), slider(v, 3), slider(v, 4),
                           slider(v, 5));
          }));
}

void registerFilter(EffectDispatch& d) {
    // Rank Filter 3x3 (window 0) and 5x5 (window 1).
    for (const auto& [code, window] : {std::pair{36, 0}, std::pair{57, 1}}) {
        d.add(DialogKind::Emboss, code,
              onSource([window = static_cast<std::uint8_t>(window)](Op& e, V v, R r) {
                  e.RankFilter(slider(v, 1), row(v.eType), r.left, r.top, r.right, r.bottom, window,
                               row(v.color));
              }));
    }
    d.add(DialogKind::Emboss, 23, withTrans([](Op& e, V v, R r) {
              e.CountFilter(row(v.color), 0, r.left, r.top, r.right, r.bottom, row(v.eType));
          }));
    // Fugu: S2 (the upper threshold) before S1.
    d.add(DialogKind::Level, 49, onSource([](Op& e, V v, R r) {
              e.DarkLighten(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom,
                            slider(v, 2), slider(v, 1));
          }));
    d.add(DialogKind::Mani, 48, onSource([](Op& e, V v, R r) {
              e.TransperentColor(r.left, r.top, r.right, r.bottom, slider(v, 4), 0, slider(v, 5),
                                 slider(v, 1), slider(v, 2), slider(v, 3));
          }));
    // Bleeding Filter: the 7x7 fold over all greys, then the grey steps.
    d.add(DialogKind::Negative, 43,
          planInSequence({onSource([](Op& e, V v, R r) {
                              e.DarkLighten(3, row(v.color), r.left, r.top, r.right, r.bottom, 255,
                                            0);
                          }),
                          onSource([](Op& e, V v, R r) {
                              e.BleedingFilter(slider(v, 1), r.left, r.top, r.right, r.bottom);
                          })}));
    // Shade Revision: the lightest of each window and its mean estimate the
    // background, which the source is then divided by.
    d.add(DialogKind::Mani, 15,
          planInSequence({onSource([](Op& e, V, R r) {
                              e.RankFilter(0, 0, r.left, r.top, r.right, r.bottom, 0, 0);
                          }),
                          dispatch::withTrans<Class_Soften>([](Class_Soften& e, V, R r) {
                              e.Smoothing(3, r.left, r.top, r.right, r.bottom);
                          }),
                          inPlace([](Op& e, V v, R r) {
                              e.ShadingLast(r.left, r.top, r.right, r.bottom, slider(v, 1),
                                            slider(v, 2), slider(v, 3));
                          })}));
    d.add(DialogKind::Emboss, 19, onSource([](Op& e, V v, R r) {
              e.FiascoFilter(row(v.color), 0, row(v.eType), r.left, r.top, r.right, r.bottom,
                             slider(v, 1));
          }));
    d.add(DialogKind::Emboss, 27, onSource([](Op& e, V v, R r) {
              e.PaturnMatrixMethod(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom,
                                   slider(v, 1));
          }));
}

} // namespace

void registerNeighborhoodEffects(EffectDispatch& d) {
    registerColour(d);
    registerNoiseAndOutline(d);
    registerEmbossing(d);
    registerFilter(d);
}

} // namespace lumiran
