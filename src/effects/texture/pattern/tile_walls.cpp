// The tile walls: joints of a grid walked as the mosaics walk their blocks,
// and walls of drawn tiles.
#include "effects/texture/pattern/tile_joints.h"
#include "engine/shared_rows.h"

#include <algorithm>

namespace lumiran {
namespace pattern {

int JointRule::deepest() const {
    switch (type_) {
    case 0:
    case 1:
        return 1;
    case 2:
        return 2;
    case 3:
        return 0;
    default:
        return -1;
    }
}

Rgb16 JointRule::at(int level, int r, int g, int b) const {
    const auto grey = [](int v) {
        return Rgb16{static_cast<std::int16_t>(v), static_cast<std::int16_t>(v),
                     static_cast<std::int16_t>(v)};
    };
    switch (type_) {
    case 0: {
        const int d = level == 0 ? -18 : 18;
        return {static_cast<std::int16_t>(r + d), static_cast<std::int16_t>(g + d),
                static_cast<std::int16_t>(b + d)};
    }
    case 1:
        return grey(level == 0 ? 0 : 255);
    case 2:
        return grey(level == 0 ? 0 : level == 1 ? 128 : 255);
    default:
        return grey(0);
    }
}

std::uint8_t TileLayout::variant(int tileRow, int tileColumn) const {
    switch (kind) {
    case Kind::Same:
        return first;
    case Kind::Chequer:
        return (tileRow + tileColumn) % 2 == 0 ? first : second;
    case Kind::Rows:
        return tileRow % 2 == 0 ? first : second;
    case Kind::Columns:
        return tileColumn % 2 == 0 ? first : second;
    case Kind::Table: {
        const int r = tileRow - firstRow;
        const int c = tileColumn - firstColumn;
        if (r < 0 || c < 0 || c >= columns) return first;
        const auto at = static_cast<std::size_t>(r) * columns + c;
        return at < table.size() ? table[at] : first;
    }
    }
    return first;
}

TileLines::TileLines(int size, std::vector<CellMask> variants, TileLayout layout,
                     const ProcessRect& rect)
    : variants_(std::move(variants)), layout_(std::move(layout)), rect_(rect) {
    const auto placesOf = [size](int count) {
        std::vector<Place> places(static_cast<std::size_t>(std::max(count, 0)));
        for (int k = 0; k < count; ++k)
            places[k] = {k / size, k % size};
        return places;
    };
    columns_ = placesOf(rect.right - rect.left);
    rows_ = placesOf(rect.bottom - rect.top);
    size_ = size;
    if (layout_.kind == TileLayout::Kind::Same) single_ = &variants_[layout_.first];
}

int TileLines::rowPeriod() const {
    switch (layout_.kind) {
    case TileLayout::Kind::Same:
    case TileLayout::Kind::Columns:
        return size_;
    case TileLayout::Kind::Chequer:
    case TileLayout::Kind::Rows:
        return 2 * size_;
    case TileLayout::Kind::Table:
        return 0;
    }
    return 0;
}

} // namespace pattern

void Class_Pattern::ImageGetDiBitsByRows(const Surface& picture) {
    ImageBits = Surface::uninitialised(picture.width(), picture.height());
    rowSource_ = &picture;
    rowTaken_.assign(static_cast<std::size_t>(picture.height()), 0);
}

void Class_Pattern::takeRow(int y) {
    if (rowSource_ == nullptr || rowTaken_[static_cast<std::size_t>(y)] != 0) return;
    std::ranges::copy(rowSource_->row(y), ImageBits.row(y).begin());
    rowTaken_[static_cast<std::size_t>(y)] = 1;
}

void Class_Pattern::finishRows() {
    if (rowSource_ == nullptr) return;
    forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(),
                     [this](int y) { takeRow(y); });
    rowSource_ = nullptr;
}

