// The colour sways and FF3: a sine-cosine field per channel over bent
// coordinates.
#include "effects/texture/pattern/pattern_frame.h"
#include "effects/texture/pattern/sway_laws.h"

#include <span>
#include <vector>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

// One channel's field, round(((sin(n u pi / A) + 1) / 2) ((cos(n v pi / W)
// + 1) / 2) 255): the sine's divisor is the amplitude and the cosine's the
// wave, as written. Where u follows x alone its factor is worked out once a
// column, where v follows y alone once a row.
class ChannelField {
  public:
    ChannelField(const pattern::SwayLaw& law, double amplitude, double wave, double degree,
                 int firstColumn, int endColumn)
        : field_(law, amplitude, wave, firstColumn, endColumn), amplitude_(amplitude), wave_(wave),
          degree_(degree), firstColumn_(firstColumn) {
        if (!field_.uFollowsX()) return;
        const pattern::SwayField::RowTerms none{};
        for (int x = firstColumn; x < endColumn; ++x)
            columnAcross_.push_back(across(field_.at(x, 0, none).u));
    }

    // The row's channel values for the columns first..end-1.
    void fillRow(int y, int first, int end, std::span<std::int16_t> out) const {
        const pattern::SwayField::RowTerms row = field_.rowTerms(y);
        const bool rowDown = field_.vFollowsY();
        const double down0 = rowDown ? down(field_.at(first, y, row).v) : 0;
        for (int x = first; x < end; ++x) {
            double a = 0, d = down0;
            if (columnAcross_.empty() || !rowDown) {
                const pattern::Coordinates p = field_.at(x, y, row);
                a = columnAcross_.empty() ? across(p.u) : 0;
                if (!rowDown) d = down(p.v);
            }
            if (!columnAcross_.empty())
                a = columnAcross_[static_cast<std::size_t>(x - firstColumn_)];
            out[static_cast<std::size_t>(x - first)] = roundTo<std::int16_t>(a * d * 255);
        }
    }

  private:
    [[nodiscard]] double across(double u) const {
        return (std::sin(degree_ * u * Pi / amplitude_) + 1) / 2;
    }
    [[nodiscard]] double down(double v) const {
        return (std::cos(degree_ * v * Pi / wave_) + 1) / 2;
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
