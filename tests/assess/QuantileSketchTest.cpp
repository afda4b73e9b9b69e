#include "assess/QuantileSketch.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using assess::QuantileSketch;

TEST(QuantileSketch, IsExactUpToTheSizeOfItsBuffer)
{
    QuantileSketch sketch(128);
    for (int i = 100; i > 0; --i) {
        sketch.add(i);
    }
    EXPECT_EQ(sketch.quantiles({0, 0.01, 0.5, 0.99, 1}), (std::vector<double>{1, 1, 50, 99, 100}));
    EXPECT_EQ(sketch.rankError(), 0);
    EXPECT_EQ(sketch.shareBelow(26), 0.25);
}

TEST(QuantileSketch, KeepsEveryRankWithinTheErrorThatItTells)
{
    std::mt19937_64 random(7); // NOLINT: the same numbers at every run
    std::normal_distribution<double> normal;
    QuantileSketch sketch(256);
    std::vector<double> all;
    for (int i = 0; i < 100'000; ++i) {
        all.push_back(normal(random) + (i > 60'000 ? 3 : 0));
        sketch.add(all.back());
    }
    std::sort(all.begin(), all.end());
    EXPECT_GT(sketch.rankError(), 0);
    EXPECT_LT(sketch.rankError(), 0.05);
    for (const double share : {0.01, 0.05, 0.25, 0.5, 0.75, 0.95, 0.99}) {
        const double value = sketch.quantile(share);
        const auto rank =
            static_cast<double>(std::lower_bound(all.begin(), all.end(), value) - all.begin());
        EXPECT_NEAR(rank / 100'000, share, sketch.rankError() + 1e-5) << share;
    }
    EXPECT_EQ(sketch.least(), all.front());
    EXPECT_EQ(sketch.greatest(), all.back());
}

TEST(QuantileSketch, KeepsNoMoreThanABufferForEachDoubling)
{
    QuantileSketch sketch(64);
    for (int i = 0; i < 1'000'000; ++i) {
        sketch.add(std::fmod(i * 0.618034, 1.0));
    }
    EXPECT_LT(sketch.weighted().size(), 64U * 16U);
    double weight = 0;
    for (const auto& [value, count] : sketch.weighted()) {
        weight += count;
    }
    EXPECT_EQ(weight, 1'000'000);
}