void Class_Pattern::gridJoints(const ProcessRect& rect, std::int16_t width, std::int16_t height,
                               int shift, bool columns, std::uint8_t type) {
    // Tiles share their joints: each starts on the last column and row of
    // the one before. Shifted rows or columns of tiles move by half a tile,
    // as the gap mosaic moves its blocks.
    mosaic::BlockGrid grid{width, height, width - 1, height - 1};
    if (shift != 0) {
        if (columns) {
            grid.columnShift[1] = height / 2;
        } else {
            grid.rowShift[1] = width / 2;
        }
    }
    const Span span = spanOf(rect);
    const mosaic::Extent extent{span.firstColumn, span.endColumn, span.firstRow, span.endRow};
    // Throws for a step of 0 before any row.
    const int blockRows = mosaic::blockRowCount(extent, grid);
    SetProgressRange(rect.top, rect.bottom);
    if (blockRows == 0) return;
    const pattern::JointRule rule(type);
    const int deepest = rule.deepest();
    const bool blend = calculationFlag() > 0;
    if (deepest < 0) {
        // Nothing to colour: the rows are only taken.
        forEachRow(rect, [&](int y, int, int) { takeRow(y); });
        return;
    }
    const int rise = std::max(grid.columnShift[0], grid.columnShift[1]);
    const int lastRow = extent.endRow - 1;
    const int lastColumn = extent.endColumn - 1;

    // Each tile colours its cells (i, j) of level min(i, j) in place, in the
    // walk's order and reading what the array holds: a pixel that two tiles
    // reach (their shared joint, a fold at the far sides) is coloured again
    // from what the first one left. Cells beyond the type's deepest level
    // stay. A pixel is only ever coloured from itself, so each row of the
    // picture replays, in the walk's order, the cells that fall on it: the
    // rows are independent.
    const int base = extent.firstRow + grid.firstRow;
    const auto tileRowsReaching = [&](int y) {
        // Rows of tiles whose origin row lies in [y - height + 1, y + rise]
        // can reach row y; the last row also takes the folds of every tile
        // reaching past it, whose origins lie in the same range.
        const int kFirst = std::max(0, (y - height + 1 - base + grid.stepY - 1) / grid.stepY);
        const int kEnd = std::min(blockRows, (y + rise - base) / grid.stepY + 1);
        return std::pair{kFirst, kEnd};
    };
    const auto walkRow = [&](int y, std::vector<pattern::LevelPaint>& paints) {
        const auto [kFirst, kEnd] = tileRowsReaching(y);
        for (int k = kFirst; k < kEnd; ++k) {
            const int rowOrigin = base + k * grid.stepY;
            int m = 0;
            for (int x0 = extent.firstColumn - grid.rowShift[k & 1]; x0 <= lastColumn;
                 x0 += grid.stepX, ++m) {
                const int y0 = rowOrigin - grid.columnShift[m & 1];
                if (y0 > lastRow || y0 + height <= extent.firstRow ||
                    x0 + width <= extent.firstColumn) {
                    continue;
                }
                // The cells of this tile on row y: one, or every one from
                // row y on where the tile folds onto the last row.
                const int iFirst = y - y0;
                if (iFirst < 0 || iFirst >= height) continue;
                const int iEnd = y == lastRow ? height : iFirst + 1;
                for (int i = iFirst; i < iEnd; ++i) {
                    const int lastCell = i <= deepest ? width - 1 : std::min(deepest, width - 1);
                    for (int j = std::max(0, extent.firstColumn - x0); j <= lastCell; ++j) {
                        paints.push_back({std::min(x0 + j, lastColumn),
                                          static_cast<std::uint8_t>(std::min(i, j))});
                    }
                }
            }
        }
    };
    // A row's paints follow from where it lies among the rows of tiles
    // reaching it (and their parities, where rows of tiles are shifted),
    // and whether it is the last row: rows alike in that share one set of
    // layers, worked out here before the rows run.
    struct RowKind {
        int offset, tileRows, parity;
        bool last;
        bool operator==(const RowKind&) const = default;
    };
    std::vector<RowKind> kinds;
    std::vector<pattern::LevelLayers> layers;
    std::vector<int> kindOfRow(static_cast<std::size_t>(extent.endRow - extent.firstRow));
    std::vector<pattern::LevelPaint> paints;
    for (int y = extent.firstRow; y < extent.endRow; ++y) {
        const auto [kFirst, kEnd] = tileRowsReaching(y);
        const RowKind kind{y - (base + kFirst * grid.stepY), std::max(kEnd - kFirst, 0),
                           grid.rowShift[0] != grid.rowShift[1] ? kFirst & 1 : 0, y == lastRow};
        auto found = std::ranges::find(kinds, kind);
        if (found == kinds.end()) {
            paints.clear();
            walkRow(y, paints);
            layers.emplace_back(paints, extent.firstColumn, extent.endColumn);
            kinds.push_back(kind);
            found = kinds.end() - 1;
        }
        kindOfRow[static_cast<std::size_t>(y - extent.firstRow)] =
            static_cast<int>(found - kinds.begin());
    }
    const auto paintRow = [&]<bool Blend>(int y) {
        takeRow(y);
        Pixel* row = ImageBits.row(y).data() + extent.firstColumn;
        const pattern::LevelLayers& own = layers[static_cast<std::size_t>(
            kindOfRow[static_cast<std::size_t>(y - extent.firstRow)])];
        for (int t = 0; t < own.layerCount(); ++t)
            paintLevelRow<Blend>(rule, row, own.layer(t), extent.endColumn - extent.firstColumn);
        for (const pattern::LevelPaint& paint : own.rest())
            paintLevelRow<Blend>(rule, row + (paint.column - extent.firstColumn), &paint.level, 1);
    };
    forEachRow(rect, [&](int y, int, int) {
        if (blend) {
            paintRow.template operator()<true>(y);
        } else {
            paintRow.template operator()<false>(y);
        }
    });
}

void Class_Pattern::LineInput_Normal(std::int16_t width, std::int16_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     bool, std::uint8_t type) {
    guarded([&] { gridJoints({left, top, right, bottom}, width, height, 0, false, type); });
}

