// The cases of the dialogs' ...Processing routines served by
// Class_Binarization. "Osero" stands in the same menu but is served by
// Class_Mosaic.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/halftone/binarization/class_binarization.h"

namespace lumiran {

void registerBinarizationEffects(EffectDispatch& d) {
    using dispatch::slider;
    using dispatch::value16;
    using V = const ControlValues&;
    using R = const ProcessRect&;
    using E = Class_Binarization;
    auto add = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::withTrans<Class_Binarization>(call));
    };
    // The thresholds read only the pixel they write: one array.
    auto addInPlace = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::inPlace<Class_Binarization>(call));
    };
    addInPlace(DialogKind::Negative, 2, [](E& e, V v, R r) {
        e.Binarization(slider(v, 1), value16(v.color), r.left, r.top, r.right, r.bottom);
    });
    // The call's constant True reaches nothing the effect tells; the type
    // row is the mode (0 every result, 1 only white), the colour row the
    // channel.
    addInPlace(DialogKind::Emboss, 46, [](E& e, V v, R r) {
        e.TransformationBinarize(slider(v, 1), r.left, r.top, r.right, r.bottom, value16(v.eType),
                                 value16(v.color));
    });
    // The morphology reads only its source, and makes the result itself on
    // every core.
    d.add(DialogKind::Emboss, 69, dispatch::onSourceWithOwnTrans<E>([](E& e, V v, R r) {
              e.Dilatation(value16(v.eType), slider(v, 1), r.left, r.top, r.right, r.bottom,
                           value16(v.color));
          }));
    d.add(DialogKind::Emboss, 70, dispatch::onSourceWithOwnTrans<E>([](E& e, V v, R r) {
              e.Erosion(value16(v.eType), slider(v, 1), r.left, r.top, r.right, r.bottom,
                        value16(v.color));
          }));
    add(DialogKind::Emboss, 45, [](E& e, V v, R r) {
        e.BorderFollowing_Mono(value16(v.eType), value16(v.color), slider(v, 1), 1, r.left, r.top,
                               r.right, r.bottom);
    });
    // Red, green and blue traced in turn, each over the result of the one
    // before, so the green and blue traces see the marks drawn already: one
    // pass that keeps the marks between the channels and draws them once.
    // A trace only reads its source, so the source is lent, not copied.
    d.add(DialogKind::Negative, 78, dispatch::onSourceWithOwnTrans<E>([](E& e, V v, R r) {
              e.BorderFollowing_ColorInTurn(value16(v.color), slider(v, 1), 1, r.left, r.top,
                                            r.right, r.bottom);
          }));
    // S1 the radius, S2 the threshold, the colour row the kind, the check
    // box the polarity.
    // The points only read their source, which is lent; the result is made
    // by the call, on the run's threads, alongside the scan.
    const auto onSource = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::onSourceWithOwnTrans<Class_Binarization>(call));
    };
    onSource(DialogKind::Level, 46, [](E& e, V v, R r) {
        e.FeaturePointExtract_Mono(value16(v.eType), slider(v, 1), slider(v, 2), value16(v.color),
                                   r.left, r.top, r.right, r.bottom, value16(v.check));
    });
    onSource(DialogKind::Level, 47, [](E& e, V v, R r) {
        e.FeaturePointExtract_Color(value16(v.eType), slider(v, 1), slider(v, 2), value16(v.color),
                                    r.left, r.top, r.right, r.bottom, value16(v.check));
    });
    // The row passes black as the colour.
    addInPlace(DialogKind::Emboss, 42, [](E& e, V v, R r) {
        e.DrawingColorBinarization(slider(v, 1), value16(v.eType), value16(v.color), r.left, r.top,
                                   r.right, r.bottom, 0, 0, 0);
    });
}

} // namespace lumiran
