// The result made row by row from a lent source (tint, turn, random mosaic)
// equals the one made on a fetched copy, whatever the rectangle, the blend
// and the number of threads; and shapes laid in regions on several threads
// keep their drawing order on every row.
#include "effects/colour/class_color_op.h"
#include "effects/geometry/class_geometry.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "effects/texture/mosaic/region_schedule.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

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
    // Blocks of 5 on 29 rows: with several threads the rows make regions,
    // and blocks straddle their borders.
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
    [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

// Shapes as row intervals; each lay notes its shape on its rows, so every
// row's notes must come out in drawing order, each shape once per row.
struct ScheduleCase {
    const char* name;
    int regions;
    int workers;
    int rows;
    int shapeRows;
};

class RegionScheduleOrder : public ::testing::TestWithParam<ScheduleCase> {};

TEST_P(RegionScheduleOrder, EveryRowSeesItsShapesInDrawingOrder) {
    const ScheduleCase c = GetParam();
    struct Shape {
        int top;
        int bottom;
    };
    std::vector<Shape> shapes;
    for (int i = 0; i < 400; ++i) {
        const int top = (i * 7919) % c.rows;
        shapes.push_back({top, std::min(top + c.shapeRows - 1, c.rows - 1)});
    }
    mosaic::RegionSchedule schedule(c.regions, 0, c.rows);
    for (std::size_t i = 0; i < shapes.size(); ++i)
        schedule.add(static_cast<std::uint32_t>(i), shapes[i].top, shapes[i].bottom);
    // Rows are written without a lock: two shapes laid at once on one row
    // would break the order (and show under a thread sanitizer).
    std::vector<std::vector<std::uint32_t>> notes(static_cast<std::size_t>(c.rows));
    std::vector<int> entered(static_cast<std::size_t>(c.regions), 0);
    std::mutex enterLock;
    WorkerPool pool(c.workers);
    schedule.run(
        pool, c.workers,
        [&](int region) {
            const std::scoped_lock hold(enterLock);
            ++entered[static_cast<std::size_t>(region)];
        },
        [&](int, std::uint32_t i) {
            for (int y = shapes[i].top; y <= shapes[i].bottom; ++y)
                notes[static_cast<std::size_t>(y)].push_back(i);
        },
        [] { return false; });
    for (int y = 0; y < c.rows; ++y) {
        std::vector<std::uint32_t> expected;
        for (std::size_t i = 0; i < shapes.size(); ++i)
            if (shapes[i].top <= y && y <= shapes[i].bottom)
                expected.push_back(static_cast<std::uint32_t>(i));
        EXPECT_EQ(notes[static_cast<std::size_t>(y)], expected) << "row " << y;
    }
    for (int r = 0; r < c.regions; ++r)
        EXPECT_EQ(entered[static_cast<std::size_t>(r)], schedule.entered(r) ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Schedules, RegionScheduleOrder,
                         ::testing::Values(ScheduleCase{"OneRegion", 1, 1, 50, 6},
                                           ScheduleCase{"TwoOnTwo", 2, 2, 64, 8},
                                           ScheduleCase{"FourOnTwo", 4, 2, 97, 9},
                                           ScheduleCase{"FourOnFour", 4, 4, 40, 10},
                                           ScheduleCase{"ThreeOnOne", 3, 1, 45, 15}),
                         [](const ::testing::TestParamInfo<ScheduleCase>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
} // namespace lumiran
