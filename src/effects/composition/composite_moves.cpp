// The merges that move or light the document by the kept image: the
// diffusion, the ripple whose height is the kept image, and its relief.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

// The last column and row both pictures have; -1 when they share nothing.
struct SharedLimits {
    int lastX = -1;
    int lastY = -1;
};

SharedLimits sharedLimits(const Surface& document, const Surface& kept) {
    return {std::min(document.width(), kept.width()) - 1,
            std::min(document.height(), kept.height()) - 1};
}

// The way the light travels for each row of the relief's direction list:
// from above, below, left, right, upper left, upper right, lower left,
// lower right.
struct Step {
    int dx, dy;
};
constexpr std::array<Step, 8> LightTravel{
    {{0, 1}, {0, -1}, {1, 0}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};

// x' and y' of the ripple's nine types, before the range test.
struct Ripple {
    int type;
    double k;
    int S;

    [[nodiscard]] std::pair<double, double> operator()(double x, double y, double dx, double dy,
                                                       int Y) const {
        const double t = std::sqrt(0.6 * dx * dx + dy * dy);
        const double A = wrap16(Y * S);
        const double kt = k * t;
        switch (type) {
        case 0:
            return {x + A / 10 * std::atan(kt), y + A / 16 * std::atan(kt)};
        case 1:
            return {x + A / 10 * std::sin(kt), y + A / 16 * std::sin(kt)};
        case 2:
            return {x + A / 10 * std::cos(kt), y + A / 16 * std::cos(kt)};
        case 3:
            return {x + A / 10 * std::tan(kt), y + A / 16 * std::tan(kt)};
        case 4:
            return {x + A / 10 * std::sin(kt), y + A / 16 * std::cos(kt)};
        case 5: {
            const double both = std::sin(kt) + std::cos(kt);
            return {x + A / 10 * both, y + A / 16 * both};
        }
        case 6:
            return {x + Y * std::sin(y / (S + 1)), y + Y * std::sin(x / (S + 1))};
        case 7:
            return {x + Y * std::cos(y / (S + 1)), y + Y * std::cos(x / (S + 1))};
        case 8:
            return {x + Y * std::tan(y / (S + 1)), y + Y * std::tan(x / (S + 1))};
        default:
            return {x, y};
        }
    }
};

// A coordinate outside 0..last goes back to where it came from.
[[nodiscard]] int placed(double moved, int original, int last) {
    if (!(moved >= 0 && moved <= last)) return original;
    return roundInRange<int>(moved);
}

} // namespace

void Class_Composition::Composite_Diffuse(std::uint8_t /*unused*/, std::uint8_t direction,
                                          std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    guarded([&] {
        const Surface& kept = keptImage();
        const Surface& source = ImageBits;
        const SharedLimits limits = sharedLimits(source, kept);
        const bool across = direction == 0 || direction == 1;
        const bool down = direction == 0 || direction == 2;
        mapPixels<ResultTail::Clamp, Destination::Trans>(
            sharedArea(left, top, right, bottom),
            [&kept, &source, limits, across, down](int x, int y, int& r, int& g, int& b) -> Rgb16 {
                const Pixel k = kept.at(x, y);
                const int d = std::abs((r + g + b) / 3 - (redOf(k) + greenOf(k) + blueOf(k)) / 3);
                const int sx = across && x + d <= limits.lastX ? x + d : x;
                const int sy = down && y + d <= limits.lastY ? y + d : y;
                const Pixel moved = source.at(sx, sy);
                return {wrap16(redOf(moved)), wrap16(greenOf(moved)), wrap16(blueOf(moved))};
            });
    });
}

void Class_Composition::Composite_Coordinate(std::uint8_t type, std::uint8_t direction,
                                             std::int16_t S, std::int16_t left, std::int16_t top,
                                             std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface& kept = keptImage();
        const SharedLimits limits = sharedLimits(ImageBits, kept);
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (type >= 6 && type <= 8 && S + 1 == 0) throw EffectError::divisionByZero();
        const double cx = roundInRange<int>(limits.lastX / 2.0);
        const double cy = roundInRange<int>(limits.lastY / 2.0);
        const Ripple ripple{type, 1.0 - S / 100.0, S};
        for (int y = area.top; y < area.bottom; ++y) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = area.left; x < area.right; ++x) {
                const Pixel k = kept.at(x, y);
                const int Y = roundInRange<int>(
                    (0.587 * greenOf(k) + 0.299 * redOf(k) + 0.114 * blueOf(k)) / 26.0);
                const auto [mx, my] = ripple(x, y, x - cx, y - cy, Y);
                const int sx = direction == 1 ? x : placed(mx, x, limits.lastX);
                const int sy = direction == 2 ? y : placed(my, y, limits.lastY);
                out[x] = sx == x && sy == y ? in[x] : ImageBits.at(sx, sy);
            }
            // Its own progress: the share of the rows done, with the events let in.
            if (context().progressFlag == 1 && context().progress != nullptr) {
                context().progress->showPercent(
                    roundInRange<int>(static_cast<double>(y) / (limits.lastY + 1) * 100));
            }
            if (context().cancelled()) return;
        }
    });
}

void Class_Composition::Composite_Embossing(std::uint8_t direction, std::uint8_t type,
                                            std::int16_t left, std::int16_t top, std::int16_t right,
                                            std::int16_t bottom, double red, double green,
                                            double blue, double filterSize) {
    guarded([&] {
        const Surface& kept = keptImage();
        const SharedLimits limits = sharedLimits(ImageBits, kept);
        const Step light = LightTravel[direction < LightTravel.size() ? direction : 0];
        const int reach = std::max(1, static_cast<int>(roundTo<std::int16_t>(filterSize)));
        // Scaling by 1/128 is exact, so d * tint / 128 rounds as written.
        const std::array<double, 3> tint{red / 128, green / 128, blue / 128};
        const std::array<int, 3> base{roundTo<std::int16_t>(red), roundTo<std::int16_t>(green),
                                      roundTo<std::int16_t>(blue)};
        const ProcessRect area = sharedArea(left, top, right, bottom);
        auto rows = [&]<bool Blend, bool Pressed>() {
            const int dx = light.dx * reach, dy = light.dy * reach;
            const int lastX = limits.lastX, lastY = limits.lastY;
            forEachRow(area, [&, dx, dy, lastX, lastY, tint, base](int y, int first, int end) {
                // The neighbour toward the light, held inside the shared area.
                const int litRow = std::clamp(y - dy, 0, lastY);
                reliefRow<Blend, Pressed>(ImageBits.row(y).data(), kept.row(y).data(),
                                          kept.row(litRow).data(), first, end, dx, lastX, tint,
                                          base);
            });
        };
        SetProgressRange(area.top, area.bottom);
        const bool blend = calculationFlag() > 0;
        if (type == 0) {
            blend ? rows.template operator()<true, true>()
                  : rows.template operator()<false, true>();
        } else {
            blend ? rows.template operator()<true, false>()
                  : rows.template operator()<false, false>();
        }
    });
}

} // namespace lumiran
