// The packed-colour rank filters: selection exactly as the partial Shell
// sort with its early stop gives it, the window order, the channel kinds.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

// The sort as the filters' description gives it: descending, gaps n/2,
// n/4, ..., an insertion that stops on a comparison counts, and the passes
// end once the count has reached 12 (n = 9) or 54 (n = 25).
bool partialShellSort(std::vector<std::uint32_t>& a, bool earlyStop) {
    const int n = static_cast<int>(a.size());
    const int limit = n == 9 ? 12 : 54;
    int count = 0;
    for (int gap = n / 2; gap >= 1 && !(earlyStop && count >= limit); gap /= 2) {
        for (int k = 0; k < gap; ++k) {
            for (int i = gap + k; i < n; i += gap) {
                for (int j = i - gap; j >= k; j -= gap) {
                    if (a[j] >= a[j + gap]) {
                        ++count;
                        break;
                    }
                    std::swap(a[j], a[j + gap]);
                }
            }
        }
    }
    return earlyStop && count >= limit;
}

std::uint32_t packed(Pixel p) {
    return (static_cast<std::uint32_t>(blueOf(p)) * 256 + greenOf(p)) * 256 + redOf(p);
}

// The window by rings: the centre, then each ring in reading order.
std::vector<std::pair<int, int>> ringOrder(int reach) {
    std::vector<std::pair<int, int>> order{{0, 0}};
    for (int ring = 1; ring <= reach; ++ring) {
        for (int dy = -ring; dy <= ring; ++dy) {
            for (int dx = -ring; dx <= ring; ++dx) {
                if (std::max(std::abs(dx), std::abs(dy)) == ring) order.emplace_back(dx, dy);
            }
        }
    }
    return order;
}

struct RankFilters : NeighbourhoodFixture<Op> {};

struct RankCase {
    int window;
    int levels; // few levels: ties, and the early stop in many windows
};

class PartialSortRanks : public RankFilters, public ::testing::WithParamInterface<RankCase> {};

TEST_P(PartialSortRanks, EveryRankIsTheElementThePartialSortLeavesThere) {
    const auto [window, levels] = GetParam();
    const int reach = window + 1;
    const Surface picture = randomPicture(14, 9, levels, 7u + levels);
    const auto order = ringOrder(reach);
    const int length = static_cast<int>(order.size());
    int stopped = 0;
    for (int rank = 0; rank < length; ++rank) {
        const Surface packedResult = runTrans(picture, [&](Op& e, const ProcessRect& r) {
            e.RankFilter(static_cast<std::int16_t>(rank), 0, r.left, r.top, r.right, r.bottom,
                         static_cast<std::uint8_t>(window), 0);
        });
        const Surface channelResult = runTrans(picture, [&](Op& e, const ProcessRect& r) {
            e.RankFilter(static_cast<std::int16_t>(rank), 0, r.left, r.top, r.right, r.bottom,
                         static_cast<std::uint8_t>(window), 1);
        });
        for (int y = reach; y < picture.height() - reach; ++y) {
            for (int x = reach; x < picture.width() - reach; ++x) {
                std::vector<std::uint32_t> keys;
                std::array<std::vector<std::uint32_t>, 3> channels;
                for (const auto& [dx, dy] : order) {
                    const Pixel p = picture.at(x + dx, y + dy);
                    keys.push_back(packed(p));
                    channels[0].push_back(static_cast<std::uint32_t>(redOf(p)));
                    channels[1].push_back(static_cast<std::uint32_t>(greenOf(p)));
                    channels[2].push_back(static_cast<std::uint32_t>(blueOf(p)));
                }
                stopped += partialShellSort(keys, true);
                for (auto& c : channels)
                    partialShellSort(c, false);
                ASSERT_EQ(packed(packedResult.at(x, y)), keys[static_cast<std::size_t>(rank)])
                    << "rank " << rank << " at " << x << "," << y;
                const std::size_t at = static_cast<std::size_t>(rank);
                ASSERT_EQ(
                    colourAt(channelResult, x, y),
                    (Colour{static_cast<int>(channels[0][at]), static_cast<int>(channels[1][at]),
                            static_cast<int>(channels[2][at])}));
            }
        }
    }
    if (levels <= 3) {
        EXPECT_GT(stopped, 0) << "no window took the early stop";
    }
}

INSTANTIATE_TEST_SUITE_P(WindowsAndTies, PartialSortRanks,
                         ::testing::Values(RankCase{0, 2}, RankCase{0, 3}, RankCase{0, 256},
                                           RankCase{1, 2}, RankCase{1, 3}, RankCase{1, 256}));

