#pragma once

// The colour of a gradation's walk, stepped once per position by its tone.
#include "engine/calculation.h"

#include <cstdint>

namespace lumiran::gradation {

class ToneStep {
  public:
    // interval: the step's magnitude; walkLength: the positions of the walk.
    ToneStep(std::uint8_t tone, int interval, int red, int green, int blue, long long walkLength);

    [[nodiscard]] Rgb16 colour() const { return {red_, green_, blue_}; }
    [[nodiscard]] long long period() const { return period_; }
    // After the line of position p has been drawn.
    void step(long long position);

  private:
    bool counterDue();

    std::uint8_t tone_;
    int interval_;
    std::int16_t red_;
    std::int16_t green_;
    std::int16_t blue_;
    long long period_ = 0;
    long long counter_ = 0;
    int sign_[3] = {1, 1, 1};
    double hue_ = 0;
    double saturation_ = 0;
    double value_ = 0;
};

} // namespace lumiran::gradation
