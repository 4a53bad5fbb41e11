#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

// The result channel for each grey 0..255: style 0 runs from the colour at
// grey 0 to white at 255, style 1 is the mean of colour and grey. An
// unknown style never sets the result fields, which keep 0.
std::array<std::int16_t, 256> channelByGrey(std::uint8_t style, int colour) {
    std::array<std::int16_t, 256> table{};
    for (int v = 0; v < 256; ++v) {
        if (style == 0) {
            table[v] = roundTo<std::int16_t>((255 - colour) / 255.0 * v + colour);
        } else if (style == 1) {
            table[v] = roundTo<std::int16_t>((colour + v) / 2.0);
        }
    }
    return table;
}

template <int Basis>
int greyByBasis(int r, int g, int b) {
    if constexpr (Basis == 0) {
        return luminanceY(r, g, b);
    } else if constexpr (Basis == 1) {
        return std::max({r, g, b});
    } else if constexpr (Basis == 2) {
        return std::min({r, g, b});
    } else {
        return 0; // the grey field is never set
    }
}

// The three result tables of one run.
struct ColourByGrey {
    std::array<std::int16_t, 256> red;
    std::array<std::int16_t, 256> green;
    std::array<std::int16_t, 256> blue;
};

// Without a blend the stored colour depends on the grey alone: one packed
// pixel per grey, so a pixel is a grey and a lookup, and the row vectorises.
template <int Basis>
void paintPackedRow(Pixel* __restrict row, int count,
                    const std::array<Pixel, 256>& __restrict packed) {
    for (int x = 0; x < count; ++x) {
        const Pixel p = row[x];
        const int v = greyByBasis<Basis>(redOf(p), greenOf(p), blueOf(p));
        row[x] = (p & 0xFF000000u) | packed[static_cast<std::size_t>(v)];
    }
}

template <int Basis>
void paintBlendedRow(Pixel* row, int count, const ColourByGrey& colours, std::uint8_t flag) {
    for (int x = 0; x < count; ++x) {
        const Pixel p = row[x];
        const int r = redOf(p), g = greenOf(p), b = blueOf(p);
        const auto v = static_cast<std::size_t>(greyByBasis<Basis>(r, g, b));
        const Rgb16 stored = applyCalculationType(
            flag, r, g, b, {colours.red[v], colours.green[v], colours.blue[v]});
        row[x] = withColour(p, stored.red, stored.green, stored.blue);
    }
}

// Columns handed out at once: wide enough that each row of a strip is a
// run of whole cache lines, narrow enough that progress still moves.
int stripWidth(int columns) {
    return std::max(64, (columns + 15) / 16);
}

} // namespace

void Class_ColorOp::OneColorStyle(std::uint8_t basis, std::uint8_t style, std::int16_t red,
                                  std::int16_t green, std::int16_t blue, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const ColourByGrey colours{channelByGrey(style, red), channelByGrey(style, green),
                                   channelByGrey(style, blue)};
        std::array<Pixel, 256> packed{};
        for (std::size_t v = 0; v < packed.size(); ++v) {
            const Rgb16 c = clampResult({colours.red[v], colours.green[v], colours.blue[v]});
            packed[v] = withColour(0, c.red, c.green, c.blue);
        }
        const std::uint8_t flag = calculationFlag();
        const Span span = spanOf(rect);

        auto paintRow = [&](int y, int first, int end) {
            Pixel* row = ImageBits.row(y).data() + first;
            const int count = end - first;
            auto byBasis = [&]<int Basis>() {
                if (flag > 0) {
                    paintBlendedRow<Basis>(row, count, colours, flag);
                } else {
                    paintPackedRow<Basis>(row, count, packed);
                }
            };
            switch (basis) {
            case 0:
                byBasis.operator()<0>();
                break;
            case 1:
                byBasis.operator()<1>();
                break;
            case 2:
                byBasis.operator()<2>();
                break;
            default:
                byBasis.operator()<3>();
                break;
            }
        };

        // The rule runs column by column, progress and the cancel test after
        // each column against the range of rows, so a cancel leaves whole
        // columns done. Memory is walked by rows instead: a strip of columns
        // is first counted column by column, cut short where a cancel comes,
        // and only then painted, row by row, its rows shared among the
        // threads. No one sees the picture between the steps, and painting
        // cannot fail, so the columns done and the steps shown are those of
        // the column loop.
        SetProgressRange(top, bottom);
        const int endColumn = loopEnd(right);
        const int width = stripWidth(span.endColumn - span.firstColumn);
        for (int x0 = left; x0 < endColumn;) {
            const int x1 = std::min(endColumn, x0 + width);
            int counted = x0;
            bool goOn = true;
            while (counted < x1 && goOn) {
                ++counted;
                goOn = finishRow();
            }
            const int first = std::max(x0, span.firstColumn);
            const int end = std::min(counted, span.endColumn);
            if (first < end && span.firstRow < span.endRow) {
                const ProcessRect strip{static_cast<std::int16_t>(first), rect.top,
                                        static_cast<std::int16_t>(end), rect.bottom};
                const int workers = bandPlan(strip).workers;
                const int rows = span.endRow - span.firstRow;
                auto share = [&](int worker) {
                    const int begin = span.firstRow + rows * worker / workers;
                    const int stop = span.firstRow + rows * (worker + 1) / workers;
                    for (int y = begin; y < stop; ++y)
                        paintRow(y, first, end);
                };
                if (workers > 1) {
                    context().workers().run(workers, share);
                } else {
                    share(0);
                }
            }
            if (!goOn) break;
            x0 = x1;
        }
    });
}

} // namespace lumiran
