#include "imagefiles/image_load_error.h"
#include "imagefiles/load_limits.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lumiran {
namespace {

struct CheckCase {
    std::int64_t width, height;
    LoadLimits limits;
    const char* refusal; // nullptr: allowed
};

TEST(LoadLimits, CheckNamesTheSizeAndTheLimitThatRefusedIt) {
    constexpr std::uint64_t MiB = 1u << 20;
    const std::vector<CheckCase> cases = {
        {16384, 16384, {.maxBytes = 8192 * MiB}, nullptr},
        {16385,
         16384,
         {.maxBytes = 8192 * MiB},
         "16385x16384 is 268451840 pixels, above the limit of 16384x16384 pixels"},
        {100, 100, {.maxBytes = 8192 * MiB, .maxPixels = 9999}, "above the limit of 9999 pixels"},
        {32768, 1, {.maxBytes = 8192 * MiB}, "at most 32767"},
        {0, 5, {}, "no pixels (0x5)"},
        // 1024x1024 at 4 bytes a pixel read, 4 more for each kept copy.
        {1024, 1024, {.maxBytes = 12 * MiB, .keptCopies = 2}, nullptr},
        {1024, 1024, {.maxBytes = 12 * MiB, .keptCopies = 3}, "1024x1024 needs 16 MiB"},
        {1024, 1024, {.maxBytes = 12 * MiB, .keptCopies = 3}, "above the limit of 12 MiB"},
    };
    for (const CheckCase& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        try {
            c.limits.check(c.width, c.height, 4);
            EXPECT_EQ(c.refusal, nullptr) << "allowed";
        } catch (const ImageLoadError& e) {
            ASSERT_NE(c.refusal, nullptr) << e.detail();
            EXPECT_EQ(e.number(), 0);
            EXPECT_NE(e.detail().find(c.refusal), std::string::npos) << e.detail();
        }
    }
}

TEST(LoadLimits, FitKeepsTheShapeWithinEveryLimit) {
    const LoadLimits limits{.maxBytes = 1ull << 40, .maxPixels = 100 * 100};
    struct Case {
        std::int64_t width, height, fittedWidth, fittedHeight;
        bool scaled;
    };
    for (const Case c : {Case{80, 60, 80, 60, false}, Case{400, 100, 200, 50, true},
                         Case{20000, 20000, 100, 100, true}, Case{40000, 2, 10000, 1, true},
                         Case{1000000, 1, 10000, 1, true}}) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        const FittedSize fitted = limits.fit(c.width, c.height, 8);
        EXPECT_EQ(fitted.width, c.fittedWidth);
        EXPECT_EQ(fitted.height, c.fittedHeight);
        EXPECT_EQ(fitted.scaledDown, c.scaled);
        if (fitted.width > 0) {
            EXPECT_NO_THROW(limits.check(fitted.width, fitted.height, 8));
        }
    }
    // Memory for not even one pixel: nothing fits.
    EXPECT_EQ(LoadLimits{.maxBytes = 4}.fit(10, 10, 8).width, 0);
}

TEST(LoadLimits, PixelLimitsAreASizeOrACount) {
    struct Case {
        const char* text;
        std::int64_t pixels;
    };
    for (const Case c :
         {Case{"16384x16384", 268435456}, Case{"640X480", 307200}, Case{"1000", 1000},
          Case{"0x5", 0}, Case{"x5", 0}, Case{"5x", 0}, Case{"-4", 0}, Case{"12 ", 0}, Case{"", 0},
          Case{"2000000000x2000000000", 0}}) {
        EXPECT_EQ(parsePixelLimit(c.text), c.pixels) << c.text;
    }
    EXPECT_EQ(LoadLimits{}.describePixelLimit(), "16384x16384 pixels");
}

} // namespace
} // namespace lumiran
