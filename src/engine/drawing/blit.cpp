#include "engine/drawing/blit.h"

#include "engine/drawing/bit_ops.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

using drawing::tableOf;

// The target pixels of one axis that a stretch reaches, with the source
// pixel of each: target `first + k` takes source `sources[k]`. Only pixels
// inside both pictures are listed; they are contiguous, since the source
// index runs monotonically with the target index.
struct AxisMapping {
    std::int64_t first = 0;
    std::vector<std::int32_t> sources;
};

AxisMapping mapAxis(std::int64_t origin, std::int64_t extent, std::int64_t targetSize,
                    std::int64_t sourceOrigin, std::int64_t sourceExtent, std::int64_t sourceSize) {
    AxisMapping mapping;
    const std::int64_t coverFirst = extent > 0 ? origin : origin + extent;
    const std::int64_t low = std::max<std::int64_t>(coverFirst, 0);
    const std::int64_t high = std::min<std::int64_t>(coverFirst + std::abs(extent), targetSize);
    bool started = false;
    for (std::int64_t t = low; t < high; ++t) {
        const std::int64_t i = extent > 0 ? t - origin : origin - 1 - t;
        const std::int64_t j = stretchSourceOffset(i, extent, sourceExtent);
        const std::int64_t s = sourceExtent > 0 ? sourceOrigin + j : sourceOrigin - 1 - j;
        if (s < 0 || s >= sourceSize) {
            if (started) break;
            continue;
        }
        if (!started) mapping.first = t;
        started = true;
        mapping.sources.push_back(static_cast<std::int32_t>(s));
    }
    return mapping;
}

// A copy of the source columns and rows a stretch reads, for calls whose
// source is their target: the result is then as if through a temporary.
Surface copyBlock(const Surface& source, int left, int top, int width, int height) {
    Surface block(width, height);
    for (int y = 0; y < height; ++y) {
        const auto row = source.row(top + y).subspan(left, width);
        std::ranges::copy(row, block.row(y).begin());
    }
    return block;
}

} // namespace

std::int64_t stretchSourceOffset(std::int64_t i, std::int64_t targetExtent,
                                 std::int64_t sourceExtent) {
    // Unsigned: (2 i + 1) < 2^33 and |sourceExtent| <= 2^31 fit 64 bits.
    const auto twice = static_cast<std::uint64_t>(2 * i + 1);
    const auto source = static_cast<std::uint64_t>(std::abs(sourceExtent));
    const auto target = static_cast<std::uint64_t>(std::abs(targetExtent));
    if (target == 0) return 0;
    return static_cast<std::int64_t>(twice * source / (2 * target));
}

void BitBlt(Surface& target, int x, int y, int width, int height, const Surface& source, int xSrc,
            int ySrc, RasterCode code) {
    if (width <= 0 || height <= 0) return;
    const std::int64_t dx = std::int64_t{xSrc} - x;
    const std::int64_t dy = std::int64_t{ySrc} - y;
    const std::int64_t left = std::max<std::int64_t>({x, 0, -dx});
    const std::int64_t top = std::max<std::int64_t>({y, 0, -dy});
    const std::int64_t right =
        std::min<std::int64_t>({std::int64_t{x} + width, target.width(), source.width() - dx});
    const std::int64_t bottom =
        std::min<std::int64_t>({std::int64_t{y} + height, target.height(), source.height() - dy});
    if (left >= right || top >= bottom) return;

    const auto table = tableOf(code);
    const auto n = static_cast<std::size_t>(right - left);
    const int l = static_cast<int>(left);
    const int sl = static_cast<int>(left + dx);
    if (&source != &target) {
        for (auto row = static_cast<int>(top); row < bottom; ++row)
            drawing::combineRow(table, &target.at(l, row),
                                source.row(static_cast<int>(row + dy)).data() + sl, n);
        return;
    }
    // The same picture: each source row goes through a buffer, and rows run
    // away from the source so that none is overwritten before it is read.
    std::vector<Pixel> buffer(n);
    const auto copyRow = [&](int row) {
        const auto from = source.row(static_cast<int>(row + dy)).subspan(sl, n);
        std::ranges::copy(from, buffer.begin());
        drawing::combineRow(table, &target.at(l, row), buffer.data(), n);
    };
    if (dy < 0) {
        for (auto row = static_cast<int>(bottom) - 1; row >= top; --row)
            copyRow(row);
    } else {
        for (auto row = static_cast<int>(top); row < bottom; ++row)
            copyRow(row);
    }
}

void StretchBlt(Surface& target, int x, int y, int width, int height, const Surface& source,
                int xSrc, int ySrc, int widthSrc, int heightSrc, RasterCode code) {
    if (width == 0 || height == 0 || widthSrc == 0 || heightSrc == 0) return;
    // Without scaling or mirroring every target pixel takes the source pixel
    // at its own offset, clipped to both pictures as BitBlt clips; the
    // callers that move strips one row or column at a time would otherwise
    // work out a mapping pixel by pixel for each.
    if (width == widthSrc && height == heightSrc && width > 0 && height > 0) {
        BitBlt(target, x, y, width, height, source, xSrc, ySrc, code);
        return;
    }
    AxisMapping columns = mapAxis(x, width, target.width(), xSrc, widthSrc, source.width());
    AxisMapping rows = mapAxis(y, height, target.height(), ySrc, heightSrc, source.height());
    if (columns.sources.empty() || rows.sources.empty()) return;

    const Surface* from = &source;
    Surface block;
    if (&source == &target) {
        const auto [minColumn, maxColumn] = std::ranges::minmax(columns.sources);
        const auto [minRow, maxRow] = std::ranges::minmax(rows.sources);
        block =
            copyBlock(source, minColumn, minRow, maxColumn - minColumn + 1, maxRow - minRow + 1);
        for (auto& c : columns.sources)
            c -= minColumn;
        for (auto& r : rows.sources)
            r -= minRow;
        from = &block;
    }

    const auto table = tableOf(code);
    const std::size_t n = columns.sources.size();
    const int first = static_cast<int>(columns.first);
    // A column mapping without scaling or mirroring is a plain row copy.
    const bool straight = std::ranges::adjacent_find(columns.sources, [](auto a, auto b) {
                              return b != a + 1;
                          }) == columns.sources.end();
    for (std::size_t k = 0; k < rows.sources.size(); ++k) {
        Pixel* dst = &target.at(first, static_cast<int>(rows.first + k));
        const Pixel* srcRow = from->row(rows.sources[k]).data();
        if (straight) {
            drawing::combineRow(table, dst, srcRow + columns.sources.front(), n);
        } else {
            drawing::gatherRow(table, dst, srcRow, columns.sources.data(), n);
        }
    }
}

void PaintPicture(Surface& target, const Surface& picture, int x, int y, int width, int height,
                  RasterCode code) {
    StretchBlt(target, x, y, width, height, picture, 0, 0, picture.width(), picture.height(), code);
}

} // namespace lumiran
