// Numbers drawn from a seed: the same ones everywhere.
//
// The generator's numbers are fixed by the C++ standard; what the standard's distributions make of them is not, so
// they are mapped here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace simulate {

class Chance {
public:
    explicit Chance(std::uint64_t seed) : generator_(seed) {}

    /// At least 0, less than 1: one of the 2^53 multiples of 2^-53, each as probable as the others.
    double fraction() { return static_cast<double>(generator_() >> 11) * 0x1p-53; }
    /// True with this probability.
    bool happens(double probability) { return fraction() < probability; }
    /// One of 0 .. n-1. Their probabilities differ by 2^-53 at most.
    /// Requires: n >= 1.
    std::size_t below(std::size_t n)
    {
        return static_cast<std::size_t>(fraction() * static_cast<double>(n));
    }
    /// In an order of which each is as probable as the others.
    template <class T> std::vector<T> shuffled(std::vector<T> items)
    {
        for (std::size_t left = items.size(); left > 1; --left) {
            std::swap(items[left - 1], items[below(left)]);
        }
        return items;
    }

private:
    std::mt19937_64 generator_;
};

} // namespace simulate
