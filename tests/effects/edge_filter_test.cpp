// Class_Edge: the kernels, their window and what they leave unwritten.
#include "effects/neighbourhood/class_edge.h"
#include "neighbourhood_fixture.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

struct EdgeFilters : NeighbourhoodFixture<Class_Edge> {
    static Surface impulse(int value) {
        Surface s(7, 7, makePixel(0, 0, 0));
        s.at(3, 3) = makePixel(value, value, value);
        return s;
    }
};

// The ring positions in kernel order.
constexpr std::array<std::pair<int, int>, 8> Ring{
    {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}};

struct KernelCase {
    const char* name;
    std::function<void(Class_Edge&, const ProcessRect&)> call;
    std::array<int, 9> kernel; // centre, then the ring
};

class SingleBrightPixel : public EdgeFilters, public ::testing::WithParamInterface<KernelCase> {};

TEST_P(SingleBrightPixel, GivesTheKernelItselfMirroredAboutIt) {
    const KernelCase& c = GetParam();
    const Surface result = runTrans(impulse(20), c.call);
    // The pixel that has the bright one at ring position k lies opposite k.
    EXPECT_EQ(colourAt(result, 3, 3)[0], std::clamp(c.kernel[0] * 20, 0, 255)) << c.name;
    for (std::size_t k = 0; k < Ring.size(); ++k) {
        const auto [dx, dy] = Ring[k];
        EXPECT_EQ(colourAt(result, 3 - dx, 3 - dy),
                  (Colour{std::clamp(c.kernel[k + 1] * 20, 0, 255),
                          std::clamp(c.kernel[k + 1] * 20, 0, 255),
                          std::clamp(c.kernel[k + 1] * 20, 0, 255)}))
            << c.name << " position " << k + 1;
    }
    EXPECT_EQ(colourAt(result, 1, 1), (Colour{0, 0, 0})) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Kernels, SingleBrightPixel,
    ::testing::Values(KernelCase{"Matrix9",
                                 [](Class_Edge& e, const ProcessRect& r) {
                                     e.Edge_Matrix9(9, 1, 2, 3, 4, 5, 6, 7, 8, r.left, r.top,
                                                    r.right, r.bottom);
                                 },
                                 {9, 1, 2, 3, 4, 5, 6, 7, 8}},
                      KernelCase{"Kirsch45",
                                 [](Class_Edge& e, const ProcessRect& r) {
                                     e.Edge_Kirsch(45, r.left, r.top, r.right, r.bottom);
                                 },
                                 {0, 5, 5, -3, 5, -3, -3, -3, -3}},
                      KernelCase{"Kirsch315",
                                 [](Class_Edge& e, const ProcessRect& r) {
                                     e.Edge_Kirsch(315, r.left, r.top, r.right, r.bottom);
                                 },
                                 {0, -3, 5, 5, -3, 5, -3, -3, -3}},
                      KernelCase{"ExtractionDirection4",
                                 [](Class_Edge& e, const ProcessRect& r) {
                                     e.Edge_Extraction(4, r.left, r.top, r.right, r.bottom, 3);
                                 },
                                 {0, 3, 3, 0, 3, -3, 0, -3, -3}},
                      KernelCase{"ExtractionDirection7",
                                 [](Class_Edge& e, const ProcessRect& r) {
                                     e.Edge_Extraction(7, r.left, r.top, r.right, r.bottom, 2);
                                 },
                                 {0, 0, -2, -2, 2, -2, 2, 2, 0}}),
    [](const auto& testInfo) { return std::string(testInfo.param.name); });

