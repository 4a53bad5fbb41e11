// ColorSpread, ShadePatternMethod and CheckedPattern.
#include "effects/texture/pattern/pattern_frame.h"
#include "engine/drawing/blit.h"

namespace lumiran {
namespace {

// (round(c + a) \ 2) mod 255, and round(a) mod 255: the spread's channels.
int halfOfSum(int colour, double ramp) {
    return roundTo<std::int32_t>(colour + ramp) / 2 % 255;
}
int rampOf(double ramp) {
    return roundTo<std::int32_t>(ramp) % 255;
}

int floorHalf(int v) {
    return v >= 0 ? v / 2 : -((1 - v) / 2);
}

} // namespace

void Class_Pattern::ColorSpread(std::uint8_t type, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::uint8_t red,
                                std::uint8_t green, std::uint8_t blue, std::int16_t weight) {
    guarded([&] {
        const double across = 255.0 / wrap16(right - left);
        const double down = 255.0 / wrap16(bottom - top);
        blendPattern({left, top, right, bottom}, weight, [&](int x, int y) {
            double a = across * x;
            double b = down * y;
            if (a == 0) a = 1;
            if (b == 0) b = 1;
            int pr = red, pg = green, pb = blue;
            switch (type) {
            case 0:
                pr = halfOfSum(red, a);
                pg = roundTo<std::int32_t>(a + b) / 2 % 255;
                pb = halfOfSum(blue, b);
                break;
            case 1:
                pr = rampOf(a);
                pb = halfOfSum(blue, b);
                break;
            case 2:
                pr = halfOfSum(red, a);
                pg = rampOf(b);
                break;
            case 3:
                pg = rampOf(a);
                pb = rampOf(b);
                break;
            default:
                break;
            }
            return Rgb16{wrap16(pr), wrap16(pg), wrap16(pb)};
        });
    });
}

void Class_Pattern::ShadePatternMethod(std::uint8_t type, std::int16_t left, std::int16_t top,
                                       std::int16_t right, std::int16_t bottom, std::uint8_t red,
                                       std::uint8_t green, std::uint8_t blue) {
    guarded([&] {
        // Pairs of rows from the top while a pair fits, pairs of columns
        // likewise; a last odd row or column stays. Only the pairs that
        // reach the picture are walked, one loop row each.
        const int lastColumn = right - 2;
        const int allPairs = bottom - 2 < top ? 0 : (bottom - 2 - top) / 2 + 1;
        // Pair k covers rows top + 2 k and the one below.
        const int firstPair = std::max(0, floorHalf(-1 - top + 1));
        const int endPair = std::min(allPairs, floorHalf(ImageBits.height() - 1 - top) + 1);
        const int pairs = std::max(0, endPair - firstPair);
        SetProgressRange(0, pairs);
        if (pairs == 0 || ImageBits.empty()) return;
        const Pixel colour = makePixel(red, green, blue);
        auto paint = [&](int x, int y) {
            if (x < 0 || x >= ImageBits.width() || y < 0 || y >= ImageBits.height()) return;
            Pixel& p = ImageBits.at(x, y);
            p = (p & 0xFF000000u) | colour;
        };
        const ProcessRect pairRows{0, 0, 1, static_cast<std::int16_t>(pairs)};
        forEachRow(pairRows, [&](int pair, int, int) {
            const int y = top + 2 * (firstPair + pair);
            for (int x = left; x <= lastColumn; x += 2) {
                if (type == 0) {
                    paint(x, y + 1);
                } else if (type == 1) {
                    paint(x, y);
                    paint(x, y + 1);
                } else if (type == 2) {
                    paint(x, y);
                    paint(x, y + 1);
                    paint(x + 1, y + 1);
                }
            }
        });
    });
}

void Class_Pattern::CheckedPattern(bool, std::int16_t width, std::int16_t height, std::int16_t left,
                                   std::int16_t top, std::int16_t right, std::int16_t bottom,
                                   std::uint8_t operation) {
    guarded([&] {
        // Blocks of no pixels would never leave the first column.
        if (width < 1 || height < 1) throw EffectError::overflow();
        const int across = wrap16(right - left);
        const int down = wrap16(bottom - top);
        const int columns = across <= 0 ? 0 : (across + width - 1) / width;
        SetProgressRange(0, columns);
        // The chequer's two truth values: the column's flips from column to
        // column, the block's starts True in every column and flips from
        // block to block; a block is changed where they agree.
        bool columnFlag = true;
        for (int x0 = left; x0 < right; x0 += width, columnFlag = !columnFlag) {
            const int w = std::min<int>(width, right - x0);
            bool blockFlag = true;
            for (int y0 = top; y0 < bottom; y0 += height, blockFlag = !blockFlag) {
                if (blockFlag != columnFlag) continue;
                const int h = std::min<int>(height, bottom - y0);
                switch (operation) {
                case 0:
                    BitBlt(ImageBits, x0, y0, w, h, ImageBits, x0, y0, DSTINVERT);
                    break;
                case 1:
                    BitBlt(ImageBits, x0, y0, w, h, ImageBits, x0, y0, BLACKNESS);
                    break;
                case 2:
                    BitBlt(ImageBits, x0, y0, w, h, ImageBits, x0, y0, WHITENESS);
                    break;
                case 8: {
                    const int xs = roundTo<std::int32_t>(across * context().random.next() + left);
                    const int ys = roundTo<std::int32_t>(down * context().random.next() + top);
                    BitBlt(ImageBits, x0, y0, w, h, ImageBits, xs, ys, SRCCOPY);
                    break;
                }
                default:
                    break;
                }
            }
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
