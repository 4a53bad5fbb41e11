// The merges that combine each document pixel with the kept image's pixel
// at the same place.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <cstdlib>

namespace lumiran {

using composition::rgb16;

const Surface& Class_Composition::keptImage() {
    static const Surface none;
    const Surface* kept = context().composeImage;
    return kept != nullptr ? *kept : none;
}

ProcessRect Class_Composition::sharedArea(std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    const Surface& kept = keptImage();
    const int width = std::min(kept.width(), ImageBits.width());
    const int height = std::min(kept.height(), ImageBits.height());
    ProcessRect area;
    area.left = static_cast<std::int16_t>(std::max<int>(left, 0));
    area.top = static_cast<std::int16_t>(std::max<int>(top, 0));
    area.right = static_cast<std::int16_t>(std::max<int>(area.left, std::min<int>(right, width)));
    area.bottom = static_cast<std::int16_t>(std::max<int>(area.top, std::min<int>(bottom, height)));
    return area;
}

template <typename ChannelRule>
void Class_Composition::mergeSelected(const ProcessRect& area, int selector,
                                      const ChannelRule& op) {
    if (selector == BrightnessSelector) {
        mergeRows(area, composition::BrightnessChannels<ChannelRule>{op});
        return;
    }
    using composition::MaskedChannels;
    switch (selectedChannels(selector)) {
    case AllChannels:
        mergeRows(area, MaskedChannels<ChannelRule, true, true, true>{op});
        break;
    case Red:
        mergeRows(area, MaskedChannels<ChannelRule, true, false, false>{op});
        break;
    case Green:
        mergeRows(area, MaskedChannels<ChannelRule, false, true, false>{op});
        break;
    case Blue:
        mergeRows(area, MaskedChannels<ChannelRule, false, false, true>{op});
        break;
    case Red | Green:
        mergeRows(area, MaskedChannels<ChannelRule, true, true, false>{op});
        break;
    case Green | Blue:
        mergeRows(area, MaskedChannels<ChannelRule, false, true, true>{op});
        break;
    case Red | Blue:
        mergeRows(area, MaskedChannels<ChannelRule, true, false, true>{op});
        break;
    default:
        // A row beyond the list selects nothing: the pixels only pass the tail.
        mergeRows(area, MaskedChannels<ChannelRule, false, false, false>{op});
        break;
    }
}

void Class_Composition::Composite_Mean(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (weight >= 0 && weight <= 10) {
            // The same rounding in integers: the sum is not negative, and a
            // remainder of 5 is the tie.
            const int w = weight;
            mergeSelected(area, type, [w](int c, int c1) {
                const int sum = w * c1 + (10 - w) * c;
                const int q = sum / 10, rem = sum % 10;
                return q + (rem > 5 || (rem == 5 && (q & 1) != 0) ? 1 : 0);
            });
            return;
        }
        // Any other 16-bit weight keeps the mean well inside an int.
        const double w = weight;
        mergeSelected(area, type, [w](int c, int c1) {
            return roundInRange<int>((w * c1 + (10 - w) * c) / 10);
        });
    });
}

void Class_Composition::Composite_Addition(std::uint8_t mode, std::uint8_t type, std::int16_t left,
                                           std::int16_t top, std::int16_t right,
                                           std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        switch (mode) {
        case 0:
            mergeSelected(area, type, [](int c, int c1) { return c + c1; });
            break;
        case 1:
            // The square is kept in 16 bits and wraps.
            mergeSelected(area, type, [](int c, int c1) {
                return std::abs(roundInRange<int>(255 - wrap16((c1 - c) * (c1 - c)) / 2.0));
            });
            break;
        case 2:
            mergeSelected(area, type, [](int c, int c1) {
                const double d = c - c1;
                const int mixed = roundInRange<int>((c + c1) / 2.0 - d * d / 20);
                return c == c1 ? 255 : mixed;
            });
            break;
        default:
            break;
        }
    });
}

