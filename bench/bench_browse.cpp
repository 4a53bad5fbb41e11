// A page of the effect browser: every effect of a family at its defaults on
// the bundled sample scaled into the default thumbnail box, one after the
// other as the browser's worker makes them. Goals: 0.3 s a page for the
// colour families, 1 s for any.
#include "catalogue/browse_thumbnails.h"
#include "imagefiles/plain_bitmap.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

const Surface& workCopy() {
    static const Surface copy = [] {
        const std::optional<Surface> sample = readPlainBitmap(LUMIRAN_SAMPLE_PATH, LoadLimits{});
        if (!sample) return Surface{};
        const BrowseSettings box = defaultBrowseSettings({1280, 1024});
        const PreviewPlacement p =
            thumbnailPlacement(box.imageWidth, box.imageHeight, sample->width(), sample->height());
        return scalePicture(*sample, p.width, p.height);
    }();
    return copy;
}

void BM_BrowsePage(benchmark::State& state, const char* menu) {
    if (workCopy().empty()) {
        state.SkipWithError("sample not readable");
        return;
    }
    std::vector<const EffectEntry*> page;
    for (const EffectEntry& e : effectCatalogue()) {
        if (e.menu == menu && e.index < BrowsePageSize) page.push_back(&e);
    }
    int made = 0;
    for (auto _ : state) {
        ProgramState program;
        made = 0;
        for (const EffectEntry* e : page) {
            const std::optional<Surface> thumbnail = browseThumbnail(program, *e, workCopy());
            if (thumbnail) ++made;
            benchmark::DoNotOptimize(thumbnail);
        }
    }
    state.counters["thumbnails"] = made;
}

#define BROWSE_PAGE(Menu)                                                                          \
    BENCHMARK_CAPTURE(BM_BrowsePage, Menu, #Menu)->Unit(benchmark::kMillisecond)->MinTime(0.5)

BROWSE_PAGE(ColorNo);
BROWSE_PAGE(ColorTableNo);
BROWSE_PAGE(GradationNo);
BROWSE_PAGE(PseudoColorNo);
BROWSE_PAGE(PatternNo);
BROWSE_PAGE(ColorBalanceNo);
BROWSE_PAGE(DitherNo);
BROWSE_PAGE(BinarizationNo);
BROWSE_PAGE(NoiseEffectNo);
BROWSE_PAGE(EdgeDetectionNo);
BROWSE_PAGE(OutlineNo);
BROWSE_PAGE(MosaicNo);
BROWSE_PAGE(EmbossingNo);
BROWSE_PAGE(FilterNo);
BROWSE_PAGE(DistortionNo);
BROWSE_PAGE(PixelMoveNo);
BROWSE_PAGE(TransformNo);
BROWSE_PAGE(InvasionEffectNo);
BROWSE_PAGE(TileWallNo);
BROWSE_PAGE(WarpChangeNo);
BROWSE_PAGE(BringNo);
BROWSE_PAGE(FunNo);

} // namespace
