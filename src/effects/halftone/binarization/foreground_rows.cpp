#include "effects/halftone/binarization/foreground_rows.h"

#include "effects/halftone/binarization/binarization_support.h"

#include <climits>

namespace lumiran {
namespace {

enum Measure { Luminance = 0, Average = 1, Red = 2, Green = 3, Blue = 4 };

// Keys: the luminance scaled by 1000 (299 r + 587 g + 114 b, exact), the
// sum r + g + b for the average (round(s / 3) is (s + 1) / 3: thirds never
// round on a half), a channel itself, and 0 for any other measure.
template <typename Key>
bool classifyKeys(const Pixel* __restrict in, int n, std::uint8_t* __restrict out, int low,
                  int high, int tie, Key key) {
    unsigned ties = 0;
    for (int i = 0; i < n; ++i) {
        const int k = key(in[i]);
        out[i] = static_cast<std::uint8_t>((k >= low) & (k <= high));
        ties |= static_cast<unsigned>(k == tie);
    }
    return ties != 0;
}

int luminanceKey(Pixel p) {
    return 299 * redOf(p) + 587 * greenOf(p) + 114 * blueOf(p);
}

} // namespace

ForegroundRule::ForegroundRule(int measure, int polarity, int threshold)
    : measure_(measure), polarity_(polarity), threshold_(threshold), low_(INT_MIN), high_(INT_MAX),
      tie_(INT_MIN) {
    const bool atOrAbove = polarity == 0;
    switch (measure) {
    case Luminance:
        // round(v) >= T exactly when 1000 v > 1000 T - 500, and a sum one
        // away from the half is far beyond the floating error.
        if (atOrAbove) {
            low_ = 1000 * threshold - 499;
            tie_ = 1000 * threshold - 500;
        } else {
            high_ = 1000 * threshold + 499;
            tie_ = 1000 * threshold + 500;
        }
        break;
    case Average:
        // (s + 1) / 3 >= T  <=>  s >= 3 T - 1;  (s + 1) / 3 <= T  <=>  s <= 3 T + 1.
        if (atOrAbove) {
            low_ = 3 * threshold - 1;
        } else {
            high_ = 3 * threshold + 1;
        }
        break;
    default:
        if (atOrAbove) {
            low_ = threshold;
        } else {
            high_ = threshold;
        }
        break;
    }
}

void ForegroundRule::classify(const Pixel* in, int n, std::uint8_t* out) const {
    switch (measure_) {
    case Luminance:
        if (classifyKeys(in, n, out, low_, high_, tie_, luminanceKey)) {
            for (int i = 0; i < n; ++i) {
                if (luminanceKey(in[i]) != tie_) continue;
                const int v = bilevel::measured(Luminance, in[i]);
                out[i] =
                    static_cast<std::uint8_t>(polarity_ == 0 ? v >= threshold_ : v <= threshold_);
            }
        }
        break;
    case Average:
        classifyKeys(in, n, out, low_, high_, tie_,
                     [](Pixel p) { return redOf(p) + greenOf(p) + blueOf(p); });
        break;
    case Red:
        classifyKeys(in, n, out, low_, high_, tie_, [](Pixel p) { return redOf(p); });
        break;
    case Green:
        classifyKeys(in, n, out, low_, high_, tie_, [](Pixel p) { return greenOf(p); });
        break;
    case Blue:
        classifyKeys(in, n, out, low_, high_, tie_, [](Pixel p) { return blueOf(p); });
        break;
    default:
        classifyKeys(in, n, out, low_, high_, tie_, [](Pixel) { return 0; });
        break;
    }
}

} // namespace lumiran
