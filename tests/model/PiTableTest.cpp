// The table of prime implicates.
#include "model/PiTable.h"
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using Sets = std::vector<std::vector<Atom*>>;

class PiTableTest : public testing::Test {
protected:
    PiTableTest()
    {
        a_.id = "x.v=a";
        b_.id = "x.v=b";
        c_.id = "x.v=c";
    }

    // The table takes over what this makes: the leak check sees to it.
    PiTable::Implicates* made(const Sets& sets)
    {
        auto* list = new PiTable::Implicates;
        for (const std::vector<Atom*>& set : sets) {
            list->push_back(new std::vector<Atom*>(set));
        }
        return list;
    }
    std::string shown()
    {
        const FlushLog log;
        table_.showAllPI();
        EXPECT_EQ(log.flushes(), 0u);
        return log.text();
    }

    Atom a_;
    Atom b_;
    Atom c_;
    PiTable table_;
};

TEST_F(PiTableTest, AnswersWithTheVeryListThatItWasGiven)
{
    PiTable::Implicates* list = made({{&b_, &c_}, {&c_}});
    table_.addPIAtom(&a_, list);
    EXPECT_EQ(table_.getPIs(&a_), list);
    EXPECT_EQ(table_.getPIs(&a_), list);
    EXPECT_EQ(*list->at(0), (std::vector<Atom*>{&b_, &c_}));
    EXPECT_EQ(*list->at(1), std::vector<Atom*>{&c_});
}

TEST_F(PiTableTest, AnswersWithNullForAnAtomWithoutEntry)
{
    table_.addPIAtom(&a_, made({{&b_}}));
    EXPECT_EQ(table_.getPIs(&b_), nullptr);
}

TEST_F(PiTableTest, ComparesAtomsByPointer)
{
    table_.addPIAtom(&a_, made({{&b_}}));
    Atom twin;
    twin.id = a_.id;
    EXPECT_EQ(table_.getPIs(&twin), nullptr);
}

TEST_F(PiTableTest, AnswersWithTheFirstEntryOfAnAtom)
{
    PiTable::Implicates* first = made({{&b_}});
    table_.addPIAtom(&a_, first);
    table_.addPIAtom(&a_, made({{&c_}}));
    EXPECT_EQ(table_.getPIs(&a_), first);
}

TEST_F(PiTableTest, PrintsNothingWhenItIsEmpty)
{
    EXPECT_EQ(shown(), "");
}

TEST_F(PiTableTest, PrintsALineForEachEntryInTheOrderOfTheirAddition)
{
    table_.addPIAtom(&c_, made({{&a_, &b_}, {&b_}}));
    table_.addPIAtom(&a_, made({{&b_, &b_}}));
    EXPECT_EQ(shown(), "x.v=c: x.v=a x.v=b, x.v=b\n"
                       "x.v=a: x.v=b x.v=b\n");
}

TEST_F(PiTableTest, PrintsARepeatedHeadOnALineOfItsOwn)
{
    table_.addPIAtom(&a_, made({{&b_}}));
    table_.addPIAtom(&b_, made({{&a_}}));
    table_.addPIAtom(&a_, made({{&c_}}));
    EXPECT_EQ(shown(), "x.v=a: x.v=b\n"
                       "x.v=b: x.v=a\n"
                       "x.v=a: x.v=c\n");
}

TEST_F(PiTableTest, IsNotWalkedWhenTheTraceIsMuted)
{
    table_.addPIAtom(nullptr, made({{nullptr}}));
    const FlushLog log;
    {
        const MutedTrace muted;
        table_.showAllPI();
    }
    EXPECT_EQ(log.text(), "");
}

TEST_F(PiTableTest, KeepsOneEntryThatHasNoSets)
{
    PiTable::Implicates* list = made({});
    table_.addPIAtom(&a_, list);
    EXPECT_EQ(table_.getPIs(&a_), list);
}

} // namespace