TEST_F(RankFilters, TheMedianIsElementFourOfNineAndThirteenOfTwentyFive) {
    const Surface picture = randomPicture(12, 10, 3, 11);
    for (const auto& [window, rank] : {std::pair{0, 4}, std::pair{1, 13}}) {
        const auto w = static_cast<std::uint8_t>(window);
        const Surface median = runTrans(picture, [w](Op& e, const ProcessRect& r) {
            e.MedianFilter(w, 0, r.left, r.top, r.right, r.bottom);
        });
        const Surface ranked = runTrans(picture, [w, rank](Op& e, const ProcessRect& r) {
            e.RankFilter(static_cast<std::int16_t>(rank), 0, r.left, r.top, r.right, r.bottom, w,
                         0);
        });
        EXPECT_TRUE(median.sameColours(ranked)) << "window " << window;
    }
}

TEST_F(RankFilters, BlueIsTheMostSignificantPartOfTheSortKey) {
    // Blue alone orders the window; the pixel of the middle blue has red 0
    // while eight of nine reds are 200, so the packed median is not the
    // median of each channel.
    Surface picture(3, 3);
    const std::array<std::pair<int, int>, 9> ring{
        {{1, 1}, {0, 0}, {1, 0}, {2, 0}, {0, 1}, {2, 1}, {0, 2}, {1, 2}, {2, 2}}};
    for (int i = 0; i < 9; ++i) {
        const auto [x, y] = ring[static_cast<std::size_t>(i)];
        picture.at(x, y) = makePixel(i == 4 ? 0 : 200, 5, 10 + 10 * i);
    }
    const Surface result = runTrans(picture, [](Op& e, const ProcessRect& r) {
        e.MedianFilter(0, 0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(colourAt(result, 1, 1), (Colour{0, 5, 50}));
}

TEST_F(RankFilters, ChannelKindsTakeTheirChannelsFromTheRankElement) {
    // A bright centre in a dark window: rank 8 is the darkest element.
    Surface picture(3, 3, makePixel(10, 20, 30));
    picture.at(1, 1) = makePixel(200, 150, 100);
    const std::array<Colour, 8> expected{{
        {10, 20, 30},
        {10, 150, 100},
        {200, 20, 100},
        {200, 150, 30},
        {10, 20, 100},
        {200, 20, 30},
        {10, 150, 30},
        // Kind 7: the rank element raised to the centre's lightness, 150 - 20.
        {140, 150, 160},
    }};
    for (std::uint8_t kind = 0; kind < 8; ++kind) {
        const Surface result = runTrans(picture, [kind](Op& e, const ProcessRect& r) {
            e.RankFilter(8, kind, r.left, r.top, r.right, r.bottom, 0, 0);
        });
        EXPECT_EQ(colourAt(result, 1, 1), expected[kind]) << "kind " << int{kind};
    }
}

TEST_F(RankFilters, MedianOutputKindsDoubleEqualOrDifferingChannels) {
    // Median (10, 20, 30); the centre agrees with it in red only.
    Surface picture(3, 3, makePixel(10, 20, 30));
    picture.at(1, 1) = makePixel(10, 99, 99);
    const std::array<Colour, 3> expected{{{10, 20, 30}, {20, 20, 30}, {10, 40, 60}}};
    for (std::uint8_t kind = 0; kind < 3; ++kind) {
        const Surface result = runTrans(picture, [kind](Op& e, const ProcessRect& r) {
            e.MedianFilter(0, kind, r.left, r.top, r.right, r.bottom);
        });
        EXPECT_EQ(colourAt(result, 1, 1), expected[kind]) << "kind " << int{kind};
    }
}

TEST_F(RankFilters, FiascoMovesAwayFromTheStatistic) {
    // The centre 50 among eight 100s: the mean 94, the median and the
    // largest 100 lie above it, the smallest (the centre) does not.
    Surface picture(3, 3, makePixel(100, 100, 100));
    picture.at(1, 1) = makePixel(50, 50, 50);
    const std::array<int, 4> expected{8, 8, 92, 8};
    for (std::uint8_t statistic = 0; statistic < 4; ++statistic) {
        const Surface result = runTrans(picture, [statistic](Op& e, const ProcessRect& r) {
            e.FiascoFilter(0, 0, statistic, r.left, r.top, r.right, r.bottom, 42);
        });
        EXPECT_EQ(colourAt(result, 1, 1)[0], expected[statistic]) << int{statistic};
    }
}

TEST_F(RankFilters, MedianColourBlendsTheRankElementAndTints) {
    // Rank 8 (the darkest, 0) at weight 4 with the centre 200: 120, then
    // tinted by 255, 128 and 0.
    Surface picture(3, 3, makePixel(0, 0, 0));
    picture.at(1, 1) = makePixel(200, 200, 200);
    const Surface result = runTrans(picture, [](Op& e, const ProcessRect& r) {
        e.TransperentColor(r.left, r.top, r.right, r.bottom, 8, 0, 4, 255, 128, 0);
    });
    EXPECT_EQ(colourAt(result, 1, 1), (Colour{120, 60, 0}));
}

} // namespace
} // namespace lumiran::testing
