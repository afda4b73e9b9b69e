#include "plant/SharedArray.h"

#include "tests/reference/Random.h"

#include <gtest/gtest.h>

namespace {

using plant::SharedArray;

// Counts how often a value is compared.
struct Counted {
    int value = 0;

    static inline int compared = 0;
    friend bool operator==(const Counted& a, const Counted& b)
    {
        ++compared;
        return a.value == b.value;
    }
};

std::vector<std::size_t> differences(const SharedArray<int>& a, const SharedArray<int>& b)
{
    std::vector<std::size_t> places;
    forEachDifference(a, b, [&](std::size_t place) { places.push_back(place); });
    return places;
}

TEST(SharedArray, HasTheValuesThatItWasMadeOf)
{
    std::vector<int> values(10'000);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<int>(i * i % 1009);
    }
    EXPECT_EQ(SharedArray<int>(values).toVector(), values);
    EXPECT_EQ(SharedArray<int>(70, 3).toVector(), std::vector<int>(70, 3));
    EXPECT_TRUE(SharedArray<int>(std::vector<int>()).empty());
}

TEST(SharedArray, ACopyKeepsWhatTheOtherOneChanges)
{
    SharedArray<int> array(5000, 0);
    const SharedArray<int> copy = array;
    array.set(4711, 1);
    EXPECT_EQ(array[4711], 1);
    EXPECT_EQ(copy[4711], 0);
    EXPECT_EQ(copy, SharedArray<int>(5000, 0));
}

TEST(SharedArray, ManyWritesInManyCopiesAreThoseOfPlainArrays)
{
    Random random(1);
    std::vector<std::vector<int>> plain(1, std::vector<int>(9000, 0));
    std::vector<SharedArray<int>> shared{plain.front()};
    for (int i = 0; i < 3000; ++i) {
        const std::size_t which = random.below(shared.size());
        if (shared.size() < 20 && random.chance(5)) {
            shared.push_back(shared[which]);
            plain.push_back(plain[which]);
        }
        const std::size_t place = random.below(plain[which].size());
        shared[which].set(place, i);
        plain[which][place] = i;
        if (random.chance(5)) {
            shared[which].push_back(i);
            plain[which].push_back(i);
        }
    }
    for (std::size_t i = 0; i < shared.size(); ++i) {
        ASSERT_EQ(shared[i].toVector(), plain[i]);
        for (std::size_t j = 0; j < shared.size(); ++j) {
            EXPECT_EQ(shared[i] == shared[j], plain[i] == plain[j]);
            EXPECT_EQ(shared[i] < shared[j], plain[i] < plain[j]);
        }
    }
}

TEST(SharedArray, DifferencesAreThePlacesThatDiffer)
{
    const SharedArray<int> one(100'000, 0);
    SharedArray<int> other = one;
    EXPECT_TRUE(differences(one, other).empty());
    for (const std::size_t place : {0U, 63U, 64U, 4095U, 4096U, 99'999U}) {
        other.set(place, 1);
    }
    other.set(50'000, 0); // written, and the same
    EXPECT_EQ(differences(one, other), (std::vector<std::size_t>{0, 63, 64, 4095, 4096, 99'999}));
}

TEST(SharedArray, ComparingLooksOnlyAtWhatIsNotShared)
{
    const SharedArray<Counted> one(1'000'000, Counted());
    SharedArray<Counted> other = one;
    other.set(123'456, {1});
    Counted::compared = 0;
    int differing = 0;
    forEachDifference(one, other, [&](std::size_t) { ++differing; });
    EXPECT_EQ(differing, 1);
    EXPECT_LE(Counted::compared, 64);
}

} // namespace
