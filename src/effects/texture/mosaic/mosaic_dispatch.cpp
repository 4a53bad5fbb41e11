// The cases of the dialogs' ...Processing routines served by Class_Mosaic,
// among them "Nico Block" of the Pattern menu and "Osero" of Binarization.
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/mosaic/class_mosaic.h"

namespace lumiran {

void registerMosaicEffects(EffectDispatch& d) {
    using dispatch::row;
    using dispatch::slider;
    using dispatch::sliderByte;
    using E = Class_Mosaic;
    using V = const ControlValues&;
    using R = const ProcessRect&;
    auto add = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::inPlace<Class_Mosaic>(call));
    };
    // Calls that read the source only through ImageBits: lent, not copied,
    // with a result they make themselves on every core.
    auto addOwnTrans = [&d](DialogKind dialog, int code, auto call) {
        d.add(dialog, code, dispatch::onSourceWithOwnTrans<E>([call](E& e, V v, R r) {
                  e.blocksIntoOwnTrans();
                  call(e, v, r);
              }));
    };
    add(DialogKind::Sepia, 17, [](E& e, V v, R r) {
        e.Mosaic_Normal(sliderByte(v, 1), sliderByte(v, 1), r.left, r.top, r.right, r.bottom, 0);
    });
    add(DialogKind::Level, 42, [](E& e, V v, R r) {
        e.Mosaic_Tile(sliderByte(v, 1), sliderByte(v, 2), r.left, r.top, r.right, r.bottom, true,
                      row(v.eType));
    });
    add(DialogKind::Negative, 27, [](E& e, V v, R r) {
        e.Mosaic_Gradation1(sliderByte(v, 1), sliderByte(v, 1), r.left, r.top, r.right, r.bottom, 0,
                            row(v.color));
    });
    add(DialogKind::Negative, 25, [](E& e, V v, R r) {
        e.Mosaic_Gradation2(sliderByte(v, 1), sliderByte(v, 1), r.left, r.top, r.right, r.bottom, 0,
                            row(v.color));
    });
    // Random Mosaic's threads make the result as they go.
    addOwnTrans(DialogKind::Emboss, 15, [](E& e, V v, R r) {
        e.Mosaic_Random(sliderByte(v, 1), sliderByte(v, 1), r.left, r.top, r.right, r.bottom,
                        row(v.eType));
    });
    // The direction row "垂直" shifts columns of blocks up and down, "水平"
    // rows of blocks sideways.
    add(DialogKind::Level, 6, [](E& e, V v, R r) {
        e.Mosaic_Blick(sliderByte(v, 1), sliderByte(v, 2), r.left, r.top, r.right, r.bottom,
                       v.color == 0, row(v.eType));
    });
    // Circle (0), Pyramid (1), Triangle (list row + 2), Lozenge 2 (list row
    // + 8) and Nico Block (16, blocks of 32).
    for (const auto& [dialog, code, shape] :
         {std::tuple{DialogKind::Sepia, 14, 0}, std::tuple{DialogKind::Sepia, 16, 1}}) {
        add(dialog, code, [shape](E& e, V v, R r) {
            e.Mosaic_Circle(sliderByte(v, 1), r.left, r.top, r.right, r.bottom,
                            static_cast<std::uint8_t>(shape));
        });
    }
    for (const auto& [code, first] : {std::pair{38, 2}, std::pair{39, 8}}) {
        add(DialogKind::Emboss, code, [first](E& e, V v, R r) {
            e.Mosaic_Circle(sliderByte(v, 1), r.left, r.top, r.right, r.bottom,
                            row(v.eType + first));
        });
    }
    add(DialogKind::Monotone, 3,
        [](E& e, V, R r) { e.Mosaic_Circle(32, r.left, r.top, r.right, r.bottom, 16); });
    // Lozenge Mosaic 1 (shape 0) and Circle Gap Mosaic (1) read the source
    // and paint a separate destination.
    for (const auto& [code, shape] : {std::pair{2, 0}, std::pair{3, 1}}) {
        addOwnTrans(DialogKind::Sepia, code, [shape](E& e, V v, R r) {
            e.Mosaic_Lozenge(sliderByte(v, 1), sliderByte(v, 1), r.left, r.top, r.right, r.bottom,
                             0, static_cast<std::uint8_t>(shape));
        });
    }
    // S4 the block size; S1..S3 the light, S5 the reflection, S6 the ambient.
    add(DialogKind::Mani, 82, [](E& e, V v, R r) {
        e.Mosaic_GradShading(sliderByte(v, 4), r.left, r.top, r.right, r.bottom, 0, slider(v, 1),
                             slider(v, 2), slider(v, 3), slider(v, 5), slider(v, 6));
    });
    addOwnTrans(DialogKind::Emboss, 31, [](E& e, V v, R r) {
        e.Mosaic_ShippouTunagi(sliderByte(v, 1), r.left, r.top, r.right, r.bottom, row(v.color),
                               row(v.eType));
    });
    add(DialogKind::Mani, 57, [](E& e, V v, R r) {
        e.Mosaic_Osero(sliderByte(v, 1), r.left, r.top, r.right, r.bottom, sliderByte(v, 2),
                       sliderByte(v, 3), sliderByte(v, 4), sliderByte(v, 5));
    });
}

} // namespace lumiran
