// The cases served by Class_HideEffect: the stamps of "Noise Effect", the
// lit blocks and spheres of "Ball Effect".
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/hide_effect/class_hide_effect.h"

namespace lumiran {
namespace {

using dispatch::row;
using dispatch::slider;
using dispatch::sliderByte;
using V = const ControlValues&;
using R = const ProcessRect&;
using E = Class_HideEffect;

// The calls of the sphere family share one argument pattern:
// (D(S4), rect, S1, S2, S3, S5, S5, S5, D(S6), C, E).
template <auto Operation>
auto sphereCall(bool lists) {
    return [lists](E& e, V v, R r) {
        const std::int16_t reflection = slider(v, 5);
        (e.*Operation)(v.sliders[3], r.left, r.top, r.right, r.bottom, slider(v, 1), slider(v, 2),
                       slider(v, 3), reflection, reflection, reflection, v.sliders[5],
                       lists ? row(v.color) : 0, lists ? row(v.eType) : 0);
    };
}

template <auto Operation>
EffectPlanner spheres(bool lists = true) {
    return dispatch::withTransOnSource<E>(sphereCall<Operation>(lists));
}

// The tiled spheres copy the source into their result themselves, a row at
// a time on the thread that lights it.
template <auto Operation>
EffectPlanner tiledSpheres() {
    return dispatch::onSourceWithOwnTrans<E>(sphereCall<Operation>(true));
}

} // namespace

void registerHideEffectEffects(EffectDispatch& d) {
    // Noise Effect: Sketch Noise, Mist, Monochrome Noise.
    d.add(DialogKind::Emboss, 18, dispatch::inPlace<E>([](E& e, V v, R r) {
              const std::uint8_t size = sliderByte(v, 1);
              e.Texture_Cloud(size, size, r.left, r.top, r.right, r.bottom, row(v.eType));
          }));
    d.add(DialogKind::Emboss, 30, dispatch::inPlace<E>([](E& e, V v, R r) {
              const std::uint8_t size = sliderByte(v, 1);
              e.Texture_Cloud2(size, size, r.left, r.top, r.right, r.bottom, row(v.eType),
                               row(v.color));
          }));
    d.add(DialogKind::Emboss, 35, dispatch::inPlace<E>([](E& e, V v, R r) {
              const std::uint8_t size = sliderByte(v, 1);
              e.MonochromeNoise(size, size, r.left, r.top, r.right, r.bottom, row(v.eType));
          }));

    // Ball Effect.
    d.add(DialogKind::Mani, 49, spheres<&E::Specular>());
    d.add(DialogKind::Mani, 54, dispatch::withTransOnSource<E>([](E& e, V v, R r) {
              e.Mosaic_Shading(sliderByte(v, 4), r.left, r.top, r.right, r.bottom, 0, slider(v, 1),
                               slider(v, 2), slider(v, 3), slider(v, 5), slider(v, 6));
          }));
    d.add(DialogKind::Mani, 55, dispatch::withTransOnSource<E>([](E& e, V v, R r) {
              const std::uint8_t size = sliderByte(v, 4);
              e.Mosaic_ShadingGap(size, size, r.left, r.top, r.right, r.bottom, 0, 0, slider(v, 1),
                                  slider(v, 2), slider(v, 3), 0, slider(v, 5), slider(v, 6));
          }));
    d.add(DialogKind::Mani, 56, dispatch::onSourceWithOwnTrans<E>([](E& e, V v, R r) {
              e.Mosaic_ShadingRandom(sliderByte(v, 4), r.left, r.top, r.right, r.bottom, 0,
                                     slider(v, 1), slider(v, 2), slider(v, 3), slider(v, 5),
                                     slider(v, 6));
          }));
    d.add(DialogKind::Sepia, 1, dispatch::withTransOnSource<E>([](E& e, V v, R r) {
              const std::uint8_t size = sliderByte(v, 1);
              e.Mosaic_Glowing(size, size, r.left, r.top, r.right, r.bottom, 0, 0);
          }));
    // Glowing Pixel 2: the type is S1 - 247, never 0, so each pixel's own
    // colour is lit.
    d.add(DialogKind::Mani, 89, dispatch::onSourceWithOwnTrans<E>([](E& e, V v, R r) {
              e.Mosaic_ShadingRandom(sliderByte(v, 4), r.left, r.top, r.right, r.bottom,
                                     static_cast<std::int16_t>(slider(v, 1) - 247), slider(v, 1),
                                     slider(v, 2), slider(v, 3), slider(v, 5), slider(v, 6));
          }));
    d.add(DialogKind::Mani, 59, tiledSpheres<&E::Crystal_Ball>());
    d.add(DialogKind::Mani, 60, tiledSpheres<&E::Crystal_Line>());
    d.add(DialogKind::Mani, 61, spheres<&E::Crystal_Random>());
    d.add(DialogKind::Mani, 71, spheres<&E::RandomSpot>());
    d.add(DialogKind::Mani, 58, spheres<&E::Crystal_Lighting>(false));
}

} // namespace lumiran
