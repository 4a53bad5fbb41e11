// The merges that combine each document pixel with the kept image's pixel
// at the same place.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <cstdlib>

namespace lumiran {

using composition::limitChannel;
using composition::SelectedChannels;

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

void Class_Composition::Composite_Mean(std::int16_t weight, std::uint8_t type, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const double w = weight;
        auto mean = [w](int c, int c1) {
            return roundTo<std::int16_t>((w * c1 + (10 - w) * c) / 10);
        };
        mergePixels(sharedArea(left, top, right, bottom),
                    [rule = SelectedChannels<decltype(mean)>{mean, type}](
                        int r, int g, int b, Pixel kept) { return rule(r, g, b, kept); });
    });
}

void Class_Composition::Composite_Addition(std::uint8_t mode, std::uint8_t type, std::int16_t left,
                                           std::int16_t top, std::int16_t right,
                                           std::int16_t bottom) {
    guarded([&] {
        auto add = [mode](int c, int c1) -> int {
            switch (mode) {
            case 0:
                return c + c1;
            case 1:
                return std::abs(roundTo<std::int16_t>(255 - wrap16((c1 - c) * (c1 - c)) / 2.0));
            case 2: {
                if (c == c1) return 255;
                const double d = c - c1;
                return roundTo<std::int16_t>((c + c1) / 2.0 - d * d / 20);
            }
            default:
                return c;
            }
        };
        mergePixels(sharedArea(left, top, right, bottom),
                    [rule = SelectedChannels<decltype(add)>{add, type}](
                        int r, int g, int b, Pixel kept) { return rule(r, g, b, kept); });
    });
}

void Class_Composition::Composite_Subtraction(std::uint8_t mode, std::uint8_t type,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        auto subtract = [mode](int c, int c1) -> int {
            switch (mode) {
            case 0:
                return c - c1;
            case 1:
            case 2:
            case 3:
            case 4:
                return wrap16(std::abs(c - c1) * mode);
            case 5:
                // A product kept within the channel's range, as a multiply
                // blend: white leaves the other picture as it is.
                return roundInRange<int>(c * c1 / 255.0);
            case 6:
                return roundInRange<int>(static_cast<double>(c) / (c1 == 0 ? 1 : c1));
            default:
                return c;
            }
        };
        mergePixels(sharedArea(left, top, right, bottom),
                    [rule = SelectedChannels<decltype(subtract)>{subtract, type}](
                        int r, int g, int b, Pixel kept) { return rule(r, g, b, kept); });
    });
}

void Class_Composition::Composite_Exchange(std::uint8_t type, std::int16_t S2, std::int16_t S1,
                                           std::int16_t left, std::int16_t top, std::int16_t right,
                                           std::int16_t bottom) {
    guarded([&] {
        const int low = S1, high = S2;
        auto inBand = [low, high](int v) { return low < v && v < high; };
        mergePixels(sharedArea(left, top, right, bottom),
                    [type, inBand](int r, int g, int b, Pixel kept) -> Rgb16 {
                        const int r1 = redOf(kept), g1 = greenOf(kept), b1 = blueOf(kept);
                        if (type == 0) {
                            if (inBand((r + g + b) / 3))
                                return {wrap16(r1), wrap16(g1), wrap16(b1)};
                            return {wrap16(r), wrap16(g), wrap16(b)};
                        }
                        if (type == 1) {
                            return {wrap16(inBand(r) ? r1 : r), wrap16(inBand(g) ? g1 : g),
                                    wrap16(inBand(b) ? b1 : b)};
                        }
                        return {wrap16(r), wrap16(g), wrap16(b)};
                    });
    });
}

void Class_Composition::Composite_Exchange2(std::uint8_t type, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom,
                                            std::int16_t red, std::int16_t green,
                                            std::int16_t blue) {
    guarded([&] {
        mergePixels(sharedArea(left, top, right, bottom),
                    [=](int r, int g, int b, Pixel kept) -> Rgb16 {
                        const int r1 = redOf(kept), g1 = greenOf(kept), b1 = blueOf(kept);
                        if (type == 0) {
                            if ((r + g + b) / 3 == (r1 + g1 + b1) / 3) return {red, green, blue};
                            return {wrap16(r), wrap16(g), wrap16(b)};
                        }
                        if (type == 1) {
                            return {r == r1 ? red : wrap16(r), g == g1 ? green : wrap16(g),
                                    b == b1 ? blue : wrap16(b)};
                        }
                        return {wrap16(r), wrap16(g), wrap16(b)};
                    });
    });
}

void Class_Composition::Composite_Morphological(std::uint8_t mode, std::int16_t compare,
                                                std::int16_t coefficient, std::int16_t left,
                                                std::int16_t top, std::int16_t right,
                                                std::int16_t bottom) {
    guarded([&] {
        const int cmp = compare, coef = coefficient;
        auto threshold = [cmp, coef](int v) { return v == cmp ? v : coef - v; };
        auto combine = [mode, threshold](int c, int c1) -> std::int16_t {
            const int a = threshold(c), k = threshold(c1);
            switch (mode) {
            case 0:
                return wrap16(a & k);
            case 1:
                return wrap16(a | k);
            case 2:
                return wrap16(a ^ k);
            case 3:
                return wrap16(~(a ^ k));
            default:
                return wrap16(c);
            }
        };
        mergePixels(sharedArea(left, top, right, bottom),
                    [combine](int r, int g, int b, Pixel kept) -> Rgb16 {
                        return {combine(r, redOf(kept)), combine(g, greenOf(kept)),
                                combine(b, blueOf(kept))};
                    });
    });
}

} // namespace lumiran
