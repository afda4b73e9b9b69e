// Whole numbers of any size, for sums of products that have a common denominator.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

class WholeNumber {
public:
    WholeNumber(std::uint32_t value = 0)
    {
        if (value != 0) {
            digits_.push_back(value);
        }
    }

    bool isZero() const { return digits_.empty(); }

    WholeNumber& operator*=(std::uint32_t factor)
    {
        std::uint64_t carry = 0;
        for (std::uint32_t& digit : digits_) {
            carry += std::uint64_t{digit} * factor;
            digit = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        append(carry);
        trim();
        return *this;
    }
    WholeNumber& operator+=(const WholeNumber& other)
    {
        digits_.resize(std::max(digits_.size(), other.digits_.size()), 0);
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < digits_.size(); ++i) {
            carry += digits_[i];
            carry += i < other.digits_.size() ? other.digits_[i] : 0;
            digits_[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        append(carry);
        return *this;
    }
    /// Requires: `other` is not larger.
    WholeNumber& operator-=(const WholeNumber& other)
    {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < digits_.size(); ++i) {
            const std::uint64_t less = borrow + (i < other.digits_.size() ? other.digits_[i] : 0);
            borrow = digits_[i] < less ? 1 : 0;
            digits_[i] = static_cast<std::uint32_t>(digits_[i] + (borrow << 32) - less);
        }
        if (borrow != 0 || other.digits_.size() > digits_.size()) {
            std::abort();
        }
        trim();
        return *this;
    }
    WholeNumber operator*(const WholeNumber& other) const
    {
        WholeNumber result;
        for (std::size_t i = other.digits_.size(); i-- > 0;) {
            result <<= 32;
            WholeNumber row = *this;
            row *= other.digits_[i];
            result += row;
        }
        return result;
    }
    WholeNumber& operator<<=(std::size_t bits)
    {
        if (isZero()) {
            return *this;
        }
        *this *= std::uint32_t{1} << (bits % 32);
        digits_.insert(digits_.begin(), bits / 32, 0);
        return *this;
    }
    WholeNumber& operator>>=(std::size_t bits)
    {
        digits_.erase(digits_.begin(), digits_.begin() + static_cast<std::ptrdiff_t>(
                                                             std::min(bits / 32, digits_.size())));
        std::uint64_t above = 0;
        for (std::size_t i = digits_.size(); i-- > 0;) {
            above = (above << 32) | digits_[i];
            digits_[i] = static_cast<std::uint32_t>(above >> (bits % 32));
            above &= (std::uint64_t{1} << (bits % 32)) - 1;
        }
        trim();
        return *this;
    }
    bool operator==(const WholeNumber&) const = default;
    std::strong_ordering operator<=>(const WholeNumber& other) const
    {
        if (digits_.size() != other.digits_.size()) {
            return digits_.size() <=> other.digits_.size();
        }
        return std::lexicographical_compare_three_way(digits_.rbegin(), digits_.rend(),
                                                      other.digits_.rbegin(), other.digits_.rend());
    }
    /// Binary digits; 0 for 0.
    std::size_t bits() const
    {
        return isZero() ? 0
                        : 32 * digits_.size() -
                              static_cast<std::size_t>(std::countl_zero(digits_.back()));
    }
    /// How often 2 divides it; 0 for 0.
    std::size_t twos() const
    {
        std::size_t zeros = 0;
        while (zeros < digits_.size() && digits_[zeros] == 0) {
            ++zeros;
        }
        return isZero() ? 0
                        : 32 * zeros + static_cast<std::size_t>(std::countr_zero(digits_[zeros]));
    }
    bool bit(std::size_t place) const
    {
        return place / 32 < digits_.size() && ((digits_[place / 32] >> (place % 32)) & 1) != 0;
    }

    /// Natural logarithm; of a number above 0. Exact but for the last bits of the result.
    double log() const
    {
        long double leading = 0.0L;
        const std::size_t used = std::min<std::size_t>(digits_.size(), 4);
        for (std::size_t i = 0; i < used; ++i) {
            leading = leading * 0x1p32L + static_cast<long double>(digits_[digits_.size() - 1 - i]);
        }
        const auto rest = static_cast<long double>(32 * (digits_.size() - used));
        return static_cast<double>(std::log(leading) + rest * std::log(2.0L));
    }
    /// A quotient; 0 for 0.
    static double ratio(const WholeNumber& part, const WholeNumber& whole)
    {
        return part.isZero() ? 0.0 : std::exp(part.log() - whole.log());
    }

private:
    void append(std::uint64_t carry)
    {
        if (carry != 0) {
            digits_.push_back(static_cast<std::uint32_t>(carry));
        }
    }

    void trim()
    {
        while (!digits_.empty() && digits_.back() == 0) {
            digits_.pop_back();
        }
    }

    std::vector<std::uint32_t> digits_; ///< least significant first
};
