#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_memo.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

// The "operation" values: a channel below its operand gets the operand added.
constexpr int raiseBelow(int channel, int operand) {
    return channel < operand ? channel + operand : channel;
}

Rgb16 absolute(Rgb16 v) {
    return Channels{std::abs(v.red), std::abs(v.green), std::abs(v.blue)}.fields();
}

// As std::clamp, in a form the vectoriser takes.
double limitToUnit(double value) {
    return std::min(std::max(value, 0.0), 1.0);
}

// A centre given in percent of the rectangle.
int centreOf(std::int16_t low, std::int16_t high, std::int16_t percent) {
    return roundTo<std::int16_t>(wrap16(high - low) / 100.0 * percent + low);
}

// Hue, split into its sextant (0..5) and the rise u within it, 0..255.
struct Sextant {
    int index = 0;
    double rise = 0;
};

Sextant sextantOf(double hue) {
    int index = 5;
    if (hue < 60) {
        index = 0;
    } else if (hue < 120) {
        index = 1;
    } else if (hue < 180) {
        index = 2;
    } else if (hue < 240) {
        index = 3;
    } else if (hue < 300) {
        index = 4;
    }
    return {index, (hue - index * 60) / 60 * 255};
}

int rounded(double value) {
    return roundInRange<std::int32_t>(value);
}

// Mode 0 above the threshold: two channels set by the sextant of the hue,
// the third keeps its source value.
Rgb16 hueColours(double hue, int r, int g, int b) {
    const Sextant s = sextantOf(hue);
    const int up = rounded(s.rise);
    const int down = rounded(255 - s.rise);
    switch (s.index) {
    case 0:
        return Channels{255, up, b}.fields();
    case 1:
        return Channels{down, 255, b}.fields();
    case 2:
        return Channels{r, 255, up}.fields();
    case 3:
        return Channels{r, down, 255}.fields();
    case 4:
        return Channels{up, g, 255}.fields();
    default:
        return Channels{255, g, down}.fields();
    }
}

// Mode 1: rising in the even sextants, falling in the odd ones.
int hueTriangle(double hue) {
    const Sextant s = sextantOf(hue);
    return s.index % 2 == 0 ? rounded(s.rise) : rounded(255 - s.rise);
}

Rgb16 grey(int v) {
    return Channels{v, v, v}.fields();
}

} // namespace

void Class_ColorOp::HSVInvert(std::int16_t left, std::int16_t top, std::int16_t right,
                              std::int16_t bottom, std::uint8_t method, std::int16_t hue,
                              std::int16_t saturation, std::int16_t intensity,
                              std::int16_t redOperand, std::int16_t greenOperand,
                              std::int16_t blueOperand) {
    if (method != 0) return;
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const double saturationShift = static_cast<float>(saturation / 255.0);
        // Without a branch, so that the loop runs on the vector unit.
        mapPixels<ResultTail::Clamp>(rect, [=](int r, int g, int b) {
            const Hsv hsv = rgbToHsvBranchless(r, g, b);
            const int value = std::min(std::abs(intensity - hsv.value), 255);
            const double turned = hue - hsv.hue;
            // A negative hue is left as it is and comes out black.
            const double h = turned > 360 ? turned - 360 : turned;
            const double s = limitToUnit(saturationShift - hsv.saturation);
            const Rgb16 v = hsvToRgbInRange(h, s, value / 255.0);
            return absolute(Channels{raiseBelow(v.red, redOperand),
                                     raiseBelow(v.green, greenOperand),
                                     raiseBelow(v.blue, blueOperand)}
                                .fields());
        });
    });
}

