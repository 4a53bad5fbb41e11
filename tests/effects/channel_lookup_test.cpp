#include "effects/colour/channel_lookup.h"
#include "engine/random_generator.h"

#include <gtest/gtest.h>
#include <vector>

namespace lumiran {
namespace {

// The vector path works sixteen pixels at a time: every length around that
// width, every byte lane and the spare byte must come out as one pixel at a
// time would.
TEST(ChannelLookup, EveryLengthAndLaneMatchesThePixelByPixelRule) {
    RandomGenerator random;
    auto byte = [&random] { return static_cast<std::uint8_t>(random.next() * 256.0); };
    ChannelLookup lookup;
    for (std::size_t c = 0; c < 256; ++c) {
        lookup.red[c] = byte();
        lookup.green[c] = byte();
        lookup.blue[c] = byte();
    }
    for (std::size_t length = 0; length <= 50; ++length) {
        std::vector<Pixel> pixels(length + 2);
        for (Pixel& p : pixels)
            p = static_cast<Pixel>(random.next() * 4294967296.0);
        const std::vector<Pixel> before = pixels;
        applyChannelLookup(std::span(pixels).subspan(1, length), lookup);
        EXPECT_EQ(pixels.front(), before.front());
        EXPECT_EQ(pixels.back(), before.back());
        for (std::size_t i = 1; i <= length; ++i) {
            const Pixel p = before[i];
            const Pixel expected =
                makePixel(lookup.red[(p >> 16) & 0xFF], lookup.green[(p >> 8) & 0xFF],
                          lookup.blue[p & 0xFF], static_cast<int>(p >> 24));
            ASSERT_EQ(pixels[i], expected) << "length " << length << " pixel " << i;
        }
    }
}

// The places of one channel's level, in order, whatever the length around
// the vector width and whatever the other bytes hold.
TEST(ChannelLookup, FindsEveryPlaceOfALevelInOneChannelOnly) {
    RandomGenerator random;
    std::vector<int> found;
    for (std::size_t length = 0; length <= 40; ++length) {
        std::vector<Pixel> pixels(length);
        for (Pixel& p : pixels) // few levels, so that each occurs often
            p = makePixel(static_cast<int>(random.next() * 4), static_cast<int>(random.next() * 4),
                          static_cast<int>(random.next() * 4), static_cast<int>(random.next() * 4));
        for (const int shift : {0, 8, 16}) {
            for (const std::uint8_t level : {0, 2, 3}) {
                std::vector<int> expected;
                for (std::size_t i = 0; i < length; ++i) {
                    if (((pixels[i] >> shift) & 0xFFu) == level)
                        expected.push_back(static_cast<int>(i));
                }
                found.assign(3, -1); // whatever it held goes
                findChannelLevel(pixels, shift, level, found);
                ASSERT_EQ(found, expected) << "length " << length << " shift " << shift;
            }
        }
    }
}

} // namespace
} // namespace lumiran
