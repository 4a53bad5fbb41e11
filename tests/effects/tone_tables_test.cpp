// The recolouring tables: the keys of every colour as the floating-point
// formulas give them (halfway cases included), and the clamped shifts.
#include "effects/colour/false_color/tone_tables.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace lumiran {
namespace {

// Every colour of one red level, with a spare byte that must survive.
std::vector<Pixel> coloursOfRed(int red) {
    std::vector<Pixel> row;
    row.reserve(65536 + 7);
    for (int g = 0; g < 256; ++g) {
        for (int b = 0; b < 256; ++b)
            row.push_back(0xA5000000u | makePixel(red, g, b));
    }
    // A length that leaves a tail for the scalar loop.
    for (int t = 0; t < 7; ++t)
        row.push_back(makePixel(red, t, 255 - t));
    return row;
}

TEST(ToneTables, EveryColourFindsTheKeyOfTheFormula) {
    for (const ToneKey key :
         {ToneKey::Luma, ToneKey::ComplementLuma, ToneKey::PseudoGrey, ToneKey::GreenBlueDeficit}) {
        // Red the key's low byte, green its high bits, blue a spread of both.
        ToneTables tables;
        for (int k = 0; k < 511; ++k) {
            tables.set(0, k, k & 0xFF);
            tables.set(1, k, k >> 8);
            tables.set(2, k, (k * 7) & 0xFF);
        }
        for (int red = 0; red < 256; ++red) {
            const std::vector<Pixel> source = coloursOfRed(red);
            std::vector<Pixel> out = source;
            applyToneTables(out, key, tables);
            for (std::size_t i = 0; i < out.size(); ++i) {
                const int k = toneKeyOf(key, source[i]);
                const Pixel expected =
                    (source[i] & 0xFF000000u) | makePixel(k & 0xFF, k >> 8, (k * 7) & 0xFF);
                ASSERT_EQ(out[i], expected)
                    << "key " << static_cast<int>(key) << " colour " << std::hex << source[i];
            }
        }
    }
}

TEST(ToneTables, ShiftsClampAndKeptChannelsStay) {
    ToneTables tables;
    const int shifts[] = {-300, -255, -40, 0, 17, 255, 400};
    for (int k = 0; k < 256; ++k) {
        tables.shift(0, k, shifts[k % 7]);
        tables.set(1, k, 255 - k);
    }
    tables.keep(2);
    const std::vector<Pixel> source = coloursOfRed(200);
    std::vector<Pixel> out = source;
    applyToneTables(out, ToneKey::Luma, tables);
    for (std::size_t i = 0; i < out.size(); ++i) {
        const int k = toneKeyOf(ToneKey::Luma, source[i]);
        const int red = std::clamp(redOf(source[i]) + shifts[k % 7], 0, 255);
        ASSERT_EQ(out[i], (source[i] & 0xFF0000FFu) | makePixel(red, 255 - k, 0)) << i;
    }
}

} // namespace
} // namespace lumiran
