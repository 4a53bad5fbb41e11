// Smoke: sine and cosine of x / p1 and y / p2, without pi.
#include "effects/texture/pattern/pattern_frame.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
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

    // 0..1, or NaN where a period of 0 made the waves NaN.
    [[nodiscard]] double level(double product) const {
        return form == 0 ? (product + 1) / 2 : product > DotLevel ? 1.0 : 0.0;
    }
};

// The waves of one axis for every period a draw can give, a row of periods
// per coordinate, so that a pixel's draws pick from a line or two of cache.
// Where that table would be too large the waves are worked out per pixel.
class PeriodWaves {
  public:
    // Periods are round(slider Rnd + 1) for Rnd in [0, 1).
    PeriodWaves(int first, int end, int slider, bool sine)
        : first_(first), lowest_(std::min(1, slider + 1)), sine_(sine) {
        const auto periods = static_cast<std::size_t>(std::abs(slider) + 1);
        const auto coordinates = static_cast<std::size_t>(std::max(end - first, 0));
        if (periods * coordinates > MaxValues) return;
        periods_ = periods;
        values_.resize(periods * coordinates);
        for (std::size_t c = 0; c < coordinates; ++c) {
            for (std::size_t k = 0; k < periods; ++k)
                values_[c * periods + k] =
                    wave(first + static_cast<int>(c), lowest_ + static_cast<int>(k));
        }
    }
    [[nodiscard]] bool tabled() const { return periods_ != 0; }
    // The waves of coordinate v, indexed by period - lowest().
    [[nodiscard]] const double* at(int v) const {
        return values_.data() + static_cast<std::size_t>(v - first_) * periods_;
    }
    [[nodiscard]] int lowest() const { return lowest_; }
    [[nodiscard]] double wave(int v, int period) const {
        const double angle = v / static_cast<double>(period);
        return sine_ ? std::sin(angle) : std::cos(angle);
    }

  private:
    static constexpr std::size_t MaxValues = std::size_t{1} << 22;
    int first_;
    int lowest_;
    bool sine_;
    std::size_t periods_ = 0;
    std::vector<double> values_;
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
        // Two periods drawn for every pixel in the order of the pixels: each
        // row's draws stand at a known place in the sequence, so rows take
        // them from there on any thread, and the generator then moves on
        // past the rows made.
        const Span s = spanOf(rect);
        const int acrossSlider = colour.waves.firstAcross ? horizontal : vertical;
        const int downSlider = colour.waves.firstAcross ? vertical : horizontal;
        const PeriodWaves across(s.firstColumn, s.endColumn, acrossSlider,
                                 colour.waves.firstAcross ? colour.waves.firstSine
                                                          : colour.waves.secondSine);
        const PeriodWaves down(s.firstRow, s.endRow, downSlider,
                               colour.waves.firstAcross ? colour.waves.secondSine
                                                        : colour.waves.firstSine);
        const std::uint64_t rowDraws =
            2 * static_cast<std::uint64_t>(std::max(s.endColumn - s.firstColumn, 0));
        RandomGenerator& generator = context().random;
        const RandomGenerator start = generator;
        std::atomic<std::uint64_t> rowsMade{0};
        // Also when a row fails or the run is cancelled.
        const struct MoveOn {
            RandomGenerator& random;
            const std::atomic<std::uint64_t>& rows;
            std::uint64_t rowDraws;
            ~MoveOn() { random.skip(rows.load() * rowDraws); }
        } moveOn{generator, rowsMade, rowDraws};
        const double h = horizontal, v = vertical;
        // Draw 2i gives the first period (from "水平"), 2i + 1 the second.
        const int acrossDraw = colour.waves.firstAcross ? 0 : 1;
        const double acrossScale = colour.waves.firstAcross ? h : v,
                     downScale = colour.waves.firstAcross ? v : h;
        blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
            const auto count = static_cast<std::size_t>(end - first);
            const auto draws = std::make_unique_for_overwrite<double[]>(2 * count);
            start.ahead(static_cast<std::uint64_t>(y - s.firstRow) * rowDraws)
                .take({draws.get(), 2 * count});
            const auto t = std::make_unique_for_overwrite<double[]>(count);
            const double* __restrict d = draws.get();
            const int lowA = across.lowest(), lowD = down.lowest();
            const double* downWaves = down.tabled() ? down.at(y) : nullptr;
            for (std::size_t i = 0; i < count; ++i) {
                const int x = first + static_cast<int>(i);
                const auto pa =
                    static_cast<int>(roundHalfEvenInRange(acrossScale * d[2 * i + acrossDraw] + 1));
                const auto pd = static_cast<int>(
                    roundHalfEvenInRange(downScale * d[2 * i + 1 - acrossDraw] + 1));
                const double a = across.tabled() ? across.at(x)[pa - lowA] : across.wave(x, pa);
                const double b = downWaves != nullptr ? downWaves[pd - lowD] : down.wave(y, pd);
                const double product = a * b;
                t[i] = form == 0 ? (product + 1) / 2 : product > DotLevel ? 1.0 : 0.0;
            }
            bool notANumber = false;
            for (std::size_t i = 0; i < count; ++i)
                notANumber |= t[i] != t[i];
            rowsMade.fetch_add(1, std::memory_order_relaxed);
            if (notANumber) throw EffectError::overflow();
            const int colours[3] = {red, green, blue};
            const std::span<std::int16_t> out[3] = {p.red, p.green, p.blue};
            for (std::size_t c = 0; c < 3; ++c) {
                std::int16_t* __restrict values = out[c].data();
                const double* __restrict levels = t.get();
                const int colourOf = colours[c];
                for (std::size_t i = 0; i < count; ++i)
                    values[i] = roundInRange<std::int16_t>(levels[i] * colourOf);
            }
        });
    });
}

} // namespace lumiran
