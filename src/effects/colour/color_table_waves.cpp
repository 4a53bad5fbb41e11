// Effects that send channel values through sine and cosine waves.
#include "effects/colour/class_color_table.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lumiran {

void Class_ColorTable::Phantom(std::int16_t left, std::int16_t top, std::int16_t right,
                               std::int16_t bottom, std::int16_t selector, double sine,
                               double cosine, double light, double horizontal, double vertical) {
    guarded([&] {
        constexpr double pi = 3.141592654;
        const LevelTable wave = LevelTable::build([=](int c) {
            return roundTo<std::int16_t>(
                (std::sin(c * sine * pi / horizontal) + 1 + std::cos(c * cosine * pi / vertical)) *
                light);
        });
        applySelector({left, top, right, bottom}, selector, wave);
    });
}

void Class_ColorTable::Kani(double sine, double cosine, double red, double green, double blue,
                            std::int16_t left, std::int16_t top, std::int16_t right,
                            std::int16_t bottom, std::int16_t type) {
    guarded([&] {
        constexpr double pi = 3.14159;
        const double s = sine == 0 ? 1 : sine;
        const double k = cosine == 0 ? 1 : cosine;
        // Halfway between the source and the distance of the wave from the
        // colour component.
        auto settle = [](double component, int wave, int source) {
            return roundTo<std::int16_t>((std::abs(component - wave) + source) / 2.0);
        };
        const ProcessRect rect{left, top, right, bottom};
        if (type != 0) {
            // Each channel by its own wave: a table per channel.
            auto channel = [&](double component) {
                return LevelTable::build([&](int c) {
                    const int wave = roundTo<std::int16_t>(
                        (std::sin((c - s) / 128 * pi) + std::cos((c - k) / 128 * pi)) * 255);
                    return settle(component, wave, c);
                });
            };
            applyTables(rect, {channel(red), channel(green), channel(blue)});
            return;
        }
        // One wave factor per luminance grey, scaling all three channels.
        std::array<double, LevelTable::Size> factor{};
        for (int y = 0; y < LevelTable::Size; ++y) {
            factor[static_cast<std::size_t>(y)] = std::sin(y / s * pi) + std::cos(y / k * pi);
        }
        SetProgressRange(rect.top, rect.bottom);
        const bool bounded =
            std::ranges::all_of(factor, [](double w) { return std::isfinite(w); }) &&
            std::abs(red) <= 30000 && std::abs(green) <= 30000 && std::abs(blue) <= 30000;
        if (calculationFlag() == 0 && bounded) {
            // |w| is at most 2, so no conversion can leave 16 bits: the same
            // rule without checks or branches, so that it vectorises.
            auto settled = [](double component, double w, int c) {
                const int wave = roundInRange<std::int32_t>(w * c);
                return std::min(roundInRange<std::int32_t>((std::abs(component - wave) + c) / 2.0),
                                255);
            };
            forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
                for (int x = begin; x < end; ++x) {
                    const Pixel p = row[x];
                    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                    const double w = factor[static_cast<std::size_t>(luminanceY(r, g, b))];
                    row[x] = withColour(p, settled(red, w, r), settled(green, w, g),
                                        settled(blue, w, b));
                }
            });
            return;
        }
        forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
            for (int x = begin; x < end; ++x) {
                const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
                const double w = factor[static_cast<std::size_t>(luminanceY(r, g, b))];
                Rgb16 v{settle(red, roundTo<std::int16_t>(w * r), r),
                        settle(green, roundTo<std::int16_t>(w * g), g),
                        settle(blue, roundTo<std::int16_t>(w * b), b)};
                v = finishPixel<ResultTail::Clamp>(r, g, b, v);
                row[x] = withColour(row[x], v.red, v.green, v.blue);
            }
        });
    });
}

} // namespace lumiran