void Class_Composition::Composite_Subtraction(std::uint8_t mode, std::uint8_t type,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (mode == 0) {
            mergeSelected(area, type, [](int c, int c1) { return c - c1; });
        } else if (mode <= 4) {
            const int factor = mode;
            mergeSelected(area, type,
                          [factor](int c, int c1) { return wrap16(std::abs(c - c1) * factor); });
        } else if (mode == 5) {
            // A product kept within the channel's range, as a multiply blend:
            // white leaves the other picture as it is.
            // round(c * c1 / 255) in integers: 255 is odd, so there is no tie.
            mergeSelected(area, type, [](int c, int c1) {
                const int product = c * c1;
                const int q = product / 255;
                return q + (2 * (product - q * 255) > 255 ? 1 : 0);
            });
        } else if (mode == 6) {
            mergeSelected(area, type, [](int c, int c1) {
                return roundInRange<int>(static_cast<double>(c) / std::max(c1, 1));
            });
        }
    });
}

void Class_Composition::Composite_Exchange(std::uint8_t type, std::int16_t S2, std::int16_t S1,
                                           std::int16_t left, std::int16_t top, std::int16_t right,
                                           std::int16_t bottom) {
    guarded([&] {
        const int low = S1, high = S2;
        auto inBand = [low, high](int v) { return low < v && v < high; };
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (type == 0) {
            mergeRows(area, [inBand](int r, int g, int b, int r1, int g1, int b1) {
                const bool swap = inBand((r + g + b) / 3);
                return rgb16(swap ? r1 : r, swap ? g1 : g, swap ? b1 : b);
            });
        } else if (type == 1) {
            mergeRows(area, [inBand](int r, int g, int b, int r1, int g1, int b1) {
                return rgb16(inBand(r) ? r1 : r, inBand(g) ? g1 : g, inBand(b) ? b1 : b);
            });
        }
    });
}

void Class_Composition::Composite_Exchange2(std::uint8_t type, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom,
                                            std::int16_t red, std::int16_t green,
                                            std::int16_t blue) {
    guarded([&] {
        const int cr = red, cg = green, cb = blue;
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (type == 0) {
            mergeRows(area, [=](int r, int g, int b, int r1, int g1, int b1) {
                const bool same = (r + g + b) / 3 == (r1 + g1 + b1) / 3;
                return rgb16(same ? cr : r, same ? cg : g, same ? cb : b);
            });
        } else if (type == 1) {
            mergeRows(area, [=](int r, int g, int b, int r1, int g1, int b1) {
                return rgb16(r == r1 ? cr : r, g == g1 ? cg : g, b == b1 ? cb : b);
            });
        }
    });
}

namespace {

// The threshold of "合成　比較": the compare value stays, anything else
// becomes coefficient minus value; then the bit operation of the mode.
template <typename Combine>
struct Compared {
    int compare, coefficient;
    Combine combine;

    [[nodiscard]] int threshold(int v) const { return v == compare ? v : coefficient - v; }
    [[nodiscard]] Rgb16 operator()(int r, int g, int b, int r1, int g1, int b1) const {
        return rgb16(wrap16(combine(threshold(r), threshold(r1))),
                     wrap16(combine(threshold(g), threshold(g1))),
                     wrap16(combine(threshold(b), threshold(b1))));
    }
};

template <typename Combine>
Compared<Combine> compared(int compare, int coefficient, Combine combine) {
    return {compare, coefficient, combine};
}

} // namespace

void Class_Composition::Composite_Morphological(std::uint8_t mode, std::int16_t compare,
                                                std::int16_t coefficient, std::int16_t left,
                                                std::int16_t top, std::int16_t right,
                                                std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        switch (mode) {
        case 0:
            mergeRows(area, compared(compare, coefficient, [](int a, int k) { return a & k; }));
            break;
        case 1:
            mergeRows(area, compared(compare, coefficient, [](int a, int k) { return a | k; }));
            break;
        case 2:
            mergeRows(area, compared(compare, coefficient, [](int a, int k) { return a ^ k; }));
            break;
        case 3:
            mergeRows(area, compared(compare, coefficient, [](int a, int k) { return ~(a ^ k); }));
            break;
        default:
            break;
        }
    });
}

} // namespace lumiran
