// Statements with a probability, and how many of them were true.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <fmt/format.h>
#include <string>

/// Statements by their probability, in ten bins.
class Reliability {
public:
    /// Of that many standard deviations a bin may be off: of some 200 bins none is by chance, once in 700 times.
    static constexpr double sigmas = 4.5;

    void add(double said, bool holds)
    {
        const double probability = std::min(said, 1.0); // a sum may be more by its last bits
        const auto place = std::min<std::size_t>(9, static_cast<std::size_t>(probability * 10.0));
        const double variance = probability * (1.0 - probability);
        const double error = probability - (holds ? 1.0 : 0.0);
        Bin& bin = bins_[place];
        ++bin.said;
        bin.expected += probability;
        bin.variance += variance;
        bin.held += holds ? 1 : 0;
        ++said_;
        squares_ += error * error;
        expectedSquares_ += variance;
        varianceOfSquares_ += variance * (1.0 - 2.0 * probability) * (1.0 - 2.0 * probability);
    }

    int said() const { return said_; }
    /// The mean square of what is missing to the truth: 0 at best, 0.25 for one who always says 1/2.
    double brier() const { return squares_ / std::max(1, said_); }
    /// What that may be for one who knows the probabilities, and no more.
    double largestBrier() const
    {
        return (expectedSquares_ + sigmas * std::sqrt(varianceOfSquares_) + 1.0) /
               std::max(1, said_);
    }
    /// Whether in each bin as many statements were true as was said, within the bound and one statement.
    bool holds() const
    {
        return std::all_of(bins_.begin(), bins_.end(), [](const Bin& bin) {
            return std::abs(bin.held - bin.expected) <= sigmas * std::sqrt(bin.variance) + 1.0;
        });
    }

    std::string table() const
    {
        std::string table;
        for (const Bin& bin : bins_) {
            if (bin.said == 0) continue;
            const double deviation = std::sqrt(bin.variance);
            table += fmt::format(
                "    said {:.4f}, held {:.4f}: {} of {}, {:.1f} expected, sigma {:.1f}\n",
                bin.expected / bin.said, 1.0 * bin.held / bin.said, bin.held, bin.said,
                bin.expected, deviation);
        }
        return table;
    }

private:
    struct Bin {
        int said = 0;
        double expected = 0.0; ///< how many should be true
        double variance = 0.0; ///< of that number
        int held = 0;
    };
    std::array<Bin, 10> bins_{};
    int said_ = 0;
    double squares_ = 0.0;
    double expectedSquares_ = 0.0;
    double varianceOfSquares_ = 0.0;
};
