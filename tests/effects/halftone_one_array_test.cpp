// The effects a run lets work in one array give, in ImageBits alone, the
// pixels they give from ImageBits into TransBits: spare bytes, rectangles
// inside the picture and the blend by calculation type included.
#include "halftone_fixture.h"

#include <string>

namespace lumiran::testing {
namespace {

// Noise in all four bytes, so a spare byte taken from the wrong place shows.
Surface noiseWithSpareBytes(int width, int height) {
    std::uint32_t seed = 5;
    return makePicture(width, height, [&seed](int, int) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<Pixel>(seed ^ (seed << 13));
    });
}

template <typename Class>
struct OneArray : HalftoneFixture<Class> {
    using typename HalftoneFixture<Class>::Call;

    Surface inOneArray(const Surface& picture, const ProcessRect& area, const Call& call) {
        this->random = RandomGenerator();
        Class effect(this->context);
        effect.ImageGetDiBits(picture);
        call(effect, area);
        Surface result;
        effect.ImageSetDiBits(result);
        return result;
    }

    Surface inTwoArrays(const Surface& picture, const ProcessRect& area, const Call& call) {
        this->random = RandomGenerator();
        return this->run(picture, area, call);
    }

    void expectAlike(const std::string& name, const Call& call) {
        const Surface picture = noiseWithSpareBytes(37, 23);
        for (const ProcessRect area :
             {ProcessRect{0, 0, 37, 23}, ProcessRect{3, 2, 34, 20}, ProcessRect{-4, 5, 60, 9}}) {
            EXPECT_EQ(inOneArray(picture, area, call), inTwoArrays(picture, area, call))
                << name << " on " << area.left << "," << area.top << "," << area.right << ","
                << area.bottom;
        }
    }
};

using DitherOneArray = OneArray<Class_Dithering>;
using BinarizationOneArray = OneArray<Class_Binarization>;

TEST_F(DitherOneArray, GivesWhatTwoArraysGive) {
    using D = Class_Dithering;
    const std::pair<std::string, Call> calls[] = {
        {"ordered 4x4 mono", op<&D::OrderedDither4x4>(1, 3, rect, 0, 2)},
        {"ordered 4x4 colour", op<&D::OrderedDither4x4>(5, -2, rect, 1, 7)},
        {"ordered 8x8 colour", op<&D::OrderedDither8x8>(0, 1, rect, 1, 4)},
        {"diffusion mono", op<&D::Dither_ErrorDiffuse>(1, rect, 0, 2)},
        {"diffusion colour", op<&D::Dither_ErrorDiffuse>(6, rect, 1, 5)},
        {"random diffusion", op<&D::Dither_ErrorDiffuseRandom>(2, rect, 0, 3)},
        {"random dither", op<&D::Dither_ErrorDiffuseRandom>(0, rect, 1, 4)},
        {"fixed diffusion", op<&D::Dither_ErrorFixed>(3, rect, 1, 2, 42)},
        {"colour paint", op<&D::Dither_ErrorDiffuseColorPaint>(4, rect, 1, 3)},
    };
    for (const auto& [name, call] : calls)
        expectAlike(name, call);
}

TEST_F(BinarizationOneArray, GivesWhatTwoArraysGiveWithAndWithoutBlend) {
    using B = Class_Binarization;
    const std::pair<std::string, Call> calls[] = {
        {"luminance", op<&B::Binarization>(100, 0, rect)},
        {"lightness into the ends", op<&B::Binarization>(140, 11, rect)},
        {"drawing colour", op<&B::DrawingColorBinarization>(90, 2, 1, rect, std::uint8_t{10},
                                                            std::uint8_t{200}, std::uint8_t{30})},
        {"transformation", op<&B::TransformationBinarize>(120, rect, 1, 2)},
    };
    for (const std::uint8_t calculation : {0, 3}) {
        context.flags.calculationFlag = calculation;
        for (const auto& [name, call] : calls)
            expectAlike(name + " calculation " + std::to_string(calculation), call);
    }
}

} // namespace
} // namespace lumiran::testing
