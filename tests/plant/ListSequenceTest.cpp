#include "plant/ListSequence.h"

#include <gmock/gmock.h>

namespace {

using plant::ListSequence;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ListSequenceTest, KeepsListsApart)
{
    ListSequence<int> lists;
    lists.add(std::vector{1, 2});
    lists.add({});
    lists.push(3);
    lists.end();
    ASSERT_EQ(lists.size(), 3U);
    EXPECT_THAT(lists[0], ElementsAre(1, 2));
    EXPECT_THAT(lists[1], IsEmpty());
    EXPECT_THAT(lists[2], ElementsAre(3));
    EXPECT_THAT(lists.entries(), ElementsAre(1, 2, 3));
}

TEST(ListSequenceTest, GroupsEntriesByTheirListsInTheirOrder)
{
    const std::vector<std::pair<std::uint32_t, int>> entries{{2, 5}, {0, 4}, {2, 3}, {0, 2}};
    const auto lists = ListSequence<int>::grouped(4, entries);
    ASSERT_EQ(lists.size(), 4U);
    EXPECT_THAT(lists[0], ElementsAre(4, 2));
    EXPECT_THAT(lists[1], IsEmpty());
    EXPECT_THAT(lists[2], ElementsAre(5, 3));
    EXPECT_THAT(lists[3], IsEmpty());
}

} // namespace
