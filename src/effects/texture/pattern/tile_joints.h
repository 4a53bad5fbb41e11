#pragma once

// How the tile walls colour their joints, as Mosaic_Tile colours a block's
// edge: level 0 is the line, 1 the pixel right of or below it, 2 the next.
#include "effects/texture/pattern/class_pattern.h"
#include "effects/texture/pattern/joint_layers.h"
#include "effects/texture/pattern/tile_masks.h"

#include <optional>
#include <vector>

namespace lumiran {
namespace pattern {

// Line types: 0 a groove (source - 18 on the line, + 18 beside it), 1 black
// and white, 2 black, grey and white, 3 a black line; other values draw
// nothing.
class JointRule {
  public:
    explicit JointRule(std::uint8_t type) : type_(type) {}
    [[nodiscard]] std::uint8_t type() const { return type_; }
    // The deepest level the type colours; -1 for none.
    [[nodiscard]] int deepest() const;
    [[nodiscard]] Rgb16 at(int level, int r, int g, int b) const;

  private:
    std::uint8_t type_;
};

// Which drawing each tile of a wall takes: one for all, two alternating
// like a chequer, by rows or by columns, or one drawn for each tile.
struct TileLayout {
    enum class Kind : std::uint8_t { Same, Chequer, Rows, Columns, Table };
    Kind kind = Kind::Same;
    std::uint8_t first = 0;
    std::uint8_t second = 0;
    // Kind Table: the tiles from firstRow and firstColumn on, row-major.
    std::vector<std::uint8_t> table;
    int firstRow = 0;
    int firstColumn = 0;
    int columns = 0;

    [[nodiscard]] std::uint8_t variant(int tileRow, int tileColumn) const;
};

// Tiles of drawn lines laid from the rectangle's top left; a pixel's level
// comes from the line pixels on it, left of it and above it within the
// rectangle.
class TileLines {
  public:
    TileLines(int size, std::vector<CellMask> variants, TileLayout layout, const ProcessRect& rect);
    // Rows of tiles repeat every rowPeriod() tiles' rows of pixels (0: they
    // do not), so from the rectangle's third row on, rows that many apart
    // have the same levels.
    [[nodiscard]] int rowPeriod() const;
    // The levels of row y from column first to end.
    void levelRow(int y, int first, int end, std::uint8_t* out) const {
        for (int x = first; x < end; ++x)
            out[x - first] = static_cast<std::uint8_t>(level(x, y));
    }
    // 0, 1 or 2, or 3 off the joints.
    [[nodiscard]] int level(int x, int y) const {
        if (line(x, y)) return 0;
        if (line(x - 1, y) || line(x, y - 1)) return 1;
        if (line(x - 2, y) || line(x, y - 2)) return 2;
        return 3;
    }

  private:
    // Which tile and which of its cells each column and row falls in, worked
    // out once rather than divided out at every look-up.
    struct Place {
        int tile = 0;
        int cell = 0;
    };
    [[nodiscard]] bool line(int x, int y) const {
        if (x < rect_.left || y < rect_.top) return false;
        const Place& across = columns_[static_cast<std::size_t>(x - rect_.left)];
        const Place& down = rows_[static_cast<std::size_t>(y - rect_.top)];
        const CellMask& mask =
            single_ != nullptr ? *single_ : variants_[layout_.variant(down.tile, across.tile)];
        return mask.paints(down.cell, across.cell);
    }
    std::vector<CellMask> variants_;
    TileLayout layout_;
    ProcessRect rect_;
    std::vector<Place> columns_;
    std::vector<Place> rows_;
    int size_ = 1;
    const CellMask* single_ = nullptr; // the one drawing of a wall of like tiles
};

} // namespace pattern

template <typename LevelRow>
void Class_Pattern::paintJoints(const ProcessRect& rect, std::uint8_t lineType,
                                LevelRow&& levelRow) {
    const pattern::JointRule rule(lineType);
    const bool blend = calculationFlag() > 0;
    forEachRow(rect, [&](int y, int first, int end) {
        takeRow(y);
        std::vector<std::uint8_t> scratch;
        const std::uint8_t* levels = levelRow(y, first, end, scratch);
        Pixel* row = ImageBits.row(y).data() + first;
        if (blend) {
            paintLevelRow<true>(rule, row, levels, end - first);
        } else {
            paintLevelRow<false>(rule, row, levels, end - first);
        }
    });
}

template <bool Blend>
void Class_Pattern::paintLevelRow(const pattern::JointRule& rule, Pixel* row,
                                  const std::uint8_t* levels, int count) const {
    if constexpr (!Blend) {
        pattern::paintLevelsClamped(rule.type(), row, levels, count);
    } else {
        const int deepest = rule.deepest();
        for (int i = 0; i < count; ++i) {
            const int level = levels[i];
            if (level > deepest) continue;
            const int r = redOf(row[i]), g = greenOf(row[i]), b = blueOf(row[i]);
            const Rgb16 v = endPixel<ResultTail::Clamp, true>(r, g, b, rule.at(level, r, g, b));
            row[i] = withColour(row[i], v.red, v.green, v.blue);
        }
    }
}

} // namespace lumiran
