// The stamps dropped at random: pencil strokes, mist and ink discs. Each
// stamp works on what the stamps before it left, so the order of the
// generator's draws is the picture.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/cloud_stamps.h"
#include "effects/texture/mosaic/block_walk.h"
#include "engine/shape_bands.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiran {
namespace {

// As many stamps as fit the rectangle's area, with its width and height
// counted inclusively as the placement does.
long long stampCount(int width, int height, int side) {
    if (side <= 0) throw EffectError::overflow();
    return static_cast<long long>(width) * height / (static_cast<long long>(side) * side);
}

} // namespace

void Class_HideEffect::Texture_Cloud(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t type) {
    guarded([&] {
        const Surface stamp = hide::sketchStamp(std::max(width, height), type);
        const Span span = spanOf({left, top, right, bottom});
        const int across = right - left + 1;
        const int down = bottom - top + 1;
        const long long count = stampCount(across, down, std::max(width, height));
        hundredthsShown_ = 0;
        SetProgressRange(0, 100);
        for (long long n = 0; n < count; ++n) {
            const int x0 = roundTo<std::int32_t>(across * context().random.next() + left);
            const int y0 = roundTo<std::int32_t>(down * context().random.next() + top);
            const int endRow = std::min(y0 + stamp.height(), span.endRow);
            const int endColumn = std::min(x0 + stamp.width(), span.endColumn);
            for (int y = std::max(y0, span.firstRow); y < endRow; ++y) {
                for (int x = std::max(x0, span.firstColumn); x < endColumn; ++x) {
                    const int mask = redOf(stamp.at(x - x0, y - y0));
                    if (mask == 255) continue;
                    Pixel& p = ImageBits.at(x, y);
                    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                    // The stroke darkens by its grey, as pencil on paper.
                    const Rgb16 v =
                        finishPixel<ResultTail::Clamp>(r, g, b,
                                                       {static_cast<std::int16_t>(r * mask / 255),
                                                        static_cast<std::int16_t>(g * mask / 255),
                                                        static_cast<std::int16_t>(b * mask / 255)});
                    p = withColour(p, v.red, v.green, v.blue);
                }
            }
            if (!stepHundredths(n + 1, count)) return;
        }
    });
}

