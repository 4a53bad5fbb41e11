// The net's laying: the generator's values drawn ahead in blocks must be the
// ones next() gives, and leave the generator where as many calls would; the
// sides' reaches and bounds that their drawing relies on.
#include "effects/texture/net_mosaic/cell_paint.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

TEST(DrawnAhead, HandsOutTheGeneratorsValuesAndMovesItOnByThoseUsed) {
    // Around the block's edges, and none at all.
    for (const int used : {0, 1, 511, 512, 513, 1024, 1600}) {
        RandomGenerator expected;
        RandomGenerator generator;
        {
            net::DrawnAhead ahead(generator);
            for (int i = 0; i < used; ++i)
                ASSERT_EQ(ahead.next(), expected.next()) << used << " at " << i;
        }
        EXPECT_EQ(generator.state(), expected.state()) << used;
    }
}

TEST(NetReaches, CoverEveryPointOfTheSidesOfTheirRow) {
    // A bent net's noted reaches against every point of its sides.
    for (const int size : {3, 8, 21}) {
        RandomGenerator random;
        net::Net laid({2, 5, 90, 77}, size);
        laid.scatter(16, random);
        const net::NetReaches reaches = net::reachesOf(laid);
        for (int b = 0; b < laid.vertexRows(); ++b) {
            int low = laid.across(0, b).front().y;
            int high = low;
            const auto take = [&](std::span<const CanvasPoint> side) {
                for (const CanvasPoint& p : side) {
                    low = std::min(low, p.y);
                    high = std::max(high, p.y);
                }
            };
            for (int a = 0; a < laid.cellColumns(); ++a)
                take(laid.across(a, b));
            EXPECT_EQ(laid.levelReach(b).first, low) << size << " row " << b;
            EXPECT_EQ(laid.levelReach(b).last, high) << size << " row " << b;
            if (b + 1 < laid.vertexRows()) {
                for (int a = 0; a < laid.vertexColumns(); ++a)
                    take(laid.down(a, b));
            }
            EXPECT_EQ(reaches.sides[static_cast<std::size_t>(b)].first, low) << size << " " << b;
            EXPECT_EQ(reaches.sides[static_cast<std::size_t>(b)].last, high) << size << " " << b;
        }
    }
}

TEST(NetSides, StayWithinTheirReserveAndTheirSpread) {
    // Drawing behind the laying rests on both: no side point beyond the
    // reserve (the arrays never move) and none further above its row of
    // vertices than the spread. Noises far over the block size included.
    RandomGenerator random;
    for (const int size : {1, 3, 8, 21, 64}) {
        for (const int noise : {-4, 2, 8, 17, 64, 300}) {
            for (int draw = 0; draw < 3; ++draw) {
                net::Net laid({0, 3, 250, 230}, size);
                laid.reserveSidesFor(true, noise);
                ASSERT_NO_THROW(laid.scatter(noise, random)) << size << " " << noise;
                const int spread = laid.sideSpread(true, noise);
                for (int b = 0; b < laid.vertexRows(); ++b) {
                    const int first =
                        std::min(laid.levelReach(b).first, laid.uprightReach(b).first);
                    ASSERT_GE(first, laid.gridRow(b) - spread) << size << " " << noise << " " << b;
                }
                EXPECT_TRUE(laid.withinSpread(spread));
                EXPECT_FALSE(laid.withinSpread(-laid.vertexRows() * size - 1));
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing
