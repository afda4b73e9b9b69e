// Exact fractions of any size, 0 or more: what Fraction is, where 64 bits do not suffice.
#pragma once

#include "tests/reference/WholeNumber.h"

#include <compare>
#include <ostream>

/// A fraction in lowest terms, 0 or more.
class ExactFraction {
public:
    /// Requires: a denominator above 0.
    ExactFraction(std::uint32_t numerator = 0, std::uint32_t denominator = 1);
    /// Exactly what the double is; 0.1 is not 1/10. Requires: finite, 0 or more.
    static ExactFraction of(double value);

    ExactFraction operator+(const ExactFraction& other) const;
    /// Requires: `other` is not larger.
    ExactFraction operator-(const ExactFraction& other) const;
    ExactFraction operator*(const ExactFraction& other) const;
    /// Requires: `other` is not 0.
    ExactFraction operator/(const ExactFraction& other) const;
    ExactFraction& operator+=(const ExactFraction& other) { return *this = *this + other; }
    ExactFraction& operator*=(const ExactFraction& other) { return *this = *this * other; }
    bool operator==(const ExactFraction&) const = default;
    std::strong_ordering operator<=>(const ExactFraction& other) const;

    bool isZero() const { return numerator_.isZero(); }
    /// The nearest double, but for the last bits.
    double value() const;

    friend std::ostream& operator<<(std::ostream& out, const ExactFraction& fraction)
    {
        return out << fraction.value();
    }

private:
    ExactFraction(WholeNumber numerator, WholeNumber denominator);

    WholeNumber numerator_;
    WholeNumber denominator_;
};
