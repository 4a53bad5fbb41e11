// Hiding the kept image in the document by small changes of its channels,
// and getting it back as the difference against the untouched carrier.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <array>
#include <cstdlib>

namespace lumiran {
namespace {

struct Steps {
    std::int16_t red, green, blue;
};

// The twelve levels of grey: the first row whose bound the mean is below.
constexpr std::array<int, 12> TwelveLevelBounds{21,  42,  63,  84,  105, 126,
                                                147, 168, 189, 210, 231, 252};
constexpr std::array<Steps, 13> TwelveLevelSteps{{{0, 0, 0},
                                                  {1, 0, 0},
                                                  {1, 1, 0},
                                                  {1, 1, 1},
                                                  {2, 1, 1},
                                                  {2, 2, 1},
                                                  {2, 2, 2},
                                                  {3, 2, 2},
                                                  {3, 3, 2},
                                                  {3, 3, 3},
                                                  {4, 3, 3},
                                                  {4, 4, 3},
                                                  {4, 4, 4}}};

[[nodiscard]] Steps twelveLevelSteps(int mean) {
    std::size_t row = 0;
    while (row < TwelveLevelBounds.size() && mean >= TwelveLevelBounds[row])
        ++row;
    return TwelveLevelSteps[row];
}

// A step added below the carrier's limit and taken away from it on, so the
// channel never leaves 0..255 and the difference stays the step.
[[nodiscard]] constexpr std::int16_t carry(int c, int step, int limit) {
    return static_cast<std::int16_t>(c < limit ? c + step : c - step);
}

} // namespace

void Class_Composition::Suteganography_Hide(std::uint8_t type, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        mergePixels(
            sharedArea(left, top, right, bottom), [type](int r, int g, int b, Pixel kept) -> Rgb16 {
                const int r1 = redOf(kept), g1 = greenOf(kept), b1 = blueOf(kept);
                switch (type) {
                case 0: {
                    const int mean = roundInRange<int>((r1 + g1 + b1) / 3.0);
                    const int bit = mean >= 128 ? 1 : 0;
                    return {carry(r, bit, 255), wrap16(g), wrap16(b)};
                }
                case 1: {
                    const Steps d = twelveLevelSteps((r1 + g1 + b1) / 3);
                    return {carry(r, d.red, 250), carry(g, d.green, 250), carry(b, d.blue, 250)};
                }
                case 2:
                    // Eight levels: 32 values of the hidden channel a step.
                    return {carry(r, r1 / 32, 247), carry(g, g1 / 32, 247), carry(b, b1 / 32, 247)};
                default:
                    return {wrap16(r), wrap16(g), wrap16(b)};
                }
            });
    });
}

void Class_Composition::Suteganography_Extraction(std::uint8_t type, std::int16_t left,
                                                  std::int16_t top, std::int16_t right,
                                                  std::int16_t bottom) {
    guarded([&] {
        mergePixels(sharedArea(left, top, right, bottom),
                    [type](int r, int g, int b, Pixel kept) -> Rgb16 {
                        const int dr = std::abs(redOf(kept) - r);
                        const int dg = std::abs(greenOf(kept) - g);
                        const int db = std::abs(blueOf(kept) - b);
                        switch (type) {
                        case 0: {
                            const std::int16_t v = dr != 0 ? 255 : 0;
                            return {v, v, v};
                        }
                        case 1: {
                            const int d = (dr + dg + db) * 7;
                            const auto v = static_cast<std::int16_t>(std::min(d * 3, 255));
                            return {v, v, v};
                        }
                        case 2:
                            return {wrap16(dr * 32), wrap16(dg * 32), wrap16(db * 32)};
                        default:
                            return {wrap16(r), wrap16(g), wrap16(b)};
                        }
                    });
    });
}

} // namespace lumiran
