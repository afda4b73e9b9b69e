// Exact fractions, for probabilities that a test states without rounding.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <ostream>

/// A fraction in lowest terms. Ends the program where 64 bits do not suffice.
class Fraction {
public:
    Fraction(std::int64_t numerator = 0, std::int64_t denominator = 1)
        : numerator_(numerator), denominator_(denominator)
    {
        reduce();
    }
    /// Of a double that is a multiple of 2^-20; ends the program for any other.
    static Fraction ofDyadic(double value)
    {
        const double scaled = std::ldexp(value, 20);
        if (scaled != std::floor(scaled)) {
            std::abort();
        }
        return {static_cast<std::int64_t>(scaled), std::int64_t{1} << 20};
    }

    Fraction operator*(const Fraction& other) const
    {
        const std::int64_t a = std::gcd(numerator_, other.denominator_);
        const std::int64_t b = std::gcd(other.numerator_, denominator_);
        return {product(numerator_ / a, other.numerator_ / b),
                product(denominator_ / b, other.denominator_ / a)};
    }
    Fraction operator/(const Fraction& other) const
    {
        return *this * Fraction(other.denominator_, other.numerator_);
    }
    Fraction operator+(const Fraction& other) const
    {
        const std::int64_t common = std::lcm(denominator_, other.denominator_);
        return {sum(product(numerator_, common / denominator_),
                    product(other.numerator_, common / other.denominator_)),
                common};
    }
    Fraction operator-(const Fraction& other) const
    {
        return *this + Fraction(-other.numerator_, other.denominator_);
    }
    bool operator==(const Fraction&) const = default;

    double value() const
    {
        return static_cast<double>(numerator_) / static_cast<double>(denominator_);
    }

    friend std::ostream& operator<<(std::ostream& out, const Fraction& fraction)
    {
        return out << fraction.numerator_ << '/' << fraction.denominator_;
    }

private:
    static std::int64_t product(std::int64_t a, std::int64_t b)
    {
        std::int64_t result = 0;
        if (__builtin_mul_overflow(a, b, &result)) {
            std::abort();
        }
        return result;
    }
    static std::int64_t sum(std::int64_t a, std::int64_t b)
    {
        std::int64_t result = 0;
        if (__builtin_add_overflow(a, b, &result)) {
            std::abort();
        }
        return result;
    }
    void reduce()
    {
        if (denominator_ == 0) {
            std::abort();
        }
        const std::int64_t common = std::gcd(numerator_, denominator_);
        const std::int64_t sign = denominator_ < 0 ? -1 : 1;
        numerator_ = sign * (common == 0 ? numerator_ : numerator_ / common);
        denominator_ = sign * (common == 0 ? denominator_ : denominator_ / common);
    }

    std::int64_t numerator_;
    std::int64_t denominator_;
};
