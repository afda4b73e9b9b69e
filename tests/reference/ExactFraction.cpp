#include "tests/reference/ExactFraction.h"

#include <cmath>
#include <utility>

namespace {

// By halving and subtracting; neither is 0.
WholeNumber greatestCommonDivisor(WholeNumber a, WholeNumber b)
{
    const std::size_t common = std::min(a.twos(), b.twos());
    a >>= a.twos();
    b >>= b.twos();
    while (a != b) {
        if (a < b) {
            std::swap(a, b);
        }
        a -= b;
        a >>= a.twos();
    }
    return a <<= common;
}

// As on paper, one binary digit after the other.
WholeNumber quotient(const WholeNumber& whole, const WholeNumber& divisor)
{
    WholeNumber result;
    WholeNumber rest;
    for (std::size_t place = whole.bits(); place-- > 0;) {
        rest <<= 1;
        rest += WholeNumber(whole.bit(place) ? 1 : 0);
        result <<= 1;
        if (rest >= divisor) {
            rest -= divisor;
            result += WholeNumber(1);
        }
    }
    return result;
}

// The first 64 binary digits and how many follow.
std::pair<long double, int> leading(WholeNumber number)
{
    const std::size_t rest = number.bits() > 64 ? number.bits() - 64 : 0;
    number >>= rest;
    long double value = 0.0L;
    for (std::size_t place = number.bits(); place-- > 0;) {
        value = 2.0L * value + (number.bit(place) ? 1.0L : 0.0L);
    }
    return {value, static_cast<int>(rest)};
}

} // namespace

ExactFraction::ExactFraction(std::uint32_t numerator, std::uint32_t denominator)
    : ExactFraction(WholeNumber(numerator), WholeNumber(denominator))
{
}

ExactFraction::ExactFraction(WholeNumber numerator, WholeNumber denominator)
    : numerator_(std::move(numerator)), denominator_(std::move(denominator))
{
    if (denominator_.isZero()) {
        std::abort();
    }
    if (numerator_.isZero()) {
        denominator_ = WholeNumber(1);
        return;
    }
    const WholeNumber common = greatestCommonDivisor(numerator_, denominator_);
    if (common != WholeNumber(1)) {
        numerator_ = quotient(numerator_, common);
        denominator_ = quotient(denominator_, common);
    }
}

ExactFraction ExactFraction::of(double value)
{
    if (!std::isfinite(value) || value < 0.0) {
        std::abort();
    }
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent); // below 1
    const auto digits = static_cast<std::uint64_t>(std::ldexp(mantissa, 53));
    WholeNumber numerator(static_cast<std::uint32_t>(digits >> 32));
    numerator <<= 32;
    numerator += WholeNumber(static_cast<std::uint32_t>(digits));
    WholeNumber denominator(1);
    (exponent > 53 ? numerator : denominator) <<= static_cast<std::size_t>(std::abs(exponent - 53));
    return {std::move(numerator), std::move(denominator)};
}

ExactFraction ExactFraction::operator+(const ExactFraction& other) const
{
    WholeNumber sum = numerator_ * other.denominator_;
    sum += other.numerator_ * denominator_;
    return {std::move(sum), denominator_ * other.denominator_};
}

ExactFraction ExactFraction::operator-(const ExactFraction& other) const
{
    WholeNumber difference = numerator_ * other.denominator_;
    difference -= other.numerator_ * denominator_;
    return {std::move(difference), denominator_ * other.denominator_};
}

ExactFraction ExactFraction::operator*(const ExactFraction& other) const
{
    return {numerator_ * other.numerator_, denominator_ * other.denominator_};
}

ExactFraction ExactFraction::operator/(const ExactFraction& other) const
{
    return {numerator_ * other.denominator_, denominator_ * other.numerator_};
}

std::strong_ordering ExactFraction::operator<=>(const ExactFraction& other) const
{
    return numerator_ * other.denominator_ <=> other.numerator_ * denominator_;
}

double ExactFraction::value() const
{
    const auto [above, aboveRest] = leading(numerator_);
    const auto [below, belowRest] = leading(denominator_);
    return static_cast<double>(std::ldexp(above / below, aboveRest - belowRest));
}