TEST_F(EdgeFilters, TheEnteringWindowHoldsTheTopRowAsCentreThenAsTopEntry) {
    // Rows 10, 20, 30, 40, 50 in red. The first window of a column reads its
    // centre from the top row; sliding down, that entry becomes the second
    // window's top entry. Expected red of rows 1, 2, 3.
    const Surface picture =
        makePicture(3, 5, [](int, int y) { return makePixel(10 * (y + 1), 0, 0); });
    struct Case {
        const char* name;
        std::function<void(Class_Edge&, const ProcessRect&)> call;
        std::array<int, 3> red;
    };
    const Case cases[] = {
        {"centre alone",
         [](auto& e, auto& r) {
             e.Edge_Matrix9(1, 0, 0, 0, 0, 0, 0, 0, 0, r.left, r.top, r.right, r.bottom);
         },
         {10, 30, 40}},
        {"top alone",
         [](auto& e, auto& r) {
             e.Edge_Matrix9(0, 0, 1, 0, 0, 0, 0, 0, 0, r.left, r.top, r.right, r.bottom);
         },
         {10, 10, 30}},
        // Gx = abs(2 (c2 - c7) - c8 - c6 + c3 + c1): 80, then 100 with the
        // stale top.
        {"Sobel Gx",
         [](auto& e, auto& r) { e.Edge_Sobel(0, r.left, r.top, r.right, r.bottom, 0); },
         {80, 100, 80}},
        // 5 below less 3 elsewhere: 240, the stale top lifts it past 255.
        {"Kirsch 180",
         [](auto& e, auto& r) { e.Edge_Kirsch(180, r.left, r.top, r.right, r.bottom); },
         {240, 255, 240}},
        // The bottom row less the top row: 60, then 70.
        {"Extraction 1",
         [](auto& e, auto& r) { e.Edge_Extraction(1, r.left, r.top, r.right, r.bottom, 1); },
         {60, 70, 60}},
    };
    for (const Case& c : cases) {
        const Surface result = runTrans(picture, c.call);
        for (int y = 1; y <= 3; ++y)
            EXPECT_EQ(colourAt(result, 1, y)[0], c.red[static_cast<std::size_t>(y - 1)])
                << c.name << " row " << y;
    }
}

TEST_F(EdgeFilters, AFlatPictureGivesBlackInEveryExtractionDirection) {
    const Surface flat(6, 5, makePixel(90, 140, 200));
    for (std::uint8_t direction = 0; direction < 8; ++direction) {
        const Surface result = runTrans(flat, [direction](Class_Edge& e, const ProcessRect& r) {
            e.Edge_Extraction(direction, r.left, r.top, r.right, r.bottom, 24);
        });
        EXPECT_EQ(colourAt(result, 2, 2), (Colour{0, 0, 0})) << int{direction};
        EXPECT_TRUE(unchangedOutside(result, flat, 1, 1, 5, 4));
    }
}

