// Smoke: sine and cosine of x / p1 and y / p2, without pi.
#include "effects/texture/pattern/pattern_frame.h"

#include <array>
#include <span>
#include <vector>

namespace lumiran {
namespace {

// Which wave goes with which axis: types 0..3 pair the first period with x,
// 4..7 with y.
struct SmokeWaves {
    bool firstSine;
    bool secondSine;
    bool firstAcross;
};
constexpr std::array<SmokeWaves, 8> SmokeTypes{{
    {true, true, true},
    {false, false, true},
    {true, false, true},
    {false, true, true},
    {true, true, false},
    {false, false, false},
    {true, false, false},
    {false, true, false},
}};

// Form 1 ("点") lights only where the product of the waves is above this.
constexpr double DotLevel = 0.5;

struct SmokeColour {
    SmokeWaves waves;
    std::uint8_t form;
    std::int16_t red, green, blue;

    [[nodiscard]] Rgb16 at(int x, int y, double p1, double p2) const {
        const double first = (waves.firstAcross ? x : y) / p1;
        const double second = (waves.firstAcross ? y : x) / p2;
        return ofWaves(waves.firstSine ? std::sin(first) : std::cos(first),
                       waves.secondSine ? std::sin(second) : std::cos(second));
    }
    [[nodiscard]] Rgb16 ofWaves(double a, double b) const {
        const double t = level(a * b);
        return {roundTo<std::int16_t>(t * red), roundTo<std::int16_t>(t * green),
                roundTo<std::int16_t>(t * blue)};
    }
    // 0..1, or NaN where a period of 0 made the waves NaN.
    [[nodiscard]] double level(double product) const {
        return form == 0 ? (product + 1) / 2 : product > DotLevel ? 1.0 : 0.0;
    }
};

} // namespace

void Class_Pattern::Smoke(std::uint8_t type, std::uint8_t form, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::int16_t horizontal,
                          std::int16_t vertical, std::int16_t red, std::int16_t green,
                          std::int16_t blue, std::int16_t weight, bool random) {
    guarded([&] {
        const SmokeColour colour{SmokeTypes[type % SmokeTypes.size()], form, red, green, blue};
        const ProcessRect rect{left, top, right, bottom};
        if (!random) {
            // Each wave follows one axis: once a column and once a row.
            const Span s = spanOf(rect);
            const SmokeWaves w = colour.waves;
            auto axis = [](int first, int end, double period, bool sine) {
                std::vector<double> values;
                for (int v = first; v < end; ++v)
                    values.push_back(sine ? std::sin(v / period) : std::cos(v / period));
                return values;
            };
            const double p1 = horizontal, p2 = vertical;
            const std::vector<double> columns =
                w.firstAcross ? axis(s.firstColumn, s.endColumn, p1, w.firstSine)
                              : axis(s.firstColumn, s.endColumn, p2, w.secondSine);
            const std::vector<double> rows = w.firstAcross
                                                 ? axis(s.firstRow, s.endRow, p2, w.secondSine)
                                                 : axis(s.firstRow, s.endRow, p1, w.firstSine);
            blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
                const double down = rows[static_cast<std::size_t>(y - s.firstRow)];
                const double* across = columns.data() + (first - s.firstColumn);
                const auto count = static_cast<std::size_t>(end - first);
                std::vector<double> t(count);
                for (std::size_t i = 0; i < count; ++i)
                    t[i] = colour.level(across[i] * down);
                // Within 0..1 a level times a 16-bit colour stays in range.
                bool notANumber = false;
                for (const double v : t)
                    notANumber |= v != v;
                if (notANumber) throw EffectError::overflow();
                const double* __restrict levels = t.data();
                const int colours[3] = {red, green, blue};
                const std::span<std::int16_t> out[3] = {p.red, p.green, p.blue};
                for (std::size_t c = 0; c < 3; ++c) {
                    std::int16_t* __restrict values = out[c].data();
                    const int colourOf = colours[c];
                    for (std::size_t i = 0; i < count; ++i)
                        values[i] = roundInRange<std::int16_t>(levels[i] * colourOf);
                }
            });
            return;
        }
        // Two periods drawn for every pixel, in the order of the pixels.
        RandomGenerator& rnd = context().random;
        blendPattern<RowOrder::TopToBottom>(rect, weight, [&](int x, int y) {
            const double p1 = roundTo<std::int32_t>(horizontal * rnd.next() + 1);
            const double p2 = roundTo<std::int32_t>(vertical * rnd.next() + 1);
            return colour.at(x, y, p1, p2);
        });
    });
}

} // namespace lumiran
