// The colour sways and FF3: a sine-cosine field per channel over bent
// coordinates.
#include "effects/geometry/vector_trig.h"
#include "effects/texture/pattern/pattern_frame.h"
#include "effects/texture/pattern/sway_laws.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

// One channel's field, round(((sin(n u pi / A) + 1) / 2) ((cos(n v pi / W)
// + 1) / 2) 255): the sine's divisor is the amplitude and the cosine's the
// wave, as written. Where u follows x alone its factor is worked out once a
// column, where v follows y alone once a row, with the library's functions.
// The others come from the vector sine and cosine, a few units in the last
// place from the library's: the product moves by far less than a
// millionth, so only a pixel that close to a half (or not a number) can
// round otherwise, and it is redone with the library's. Rows go in runs of
// columns held on the stack: a heap buffer a row costs more than the sines
// where the allocator hands pages back and forth.
class ChannelField {
  public:
    static constexpr std::size_t Run = pattern::SwayField::RunColumns;

    ChannelField(const pattern::SwayLaw& law, double amplitude, double wave, double degree,
                 int firstColumn, int endColumn)
        : field_(law, amplitude, wave, firstColumn, endColumn), amplitude_(amplitude), wave_(wave),
          degree_(degree), firstColumn_(firstColumn) {
        if (!field_.uFollowsX()) return;
        double u[Run], v[Run];
        for (int first = firstColumn; first < endColumn; first += static_cast<int>(Run)) {
            const int end = std::min(endColumn, first + static_cast<int>(Run));
            const auto n = static_cast<std::size_t>(end - first);
            field_.row(0, first, end, {u, n}, {v, n});
            for (std::size_t i = 0; i < n; ++i)
                columnAcross_.push_back(across(u[i]));
        }
    }

    // The row's channel values for the columns first..end-1.
    void fillRow(int y, int first, int end, std::span<std::int16_t> out) const {
        for (int from = first; from < end; from += static_cast<int>(Run)) {
            const int to = std::min(end, from + static_cast<int>(Run));
            fillRun(y, from, to, out.subspan(static_cast<std::size_t>(from - first)));
        }
    }

  private:
    // At most Run columns.
    void fillRun(int y, int first, int end, std::span<std::int16_t> out) const {
        const auto n = static_cast<std::size_t>(end - first);
        double u[Run], v[Run], a[Run], d[Run];
        std::uint8_t unsure[Run];
        field_.row(y, first, end, {u, n}, {v, n});
        if (!columnAcross_.empty()) {
            const double* table = columnAcross_.data() + (first - firstColumn_);
            std::copy(table, table + n, a);
        } else {
            for (std::size_t i = 0; i < n; ++i)
                a[i] = degree_ * u[i] * Pi / amplitude_;
            trig::sine({a, n}, {a, n});
            for (std::size_t i = 0; i < n; ++i)
                a[i] = (a[i] + 1) / 2;
        }
        const bool rowDown = field_.vFollowsY();
        if (rowDown) {
            std::fill(d, d + n, n > 0 ? down(v[0]) : 0.0);
        } else {
            for (std::size_t i = 0; i < n; ++i)
                d[i] = degree_ * v[i] * Pi / wave_;
            trig::cosine({d, n}, {d, n});
            for (std::size_t i = 0; i < n; ++i)
                d[i] = (d[i] + 1) / 2;
        }
        if (roundRow(a, d, out.data(), unsure, n) == 0) return;
        for (std::size_t i = 0; i < n; ++i) {
            if (unsure[i] == 0) continue;
            const double ai = columnAcross_.empty() ? across(u[i]) : a[i];
            const double di = rowDown ? d[i] : down(v[i]);
            out[i] = roundTo<std::int16_t>(ai * di * 255);
        }
    }

    [[nodiscard]] double across(double u) const {
        return (std::sin(degree_ * u * Pi / amplitude_) + 1) / 2;
    }
    [[nodiscard]] double down(double v) const {
        return (std::cos(degree_ * v * Pi / wave_) + 1) / 2;
    }

