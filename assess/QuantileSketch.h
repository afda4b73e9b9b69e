// Quantiles of a stream in bounded memory, without chance: the same values in the same order give the same answer.
//
// Values are gathered in a buffer. A full one is sorted, and every other value of it goes to the buffer above, where each counts twice as
// much; so on upwards. Up to the size of a buffer the answers are exact; beyond, the rank of what is returned is off by at most
// rankError(). "Approximate medians and other quantiles in one pass and with limited memory", SIGMOD Record 27, 1998.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace assess {

class QuantileSketch {
public:
    /// Requires: `buffer` is even and above 0. Memory: as many numbers for each doubling of the count beyond it.
    explicit QuantileSketch(std::size_t buffer = 4096) : buffer_(buffer) {}

    /// Requires: the value is finite. Constant time times the logarithm of the buffer, amortised.
    void add(double value);

    std::size_t count() const { return count_; }
    double least() const { return least_; }   ///< exact. Requires: a value
    double greatest() const { return most_; } ///< the same
    /// The value of which the share `q`, 0 to 1, of all values is not greater. Requires: a value.
    double quantile(double q) const { return quantiles({q}).front(); }
    /// The same of several shares, which rise. Linear in what is kept, times its logarithm.
    std::vector<double> quantiles(const std::vector<double>& shares) const;
    /// The share of the values that are below. Exact where rankError() is 0.
    double shareBelow(double limit) const;
    /// By how much, as a share of the count, a rank may be off: 0 while the answers are exact.
    double rankError() const;
    /// The values that are kept, rising, with the number of values that each stands for.
    std::vector<std::pair<double, double>> weighted() const;

private:
    void promote(std::size_t level);

    struct Level {
        std::vector<double> values;
        bool takesOdd = false; ///< which half goes up next; the halves take turns
        std::size_t promotions = 0;
    };

    std::size_t buffer_;
    std::size_t count_ = 0;
    double least_ = 0;
    double most_ = 0;
    std::vector<Level> levels_;
};

} // namespace assess
