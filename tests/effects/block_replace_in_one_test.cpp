// A run of BlockReplace calls drawn as one gather must equal the calls made
// one by one, each over the result of the one before: the maps compose in
// the right order, partial strips and rectangles beyond the picture too.
#include "geometry_fixture.h"

#include <array>

namespace lumiran::testing {
namespace {

using Step = Class_Geometry::BlockReplaceStep;

TEST_F(GeometryFixture, BlockReplaceRunEqualsItsCallsOneByOne) {
    const Surface picture = makeVariedPicture(53, 41);
    const ProcessRect rects[] = {
        ProcessRect::wholePicture(53, 41), {4, 3, 47, 38}, {-6, -2, 70, 50}};
    for (const ProcessRect& rect : rects) {
        for (const std::int16_t size : {std::int16_t{1}, std::int16_t{5}, std::int16_t{8}}) {
            for (const std::uint8_t kind : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{2}}) {
                const std::array<Step, 4> steps{{{2, 1}, {kind, 0}, {2, 1}, {kind, 0}}};
                Surface oneByOne = picture;
                for (const Step& step : steps) {
                    oneByOne =
                        drawn(oneByOne, oneByOne, [&](Class_Geometry& e, const ProcessRect&) {
                            e.BlockReplace(step.kind, rect.left, rect.top, rect.right, rect.bottom,
                                           size, step.group);
                        });
                }
                bool drew = false;
                const Surface inOne =
                    drawn(picture, Surface(53, 41, 0), [&](Class_Geometry& e, const ProcessRect&) {
                        drew = e.BlockReplaceInOne(steps, rect.left, rect.top, rect.right,
                                                   rect.bottom, size);
                    });
                EXPECT_TRUE(drew);
                EXPECT_EQ(inOne, oneByOne) << rect.left << " " << size << " " << int{kind};
            }
        }
    }
}

// Calls that would not draw leave the run to be made call by call.
TEST_F(GeometryFixture, BlockReplaceRunRefusesWhatACallWouldNotDraw) {
    const Surface picture = makeVariedPicture(12, 9);
    const std::array<Step, 2> badKind{{{2, 1}, {3, 0}}};
    const std::array<Step, 1> badGroup{{{0, 2}}};
    const std::array<Step, 1> good{{{0, 0}}};
    const auto tried = [&](std::span<const Step> steps, std::int16_t size, std::int16_t right) {
        bool drew = true;
        drawn(picture, picture, [&](Class_Geometry& e, const ProcessRect&) {
            drew = e.BlockReplaceInOne(steps, 0, 0, right, 9, size);
        });
        return drew;
    };
    EXPECT_FALSE(tried(badKind, 2, 12));
    EXPECT_FALSE(tried(badGroup, 2, 12));
    EXPECT_FALSE(tried(good, 0, 12));
    EXPECT_FALSE(tried(good, 2, 0));
    EXPECT_TRUE(tried(good, 2, 12));
}

} // namespace
} // namespace lumiran::testing
