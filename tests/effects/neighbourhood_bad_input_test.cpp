// Tiny pictures and rectangles that the windows do not fit or that reach
// past the picture: nothing fails, and what lies outside the loop stays.
#include "effects/neighbourhood/class_edge.h"
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <gtest/gtest.h>
#include <variant>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;
using R = const ProcessRect&;

using AnyCall = std::variant<std::function<void(Op&, R)>, std::function<void(Class_Edge&, R)>>;

struct Operation {
    const char* name;
    AnyCall call;
    bool window = true; // a window or block that a 2x2 picture cannot hold
    bool inPlace = false;
};

void PrintTo(const Operation& op, std::ostream* os) {
    *os << op.name;
}

const std::vector<Operation>& operations() {
    using OpCall = std::function<void(Op&, R)>;
    using EdgeCall = std::function<void(Class_Edge&, R)>;
    static const std::vector<Operation> all{
        {"Median5x5",
         OpCall([](Op& e, R r) { e.MedianFilter(1, 2, r.left, r.top, r.right, r.bottom); })},
        {"Rank3x3",
         OpCall([](Op& e, R r) { e.RankFilter(8, 7, r.left, r.top, r.right, r.bottom, 0, 0); })},
        {"Rank5x5Channels",
         OpCall([](Op& e, R r) { e.RankFilter(30, 0, r.left, r.top, r.right, r.bottom, 1, 1); })},
        {"Fiasco",
         OpCall([](Op& e, R r) { e.FiascoFilter(1, 0, 0, r.left, r.top, r.right, r.bottom, 42); })},
        {"MedianColour", OpCall([](Op& e, R r) {
             e.TransperentColor(r.left, r.top, r.right, r.bottom, 8, 0, 4, 255, 255, 255);
         })},
        {"GlassPainting7x7",
         OpCall([](Op& e, R r) { e.Glass_Painting(2, 1, r.left, r.top, r.right, r.bottom); })},
        {"GlassEdgeExtract",
         OpCall([](Op& e, R r) { e.Glass_EdgeExtract(1, r.left, r.top, r.right, r.bottom); })},
        {"Impression",
         OpCall([](Op& e, R r) { e.Glass_Impression(1, 8, 3, r.left, r.top, r.right, r.bottom); })},
        {"Count7x7",
         OpCall([](Op& e, R r) { e.CountFilter(2, 0, r.left, r.top, r.right, r.bottom, 7); })},
        {"Fugu7x7",
         OpCall([](Op& e, R r) { e.DarkLighten(3, 1, r.left, r.top, r.right, r.bottom, 255, 0); })},
        {"Moire", OpCall([](Op& e, R r) { e.Moire(42, r.left, r.top, r.right, r.bottom); }), false},
        {"Wall", OpCall([](Op& e, R r) {
             e.WallEmboss(2, 1, r.left, r.top, r.right, r.bottom, 120, 128, 128, 128, 6);
         })},
        {"Emboss", OpCall([](Op& e, R r) {
             e.Embossing(5, 3, 2, r.left, r.top, r.right, r.bottom, 20, 128, 128, 128, 6);
         }),
         false},
        {"ColdSeed",
         OpCall([](Op& e, R r) { e.ColdSeed(1, 4, r.left, r.top, r.right, r.bottom, true, 40); }),
         false, true},
        {"Kakekomi", OpCall([](Op& e, R r) { e.Kakekomi(128, r.left, r.top, r.right, r.bottom); }),
         false, true},
        {"Gather", OpCall([](Op& e, R r) {
             e.PaturnMatrixMethod(3, 1, r.left, r.top, r.right, r.bottom, -128);
         }),
         false},
        {"ShadingLast",
         OpCall([](Op& e, R r) { e.ShadingLast(r.left, r.top, r.right, r.bottom, 160, 160, 160); }),
         false, true},
        {"Matrix9", EdgeCall([](Class_Edge& e, R r) {
             e.Edge_Matrix9(-8, 1, 1, 1, 1, 1, 1, 1, 1, r.left, r.top, r.right, r.bottom);
         })},
        {"Sobel", EdgeCall([](Class_Edge& e, R r) {
             e.Edge_Sobel(0, r.left, r.top, r.right, r.bottom, 2);
         })},
        {"Expansion", EdgeCall([](Class_Edge& e, R r) {
             e.Edge_Expansion(2, r.left, r.top, r.right, r.bottom);
         })},
        {"Roberts", EdgeCall([](Class_Edge& e, R r) {
             e.Edge_Robarts(0, 8, r.left, r.top, r.right, r.bottom);
         }),
         false},
        {"Differential", EdgeCall([](Class_Edge& e, R r) {
             e.DifferentalFilter(3, r.left, r.top, r.right, r.bottom);
         }),
         false},
    };
    return all;
}

struct BadInput : ::testing::TestWithParam<Operation> {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    template <typename Class>
    Surface runOn(const Surface& picture, const ProcessRect& rect,
                  const std::function<void(Class&, R)>& call, bool inPlace) {
        Class effect(context);
        effect.ImageGetDiBits(picture);
        effect.ImageGetDiBitsTrans(picture);
        call(effect, rect);
        Surface result;
        if (inPlace) {
            effect.ImageSetDiBits(result);
        } else {
            effect.ImageSetDiBitsTrans(result);
        }
        return result;
    }

    Surface apply(const Surface& picture, const ProcessRect& rect) {
        const Operation& op = GetParam();
        return std::visit([&](const auto& call) { return runOn(picture, rect, call, op.inPlace); },
                          op.call);
    }
};

TEST_P(BadInput, TinyPicturesAndStrayRectanglesFailNothing) {
    const Operation& op = GetParam();
    for (const int side : {1, 2}) {
        const Surface tiny = randomPicture(side, side, 256, 9);
        const Surface result = apply(tiny, ProcessRect::wholePicture(side, side));
        if (op.window) {
            EXPECT_TRUE(result.sameColours(tiny)) << op.name << " " << side;
        }
    }
    const Surface picture = randomPicture(12, 10, 256, 4);
    // Smaller than any window: two columns.
    const Surface narrow = apply(picture, {4, 2, 6, 9});
    EXPECT_TRUE(unchangedOutside(narrow, picture, 4, 2, 6, 9)) << op.name;
    if (op.window) {
        EXPECT_TRUE(narrow.sameColours(picture)) << op.name;
    }
    // Past every side of the picture: the loop keeps to the picture.
    const Surface beyond = apply(picture, {-7, -3, 40, 30});
    EXPECT_EQ(beyond.width(), 12);
    // A rectangle entirely outside changes nothing.
    EXPECT_TRUE(apply(picture, {20, 20, 30, 30}).sameColours(picture)) << op.name;
    // Corners given the wrong way round make an empty loop.
    EXPECT_TRUE(apply(picture, {8, 8, 2, 2}).sameColours(picture)) << op.name;
    EXPECT_TRUE(context.failures.empty()) << op.name;
}

INSTANTIATE_TEST_SUITE_P(Operations, BadInput, ::testing::ValuesIn(operations()),
                         [](const auto& testInfo) { return std::string(testInfo.param.name); });

} // namespace
} // namespace lumiran::testing
