// Whole numbers of any size, for sums of products that have a common denominator.
#pragma once

#include <algorithm>
#include <cmath>
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
        while (!digits_.empty() && digits_.back() == 0) {
            digits_.pop_back();
        }
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
    bool operator==(const WholeNumber&) const = default;

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

    std::vector<std::uint32_t> digits_; ///< least significant first
};
