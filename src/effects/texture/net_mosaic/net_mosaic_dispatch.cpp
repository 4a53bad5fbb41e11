// The cases of the dialogs' ...Processing routines served by
// Class_NetMosaic: "Fractal Mosaic" and "Tile Wall Net".
#include "catalogue/dispatch_values.h"
#include "catalogue/family_registration.h"
#include "effects/texture/net_mosaic/class_net_mosaic.h"

#include <algorithm>
#include <atomic>

namespace lumiran {
namespace {

// The class draws from kept picture 0 straight into kept picture 1.
template <typename Call>
EffectPlanner onKeptPictures(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready([call, v](EffectInvocation& run) {
            Class_NetMosaic net(run.context);
            call(net, v, run);
        });
    };
}

// Kept picture 1 as the run would leave it for a body that draws over it:
// the whole picture in the background colour. Filled here by bands of rows
// on every thread, since the first touch of a fresh picture's pages is most
// of a fill's cost.
void fillWithBackground(RunContext& context, const Surface& source, Surface& picture) {
    picture = Surface::uninitialised(source.width(), source.height());
    const Pixel colour = toPixel(context.flags.backColor);
    const int height = picture.height();
    const int threads = std::max(1, context.threading.threads);
    const bool shared = threads > 1 && static_cast<long long>(picture.pixelCount()) >=
                                           2LL * std::max(context.threading.bandPixels, 1);
    if (!shared) {
        std::ranges::fill(picture.pixels(), colour);
        return;
    }
    const int bandRows = std::max(1, height / (4 * threads));
    std::atomic<int> next{0};
    context.workers().run(threads, [&](int) {
        for (int first = next.fetch_add(bandRows); first < height;
             first = next.fetch_add(bandRows)) {
            const int end = std::min(height, first + bandRows);
            for (int y = first; y < end; ++y)
                std::ranges::fill(picture.row(y), colour);
        }
    });
}

// A case whose call draws over kept picture 1 in the background colour, as
// onKeptPictures, with that fill made here on every thread, not by the run.
template <typename Call>
EffectPlanner overBackground(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(ReplacingBody{[call, v](EffectInvocation& run) {
            fillWithBackground(run.context, run.keptPicture0, run.keptPicture1);
            Class_NetMosaic net(run.context);
            call(net, v, run);
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
    // The joints are drawn in black.
    d.add(DialogKind::Level, 18, onKeptPictures([](Class_NetMosaic& e, V v, I run) {
              const ProcessRect& r = run.rect;
              e.Net_Line(run.keptPicture0, run.keptPicture1, r.left, r.top, r.right, r.bottom,
                         slider(v, 1), slider(v, 2), row(v.eType), 0, 0, 0);
          }));
}

} // namespace lumiran
