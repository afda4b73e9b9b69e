#include "tests/reference/ExactFraction.h"
#include "tests/reference/Fraction.h"
#include "tests/reference/Random.h"

#include <gtest/gtest.h>

namespace {

ExactFraction power(const ExactFraction& base, int exponent)
{
    ExactFraction result(1);
    for (int i = 0; i < exponent; ++i) {
        result *= base;
    }
    return result;
}

TEST(ExactFraction, IsInLowestTerms)
{
    EXPECT_EQ(ExactFraction(6, 8), ExactFraction(3, 4));
    EXPECT_EQ(ExactFraction(0, 8), ExactFraction(0));
    EXPECT_NE(ExactFraction(3, 4), ExactFraction(3, 5));
}

TEST(ExactFraction, OfADoubleIsWhatTheDoubleIs)
{
    EXPECT_EQ(ExactFraction::of(0.0), ExactFraction(0));
    EXPECT_EQ(ExactFraction::of(0.75), ExactFraction(3, 4));
    EXPECT_EQ(ExactFraction::of(40.0), ExactFraction(40));
    EXPECT_EQ(ExactFraction::of(0x1p-70), power(ExactFraction(1, 2), 70));
    EXPECT_EQ(ExactFraction::of(0x1p70), power(2, 70));
    EXPECT_NE(ExactFraction::of(0.1), ExactFraction(1, 10));
    EXPECT_EQ(ExactFraction::of(0.1).value(), 0.1);
}

TEST(ExactFraction, CalculatesAsFractionsOf64BitsDo)
{
    Random random(1);
    for (int i = 0; i < 2000; ++i) {
        const std::int64_t a = random.between(0, 100000);
        const std::int64_t b = random.between(1, 100000);
        const std::int64_t c = random.between(1, 100000);
        const std::int64_t d = random.between(1, 100000);
        const auto exact = [](std::int64_t above, std::int64_t below) {
            return ExactFraction(static_cast<std::uint32_t>(above),
                                 static_cast<std::uint32_t>(below));
        };
        const Fraction x(a, b);
        const Fraction y(c, d);
        const ExactFraction p = exact(a, b);
        const ExactFraction q = exact(c, d);
        EXPECT_DOUBLE_EQ((p + q).value(), (x + y).value());
        EXPECT_DOUBLE_EQ((p * q).value(), (x * y).value());
        EXPECT_DOUBLE_EQ((p / q).value(), (x / y).value());
        EXPECT_EQ(p < q, a * d < c * b);
        if (p >= q) {
            EXPECT_DOUBLE_EQ((p - q).value(), (x - y).value());
        } else {
            EXPECT_DOUBLE_EQ((q - p).value(), (y - x).value());
        }
    }
}

TEST(ExactFraction, LosesNothingWhereNumbersAreLong)
{
    const ExactFraction tiny = power(ExactFraction(1, 3), 200) * ExactFraction::of(0.1);
    const ExactFraction huge = power(7, 150);
    EXPECT_EQ((huge + tiny) - huge, tiny);
    EXPECT_EQ((huge * tiny) / huge, tiny);
    EXPECT_EQ((huge + tiny) * (huge + tiny) - (huge - tiny) * (huge - tiny),
              ExactFraction(4) * huge * tiny);
    EXPECT_LT(huge, huge + tiny);
    EXPECT_GT(huge, huge - tiny);
    EXPECT_EQ((huge / (huge + tiny)).value(), 1.0);
}

} // namespace
