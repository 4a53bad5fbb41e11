#include "catalogue/preview.h"

#include "engine/numeric.h"
#include "engine/raster_step.h"

#include <new>

namespace lumiran {

PreviewPlacement SetPreviewPicture(int boxWidth, int boxHeight, int w, int h) {
    PreviewPlacement p;
    if (w <= 0 || h <= 0) return p;
    if (w > h) {
        p.width = boxWidth;
        p.height = wrap16(roundTo<std::int32_t>(static_cast<double>(h) * boxWidth / w));
        p.top = (boxHeight - p.height) / 2;
    } else {
        p.height = boxHeight;
        p.width = wrap16(roundTo<std::int32_t>(static_cast<double>(w) * boxHeight / h));
        p.left = (boxWidth - p.width) / 2;
    }
    return p;
}

Surface scalePicture(const Surface& picture, int width, int height) {
    if (width <= 0 || height <= 0 || picture.empty()) return {};
    Surface scaled(width, height);
    for (int y = 0; y < height; ++y) {
        const int sy = static_cast<int>(static_cast<long long>(y) * picture.height() / height);
        const auto source = picture.row(sy);
        auto target = scaled.row(y);
        for (int x = 0; x < width; ++x) {
            target[x] = source[static_cast<long long>(x) * picture.width() / width];
        }
    }
    return scaled;
}

PreviewResult runPreview(ProgramState& state, const EffectBody& body, const Surface& source) {
    PreviewResult result;
    RunContext context(state.cancelFlag, state.random);
    context.flags = state.flags;
    context.progressFlag = 2; // no progress steps in a preview
    Surface keptSource = source;
    result.picture = source;
    context.kept0 = &keptSource;
    context.kept1 = &result.picture;
    context.composeImage = &state.keep.ComposeImage;
    EffectInvocation invocation{context, keptSource, result.picture,
                                ProcessRect::wholePicture(source.width(), source.height())};
    try {
        body(invocation);
    } catch (const EffectError& error) {
        context.failures.push_back(error);
        context.requestCancel();
    } catch (const std::bad_alloc&) {
        context.failures.push_back(EffectError::outOfMemory());
        context.requestCancel();
    }
    result.failures = std::move(context.failures);
    // A preview that fails shows nothing new: Picture1 keeps what it had.
    if (!result.failures.empty()) result.picture = Surface();
    if (state.cancelFlag == 1) {
        state.cancelFlag = 0;
        result.cancelled = true;
        return result;
    }
    // Here the source is laid over the result: the reverse of a real run.
    const std::uint8_t flag = state.flags.rasterOpFlag;
    if (flag >= 1 && flag <= 10 && result.picture.sameSize(source)) {
        for (std::size_t i = 0; i < source.pixelCount(); ++i) {
            Pixel& d = result.picture.pixels()[i];
            d = (d & 0xFF000000u) | (rasterCombine(flag, d, source.pixels()[i]) & 0x00FFFFFFu);
        }
    }
    return result;
}

} // namespace lumiran
