// The result made row by row from a lent source (tint, turn, random mosaic)
// equals the one made on a fetched copy, whatever the rectangle, the blend
// and the number of threads.
#include "effects/colour/class_color_op.h"
#include "effects/geometry/class_geometry.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

struct Case {
    const char* name;
    ProcessRect rect;
    std::uint8_t calculationFlag;
    int threads;
};

class OwnTrans : public ::testing::TestWithParam<Case> {
  protected:
    // The same call on a copy in place (or onto a fetched TransBits), then
    // with the source lent and TransBits made by the call.
    template <typename Class, typename Call, typename Ask>
    void expectSame(bool fetchTrans, Call call, Ask askOwnTrans) {
        const Case c = GetParam();
        const Surface picture = testing::makeVariedPicture(37, 29);
        const auto runOnce = [&](bool own) {
            CancelFlag cancel{0};
            RandomGenerator random;
            RunContext context(cancel, random);
            context.flags.calculationFlag = c.calculationFlag;
            context.threading = {.threads = c.threads, .bandPixels = 1};
            Class effect(context);
            effect.ImageGetDiBits(picture);
            if (own) {
                askOwnTrans(effect);
            } else if (fetchTrans) {
                effect.ImageGetDiBitsTrans(picture);
            }
            call(effect, c.rect);
            Surface result;
            if (own || fetchTrans) {
                effect.ImageSetDiBitsTrans(result);
            } else {
                effect.ImageSetDiBits(result);
            }
            EXPECT_EQ(cancel.load(), 0);
            return result;
        };
        const Surface fetched = runOnce(false);
        const Surface made = runOnce(true);
        ASSERT_TRUE(made.sameSize(fetched));
        EXPECT_TRUE(made.sameColours(fetched));
    }
};

TEST_P(OwnTrans, TintEqualsTheTintInPlace) {
    for (const int type : {0, 1, 2}) {
        SCOPED_TRACE(type);
        expectSame<Class_ColorOp>(
            false,
            [type](Class_ColorOp& e, const ProcessRect& r) {
                e.SakuraFilter(1, static_cast<std::uint8_t>(type), r.left, r.top, r.right,
                               r.bottom);
            },
            [](Class_ColorOp& e) { e.tintIntoOwnTrans(); });
    }
}

TEST_P(OwnTrans, TurnEqualsTheTurnOntoAFetchedCopy) {
    expectSame<Class_Geometry>(
        true,
        [](Class_Geometry& e, const ProcessRect& r) {
            e.Sphere(r.left, r.top, r.right, r.bottom, 0, 30, 70, 1);
        },
        [](Class_Geometry&) {});
}

TEST_P(OwnTrans, RandomMosaicEqualsTheMosaicInPlace) {
    for (const int type : {0, 1, 4}) {
        SCOPED_TRACE(type);
        expectSame<Class_Mosaic>(
            false,
            [type](Class_Mosaic& e, const ProcessRect& r) {
                e.Mosaic_Random(5, 5, r.left, r.top, r.right, r.bottom,
                                static_cast<std::uint8_t>(type));
            },
            [](Class_Mosaic& e) { e.blocksIntoOwnTrans(); });
    }
}

INSTANTIATE_TEST_SUITE_P(
    RectanglesBlendsThreads, OwnTrans,
    ::testing::Values(Case{"Whole", ProcessRect::wholePicture(37, 29), 0, 1},
                      Case{"WholeThreads", ProcessRect::wholePicture(37, 29), 0, 3},
                      Case{"InnerThreads", {4, 3, 30, 25}, 0, 3},
                      Case{"BeyondThePicture", {-5, 6, 50, 40}, 0, 2},
                      Case{"BlendThreads", {2, 1, 33, 27}, 7, 3},
                      Case{"EmptyColumns", {9, 3, 9, 20}, 0, 3}),
    [](const ::testing::TestParamInfo<Case>& p) { return std::string(p.param.name); });

} // namespace
} // namespace lumiran
