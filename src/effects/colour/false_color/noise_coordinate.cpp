#include "effects/colour/false_color/class_false_color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

namespace lumiran {
namespace {

constexpr int FirstPassCaption = 3435;  // "しばらくお待ちください。1/2"
constexpr int SecondPassCaption = 3437; // "しばらくお待ちください。2/2"

// Radius of the walk's discs: the walk places one disc per 4 x 4 cell on
// average, so discs of radius 4 leave few holes in the field.
constexpr int DiscRadius = 4;
constexpr int FieldStart = 128;

struct Offset {
    int dx = 0;
    int dy = 0;
};

Offset offsetOf(std::uint8_t function, double angle, int amplitude) {
    const double s = std::sin(angle), c = std::cos(angle);
    double x = s, y = s;
    switch (function) {
    case 1:
        x = y = c;
        break;
    case 2:
        x = y = std::clamp(std::tan(angle), -1.0, 1.0);
        break;
    case 3:
        y = c;
        break;
    case 4:
        x = c;
        break;
    default:
        break;
    }
    return {static_cast<int>(std::lround(amplitude * x)),
            static_cast<int>(std::lround(amplitude * y))};
}

// The half widths of the rows of a disc as the canvas's Circle paints it
// (pixels with (2 dx)^2 + (2 dy)^2 < (2 r + 1)^2); the fill and the outline
// share the grey, so a disc is exactly these runs.
constexpr std::array<int, 2 * DiscRadius + 1> discHalfWidths() {
    std::array<int, 2 * DiscRadius + 1> half{};
    constexpr int limit = (2 * DiscRadius + 1) * (2 * DiscRadius + 1);
    for (int dy = -DiscRadius; dy <= DiscRadius; ++dy) {
        int h = 0;
        while (h < DiscRadius && 4 * (h + 1) * (h + 1) + 4 * dy * dy < limit)
            ++h;
        half[static_cast<std::size_t>(dy + DiscRadius)] = h;
    }
    return half;
}

// The walk's field over the rectangle's span, one grey a pixel: a disc is a
// few memsets instead of a general shape call, which made this pass cost
// more than the whole run of a peer's spread.
class GreyField {
  public:
    GreyField(int firstColumn, int endColumn, int firstRow, int endRow)
        : left_(firstColumn), top_(firstRow), width_(std::max(endColumn - firstColumn, 0)),
          height_(std::max(endRow - firstRow, 0)),
          greys_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_),
                 static_cast<std::uint8_t>(FieldStart)) {}

    void disc(int x, int y, std::uint8_t grey) {
        static constexpr auto half = discHalfWidths();
        const int cx = x - left_, cy = y - top_;
        for (int dy = -DiscRadius; dy <= DiscRadius; ++dy) {
            const int row = cy + dy;
            if (row < 0 || row >= height_) continue;
            const int h = half[static_cast<std::size_t>(dy + DiscRadius)];
            const int from = std::max(cx - h, 0), to = std::min(cx + h + 1, width_);
            if (from < to)
                std::memset(&greys_[index(from, row)], grey, static_cast<std::size_t>(to - from));
        }
    }

    [[nodiscard]] std::uint8_t at(int x, int y) const { return greys_[index(x - left_, y - top_)]; }

  private:
    [[nodiscard]] std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(column);
    }

    int left_, top_, width_, height_;
    std::vector<std::uint8_t> greys_;
};

} // namespace

void Class_FalseColor::NoiserizeWater(std::int16_t wavelength, std::int16_t amplitude,
                                      std::uint8_t function, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        if (context().progress != nullptr) context().progress->showCaption(FirstPassCaption);

        // Pass 1: a random walk of greys dropped as discs at random places.
        GreyField field(span.firstColumn, span.endColumn, span.firstRow, span.endRow);
        const int width = right - left, height = bottom - top;
        const int columns = width / 4 + 1, rows = height / 4 + 1;
        SetProgressRange(0, rows);
        RandomGenerator& random = context().random;
        int grey = FieldStart;
        for (int j = 0; j < rows; ++j) {
            for (int i = 0; i < columns; ++i) {
                const int x = static_cast<int>(width * random.next()) + left;
                const int y = static_cast<int>(height * random.next()) + top;
                grey = std::clamp(grey + (random.next() < 0.5 ? -1 : 1), 1, 255);
                field.disc(x, y, static_cast<std::uint8_t>(grey));
            }
            if (!finishRow()) return;
        }

        // Pass 2: each pixel takes the one its field grey points to; one
        // pointing out of the rectangle keeps its own colour, so edges do not
        // smear. The bar starts again with the caption.
        if (context().progress != nullptr) context().progress->showCaption(SecondPassCaption);
        ProgressCount = 0;
        if (span.empty()) return;
        const double toAngle = 2 * std::numbers::pi / std::max<int>(wavelength, 1);
        std::array<Offset, 256> offsets;
        for (int level = 0; level < 256; ++level)
            offsets[static_cast<std::size_t>(level)] =
                offsetOf(function, level * toAngle, amplitude);
        const Surface& source = ImageBits;
        mapPixels<ResultTail::Clamp, Destination::Trans>(rect, [&](int x, int y, int& r, int& g,
                                                                   int& b) {
            const Offset o = offsets[field.at(x, y)];
            const int sx = x + o.dx, sy = y + o.dy;
            const bool inside = sx >= span.firstColumn && sx < span.endColumn &&
                                sy >= span.firstRow && sy < span.endRow;
            const Pixel p = inside ? source.at(sx, sy) : withColour(0, r, g, b);
            return Rgb16{static_cast<std::int16_t>(redOf(p)), static_cast<std::int16_t>(greenOf(p)),
                         static_cast<std::int16_t>(blueOf(p))};
        });
    });
}

} // namespace lumiran
