// Every type of the colour fields, pinned: the fields are worked out from
// tables of the rows and columns and blended a row at a time, and these
// hashes were taken from the plain per-pixel formulas. A width of 77 leaves
// a tail after the vectorised blocks of every row.
#include "effects/texture/pattern/class_pattern.h"
#include "golden.h"
#include "texture_fixture.h"

#include <functional>

namespace lumiran::testing {
namespace {

using P = Class_Pattern;
using Call = std::function<void(P&, const ProcessRect&)>;

struct Family {
    const char* name;
    std::vector<Call> calls;
    const char* hash;
    std::uint8_t calculation = 0;
};

std::vector<Call> everyType(int types, int combinations,
                            const std::function<void(P&, const ProcessRect&, int, int)>& call) {
    std::vector<Call> calls;
    for (int t = 0; t < types; ++t) {
        for (int c = 0; c < combinations; ++c)
            calls.push_back([=](P& e, const ProcessRect& r) { call(e, r, t, c); });
    }
    return calls;
}

std::vector<Family> families() {
    using U8 = std::uint8_t;
    const auto ff1 = [](P& e, const ProcessRect& r, int t, int c) {
        e.FF1(U8(t), U8(c), r.left, r.top, r.right, r.bottom, 13, 17, 255, 128, 64, 3);
    };
    const auto ff2 = [](P& e, const ProcessRect& r, int t, int c) {
        e.FF2(U8(t), U8(c), r.left, r.top, r.right, r.bottom, 13, 17, 9, 30, 21, 11, 0);
    };
    const auto smoke = [](P& e, const ProcessRect& r, int t, int c) {
        e.Smoke(U8(t), U8(c), r.left, r.top, r.right, r.bottom, 5, 9, 200, 100, 50, 4, false);
    };
    const auto sway = [](P& e, const ProcessRect& r, int t, int s) {
        const auto call = s == 0   ? &P::Color_Sway1
                          : s == 1 ? &P::Color_Sway2
                          : s == 2 ? &P::Color_Sway3
                                   : &P::Color_Sway4;
        (e.*call)(2, U8(t), r.left, r.top, r.right, r.bottom, 30, 45, 25, 50, 20, 60);
    };
    const auto ff3 = [](P& e, const ProcessRect& r, int t, int) {
        e.FF3(0, U8(t), r.left, r.top, r.right, r.bottom, 30, 45, 25, 50, 20, 60, 2.5);
    };
    const auto spread = [](P& e, const ProcessRect& r, int t, int w) {
        e.ColorSpread(U8(t), r.left, r.top, r.right, r.bottom, 200, 90, 30,
                      std::int16_t(w == 0   ? 0
                                   : w == 1 ? 3
                                            : 10));
    };
    const auto bands = [](P& e, const ProcessRect& r, int t, int kind) {
        if (kind == 0) e.Wamai(U8(t), r.left, r.top, r.right, r.bottom, 128, 200, 255, 3, 12);
        if (kind == 1) e.FF4(r.left, r.top, r.right, r.bottom, 128, 200, 255, 3, 7);
        if (kind == 2) e.ColorTile1(U8(t), r.left, r.top, r.right, r.bottom, 128, 200, 255, 3, 9);
        if (kind == 3) {
            e.ColorTile2(U8(t), r.left, r.top, r.right, r.bottom, 128, 200, 255, 10, 40, 32, 2, 3);
        }
    };
    return {
        {"FF1", everyType(6, 5, ff1), "9c2eba738b8a14b9"},
        {"FF2", everyType(6, 5, ff2), "161867d43e917a9e"},
        {"Sin Light", everyType(8, 2, smoke), "bc9df6f91cf4ce52"},
        {"Color Sway", everyType(12, 4, sway), "143dbd35db8fe09a"},
        {"FF3", everyType(6, 1, ff3), "0f0b730305c4b376"},
        {"Color Spread", everyType(5, 3, spread), "b52091553b8cd734"},
        {"Bands", everyType(4, 4, bands), "d7dea2a1229997b3"},
        {"FF1 blended", everyType(6, 1, ff1), "adce0bdf8c13a19d", 2},
        {"Color Spread blended", everyType(5, 1, spread), "f5e614b49fe70cb1", 1},
    };
}

struct PatternEveryType : TextureFixture {};

TEST_F(PatternEveryType, EveryTypeGivesItsPinnedPicture) {
    const Surface picture = makePicture(77, 41, [](int x, int y) {
        return 0x5A000000u |
               makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF);
    });
    for (const Family& family : families()) {
        context.flags.calculationFlag = family.calculation;
        std::string hashes;
        for (const Call& call : family.calls) {
            const Surface out = run<P>(picture, call);
            ASSERT_TRUE(context.failures.empty()) << family.name;
            for (std::size_t i = 0; i < out.pixels().size(); ++i)
                ASSERT_EQ(out.pixels()[i] >> 24, 0x5Au) << family.name;
            hashes += pictureHash(out);
        }
        Surface text(static_cast<int>(hashes.size()), 1);
        for (std::size_t i = 0; i < hashes.size(); ++i)
            text.pixels()[i] = static_cast<Pixel>(hashes[i]);
        EXPECT_EQ(pictureHash(text), family.hash) << family.name;
    }
}

TEST_F(PatternEveryType, APeriodOfZeroIsTheOverflowError) {
    run<P>(makeVariedPicture(40, 8), [](P& e, const ProcessRect& r) {
        e.FF1(0, 0, r.left, r.top, r.right, r.bottom, 0, 17, 255, 128, 64, 3);
    });
    EXPECT_EQ(failureNumbers(), std::vector<int>{6});
}

} // namespace
} // namespace lumiran::testing