void Class_HideEffect::Texture_Cloud2(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom,
                                      std::uint8_t depth, std::uint8_t background) {
    guarded([&] {
        const int side = std::max(width, height);
        const Span span = spanOf({left, top, right, bottom});
        const int across = right - left + 1;
        const int down = bottom - top + 1;
        const long long count = stampCount(across, down, side);
        // The soft stamp: full strength in the middle, none at its rim.
        const double strength = depth == 0 ? 0.35 : 0.7;
        const double radius = side / 2.0;
        std::vector<double> weight(static_cast<std::size_t>(side) * side);
        for (int i = 0; i < side; ++i) {
            for (int j = 0; j < side; ++j) {
                const double d = std::hypot(j + 0.5 - radius, i + 0.5 - radius) / radius;
                weight[static_cast<std::size_t>(i) * side + j] =
                    d < 1 ? strength * (1 - d) * (1 - d) : 0;
            }
        }
        // Over white, the mist is of the picture, which shows through it.
        const Surface picture = background == 1 ? ImageBits : Surface();
        hundredthsShown_ = 0;
        SetProgressRange(0, 100);
        // Every place is drawn and counted first; the stamps are then laid
        // in bands of rows, each band taking them in drawing order, so a
        // later stamp still works on what the earlier ones left.
        struct Place {
            int x;
            int y;
        };
        std::vector<Place> places;
        places.reserve(static_cast<std::size_t>(std::clamp(count, 0LL, 1LL << 20)));
        for (long long n = 0; n < count; ++n) {
            const int x0 = roundTo<std::int32_t>(across * context().random.next() + left);
            const int y0 = roundTo<std::int32_t>(down * context().random.next() + top);
            places.push_back({x0, y0});
            if (!stepHundredths(n + 1, count)) return;
        }
        if (span.empty()) return;

        const ShapeBands bands(places.size(), span.firstRow, span.endRow, [&](std::size_t i) {
            return std::pair{places[i].y, places[i].y + side - 1};
        });
        const auto layBand = [&](int, int b) {
            const int rowBegin = bands.rowBegin(b);
            const int rowEnd = bands.rowEnd(b);
            if (background == 1) {
                for (int y = rowBegin; y < rowEnd; ++y) {
                    Pixel* row = ImageBits.row(y).data();
                    for (int x = span.firstColumn; x < span.endColumn; ++x)
                        row[x] = withColour(row[x], 255, 255, 255);
                }
            }
            for (const std::uint32_t i : bands.shapes(b)) {
                const auto [x0, y0] = places[i];
                const int endRow = std::min(y0 + side, rowEnd);
                const int endColumn = std::min(x0 + side, span.endColumn);
                for (int y = std::max(y0, rowBegin); y < endRow; ++y) {
                    const double* weights = weight.data() + static_cast<std::size_t>(y - y0) * side;
                    Pixel* row = ImageBits.row(y).data();
                    const Pixel* under = background == 1 ? picture.row(y).data() : nullptr;
                    for (int x = std::max(x0, span.firstColumn); x < endColumn; ++x) {
                        const double w = weights[x - x0];
                        if (w == 0) continue;
                        Pixel& p = row[x];
                        const Pixel toward = under != nullptr ? under[x] : makePixel(255, 255, 255);
                        const int r = redOf(p), g = greenOf(p), bl = blueOf(p);
                        auto mix = [w](int c, int t) {
                            return roundInRange<std::int16_t>(c + (t - c) * w);
                        };
                        const Rgb16 v = finishPixel<ResultTail::Clamp>(r, g, bl,
                                                                       {mix(r, redOf(toward)),
                                                                        mix(g, greenOf(toward)),
                                                                        mix(bl, blueOf(toward))});
                        p = withColour(p, v.red, v.green, v.blue);
                    }
                }
            }
        };
        // A blend may fail on a pixel, and a worker may not throw: then the
        // bands are laid on this thread alone.
        const int workers = calculationFlag() > 0
                                ? 1
                                : std::max(1, std::min(bandPlan({left, top, right, bottom}).workers,
                                                       bands.count()));
        layBands(context().workers(), workers, bands.count(), layBand);
    });
}

void Class_HideEffect::MonochromeNoise(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::uint8_t type) {
    guarded([&] {
        const int side = std::max(width, height);
        const Surface stamp = hide::discStamp(side);
        const mosaic::Extent extent{std::max<int>(left, 0), std::min<int>(right, ImageBits.width()),
                                    std::max<int>(top, 0),
                                    std::min<int>(bottom, ImageBits.height())};
        const int blockRows =
            mosaic::blockRowCount(extent, mosaic::BlockGrid::plain(width, height));
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const int blockColumns = (extent.endColumn - 1 - extent.firstColumn) / width + 1;
        const int lift = type == 0 ? side / 2 : side / 2 * 3 / 2;
        std::vector<int> rows(height);
        std::vector<int> columns(width);
        for (int k = 0; k < blockRows; ++k) {
            mosaic::forEachRandomBlockInRow(
                extent, blockColumns, context().random, rows, columns, [&](int, int) {
                    for (int i = 0; i < height; ++i) {
                        for (int j = 0; j < width; ++j) {
                            if (redOf(stamp.at(j, i)) != 255) continue;
                            const int x = columns[static_cast<std::size_t>(j)];
                            const int y = rows[static_cast<std::size_t>(i)];
                            if (x < 0 || y < 0) continue;
                            Pixel& p = ImageBits.at(x, y);
                            const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                            const Rgb16 v = finishPixel<ResultTail::Clamp>(
                                r, g, b,
                                {static_cast<std::int16_t>(r + lift),
                                 static_cast<std::int16_t>(g + lift),
                                 static_cast<std::int16_t>(b + lift)});
                            p = withColour(p, v.red, v.green, v.blue);
                        }
                    }
                });
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
