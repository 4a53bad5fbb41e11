// ColorSpread, ShadePatternMethod and CheckedPattern.
#include "effects/texture/pattern/pattern_frame.h"
#include "engine/drawing/blit.h"
#include "engine/row_bands.h"

#include <algorithm>
#include <mutex>

namespace lumiran {
namespace {

// The spread's ramps a (across) and b (down), 255 / (right - left) x and
// 255 / (bottom - top) y with a 0 raised to 1, for the rectangle's columns
// and rows in the picture.
std::vector<double> ramp(double slope, int first, int end) {
    std::vector<double> values(static_cast<std::size_t>(std::max(end - first, 0)));
    for (int v = first; v < end; ++v) {
        const double value = slope * v;
        values[v - first] = value == 0 ? 1 : value;
    }
    return values;
}

// (round(c + a) \ 2) mod 255 and round(a) mod 255, the channels that follow
// one ramp, with the conversion's range check.
int halfOfSum(int colour, double ramp) {
    return roundTo<std::int32_t>(colour + ramp) / 2 % 255;
}
int rampOf(double ramp) {
    return roundTo<std::int32_t>(ramp) % 255;
}

double largestOf(const std::vector<double>& values) {
    return values.empty() ? 0 : std::max(std::abs(values.front()), std::abs(values.back()));
}

} // namespace

void Class_Pattern::ColorSpread(std::uint8_t type, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::uint8_t red,
                                std::uint8_t green, std::uint8_t blue, std::int16_t weight) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span s = spanOf(rect);
        const std::vector<double> a =
            ramp(255.0 / wrap16(right - left), s.firstColumn, s.endColumn);
        const std::vector<double> b = ramp(255.0 / wrap16(bottom - top), s.firstRow, s.endRow);
        // Each channel is a part of the column plus a part of the row: the
        // ramp's channel on one side, 0 or the colour's channel on the other.
        std::vector<int> across[3];
        std::vector<int> down[3];
        for (auto& channel : across)
            channel.assign(a.size(), 0);
        for (auto& channel : down)
            channel.assign(b.size(), 0);
        const auto fill = [](std::vector<int>& out, const std::vector<double>& in, auto f) {
            for (std::size_t k = 0; k < in.size(); ++k)
                out[k] = f(in[k]);
        };
        const auto halfWith = [](int colour) {
            return [colour](double v) { return halfOfSum(colour, v); };
        };
        switch (type) {
        case 0: {
            fill(across[0], a, halfWith(red));
            fill(down[2], b, halfWith(blue));
            // Green, (round(a + b) \ 2) mod 255, at every pixel; the ramps
            // are largest at one end, which bounds the sum's range.
            pattern::checkMeasure(largestOf(a) + largestOf(b));
            blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
                const int j = y - s.firstRow;
                const double rowRamp = b[j];
                const auto blueOfRow = static_cast<std::int16_t>(down[2][j]);
                const int* reds = across[0].data() + (first - s.firstColumn);
                const double* ramp = a.data() + (first - s.firstColumn);
                for (int i = 0; i < end - first; ++i) {
                    p.red[i] = static_cast<std::int16_t>(reds[i]);
                    p.green[i] = static_cast<std::int16_t>(
                        static_cast<std::int32_t>(roundHalfEvenInRange(ramp[i] + rowRamp)) / 2 %
                        255);
                    p.blue[i] = blueOfRow;
                }
            });
            return;
        }
        case 1:
            fill(across[0], a, rampOf);
            std::fill(down[1].begin(), down[1].end(), green);
            fill(down[2], b, halfWith(blue));
            break;
        case 2:
            fill(across[0], a, halfWith(red));
            fill(down[1], b, rampOf);
            std::fill(down[2].begin(), down[2].end(), blue);
            break;
        case 3:
            std::fill(down[0].begin(), down[0].end(), red);
            fill(across[1], a, rampOf);
            fill(down[2], b, rampOf);
            break;
        default:
            std::fill(down[0].begin(), down[0].end(), red);
            std::fill(down[1].begin(), down[1].end(), green);
            std::fill(down[2].begin(), down[2].end(), blue);
            break;
        }
        blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
            const int j = y - s.firstRow;
            const std::span<std::int16_t> out[3] = {p.red, p.green, p.blue};
            for (std::size_t c = 0; c < 3; ++c) {
                const int* column = across[c].data() + (first - s.firstColumn);
                const int row = down[c][j];
                std::int16_t* __restrict values = out[c].data();
                for (int i = 0; i < end - first; ++i)
                    values[i] = static_cast<std::int16_t>(column[i] + row);
            }
        });
    });
}

