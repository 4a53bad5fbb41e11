// The threshold and bit filters, the fold, the glass filters and the count
// filter of Class_NeighborhoodOp.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

struct NeighbourhoodFilters : NeighbourhoodFixture<Op> {
    Colour inPlaceOn(Colour c, const Call& call) {
        const Surface result = run(Surface(1, 1, makePixel(c[0], c[1], c[2])), call);
        return colourAt(result, 0, 0);
    }
};

TEST_F(NeighbourhoodFilters, ColdSeedOperations) {
    // Grey 100 lies 100 from black: v = 100 + 40 = 140 (snow: 40 - 100, so 0).
    struct Case {
        std::uint8_t operation;
        bool snow;
        int expected;
    };
    for (const Case c :
         {Case{0, false, 240}, Case{1, false, 0}, Case{2, false, 236}, Case{3, false, 104},
          Case{4, false, 233}, Case{0, true, 100}, Case{4, true, 101}}) {
        const Colour result = inPlaceOn({100, 100, 100}, [c](Op& e, const ProcessRect& r) {
            e.ColdSeed(0, c.operation, r.left, r.top, r.right, r.bottom, c.snow, 40);
        });
        EXPECT_EQ(result, (Colour{c.expected, c.expected, c.expected}))
            << int{c.operation} << (c.snow ? " snow" : "");
    }
    // In colour each channel takes the grey's v: grey 124, v 164.
    EXPECT_EQ(inPlaceOn({200, 100, 50},
                        [](Op& e, const ProcessRect& r) {
                            e.ColdSeed(1, 1, r.left, r.top, r.right, r.bottom, false, 40);
                        }),
              (Colour{36, 0, 0}));
}

TEST_F(NeighbourhoodFilters, KakekomiSpillsChannelsIntoEachOther) {
    auto times = [&](Colour c, double factor) {
        return inPlaceOn(c, [factor](Op& e, const ProcessRect& r) {
            e.Kakekomi(factor, r.left, r.top, r.right, r.bottom);
        });
    };
    EXPECT_EQ(times({200, 0, 0}, 2), (Colour{144, 1, 0})); // 400: red carries into green
    EXPECT_EQ(times({0, 0, 200}, 2), (Colour{0, 0, 144})); // blue's carry is dropped
    EXPECT_EQ(times({3, 0, 0}, 1.5), (Colour{4, 0, 0}));   // 4.5 to even
}

TEST_F(NeighbourhoodFilters, MoireAndBleedingMarkStepsOfTheQuantisedGrey) {
    // Greys 100 | 200 with the divisor 42: levels 2 and 5. The last row and
    // column have no neighbours and stay.
    const Surface step = makePicture(4, 3, [](int x, int) {
        return x >= 2 ? makePixel(200, 200, 200) : makePixel(100, 100, 100);
    });
    for (const bool bleeding : {false, true}) {
        const Surface result = runTrans(step, [bleeding](Op& e, const ProcessRect& r) {
            if (bleeding) {
                e.BleedingFilter(42, r.left, r.top, r.right, r.bottom);
            } else {
                e.Moire(42, r.left, r.top, r.right, r.bottom);
            }
        });
        EXPECT_EQ(colourAt(result, 1, 0), (Colour{128, 128, 255}));
        EXPECT_EQ(colourAt(result, 0, 0), (Colour{100, 100, 100}));
        EXPECT_EQ(colourAt(result, 2, 1), (Colour{200, 200, 200}));
        EXPECT_TRUE(unchangedOutside(result, step, 0, 0, 3, 2));
    }
}

TEST_F(NeighbourhoodFilters, GatherPushesTheCellAndHandsTheAmountOn) {
    // One pixel is its own clamped neighbour: (150, 90, 30) has the mean 90,
    // d = -90, so it becomes (60, 0, 0) and then receives 90 + 42.
    auto gather = [&](std::uint8_t operation) {
        const Surface result = runTrans(
            Surface(1, 1, makePixel(150, 90, 30)), [operation](Op& e, const ProcessRect& r) {
                e.PaturnMatrixMethod(0, operation, r.left, r.top, r.right, r.bottom, 42);
            });
        return colourAt(result, 0, 0);
    };
    EXPECT_EQ(gather(0), (Colour{150, 150, 150})); // grey 18 + 132
    EXPECT_EQ(gather(1), (Colour{192, 132, 132}));
}