void Class_Pattern::LineInput_Gap(std::int16_t width, std::int16_t height, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom,
                                  bool columns, std::uint8_t type) {
    guarded([&] { gridJoints({left, top, right, bottom}, width, height, 1, columns, type); });
}

void Class_Pattern::drawnJoints(const ProcessRect& rect, int size,
                                std::vector<mosaic::CellMask> variants, pattern::TileLayout layout,
                                std::uint8_t type) {
    SetProgressRange(rect.top, rect.bottom);
    const pattern::TileLines lines(size, std::move(variants), std::move(layout), rect);
    // A pixel's level looks two rows up, so from the rectangle's third row
    // on the rows of levels repeat with the rows of tiles: each distinct
    // one is worked out once, here, before the rows run.
    const Span span = spanOf(rect);
    const int period = span.empty() ? 0 : lines.rowPeriod();
    const auto width = static_cast<std::size_t>(span.endColumn - span.firstColumn);
    const int firstRepeating = rect.top + 2;
    std::vector<std::uint8_t> repeated(static_cast<std::size_t>(period) * width);
    if (period > 0) {
        std::vector<bool> made(static_cast<std::size_t>(period));
        int left = period;
        for (int y = std::max(span.firstRow, firstRepeating); y < span.endRow && left > 0; ++y) {
            const auto key = static_cast<std::size_t>((y - rect.top) % period);
            if (made[key]) continue;
            lines.levelRow(y, span.firstColumn, span.endColumn, &repeated[key * width]);
            made[key] = true;
            --left;
        }
    }
    paintJoints(
        rect, type,
        [&](int y, int first, int end, std::vector<std::uint8_t>& scratch) -> const std::uint8_t* {
            if (period > 0 && y >= firstRepeating) {
                const auto key = static_cast<std::size_t>((y - rect.top) % period);
                return &repeated[key * width] + (first - span.firstColumn);
            }
            scratch.resize(static_cast<std::size_t>(end - first));
            lines.levelRow(y, first, end, scratch.data());
            return scratch.data();
        });
}

namespace {

// Turn 0 and turn 1 alternating in the given way.
pattern::TileLayout alternating(pattern::TileLayout::Kind kind) {
    pattern::TileLayout layout;
    layout.kind = kind;
    layout.second = 1;
    return layout;
}

// A tile of no pixels has no place for its lines.
void checkTile(std::int16_t size) {
    if (size < 1) throw EffectError::overflow();
}

} // namespace

void Class_Pattern::Draw_ArcCrest(std::int16_t size, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::uint8_t type,
                                  std::uint8_t colour, std::uint8_t) {
    guarded([&] {
        checkTile(size);
        using pattern::ArcTile;
        using Kind = pattern::TileLayout::Kind;
        std::vector<mosaic::CellMask> variants;
        for (const ArcTile tile :
             {ArcTile::Turn0, ArcTile::Turn1, ArcTile::Ring, ArcTile::BothTurns})
            variants.push_back(pattern::arcTile(size, tile));
        pattern::TileLayout layout;
        switch (type) {
        case 0:
            break;
        case 1:
            layout.first = 1;
            break;
        case 2:
            layout = alternating(Kind::Chequer);
            break;
        case 3:
            layout = alternating(Kind::Rows);
            break;
        case 4:
            layout = alternating(Kind::Columns);
            break;
        case 5:
            layout.first = 2;
            break;
        case 6:
            layout.first = 3;
            break;
        default: {
            // "ﾗﾝﾀﾞﾑ": each tile over the picture turns one way or the other,
            // drawn row by row before any pixel is painted.
            const Span span = spanOf({left, top, right, bottom});
            if (span.empty()) break;
            layout.kind = Kind::Table;
            layout.firstRow = (span.firstRow - top) / size;
            layout.firstColumn = (span.firstColumn - left) / size;
            const int lastRow = (span.endRow - 1 - top) / size;
            layout.columns = (span.endColumn - 1 - left) / size - layout.firstColumn + 1;
            for (int r = layout.firstRow; r <= lastRow; ++r) {
                for (int c = 0; c < layout.columns; ++c)
                    layout.table.push_back(context().random.next() < 0.5 ? 0 : 1);
            }
            break;
        }
        }
        drawnJoints({left, top, right, bottom}, size, std::move(variants), std::move(layout),
                    colour);
    });
}

void Class_Pattern::LineInput_Lozenge(std::int16_t size, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::uint8_t type,
                                      std::uint8_t colour) {
    guarded([&] {
        checkTile(size);
        drawnJoints({left, top, right, bottom}, size, {pattern::lozengeTile(size, type)}, {},
                    colour);
    });
}

void Class_Pattern::LineInput_Circle(std::int16_t size, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom, std::uint8_t type,
                                     std::uint8_t colour) {
    guarded([&] {
        checkTile(size);
        drawnJoints({left, top, right, bottom}, size, {pattern::shippouTile(size, type)}, {},
                    colour);
    });
}

} // namespace lumiran