namespace {

// HSVCycle's terms by column, worked out once a row: the angle and its arc
// tangent depend on dx only through dx^2, so one evaluation serves the
// columns on both sides of the centre. The arc tangent only scales the
// intensity and saturation rises, so with both at 0 (the dialog's
// defaults) the rises are 0 whatever it gives and it is not called.
class HsvCycleTerms {
  public:
    HsvCycleTerms(int cx, int cy, int firstColumn, int endColumn, double maxAngle, std::int16_t hue,
                  std::int16_t saturation, std::int16_t intensity)
        : cx_(cx), cy_(cy), firstColumn_(firstColumn), maxAngle_(maxAngle), hue_(hue),
          saturation_(saturation), intensity_(intensity),
          reach_(std::max(std::abs(cx - firstColumn), std::abs(cx - (endColumn - 1))) + 1),
          angle_(static_cast<std::size_t>(std::max(reach_, 0))), sectorByDistance_(angle_.size()),
          riseByDistance_(angle_.size()), intensityByDistance_(angle_.size()),
          saturationByDistance_(angle_.size()),
          intensityRise_(static_cast<std::size_t>(std::max(endColumn - firstColumn, 0))),
          saturationRise_(intensityRise_.size()), degrees_(intensityRise_.size()),
          sector_(intensityRise_.size()), rise_(intensityRise_.size()) {}

    void startRow(int y) {
        const double dy = cy_ - y;
        const double dy2 = dy * dy;
        const auto reach = static_cast<std::size_t>(reach_);
        double* __restrict angle = angle_.data();
        float* __restrict sector = sectorByDistance_.data();
        double* __restrict rise = riseByDistance_.data();
        // Loops the compiler vectorises (built without errno for maths calls).
        for (std::size_t k = 0; k < reach; ++k) {
            const double dx = static_cast<double>(k);
            angle[k] = std::sqrt(dx * dx + dy2) / 180 * 3.1415;
        }
        for (std::size_t k = 0; k < reach; ++k) {
            double h = hue_ * angle[k] / maxAngle_;
            h = h > 360 ? h - 360 : h;
            const HueSector hs = hueSectorOf(h);
            sector[k] = hs.sector;
            rise[k] = hs.rise;
            // Now the hue in degrees, for the scalar conversion.
            angle[k] = h;
        }
        double* __restrict intensityRise = intensityByDistance_.data();
        double* __restrict saturationRise = saturationByDistance_.data();
        if (intensity_ != 0 || saturation_ != 0) {
            for (std::size_t k = 0; k < reach; ++k) {
                const double dx = static_cast<double>(k);
                const double a = std::atan(std::sqrt(dx * dx + dy2) / 180 * 3.1415);
                intensityRise[k] = 2 * intensity_ * a;
                saturationRise[k] = saturation_ / 255.0 * 3 * a;
            }
        }
        const int centre = cx_ - firstColumn_;
        spread(angle, degrees_, centre);
        spread(sector, sector_, centre);
        spread(rise, rise_, centre);
        spread(intensityRise, intensityRise_, centre);
        spread(saturationRise, saturationRise_, centre);
    }

    [[nodiscard]] bool scalarHue() const { return maxAngle_ == 0; }

  protected:
    // Columns cx - k and cx + k, where they lie in the row, take the term
    // of distance k.
    template <typename T>
    static void spread(const T* __restrict byDistance, std::vector<T>& byColumn, int centre) {
        T* __restrict to = byColumn.data();
        const int columns = static_cast<int>(byColumn.size());
        for (int i = 0, end = std::min(centre + 1, columns); i < end; ++i)
            to[i] = byDistance[centre - i];
        for (int i = std::max(centre, 0); i < columns; ++i)
            to[i] = byDistance[i - centre];
    }

    int cx_, cy_, firstColumn_;
    double maxAngle_;
    std::int16_t hue_, saturation_, intensity_;
    int reach_;
    // By distance k from the centre column.
    std::vector<double> angle_;
    std::vector<float> sectorByDistance_;
    std::vector<double> riseByDistance_;
    // Left at 0 when intensity and saturation are.
    std::vector<double> intensityByDistance_;
    std::vector<double> saturationByDistance_;
    // By column from firstColumn_.
    std::vector<double> intensityRise_;  // 2 intensity atan(angle)
    std::vector<double> saturationRise_; // saturation / 255 * 3 atan(angle)
    std::vector<double> degrees_;
    std::vector<float> sector_;
    std::vector<double> rise_;
};

// ScalarHue: a centre at (0, 0) makes the hue infinite or undefined, which
// only the scalar conversion takes as the rule does. Deciding it once for
// the loop keeps the other case free of branches, so it vectorises.
template <bool ScalarHue>
class HsvCycleRule : public HsvCycleTerms {
  public:
    using HsvCycleTerms::HsvCycleTerms;

