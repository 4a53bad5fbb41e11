// The cases of the dialogs' ...Processing routines served by Class_Dithering.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/halftone/dithering/class_dithering.h"

namespace lumiran {

void registerDitheringEffects(EffectDispatch& d) {
    using dispatch::slider;
    using dispatch::value16;
    using V = const ControlValues&;
    using R = const ProcessRect&;
    auto add = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::withTrans<Class_Dithering>(call));
    };
    // The effects that read only the pixel they write, or work in the
    // result alone, run in the one array the source is fetched into.
    auto addInPlace = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::inPlace<Class_Dithering>(call));
    };
    // The ordered dithers: the type list, S2 the adjust, the colour row
    // the mode, S1 the level.
    addInPlace(DialogKind::Level, 7, [](Class_Dithering& e, V v, R r) {
        e.OrderedDither4x4(value16(v.eType), slider(v, 2), r.left, r.top, r.right, r.bottom,
                           value16(v.color), slider(v, 1));
    });
    addInPlace(DialogKind::Level, 9, [](Class_Dithering& e, V v, R r) {
        e.OrderedDither8x8(value16(v.eType), slider(v, 2), r.left, r.top, r.right, r.bottom,
                           value16(v.color), slider(v, 1));
    });
    addInPlace(DialogKind::Emboss, 28, [](Class_Dithering& e, V v, R r) {
        e.Dither_ErrorDiffuse(value16(v.eType), r.left, r.top, r.right, r.bottom, value16(v.color),
                              slider(v, 1));
    });
    // Random Dither is filter 0; Random Error Diffusion takes the filter
    // row plus one.
    addInPlace(DialogKind::Negative, 29, [](Class_Dithering& e, V v, R r) {
        e.Dither_ErrorDiffuseRandom(0, r.left, r.top, r.right, r.bottom, value16(v.color),
                                    slider(v, 1));
    });
    addInPlace(DialogKind::Emboss, 29, [](Class_Dithering& e, V v, R r) {
        e.Dither_ErrorDiffuseRandom(value16(v.eType + 1), r.left, r.top, r.right, r.bottom,
                                    value16(v.color), slider(v, 1));
    });
    // The colour row is the mode and the type row the weight; the slider
    // reaches no argument.
    add(DialogKind::Emboss, 24, [](Class_Dithering& e, V v, R r) {
        e.LimitTheMeanValue(value16(v.color), value16(v.eType), r.left, r.top, r.right, r.bottom);
    });
    add(DialogKind::Negative, 30, [](Class_Dithering& e, V v, R r) {
        e.Dither_LimitSqure(r.left, r.top, r.right, r.bottom, value16(v.color), slider(v, 1));
    });
    // Reads only its source, and makes the result itself on every core.
    d.add(DialogKind::Negative, 31,
          dispatch::onSourceWithOwnTrans<Class_Dithering>([](Class_Dithering& e, V v, R r) {
              e.DotsPatternMethod(r.left, r.top, r.right, r.bottom, value16(v.color), slider(v, 1));
          }));
    addInPlace(DialogKind::Level, 8, [](Class_Dithering& e, V v, R r) {
        e.Dither_ErrorFixed(value16(v.eType), r.left, r.top, r.right, r.bottom, value16(v.color),
                            slider(v, 1), slider(v, 2));
    });
    // The call passes mono whatever the list row; darken and edge are the
    // sliders in tenths, as the dialog shows them. Reads only its source,
    // and makes the result itself on every core.
    d.add(DialogKind::Mani, 6,
          dispatch::onSourceWithOwnTrans<Class_Dithering>([](Class_Dithering& e, V v, R r) {
              e.DinamicThresholding(0, slider(v, 1), slider(v, 2), v.sliders[2] / 10,
                                    v.sliders[3] / 10, r.left, r.top, r.right, r.bottom);
          }));
    addInPlace(DialogKind::Emboss, 43, [](Class_Dithering& e, V v, R r) {
        e.Dither_ErrorDiffuseColorPaint(value16(v.eType), r.left, r.top, r.right, r.bottom,
                                        value16(v.color), slider(v, 1));
    });
}

} // namespace lumiran
