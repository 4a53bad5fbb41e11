#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

// Types 0..3: |255 - round(w c)| with w a wave of the base value k.
int waveOfBase(int k, int c, double period) {
    const double angle = k * Pi / period;
    const double w = ((std::sin(angle) + 1) / 2) * ((std::cos(angle) + 1) / 2);
    return std::abs(255 - roundTo<std::int16_t>(w * c));
}

// Type 4: |round((cos + sin) Y)| with the angle from the channel itself.
int swingOfGrey(int c, int y, double period) {
    const double angle = c * Pi / period;
    return std::abs(roundTo<std::int16_t>((std::cos(angle) + std::sin(angle)) * y));
}

// The wave depends on the period and two values of 0..255, so with a fixed
// period it is tabled once per run: at(first, second) is waveOfBase(k, c)
// or swingOfGrey(c, y). Building it raises the error a period of 0 gives
// at every pixel.
class WaveTable {
  public:
    WaveTable(std::uint8_t type, double period) : entries_(256 * 256) {
        for (int i = 0; i < 256; ++i) {
            for (int j = 0; j < 256; ++j) {
                entries_[i * 256 + j] = static_cast<std::int16_t>(
                    type == 4 ? swingOfGrey(i, j, period) : waveOfBase(i, j, period));
            }
        }
    }
    [[nodiscard]] int at(int first, int second) const { return entries_[first * 256 + second]; }

  private:
    std::vector<std::int16_t> entries_;
};

int baseValue(std::uint8_t type, int r, int g, int b) {
    switch (type) {
    case 1:
        return r;
    case 2:
        return g;
    case 3:
        return b;
    default:
        return luminanceY(r, g, b);
    }
}

// The grey of the results that mono spreads over all three channels.
Rgb16 monoGrey(std::uint8_t type, Rgb16 v) {
    int grey = 0;
    switch (type) {
    case 1:
        grey = v.red;
        break;
    case 2:
        grey = v.green;
        break;
    case 3:
        grey = v.blue;
        break;
    default:
        grey = roundTo<std::int32_t>(0.59 * v.green + 0.3 * v.red + 0.11 * v.blue);
        break;
    }
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
            if (invert != 0) {
                r = 255 - r;
                g = 255 - g;
                b = 255 - b;
            }
        };

        if (random == 1) {
            // A period of its own for every pixel, drawn in loop order.
            eachPixel<Ending::SharedTail>(rect, [&](int r, int g, int b) {
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
            eachPixel<Ending::SharedTail>(rect, [&](int, int, int) { return finishResult({}); });
            return;
        }
        const WaveTable table(type, period);
        if (type == 4) {
            eachPixel<Ending::SharedTail>(rect, [&](int r, int g, int b) {
                working(r, g, b);
                const int y = luminanceY(r, g, b);
                return finishResult({table.at(r, y), table.at(g, y), table.at(b, y)});
            });
        } else {
            eachPixel<Ending::SharedTail>(rect, [&](int r, int g, int b) {
                working(r, g, b);
                const int k = baseValue(type, r, g, b);
                return finishResult({table.at(k, r), table.at(k, g), table.at(k, b)});
            });
        }
    });
}

} // namespace lumiran