    Rgb16 operator()(int x, int /*y*/, int& r, int& g, int& b) const {
        const auto i = static_cast<std::size_t>(x - firstColumn_);
        // Zero channels are raised to 1, for the blend as well.
        r = std::max(r, 1);
        g = std::max(g, 1);
        b = std::max(b, 1);
        const int mx = std::max(r, std::max(g, b));
        const int mn = std::min(r, std::min(g, b));
        const double s = static_cast<double>(mx - mn) / mx;
        // At most 2 * 255 * pi / 2 + 255: always a 16-bit value.
        const int value =
            std::min<int>(roundInRange<std::int16_t>(std::abs(intensityRise_[i] + mx)), 255);
        const double sat = std::min(std::abs(saturationRise_[i] + s), 1.0);
        if constexpr (ScalarHue) {
            return absolute(HsvToRgb(degrees_[i], sat, value / 255.0));
        } else {
            return absolute(hsvToRgbInSector({sector_[i], rise_[i]}, sat, value / 255.0));
        }
    }
};

} // namespace

void Class_ColorOp::HSVCycle(std::int16_t left, std::int16_t top, std::int16_t right,
                             std::int16_t bottom, std::uint8_t /*method*/, std::int16_t hue,
                             std::int16_t saturation, std::int16_t intensity, std::int16_t xPercent,
                             std::int16_t yPercent) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const int cx = centreOf(left, right, xPercent);
        const int cy = centreOf(top, bottom, yPercent);
        // From the centre's own coordinates, not the picture's diagonal: a
        // centre at (0, 0) gives 0, and the hue below becomes infinite.
        const double maxAngle =
            std::sqrt(static_cast<double>(cx) * cx + static_cast<double>(cy) * cy) / 180 * 3.1415;
        const Span span = spanOf(rect);
        const auto run = [&]<bool ScalarHue>() {
            mapPixels<ResultTail::Clamp>(rect, HsvCycleRule<ScalarHue>(cx, cy, span.firstColumn,
                                                                       span.endColumn, maxAngle,
                                                                       hue, saturation, intensity));
        };
        if (maxAngle == 0) {
            run.template operator()<true>();
        } else {
            run.template operator()<false>();
        }
    });
}

void Class_ColorOp::Hue(std::uint8_t mode, std::int16_t threshold, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // Every mode depends on the colour alone.
        auto run = [&](auto rule) { mapPixels<ResultTail::Clamp>(rect, ColourMemo(rule)); };
        switch (mode) {
        case 0:
            run([threshold](int r, int g, int b) {
                const int y = luminanceY(r, g, b);
                if (y < threshold) return grey(y);
                return hueColours(rgbToHsv(r, g, b).hue, r, g, b);
            });
            break;
        case 1:
            run([](int r, int g, int b) { return grey(hueTriangle(rgbToHsv(r, g, b).hue)); });
            break;
        case 2:
            run([](int r, int g, int b) {
                return grey(rounded(rgbToHsv(r, g, b).saturation * 255));
            });
            break;
        case 3:
            run([threshold](int r, int g, int b) {
                const double s = rgbToHsv(r, g, b).saturation * 255;
                auto channel = [&](int c) {
                    return roundTo<std::int16_t>(std::abs(s - c - threshold));
                };
                return Channels{channel(r), channel(g), channel(b)}.fields();
            });
            break;
        case 4:
            run([](int r, int g, int b) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                return grey(lightness(m.max, m.min));
            });
            break;
        default:
            // No mode matched: the result fields keep the source.
            run([](int r, int g, int b) { return Channels{r, g, b}.fields(); });
            break;
        }
    });
}

} // namespace lumiran
