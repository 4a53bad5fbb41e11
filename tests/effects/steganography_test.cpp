// Hiding the kept image in a carrier and getting it back against the
// untouched carrier.
#include "composition_fixture.h"
#include "test_support.h"

namespace lumiran::testing {
namespace {

using C = Class_Composition;

struct Steganography : CompositionFixture {
    // Hide `hidden` in the carrier, then extract against the carrier.
    Surface roundTrip(const Surface& carrier, const Surface& hidden, int type) {
        const Surface changed = merge(carrier, hidden, [type](C& e, const ProcessRect& r) {
            e.Suteganography_Hide(static_cast<std::uint8_t>(type), r.left, r.top, r.right,
                                  r.bottom);
        });
        return extract(changed, carrier, type);
    }
    Surface extract(const Surface& document, const Surface& against, int type) {
        return merge(document, against, [type](C& e, const ProcessRect& r) {
            e.Suteganography_Extraction(static_cast<std::uint8_t>(type), r.left, r.top, r.right,
                                        r.bottom);
        });
    }
};

struct Level {
    int hidden;   // grey of the hidden picture
    int expected; // grey that comes back
};

// Carriers on both sides of every limit where the step turns to a subtraction.
const int Carriers[] = {0, 100, 246, 247, 249, 250, 254, 255};

TEST_F(Steganography, HiddenGreysComeBackAtTheirLevels) {
    const struct {
        int type;
        std::vector<Level> levels;
    } types[] = {
        {0, {{0, 0}, {127, 0}, {128, 255}, {255, 255}}},
        // Level L of twelve comes back as 21 L: white as 252, never 255.
        {1, {{0, 0}, {20, 0}, {21, 21}, {83, 63}, {84, 84}, {251, 231}, {252, 252}, {255, 252}}},
        // Eight levels a channel, 32 apart: at most 224.
        {2, {{0, 0}, {31, 0}, {32, 32}, {223, 192}, {224, 224}, {255, 224}}},
    };
    for (const auto& [type, levels] : types) {
        for (const Level& level : levels) {
            for (const int c : Carriers) {
                const Surface carrier(1, 1, makePixel(c, c, c));
                const Pixel back =
                    roundTrip(carrier,
                              Surface(1, 1, makePixel(level.hidden, level.hidden, level.hidden)),
                              type)
                        .at(0, 0);
                EXPECT_EQ(back, makePixel(level.expected, level.expected, level.expected))
                    << "type " << type << " hidden " << level.hidden << " carrier " << c;
            }
        }
    }
}

TEST_F(Steganography, HidingChangesChannelsWithinRange) {
    // High carriers step down instead of up: 255 in type 0, 250 in type 1,
    // 247 in type 2.
    const struct {
        int type, carrier, hidden, expectedRed;
    } cases[] = {{0, 254, 255, 255}, {0, 255, 255, 254}, {1, 249, 255, 253},
                 {1, 250, 255, 246}, {2, 246, 255, 253}, {2, 247, 255, 240}};
    for (const auto& c : cases) {
        const Surface changed = merge(Surface(1, 1, makePixel(c.carrier, 0, 0)),
                                      Surface(1, 1, makePixel(c.hidden, c.hidden, c.hidden)),
                                      [&c](C& e, const ProcessRect& r) {
                                          e.Suteganography_Hide(static_cast<std::uint8_t>(c.type),
                                                                r.left, r.top, r.right, r.bottom);
                                      });
        EXPECT_EQ(redOf(changed.at(0, 0)), c.expectedRed) << c.type << " " << c.carrier;
    }
    // Type 0 carries the picture in red alone.
    const Surface changed =
        merge(Surface(1, 1, makePixel(9, 9, 9)), Surface(1, 1, makePixel(255, 255, 255)),
              [](C& e, const ProcessRect& r) {
                  e.Suteganography_Hide(0, r.left, r.top, r.right, r.bottom);
              });
    EXPECT_EQ(changed.at(0, 0), makePixel(10, 9, 9));
}

TEST_F(Steganography, ColourLevelsComeBackChannelByChannel) {
    const Surface carrier = makeVariedPicture(16, 16);
    const Surface hidden =
        makePicture(16, 16, [](int x, int y) { return makePixel(x * 16, y * 16, 255 - x * 16); });
    const Surface back = roundTrip(carrier, hidden, 2);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const Pixel h = hidden.at(x, y);
            EXPECT_EQ(back.at(x, y),
                      makePixel(redOf(h) / 32 * 32, greenOf(h) / 32 * 32, blueOf(h) / 32 * 32))
                << x << "," << y;
        }
    }
}

TEST_F(Steganography, ExtractionAgainstAnotherPictureShowsThePlainDifference) {
    const Surface a(1, 1, makePixel(10, 100, 200));
    const Surface b(1, 1, makePixel(13, 90, 200));
    EXPECT_EQ(extract(a, b, 2).at(0, 0), makePixel(96, 255, 0));
    EXPECT_EQ(extract(a, b, 1).at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(extract(a, b, 0).at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(extract(a, a, 0).at(0, 0), makePixel(0, 0, 0));
}

} // namespace
} // namespace lumiran::testing
