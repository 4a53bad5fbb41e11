// The result made row by row from a lent source (tint, turn, random mosaic)
// equals the one made on a fetched copy, whatever the rectangle, the blend
// and the number of threads.
#include "effects/colour/class_color_op.h"
#include "effects/geometry/class_geometry.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

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

TEST(RandomMosaicBands, PaintAsOneThreadAndStopOnACancel) {
    // Blocks across two bands wait for both; tall blocks make many of them.
    const Surface picture = testing::makeVariedPicture(97, 203);
    struct CancelAt : ProgressSink {
        CancelFlag* flag = nullptr;
        void showPercent(int) override {
            if (flag != nullptr) *flag = 1;
        }
    };
    const auto runOnce = [&](int threads, int size, int type, const ProcessRect& rect,
                             bool cancelAtOnce) {
        CancelFlag cancel{0};
        RandomGenerator random;
        RunContext context(cancel, random);
        CancelAt sink;
        if (cancelAtOnce) sink.flag = &cancel;
        context.progress = &sink;
        context.threading = {.threads = threads, .bandPixels = threads == 1 ? 1 << 30 : 1};
        Class_Mosaic effect(context);
        effect.ImageGetDiBits(picture);
        effect.blocksIntoOwnTrans();
        effect.Mosaic_Random(static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(size),
                             rect.left, rect.top, rect.right, rect.bottom,
                             static_cast<std::uint8_t>(type));
        EXPECT_EQ(cancel.load(), cancelAtOnce ? 1 : 0);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return std::pair{result, random.state()};
    };
    for (const ProcessRect& rect :
         {ProcessRect::wholePicture(97, 203), ProcessRect{3, 17, 90, 180}}) {
        for (const int size : {4, 9, 32}) {
            for (const int type : {0, 3, 5}) {
                const auto one = runOnce(1, size, type, rect, false);
                for (const int threads : {2, 5}) {
                    const auto several = runOnce(threads, size, type, rect, false);
                    EXPECT_TRUE(several.first.sameColours(one.first))
                        << size << " " << type << " on " << threads;
                    EXPECT_EQ(several.second, one.second) << "the generator moves on alike";
                }
            }
        }
    }
    for (const int threads : {1, 2, 3})
        runOnce(threads, 4, 0, ProcessRect::wholePicture(97, 203), true);
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
