#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <type_traits>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

// Types 0..3: the wave w of the base value k.
double waveFactor(int k, double period) {
    const double angle = k * Pi / period;
    return ((std::sin(angle) + 1) / 2) * ((std::cos(angle) + 1) / 2);
}

// Type 4: cos + sin with the angle from the channel itself.
double swingFactor(int c, double period) {
    const double angle = c * Pi / period;
    return std::cos(angle) + std::sin(angle);
}

// |255 - round(w c)| and |round((cos + sin) Y)|.
int waveOfBase(int k, int c, double period) {
    return std::abs(255 - roundTo<std::int16_t>(waveFactor(k, period) * c));
}
int swingOfGrey(int c, int y, double period) {
    return std::abs(roundTo<std::int16_t>(swingFactor(c, period) * y));
}

// With a fixed period the factor depends on one value of 0..255 only, so
// it is tabled once per run. A period of 0 makes every factor a NaN and
// every pixel fail; the table fails at once instead. Finite factors give
// products that fit: |w c| <= 255 and |(cos + sin) Y| < 361.
class WaveTable {
  public:
    WaveTable(std::uint8_t type, double period) {
        for (int i = 0; i < 256; ++i) {
            const double f = type == 4 ? swingFactor(i, period) : waveFactor(i, period);
            if (!std::isfinite(f)) throw EffectError::overflow();
            factors_[static_cast<std::size_t>(i)] = f;
        }
    }
    [[nodiscard]] int wave(int k, int c) const {
        return std::abs(255 -
                        roundInRange<std::int32_t>(factors_[static_cast<std::size_t>(k)] * c));
    }
    [[nodiscard]] int swing(int c, int y) const {
        return std::abs(roundInRange<std::int32_t>(factors_[static_cast<std::size_t>(c)] * y));
    }

  private:
    std::array<double, 256> factors_{};
};

// Sums of products rather than switches, which keep the pixel loop
// vectorised.
int baseValue(std::uint8_t type, int r, int g, int b) {
    return (type == 1) * r + (type == 2) * g + (type == 3) * b + (type == 0) * luminanceY(r, g, b);
}

// The grey of the results that mono spreads over all three channels: Y
// of them for types 0 and 4 (within 32 bits, as the results are 16-bit),
// R, G or B for types 1, 2, 3.
Rgb16 monoGrey(std::uint8_t type, Rgb16 v) {
    const int y = roundInRange<std::int32_t>(0.59 * v.green + 0.3 * v.red + 0.11 * v.blue);
    const int grey = (type == 1) * v.red + (type == 2) * v.green + (type == 3) * v.blue +
                     (type == 0 || type == 4) * y;
    return Channels{grey, grey, grey}.fields();
}

} // namespace

void Class_ColorOp::SilverMountain(std::uint8_t type, std::int16_t period, std::uint8_t invert,
                                   std::int16_t addRed, std::int16_t addGreen, std::int16_t addBlue,
                                   std::uint8_t mono, std::uint8_t random, std::int16_t left,
                                   std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool known = type <= 4;
        auto finishResult = [&](Channels c) {
            Rgb16 v = Channels{c.red + addRed, c.green + addGreen, c.blue + addBlue}.fields();
            // An unknown type never sets the result fields: they keep 0.
            if (!known) v = {};
            return mono == 1 ? monoGrey(type, v) : v;
        };
        auto working = [invert](int& r, int& g, int& b) {
            const bool inverted = invert != 0;
            r = inverted ? 255 - r : r;
            g = inverted ? 255 - g : g;
            b = inverted ? 255 - b : b;
        };

        if (random == 1) {
            // A period of its own for every pixel, drawn in loop order.
            mapPixels<ResultTail::Clamp, Destination::InPlace, RowOrder::TopToBottom>(
                rect, [&](int r, int g, int b) {
                    working(r, g, b);
                    const double drawn = context().random.next();
                    Channels c;
                    if (type == 4) {
                        const int y = luminanceY(r, g, b);
                        c = {swingOfGrey(r, y, period), swingOfGrey(g, y, period),
                             swingOfGrey(b, y, period)};
                    } else if (known) {
                        const int t = roundTo<std::int16_t>(period * drawn + 1);
                        const int k = baseValue(type, r, g, b);
                        c = {waveOfBase(k, r, t), waveOfBase(k, g, t), waveOfBase(k, b, t)};
                    }
                    return finishResult(c);
                });
            return;
        }

        if (spanOf(rect).empty() || !known) {
            mapPixels<ResultTail::Clamp>(rect, [&](int, int, int) { return finishResult({}); });
            return;
        }
        const WaveTable table(type, period);
        // Mono chosen per run, not per pixel: a floating-point grey behind a
        // select would keep the loop out of the vector unit.
        auto run = [&](auto spread, auto wave) {
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                working(r, g, b);
                const Channels c = wave(r, g, b);
                const Rgb16 v =
                    Channels{c.red + addRed, c.green + addGreen, c.blue + addBlue}.fields();
                if constexpr (decltype(spread)::value) return monoGrey(type, v);
                return v;
            });
        };
        auto swing = [&table](int r, int g, int b) {
            const int y = luminanceY(r, g, b);
            return Channels{table.swing(r, y), table.swing(g, y), table.swing(b, y)};
        };
        auto wave = [&table, type](int r, int g, int b) {
            const int k = baseValue(type, r, g, b);
            return Channels{table.wave(k, r), table.wave(k, g), table.wave(k, b)};
        };
        const bool spread = mono == 1;
        if (type == 4) {
            spread ? run(std::true_type{}, swing) : run(std::false_type{}, swing);
        } else {
            spread ? run(std::true_type{}, wave) : run(std::false_type{}, wave);
        }
    });
}

} // namespace lumiran
