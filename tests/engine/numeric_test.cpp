#include "engine/numeric.h"
#include "engine/random_generator.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace lumiran {
namespace {

TEST(Rounding, TiesGoToTheEvenNeighbour) {
    EXPECT_EQ(roundTo<int>(2.5), 2);
    EXPECT_EQ(roundTo<int>(3.5), 4);
    EXPECT_EQ(roundTo<int>(-0.5), 0);
    EXPECT_EQ(roundTo<int>(-1.5), -2);
    EXPECT_EQ(roundTo<int>(-2.5), -2);
    EXPECT_EQ(roundTo<int>(2.4999999), 2);
    EXPECT_EQ(roundTo<std::int16_t>(32767.4), 32767);
}

TEST(Rounding, ValuesOutsideTheTargetRaiseOverflow) {
    auto expectOverflow = [](auto convert) {
        try {
            convert();
            FAIL() << "no error raised";
        } catch (const EffectError& e) {
            EXPECT_EQ(e.number(), 6);
            EXPECT_FALSE(e.description().empty());
        }
    };
    expectOverflow([] { (void)roundTo<std::int16_t>(32767.5); });
    expectOverflow([] { (void)roundTo<std::int16_t>(-32769.0); });
    expectOverflow([] { (void)roundTo<std::uint8_t>(255.5); }); // the even neighbour is 256
    expectOverflow([] { (void)roundTo<std::uint8_t>(-0.6); });
    expectOverflow([] { (void)roundTo<int>(std::numeric_limits<double>::infinity()); });
    expectOverflow([] { (void)roundTo<int>(std::nan("")); });
    EXPECT_EQ(roundTo<std::uint8_t>(-0.5), 0);
    EXPECT_EQ(roundTo<std::uint8_t>(254.5), 254);
}

TEST(Rounding, LargeMagnitudesPassThroughUnchanged) {
    EXPECT_EQ(roundTo<std::int64_t>(1e17), 100000000000000000LL);
}

TEST(IntegerRules, SixteenBitFieldsWrapAndDivisionTruncates) {
    EXPECT_EQ(wrap16(32768), -32768);
    EXPECT_EQ(wrap16(-32769), 32767);
    EXPECT_EQ(wrap16(70000), 70000 - 65536);
    EXPECT_EQ(checkedDivide(-7, 2), -3);
    EXPECT_THROW((void)checkedDivide(1, 0), EffectError);
}

TEST(RandomGenerator, AFreshGeneratorRepeatsTheSameSequence) {
    RandomGenerator a;
    EXPECT_DOUBLE_EQ(a.next(), 11837123.0 / 16777216.0); // 0.7055475...
    EXPECT_NEAR(a.next(), 0.5334240, 1e-7);
    EXPECT_NEAR(a.next(), 0.5795186, 1e-7);
    RandomGenerator b;
    RandomGenerator c;
    for (int i = 0; i < 1000; ++i) {
        const double v = b.next();
        ASSERT_EQ(v, c.next());
        ASSERT_GE(v, 0.0);
        ASSERT_LT(v, 1.0);
    }
}

// Values made in bulk or from a copy moved ahead are the ones next() gives in
// turn, whatever the count's remainder by the bulk loop's width.
TEST(RandomGenerator, BulkAndSkippedDrawsFollowTheSequence) {
    RandomGenerator start;
    for (int i = 0; i < 5; ++i)
        (void)start.next();
    for (const std::size_t count : {0, 1, 15, 16, 17, 100, 8197}) {
        for (const std::uint64_t offset : {0, 3, 70001}) {
            RandomGenerator one = start;
            for (std::uint64_t i = 0; i < offset; ++i)
                (void)one.next();
            RandomGenerator bulk = start.ahead(offset);
            ASSERT_EQ(bulk.state(), one.state()) << offset;
            std::vector<double> values(count);
            bulk.take(values);
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_EQ(values[i], one.next()) << count << " from " << offset << " at " << i;
            EXPECT_EQ(bulk.state(), one.state()) << count << " from " << offset;
        }
    }
    // The sequence repeats after 2^24 values, also for counts beyond 32 bits.
    EXPECT_EQ(start.ahead(std::uint64_t{1} << 24).state(), start.state());
    EXPECT_EQ(start.ahead((std::uint64_t{1} << 40) + 3).state(), start.ahead(3).state());
}

} // namespace
} // namespace lumiran
