// A small generator of numbers that gives the same ones everywhere for the same seed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0xD1B54A32D192ED03u)
    {
    }

    std::uint64_t next()
    {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// 0 .. n-1; n is at least 1.
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
    /// low .. high, both included.
    int between(int low, int high)
    {
        return low + static_cast<int>(below(static_cast<std::size_t>(high - low + 1)));
    }
    bool chance(int percent) { return between(0, 99) < percent; }
    /// Requires: there is something to pick from.
    template <class List> decltype(auto) pick(const List& from) { return from[below(from.size())]; }

private:
    std::uint64_t state_;
};
