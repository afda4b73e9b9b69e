// A sum of logarithms of probabilities that is exact, so it does not depend on the order in which terms come and go.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

namespace monitor {

/// Terms between -745 and 745, and minus infinity, of which there may be as many as variables of a plant.
class LogSum {
public:
    void add(double term)
    {
        if (std::isinf(term)) {
            ++impossible_;
        } else {
            sum_ += fixed(term);
        }
    }
    /// Requires: the term was added.
    void remove(double term)
    {
        if (std::isinf(term)) {
            --impossible_;
        } else {
            sum_ -= fixed(term);
        }
    }
    /// Rounded once.
    double value() const
    {
        return impossible_ > 0 ? -std::numeric_limits<double>::infinity()
                               : std::ldexp(static_cast<double>(sum_), -fractionBits);
    }

private:
    __extension__ using Fixed = __int128;

    // Of a term below 2^-37 the last bits are cut off; there they are nothing beside those of the sum.
    static constexpr int fractionBits = 90;
    static Fixed fixed(double term) { return static_cast<Fixed>(std::ldexp(term, fractionBits)); }

    Fixed sum_ = 0;
    std::size_t impossible_ = 0;
};

} // namespace monitor
