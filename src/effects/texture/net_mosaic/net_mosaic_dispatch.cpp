// The cases of the dialogs' ...Processing routines served by
// Class_NetMosaic: "Fractal Mosaic" and "Tile Wall Net".
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/net_mosaic/class_net_mosaic.h"
#include "engine/shared_rows.h"

#include <algorithm>

namespace lumiran {
namespace {

// The columns [left, right) of the rows [top, bottom) that a fill leaves
// for the call to write; empty when it fills everything.
struct Hole {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

Hole holeOf(const ProcessRect& rect, const Surface& picture) {
    Hole hole{std::max<int>(rect.left, 0), std::max<int>(rect.top, 0),
              std::min<int>(rect.right, picture.width()),
              std::min<int>(rect.bottom, picture.height())};
    if (hole.left >= hole.right || hole.top >= hole.bottom) return {};
    return hole;
}

// Kept picture 1 as the run would leave it for a body that draws over it:
// the whole picture in the background colour, but for the hole, which the
// call writes whole. Filled here by bands of rows on every thread, since
// the first touch of a fresh picture's pages is most of a fill's cost.
void fillWithBackground(RunContext& context, const Surface& source, Surface& picture,
                        const Hole& hole = {}) {
    picture = Surface::uninitialised(source.width(), source.height());
    const Pixel colour = toPixel(context.flags.backColor);
    const int height = picture.height();
    const auto fillRow = [&](int y) {
        const auto row = picture.row(y);
        if (y < hole.top || y >= hole.bottom) {
            std::ranges::fill(row, colour);
            return;
        }
        std::fill(row.begin(), row.begin() + hole.left, colour);
        std::fill(row.begin() + hole.right, row.end(), colour);
    };
    forEachRowShared(context, 0, height, picture.width(), fillRow);
}

// A case whose call draws from kept picture 0 over kept picture 1 in the
// background colour, that fill made here on every thread, not by the run,
// and left to the call in the rectangle, which it takes as filled. Only
// "Fractal Mosaic" takes this shape now.
template <typename Call>
EffectPlanner overBackground(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(ReplacingBody{[call, v](EffectInvocation& run) {
            fillWithBackground(run.context, run.keptPicture0, run.keptPicture1,
                               holeOf(run.rect, run.keptPicture0));
            Class_NetMosaic net(run.context);
            net.takeRectangleAsFilled(toPixel(run.context.flags.backColor));
            // Where the run lends the picture for the whole result, the means
            // go straight into it: no raster step over the whole picture.
            if (run.keptPicture0Writable) net.putResultInto(run.keptPicture0);
            call(net, v, run);
            if (run.keptPicture0Writable) {
                run.keptPicture1 = Surface();
                run.resultInKeptPicture0 = true;
            }
        }});
    };
}

} // namespace

void registerNetMosaicEffects(EffectDispatch& d) {
    using dispatch::row;
    using dispatch::slider;
    using V = const ControlValues&;
    using I = EffectInvocation&;
    d.add(DialogKind::Level, 21, overBackground([](Class_NetMosaic& e, V v, I run) {
              const ProcessRect& r = run.rect;
              e.Mosaic_Net(run.keptPicture0, run.keptPicture1, r.left, r.top, r.right, r.bottom,
                           slider(v, 1), slider(v, 2), row(v.eType));
          }));
    // The joints are drawn in black over a copy of the rectangle, or over
    // the picture itself where the run lends it for the whole result.
    d.add(DialogKind::Level, 18, [](V v) {
        const auto lines = [v](Class_NetMosaic& e, const Surface& source, Surface& target,
                               const ProcessRect& r) {
            e.Net_Line(source, target, r.left, r.top, r.right, r.bottom, slider(v, 1), slider(v, 2),
                       row(v.eType), 0, 0, 0);
        };
        return EffectPlan::ready(ReplacingBody{[lines](I run) {
            if (run.keptPicture0Writable) {
                Class_NetMosaic net(run.context);
                lines(net, run.keptPicture0, run.keptPicture0, run.rect);
                run.resultInKeptPicture0 = true;
                return;
            }
            fillWithBackground(run.context, run.keptPicture0, run.keptPicture1,
                               holeOf(run.rect, run.keptPicture0));
            Class_NetMosaic net(run.context);
            lines(net, run.keptPicture0, run.keptPicture1, run.rect);
        }});
    });
}

} // namespace lumiran