void Class_Pattern::ShadePatternMethod(std::uint8_t type, std::int16_t left, std::int16_t top,
                                       std::int16_t right, std::int16_t bottom, std::uint8_t red,
                                       std::uint8_t green, std::uint8_t blue) {
    guarded([&] {
        // Pairs of rows from the top while a pair fits, pairs of columns
        // likewise; a last odd row or column stays. Each row of a pair
        // paints its own pixels, so progress counts two rows a pair out of
        // the rectangle's rows: an odd last row is never reached, and the
        // bar stops short of 100 percent.
        const int lastColumn = right - 2;
        const int pairs = bottom - 2 < top ? 0 : (bottom - 2 - top) / 2 + 1;
        SetProgressRange(top, bottom);
        const Pixel colour = makePixel(red, green, blue);
        const int width = ImageBits.width();
        const ProcessRect pairRows{left, top, right, static_cast<std::int16_t>(top + 2 * pairs)};
        forEachRow(pairRows, [&](int y, int, int) {
            Pixel* row = ImageBits.row(y).data();
            auto paint = [&](int x) {
                if (x >= 0 && x < width) row[x] = (row[x] & 0xFF000000u) | colour;
            };
            // Type 0 paints (x, y + 1), type 1 adds (x, y), type 2 adds
            // (x + 1, y + 1) as well.
            const bool lower = (y - top) % 2 != 0;
            for (int x = left; x <= lastColumn; x += 2) {
                if (lower) {
                    if (type <= 2) paint(x);
                    if (type == 2) paint(x + 1);
                } else if (type == 1 || type == 2) {
                    paint(x);
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
        const int columns = across <= 0 ? 0 : (across + width - 1) / width;
        SetProgressRange(0, columns);
        const int blockColumns = right > left ? (right - left + width - 1) / width : 0;
        // The chequer's two truth values: the column's flips from column to
        // column, the block's starts True in every column and flips from
        // block to block; a block is changed where they agree.
        if (operation <= 2) {
            checkedColumns(blockColumns, width, height, {left, top, right, bottom}, operation);
            return;
        }
        const int down = wrap16(bottom - top);
        bool columnFlag = true;
        for (int c = 0; c < blockColumns; ++c, columnFlag = !columnFlag) {
            const int x0 = left + c * width;
            const int w = std::min<int>(width, right - x0);
            bool blockFlag = true;
            for (int y0 = top; y0 < bottom; y0 += height, blockFlag = !blockFlag) {
                if (blockFlag != columnFlag || operation != 8) continue;
                const int h = std::min<int>(height, bottom - y0);
                const int xs = roundTo<std::int32_t>(across * context().random.next() + left);
                const int ys = roundTo<std::int32_t>(down * context().random.next() + top);
                BitBlt(ImageBits, x0, y0, w, h, ImageBits, xs, ys, SRCCOPY);
            }
            if (!finishRow()) return;
        }
    });
}

template <typename Work>
void Class_Pattern::forEachBlockColumn(int count, Work&& work) {
    // Bands of columns worked row by row: a column of blocks alone walks
    // down the picture a few pixels a row.
    const int threads = std::max(1, context().threading.threads);
    const int bandColumns = std::max(1, count / (4 * threads));
    RowBands bands(0, count, bandColumns);
    const auto serve = [&](int) {
        for (RowBands::Band band = bands.claim(); !band.empty(); band = bands.claim()) {
            if (!bands.mayStart(band.begin)) return;
            work(band.begin, band.end);
            const std::scoped_lock lock(bands.rowEnd());
            for (int c = band.begin; c < band.end; ++c) {
                if (!finishRow()) {
                    bands.cancel();
                    return;
                }
            }
        }
    };
    const int workers = std::min(threads, (count + bandColumns - 1) / bandColumns);
    if (workers <= 1) {
        serve(0);
    } else {
        context().workers().run(workers, serve);
    }
    (void)bands.finish();
}

void Class_Pattern::checkedColumns(int blockColumns, int width, int height, const ProcessRect& rect,
                                   std::uint8_t operation) {
    // The inversion, black and white change the colour bytes of each block
    // from themselves, as their block calls do: the columns of blocks are
    // independent and go to the run's threads, still counted one by one.
    const Pixel flip = operation == 0 ? 0x00FFFFFFu : 0;
    const Pixel keep = operation == 0 ? 0xFFFFFFFFu : 0xFF000000u;
    const Pixel set = operation == 2 ? 0x00FFFFFFu : 0;
    const int pictureWidth = ImageBits.width();
    const int firstRow = std::max<int>(rect.top, 0);
    const int endRow = std::min<int>(rect.bottom, ImageBits.height());
    forEachBlockColumn(blockColumns, [&](int cFirst, int cEnd) {
        for (int b = 0; rect.top + b * height < rect.bottom; ++b) {
            const int y0 = rect.top + b * height;
            const int rowEnd = std::min({y0 + height, static_cast<int>(rect.bottom), endRow});
            // The columns whose parity is the block row's change its blocks.
            const int cStart = cFirst + ((cFirst - b) & 1);
            for (int y = std::max(y0, firstRow); y < rowEnd; ++y) {
                Pixel* __restrict row = ImageBits.row(y).data();
                for (int c = cStart; c < cEnd; c += 2) {
                    const int x0 = rect.left + c * width;
                    const int end =
                        std::min({x0 + width, static_cast<int>(rect.right), pictureWidth});
                    for (int x = std::max(x0, 0); x < end; ++x)
                        row[x] = ((row[x] & keep) ^ flip) | set;
                }
            }
        }
    });
}

} // namespace lumiran