    // round(a d 255) half to even where it lies clear of a half; the others
    // (and NaN) are flagged in unsure. Returns how many are.
    static std::size_t roundRow(const double* __restrict a, const double* __restrict d,
                                std::int16_t* __restrict out, std::uint8_t* __restrict unsure,
                                std::size_t n) {
        constexpr double Margin = 1e-7;
        std::size_t redo = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const double q = a[i] * d[i] * 255;
            const double whole = roundHalfEvenInRange(q);
            const bool clear = std::abs(std::abs(q - whole) - 0.5) > Margin;
            out[i] = static_cast<std::int16_t>(clear ? whole : 0.0);
            unsure[i] = static_cast<std::uint8_t>(!clear);
            redo += static_cast<std::size_t>(!clear);
        }
        return redo;
    }

    pattern::SwayField field_;
    double amplitude_;
    double wave_;
    double degree_;
    int firstColumn_;
    std::vector<double> columnAcross_;
};

} // namespace

void Class_Pattern::colorSway(int sway, std::int16_t weight, std::uint8_t type,
                              const ProcessRect& rect, const std::int16_t (&amplitudeAndWave)[6],
                              double degree) {
    guarded([&] {
        const std::span<const pattern::SwayLaw> laws = pattern::swayLaws(sway);
        // A type beyond the list leaves u and v at x and y.
        const pattern::SwayLaw law = type < laws.size() ? laws[type] : pattern::SwayLaw{};
        const Span s = spanOf(rect);
        auto channel = [&](int c) {
            return ChannelField(law, amplitudeAndWave[2 * c], amplitudeAndWave[2 * c + 1], degree,
                                s.firstColumn, s.endColumn);
        };
        const ChannelField channels[3] = {channel(0), channel(1), channel(2)};
        blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
            channels[0].fillRow(y, first, end, p.red);
            channels[1].fillRow(y, first, end, p.green);
            channels[2].fillRow(y, first, end, p.blue);
        });
    });
}

void Class_Pattern::Color_Sway1(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom,
                                std::int16_t redAmplitude, std::int16_t redWave,
                                std::int16_t greenAmplitude, std::int16_t greenWave,
                                std::int16_t blueAmplitude, std::int16_t blueWave) {
    colorSway(1, weight, type, {left, top, right, bottom},
              {redAmplitude, redWave, greenAmplitude, greenWave, blueAmplitude, blueWave});
}

void Class_Pattern::Color_Sway2(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom,
                                std::int16_t redAmplitude, std::int16_t redWave,
                                std::int16_t greenAmplitude, std::int16_t greenWave,
                                std::int16_t blueAmplitude, std::int16_t blueWave) {
    colorSway(2, weight, type, {left, top, right, bottom},
              {redAmplitude, redWave, greenAmplitude, greenWave, blueAmplitude, blueWave});
}

void Class_Pattern::Color_Sway3(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom,
                                std::int16_t redAmplitude, std::int16_t redWave,
                                std::int16_t greenAmplitude, std::int16_t greenWave,
                                std::int16_t blueAmplitude, std::int16_t blueWave) {
    colorSway(3, weight, type, {left, top, right, bottom},
              {redAmplitude, redWave, greenAmplitude, greenWave, blueAmplitude, blueWave});
}

void Class_Pattern::Color_Sway4(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom,
                                std::int16_t redAmplitude, std::int16_t redWave,
                                std::int16_t greenAmplitude, std::int16_t greenWave,
                                std::int16_t blueAmplitude, std::int16_t blueWave) {
    colorSway(4, weight, type, {left, top, right, bottom},
              {redAmplitude, redWave, greenAmplitude, greenWave, blueAmplitude, blueWave});
}

void Class_Pattern::FF3(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
                        std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
                        std::int16_t blueAmplitude, std::int16_t blueWave, double degree) {
    colorSway(1, weight, type, {left, top, right, bottom},
              {redAmplitude, redWave, greenAmplitude, greenWave, blueAmplitude, blueWave}, degree);
}

} // namespace lumiran
