// FiascoFilter: the window mean by sums against the rule written out, the
// result made by the rows of a lent source against a fetched one, and a
// cancelled run that still hands back a whole picture.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

// The mean statistic as the rule gives it: each channel's truncated mean
// over the window, the channel moved away from it, kept in 16 bits, clamped.
Surface meanFiascoByRule(const Surface& source, int reach, const ProcessRect& rect, int amount) {
    Surface result = source;
    const int left = std::max<int>(rect.left, 0) + reach;
    const int top = std::max<int>(rect.top, 0) + reach;
    const int right = std::min<int>(rect.right, source.width()) - reach;
    const int bottom = std::min<int>(rect.bottom, source.height()) - reach;
    const int length = (2 * reach + 1) * (2 * reach + 1);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            int sum[3] = {0, 0, 0};
            for (int dy = -reach; dy <= reach; ++dy) {
                for (int dx = -reach; dx <= reach; ++dx) {
                    const Pixel p = source.at(x + dx, y + dy);
                    sum[0] += redOf(p);
                    sum[1] += greenOf(p);
                    sum[2] += blueOf(p);
                }
            }
            const Pixel c = source.at(x, y);
            const int channel[3] = {redOf(c), greenOf(c), blueOf(c)};
            int moved[3];
            for (int i = 0; i < 3; ++i) {
                const int v =
                    sum[i] / length > channel[i] ? channel[i] - amount : channel[i] + amount;
                moved[i] = std::clamp<int>(static_cast<std::int16_t>(v), 0, 255);
            }
            result.at(x, y) = makePixel(moved[0], moved[1], moved[2], c >> 24);
        }
    }
    return result;
}

struct Fiasco : NeighbourhoodFixture<Op> {
    // TransBits left to the call, as the program runs it, on `threads`
    // threads with every row a band of its own.
    Surface onLentSource(const Surface& picture, const ProcessRect& rect, int threads,
                         const std::function<void(Op&, const ProcessRect&)>& call) {
        context.threading = {.threads = threads, .bandPixels = 1};
        Op effect(context);
        effect.ImageGetDiBits(picture);
        call(effect, rect);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
};

TEST_F(Fiasco, MeanIsTheTruncatedWindowMeanAtEveryAmount) {
    // Full-range channels reach the largest sums; few levels give means
    // that equal the centre, where the channel moves up.
    const Surface noisy = randomPicture(41, 29, 256, 3);
    const Surface flat = randomPicture(41, 29, 3, 4);
    struct Case {
        std::uint8_t window;
        std::int16_t amount;
        ProcessRect rect;
    };
    const Case cases[] = {
        {0, 42, ProcessRect::wholePicture(41, 29)},
        {1, 42, ProcessRect::wholePicture(41, 29)},
        {0, -255, {3, 2, 40, 20}},
        {1, 255, {-4, -4, 60, 60}},
        // Results past 16 bits wrap before the clamp.
        {0, 32767, ProcessRect::wholePicture(41, 29)},
        {1, -32768, {5, 1, 30, 28}},
        // Narrower than the window: nothing changes.
        {1, 42, {10, 0, 14, 29}},
    };
    for (const Case& c : cases) {
        for (const Surface* picture : {&noisy, &flat}) {
            const auto call = [c](Op& e, const ProcessRect& r) {
                e.FiascoFilter(c.window, 0, 0, r.left, r.top, r.right, r.bottom, c.amount);
            };
            const Surface expected = meanFiascoByRule(*picture, c.window + 1, c.rect, c.amount);
            const std::string what = "window " + std::to_string(c.window) + " amount " +
                                     std::to_string(c.amount) + " left " +
                                     std::to_string(c.rect.left);
            EXPECT_EQ(runTrans(*picture, call, c.rect), expected) << what;
            EXPECT_EQ(onLentSource(*picture, c.rect, 3, call), expected) << what;
        }
    }
}

TEST_F(Fiasco, LentSourceGivesTheFetchedResultForEveryStatistic) {
    const Surface picture = randomPicture(37, 23, 4, 9);
    const ProcessRect rects[] = {ProcessRect::wholePicture(37, 23), ProcessRect{2, 3, 30, 21},
                                 ProcessRect{-3, 15, 50, 40}, ProcessRect{40, 0, 60, 23}};
    for (const std::uint8_t calculation : {0, 3}) {
        context.flags.calculationFlag = calculation;
        for (std::uint8_t window = 0; window < 2; ++window) {
            for (std::uint8_t statistic = 0; statistic < 4; ++statistic) {
                for (const std::uint8_t sort : {0, 1}) {
                    for (const ProcessRect& rect : rects) {
                        const auto call = [=](Op& e, const ProcessRect& r) {
                            e.FiascoFilter(window, sort, statistic, r.left, r.top, r.right,
                                           r.bottom, -60);
                        };
                        EXPECT_EQ(onLentSource(picture, rect, 3, call),
                                  runTrans(picture, call, rect))
                            << "calculation " << int{calculation} << " window " << int{window}
                            << " statistic " << int{statistic} << " sort " << int{sort} << " left "
                            << rect.left;
                    }
                }
            }
        }
    }
}

TEST_F(Fiasco, CancelledRunOnALentSourceKeepsTheRowsItDidNotReach) {
    // The cancel is seen after the first row, which holds no centre: the
    // rows never reached are still made, as the source's.
    const Surface picture = randomPicture(16, 12, 256, 5);
    context.requestCancel();
    const Surface cancelled =
        onLentSource(picture, ProcessRect{2, 1, 16, 12}, 1, [](Op& e, const ProcessRect& r) {
            e.FiascoFilter(0, 0, 0, r.left, r.top, r.right, r.bottom, 42);
        });
    EXPECT_EQ(cancelled, picture);
}

} // namespace
} // namespace lumiran::testing