TEST_F(EdgeFilters, AnUndefinedKirschAngleKeepsTheLastKernel) {
    const Surface picture = randomPicture(6, 6, 256, 3);
    Class_Edge effect(context);
    effect.ImageGetDiBits(picture);
    effect.ImageGetDiBitsTrans(picture);
    effect.Edge_Kirsch(30, 0, 0, 6, 6); // no kernel yet: black
    Surface first;
    effect.ImageSetDiBitsTrans(first);
    EXPECT_EQ(colourAt(first, 2, 3), (Colour{0, 0, 0}));
    EXPECT_TRUE(unchangedOutside(first, picture, 1, 1, 5, 5));

    const Surface at90 = runTrans(picture, [](Class_Edge& e, const ProcessRect& r) {
        e.Edge_Kirsch(90, r.left, r.top, r.right, r.bottom);
    });
    const Surface kept = runTrans(picture, [](Class_Edge& e, const ProcessRect& r) {
        e.Edge_Kirsch(90, r.left, r.top, r.right, r.bottom);
        e.Edge_Kirsch(30, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_TRUE(kept.sameColours(at90));
}

TEST_F(EdgeFilters, SobelAndRosenfeldOnAVerticalStep) {
    // Columns 0 | 20: at the step Gx is 0, Gy 80 (Sobel) or 60 (Rosenfeld).
    const Surface step =
        makePicture(4, 3, [](int x, int) { return makePixel(x >= 2 ? 20 : 0, 0, 0); });
    const std::array<std::array<int, 3>, 2> expected{{{0, 80, 80}, {0, 60, 60}}};
    for (std::uint8_t kernel = 0; kernel < 2; ++kernel) {
        for (std::uint8_t combine = 0; combine < 3; ++combine) {
            const Surface result = runTrans(step, [=](Class_Edge& e, const ProcessRect& r) {
                e.Edge_Sobel(kernel, r.left, r.top, r.right, r.bottom, combine);
            });
            EXPECT_EQ(colourAt(result, 1, 1)[0], expected[kernel][combine])
                << int{kernel} << "," << int{combine};
        }
    }
}

TEST_F(EdgeFilters, TwoByTwoFiltersOnOneBlock) {
    // The pixel, its right, lower and lower right neighbours.
    Surface block(2, 2);
    block.at(0, 0) = makePixel(10, 0, 0);
    block.at(1, 0) = makePixel(40, 0, 0);
    block.at(0, 1) = makePixel(20, 0, 3);
    block.at(1, 1) = makePixel(70, 0, 0);
    struct Case {
        const char* name;
        std::function<void(Class_Edge&, const ProcessRect&)> call;
        Colour expected;
    };
    const Case cases[] = {
        // A = -60, B = 20 in red.
        {"Roberts",
         [](auto& e, auto& r) { e.Edge_Robarts(0, 1, r.left, r.top, r.right, r.bottom); },
         {63, 0, 3}},
        {"Fosen",
         [](auto& e, auto& r) { e.Edge_Robarts(1, 2, r.left, r.top, r.right, r.bottom); },
         {160, 0, 6}},
        // D: red 100 + 900, blue 9.
        {"Differential0",
         [](auto& e, auto& r) { e.DifferentalFilter(0, r.left, r.top, r.right, r.bottom); },
         {255, 0, 9}},
        {"Differential1",
         [](auto& e, auto& r) { e.DifferentalFilter(1, r.left, r.top, r.right, r.bottom); },
         {255, 255, 255}},
        {"Differential2",
         [](auto& e, auto& r) { e.DifferentalFilter(2, r.left, r.top, r.right, r.bottom); },
         {32, 0, 3}},
        {"Differential3",
         [](auto& e, auto& r) { e.DifferentalFilter(3, r.left, r.top, r.right, r.bottom); },
         {11, 11, 11}},
        // 257 * 10 = 2570; the weights of the other three are zero.
        {"Matrix4",
         [](auto& e, auto& r) { e.Edge_Matrix4(1, 1, -1, 0, r.left, r.top, r.right, r.bottom); },
         {30, 0, 0}},
        // 257 * 255 keeps 16 bits: -1, clipped to 0.
        {"Matrix4Wraps",
         [](auto& e, auto& r) { e.Edge_Matrix4(0, 0, 0, 257, r.left, r.top, r.right, r.bottom); },
         {0, 0, 0}},
    };
    Surface wraps = block;
    wraps.at(1, 1) = makePixel(255, 255, 255);
    for (const Case& c : cases) {
        const Surface& picture = std::string_view(c.name) == "Matrix4Wraps" ? wraps : block;
        const Surface result = runTrans(picture, c.call);
        EXPECT_EQ(colourAt(result, 0, 0), c.expected) << c.name;
        EXPECT_TRUE(unchangedOutside(result, picture, 0, 0, 1, 1)) << c.name;
    }
}

TEST_F(EdgeFilters, ExpansionDarkensAFlatPictureAndKeepsItsMargins) {
    const Surface flat(9, 9, makePixel(100, 100, 100));
    for (std::uint8_t kind = 0; kind < 3; ++kind) {
        const Surface result = runTrans(flat, [kind](Class_Edge& e, const ProcessRect& r) {
            e.Edge_Expansion(kind, r.left, r.top, r.right, r.bottom);
        });
        const int reach = kind + 1;
        EXPECT_EQ(colourAt(result, 4, 4), (Colour{0, 0, 0}));
        EXPECT_TRUE(unchangedOutside(result, flat, reach, reach, 9 - reach, 9 - reach));
    }
}

} // namespace
} // namespace lumiran::testing
