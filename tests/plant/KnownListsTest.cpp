#include "plant/KnownLists.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

TEST(KnownListsTest, TellsNewListsAsASetDoes)
{
    std::mt19937 random(3);
    plant::KnownLists known;
    std::set<std::vector<std::uint32_t>> expected;
    for (int i = 0; i < 20000; ++i) {
        std::vector<std::uint32_t> list(random() % 5);
        for (std::uint32_t& entry : list) {
            entry = static_cast<std::uint32_t>(random() % 12);
        }
        ASSERT_EQ(known.add(list), expected.insert(list).second) << "list " << i;
    }
    EXPECT_GT(expected.size(), 4000U);
}

} // namespace
