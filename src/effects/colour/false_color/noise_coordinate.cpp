#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/noise_walk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

namespace lumiran {
namespace {

constexpr int FirstPassCaption = 3435;  // "しばらくお待ちください。1/2"
constexpr int SecondPassCaption = 3437; // "しばらくお待ちください。2/2"

// The walk places one disc per 4 x 4 cell on average, so discs of radius 4
// leave few holes in the field.
constexpr int DiscRadius = NoiseField::DiscRadius;
constexpr int FieldStart = 128;

// The half widths of a disc's rows: the pixels with
// (2 dx)^2 + (2 dy)^2 < (2 r + 1)^2, the canvas's ellipse rule.
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
    return {roundInRange<int>(amplitude * x), roundInRange<int>(amplitude * y)};
}

} // namespace

int noiseWalkRows(const ProcessRect& rect) {
    return (rect.bottom - rect.top) / 4 + 1;
}

NoiseField::NoiseField(int width, int height, std::uint8_t grey)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      greys_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), grey) {}

void NoiseField::disc(int x, int y, std::uint8_t grey) {
    static constexpr auto half = discHalfWidths();
    for (int dy = -DiscRadius; dy <= DiscRadius; ++dy) {
        const int row = y + dy;
        if (row < 0 || row >= height_) continue;
        const int h = half[static_cast<std::size_t>(dy + DiscRadius)];
        const int from = std::max(x - h, 0), to = std::min(x + h + 1, width_);
        if (from < to)
            std::memset(&greys_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                                static_cast<std::size_t>(from)],
                        grey, static_cast<std::size_t>(to - from));
    }
}

NoiseField noiseWalkField(int width, int height, const ProcessRect& rect, RandomGenerator& random,
                          const std::function<bool()>& rowDone) {
    NoiseField field(width, height, static_cast<std::uint8_t>(FieldStart));
    const int across = rect.right - rect.left, down = rect.bottom - rect.top;
    const int columns = across / 4 + 1, rows = noiseWalkRows(rect);
    int grey = FieldStart;
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            // A place becomes a pixel by rounding, as every conversion does.
            const int x = roundTo<std::int32_t>(across * random.next() + rect.left);
            const int y = roundTo<std::int32_t>(down * random.next() + rect.top);
            grey = std::clamp(grey + (random.next() < 0.5 ? -1 : 1), 1, 255);
            field.disc(x, y, static_cast<std::uint8_t>(grey));
        }
        if (!rowDone()) break;
    }
    return field;
}

void Class_FalseColor::NoiserizeWater(std::int16_t wavelength, std::int16_t amplitude,
                                      std::uint8_t function, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        if (context().progress != nullptr) context().progress->showCaption(FirstPassCaption);

        // Pass 1: a random walk of greys dropped as discs at random places.
        SetProgressRange(0, noiseWalkRows(rect));
        bool walked = true;
        const NoiseField field =
            noiseWalkField(ImageBits.width(), ImageBits.height(), rect, context().random,
                           [&] { return walked = finishRow(); });
        if (!walked) return;

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
