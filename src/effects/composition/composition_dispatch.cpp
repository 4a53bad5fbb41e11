// The cases of the dialogs' ...Processing routines served by
// Class_Composition: the merges with the kept image and steganography.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/composition/class_composition.h"
#include "engine/drawing/raster_code.h"

namespace lumiran {

void registerCompositionEffects(EffectDispatch& d) {
    using dispatch::inPlace;
    using dispatch::row;
    using dispatch::slider;
    using dispatch::withTrans;
    using C = Class_Composition;
    using V = const ControlValues&;
    using R = const ProcessRect&;

    // "ﾗｽﾀ演算による合成": the list's rows are the raster flags 1 to 10; the
    // slider is not handed on.
    d.add(DialogKind::Emboss, 58, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Raster(rasterCodeForFlag(v.eType + 1), row(v.color), r.left, r.top,
                                 r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 3, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Mean(slider(v, 1), row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Emboss, 62, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Addition(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Emboss, 63, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Subtraction(row(v.eType), row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    // Product and quotient follow the five rows of the difference.
    d.add(DialogKind::Emboss, 64, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Subtraction(row(v.eType + 5), row(v.color), r.left, r.top, r.right,
                                      r.bottom);
          }));
    d.add(DialogKind::Level, 23, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Morphological(row(v.eType), slider(v, 2), slider(v, 1), r.left, r.top,
                                        r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 60,
          inPlace<C>([](C& e, V v, R) { e.Composite_Tiling(row(v.color), 0, 0); }));
    d.add(DialogKind::Emboss, 60, withTrans<C>([](C& e, V v, R r) {
              e.Composite_Coordinate(row(v.eType), row(v.color), slider(v, 1), r.left, r.top,
                                     r.right, r.bottom);
          }));
    // Reads its source only, and makes the result itself on every core.
    d.add(DialogKind::Monotone, 1, dispatch::onSourceWithOwnTrans<C>([](C& e, V v, R r) {
              e.Composite_Diffuse(0, row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    // The edge colour row is not handed on: the call passes 0.
    d.add(DialogKind::Mani, 86, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Embossing(row(v.eType), 0, r.left, r.top, r.right, r.bottom, v.sliders[0],
                                    v.sliders[1], v.sliders[2], v.sliders[3]);
          }));
    d.add(DialogKind::Level, 5, inPlace<C>([](C& e, V v, R r) {
              e.Composite_Exchange(row(v.eType), slider(v, 2), slider(v, 1), r.left, r.top, r.right,
                                   r.bottom);
          }));
    d.add(DialogKind::ColorScale, 15, inPlace<C>([](C& e, V v, R r) {
              const Rgb8 c = v.processColor;
              e.Composite_Exchange2(row(v.eType), r.left, r.top, r.right, r.bottom, c.red, c.green,
                                    c.blue);
          }));
    d.add(DialogKind::Monotone, 58, inPlace<C>([](C& e, V v, R r) {
              e.Suteganography_Hide(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 59, inPlace<C>([](C& e, V v, R r) {
              e.Suteganography_Extraction(row(v.color), r.left, r.top, r.right, r.bottom);
          }));
}

} // namespace lumiran
