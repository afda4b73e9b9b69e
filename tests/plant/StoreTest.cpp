#include "plant/Store.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using plant::Store;

TEST(StoreTest, KeepsObjectsInTheOrderOfTheirMakingAndWhereTheyAre)
{
    Store<int> store;
    std::vector<const int*> made;
    for (int i = 0; i < 1000; ++i) {
        made.push_back(store.make(i));
    }
    ASSERT_EQ(store.size(), 1000U);
    std::size_t place = 0;
    for (const auto& number : store) {
        EXPECT_EQ(number.get(), made[place]);
        EXPECT_EQ(*number, static_cast<int>(place));
        EXPECT_EQ(store[place].get(), made[place]);
        ++place;
    }
    EXPECT_EQ(place, 1000U);
}

TEST(StoreTest, DestroysEachObjectOnce)
{
    const auto counted = std::make_shared<int>(0);
    {
        Store<std::shared_ptr<int>> store;
        for (int i = 0; i < 300; ++i) {
            store.make(counted);
        }
        EXPECT_EQ(counted.use_count(), 301);
    }
    EXPECT_EQ(counted.use_count(), 1);
}

TEST(StoreTest, MayBeEmpty)
{
    const Store<int> store;
    EXPECT_TRUE(store.empty());
    EXPECT_EQ(store.begin(), store.end());
}

} // namespace
