#include "engine/raster_step.h"

#include "engine/numeric.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

template <typename Op>
void combineRect(const Surface& result, Surface& document, const ProcessRect& rect, Op op) {
    // The blit is 16-bit sized, then clipped to both pictures as the platform does.
    const int width = wrap16(rect.right - rect.left);
    const int height = wrap16(rect.bottom - rect.top);
    if (width <= 0 || height <= 0) return;
    const int x0 = std::max<int>(rect.left, 0);
    const int y0 = std::max<int>(rect.top, 0);
    const int x1 = std::min({rect.left + width, document.width(), result.width()});
    const int y1 = std::min({rect.top + height, document.height(), result.height()});
    for (int y = y0; y < y1; ++y) {
        auto dst = document.row(y);
        const auto src = result.row(y);
        for (int x = x0; x < x1; ++x) {
            const Pixel d = dst[x];
            dst[x] = (d & 0xFF000000u) | (op(d, src[x]) & 0x00FFFFFFu);
        }
    }
}

} // namespace

Pixel rasterCombine(std::uint8_t flag, Pixel d, Pixel s) {
    switch (flag) {
    case 0:
        return s;
    case 1:
        return d | s;
    case 2:
        return d & s;
    case 3:
        return ~(d & s);
    case 4:
        return d & ~s;
    case 5:
        return d | ~s;
    case 6:
        return ~(d | s);
    case 7:
        return d ^ s;
    case 8:
        return ~(d ^ s);
    case 9:
        return s & ~d;
    case 10:
        return s | ~d;
    default:
        return d;
    }
}

void rasterStep(std::uint8_t flag, const Surface& result, Surface& document,
                const ProcessRect& rect) {
    if (flag > 10) return;
    if (flag == 0) {
        // The usual case gets its own loop, free of the switch.
        combineRect(result, document, rect, [](Pixel, Pixel s) { return s; });
        return;
    }
    combineRect(result, document, rect,
                [flag](Pixel d, Pixel s) { return rasterCombine(flag, d, s); });
}

const char* rasterOpLabel(std::uint8_t flag) {
    static constexpr std::array<const char*, 11> labels{
        "",        "1,Dso(SrcPaint)",     "2,Dsa(SrcAnd)",    "3,Dsan", "4,Dsna",
        "5,Dsno",  "6,Dson(NotSrcErase)", "7,Dsx(SrcInvert)", "8,Dsxn", "9,Sdna",
        "10,Sdno",
    };
    return flag < labels.size() ? labels[flag] : "";
}

} // namespace lumiran
