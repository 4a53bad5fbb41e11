#include "effects/colour/gradation/gradation_tone.h"

#include "engine/colour_models.h"
#include "engine/numeric.h"
#include "engine/pixel_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lumiran::gradation {
namespace {

constexpr double Pi = 3.14159;

std::int16_t limit(long long v) {
    return static_cast<std::int16_t>(std::clamp<long long>(v, 0, 255));
}

// The period's divisor by tone: the colour values the walk has to cross.
double divisor(std::uint8_t tone, const MaxMin& extremes) {
    if (tone == 1) return extremes.max + 1;
    if (tone == 6) return 360;
    return 256 - extremes.min;
}

// The three cyclic tones: sine, cosine, and the two mixed.
double wave(std::uint8_t tone, double a) {
    if (tone == 3) return std::sin(a);
    if (tone == 4) return std::cos(a);
    return (std::sin(a) + std::cos(a)) / 2;
}

} // namespace

ToneStep::ToneStep(std::uint8_t tone, int interval, int red, int green, int blue,
                   long long walkLength)
    : tone_(tone), interval_(std::abs(interval)), red_(static_cast<std::int16_t>(red)),
      green_(static_cast<std::int16_t>(green)), blue_(static_cast<std::int16_t>(blue)) {
    const MaxMin extremes = MaxMinOfThree(red, green, blue);
    period_ = roundTo<std::int32_t>(static_cast<double>(walkLength) / divisor(tone, extremes));
    if (period_ >= 1) --period_;
    if (tone == 1) sign_[0] = sign_[1] = sign_[2] = -1;
    if (tone == 6) {
        const Hsv hsv = rgbToHsv(red, green, blue);
        hue_ = hsv.hue;
        saturation_ = hsv.saturation;
        value_ = extremes.max / 255.0;
    }
}

bool ToneStep::counterDue() {
    if (counter_ < period_) {
        ++counter_;
        return false;
    }
    counter_ = 0;
    return true;
}

void ToneStep::step(long long position) {
    std::int16_t* channels[3] = {&red_, &green_, &blue_};
    switch (tone_) {
    case 0:
    case 1:
        if (!counterDue()) return;
        for (int i = 0; i < 3; ++i) {
            *channels[i] = limit(*channels[i] + sign_[i] * interval_);
        }
        return;
    case 2:
        if (!counterDue()) return;
        // Each channel turns at either end, so the colour runs back and forth.
        for (int i = 0; i < 3; ++i) {
            if (*channels[i] >= 255) sign_[i] = -1;
            if (*channels[i] < 1) sign_[i] = 1;
            *channels[i] = limit(*channels[i] + sign_[i] * interval_);
        }
        return;
    case 3:
    case 4:
    case 5: {
        const double p = static_cast<double>(position);
        const double a = std::sqrt(2 * p * p) / 180 * Pi;
        for (int i = 0; i < 3; ++i) {
            const double sum = *channels[i] + interval_ * wave(tone_, (i + 1) * a);
            *channels[i] = limit(static_cast<long long>(std::floor(sum)));
        }
        return;
    }
    case 6: {
        if (!counterDue()) return;
        hue_ += interval_;
        if (hue_ >= 360) hue_ -= 360;
        const Rgb16 c = HsvToRgb(hue_, saturation_, value_);
        red_ = c.red;
        green_ = c.green;
        blue_ = c.blue;
        return;
    }
    default:
        return;
    }
}

} // namespace lumiran::gradation