TEST_F(NeighbourhoodFilters, FuguFoldsAboutTheGreysLevel) {
    auto fugu = [&](int grey, std::uint8_t form, std::int16_t lower) {
        const Surface picture(1, 1, makePixel(grey, grey, grey));
        const Surface result = runTrans(picture, [=](Op& e, const ProcessRect& r) {
            e.DarkLighten(0, form, r.left, r.top, r.right, r.bottom, 255, lower);
        });
        return colourAt(result, 0, 0)[0];
    };
    EXPECT_EQ(fugu(100, 0, 0), 155);   // level |100 + 100| = 200
    EXPECT_EQ(fugu(200, 0, 0), 200);   // level 345, limited to 255
    EXPECT_EQ(fugu(100, 1, 0), 200);   // 155 folded once more about 210
    EXPECT_EQ(fugu(100, 0, 150), 100); // below the lower threshold
}

TEST_F(NeighbourhoodFilters, GlassPaintingIsTheContrastAtTheCorners) {
    // Corners 0, the rest 90: mean 50, D = 4 * 2500.
    const Surface picture = makePicture(
        3, 3, [](int x, int y) { return x != 1 && y != 1 ? 0u : makePixel(90, 90, 90); });
    for (const auto& [kind, expected] : {std::pair{0, 100}, std::pair{1, 50}}) {
        const Surface result = runTrans(picture, [kind](Op& e, const ProcessRect& r) {
            e.Glass_Painting(0, static_cast<std::uint8_t>(kind), r.left, r.top, r.right, r.bottom);
        });
        EXPECT_EQ(colourAt(result, 1, 1)[0], expected);
    }
}

TEST_F(NeighbourhoodFilters, PencilOutlineOfAFlatPictureIsPaper) {
    const Surface flat(4, 4, makePixel(30, 160, 90));
    const std::array<Colour, 3> expected{{{255, 189, 123}, {0, 0, 0}, {255, 255, 255}}};
    for (std::uint8_t kind = 0; kind < 3; ++kind) {
        const Surface result = runTrans(flat, [kind](Op& e, const ProcessRect& r) {
            e.Glass_Impression(kind, 0, 0, r.left, r.top, r.right, r.bottom);
        });
        if (kind != 1) {
            EXPECT_EQ(colourAt(result, 1, 2), expected[kind]) << int{kind};
        }
        EXPECT_TRUE(unchangedOutside(result, flat, 1, 1, 3, 3));
    }
}

TEST_F(NeighbourhoodFilters, CountFilterTiesGoToTheValueMetLast) {
    // Reading order 10 20 30 / 20 40 50 / 10 60 70: 10 and 20 twice each,
    // and a 10 comes last.
    const std::array<int, 9> reds{10, 20, 30, 20, 40, 50, 10, 60, 70};
    const Surface picture = makePicture(3, 3, [&](int x, int y) {
        return makePixel(reds[static_cast<std::size_t>(y * 3 + x)], 7, 7);
    });
    const Surface result = runTrans(picture, [](Op& e, const ProcessRect& r) {
        e.CountFilter(0, 0, r.left, r.top, r.right, r.bottom, 0);
    });
    EXPECT_EQ(colourAt(result, 1, 1), (Colour{10, 7, 7}));
}

TEST_F(NeighbourhoodFilters, AFlatPictureStaysFlat) {
    const Surface flat(11, 11, makePixel(70, 130, 190));
    const Call calls[] = {
        [](Op& e, const ProcessRect& r) { e.MedianFilter(1, 0, r.left, r.top, r.right, r.bottom); },
        [](Op& e, const ProcessRect& r) {
            e.RankFilter(3, 7, r.left, r.top, r.right, r.bottom, 0, 1);
        },
        [](Op& e, const ProcessRect& r) {
            e.CountFilter(2, 0, r.left, r.top, r.right, r.bottom, 5);
        },
        [](Op& e, const ProcessRect& r) {
            e.TransperentColor(r.left, r.top, r.right, r.bottom, 4, 0, 4, 255, 255, 255);
        },
    };
    for (const Call& call : calls)
        EXPECT_TRUE(runTrans(flat, call).sameColours(flat));
}

} // namespace
} // namespace lumiran::testing
