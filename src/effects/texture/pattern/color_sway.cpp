// The colour sways and FF3: a sine-cosine field per channel over bent
// coordinates.
#include "effects/texture/pattern/pattern_frame.h"
#include "effects/texture/pattern/sway_laws.h"

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

struct ChannelWave {
    double amplitude = 1;
    double wave = 1;
};

// round(((sin(n u pi / A) + 1) / 2) ((cos(n v pi / W) + 1) / 2) 255): the
// sine's divisor is the amplitude and the cosine's the wave, as written.
std::int16_t swayChannel(const pattern::SwayLaw& law, const ChannelWave& c, double degree, int x,
                         int y) {
    const pattern::Coordinates p = pattern::applyLaw(law, x, y, c.amplitude, c.wave);
    const double across = (std::sin(degree * p.u * Pi / c.amplitude) + 1) / 2;
    const double down = (std::cos(degree * p.v * Pi / c.wave) + 1) / 2;
    return roundTo<std::int16_t>(across * down * 255);
}

} // namespace

void Class_Pattern::colorSway(int sway, std::int16_t weight, std::uint8_t type,
                              const ProcessRect& rect, const std::int16_t (&amplitudeAndWave)[6],
                              double degree) {
    guarded([&] {
        const std::span<const pattern::SwayLaw> laws = pattern::swayLaws(sway);
        // A type beyond the list leaves u and v at x and y.
        const pattern::SwayLaw law = type < laws.size() ? laws[type] : pattern::SwayLaw{};
        const ChannelWave channels[3] = {{amplitudeAndWave[0], amplitudeAndWave[1]},
                                         {amplitudeAndWave[2], amplitudeAndWave[3]},
                                         {amplitudeAndWave[4], amplitudeAndWave[5]}};
        blendPattern(rect, weight, [&](int x, int y) {
            return Rgb16{swayChannel(law, channels[0], degree, x, y),
                         swayChannel(law, channels[1], degree, x, y),
                         swayChannel(law, channels[2], degree, x, y)};
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
