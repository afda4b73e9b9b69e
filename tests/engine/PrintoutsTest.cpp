// Printouts of the engine's containers, whole, with their flushes.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using Pieces = std::vector<std::string>;

class PrintoutsTest : public testing::Test {
protected:
    PrintoutsTest()
    {
        model_.variable(model_.comp("x"), "v", "Cond", {"1", "2", "3"});
        one_ = model_.atom("x.v=1");
        two_ = model_.atom("x.v=2");
        three_ = model_.atom("x.v=3");
        clause_ = model_.clause("x.v=1 | !x.v=2");
        other_ = model_.clause("!x.v=3");
        one_->setLabel("true");
        two_->support = clause_;
    }

    // What `print` prints, cut at every flush; the last piece is not flushed when `unflushed_` is set.
    template <class Print> Pieces printed(Print print)
    {
        const FlushLog log;
        print();
        unflushed_ = log.pieces().size() > log.flushes();
        return log.pieces();
    }

    TestModel model_;
    itms engine_;
    Atom* one_;
    Atom* two_;
    Atom* three_;
    Clause* clause_;
    Clause* other_;
    bool unflushed_ = false;
};

TEST_F(PrintoutsTest, OfAtomsShowLabelsAndSupports)
{
    std::vector<Atom*> atoms{two_, one_, two_};
    EXPECT_EQ(printed([&] { engine_.viewAtomVector(&atoms); }), Pieces{"x.v=2 : unknown\n"
                                                                       "support : \n"
                                                                       "x.v=1 | !x.v=2\n"
                                                                       "x.v=1 : true\n"
                                                                       "support : \n"
                                                                       "x.v=2 : unknown\n"
                                                                       "support : \n"
                                                                       "x.v=1 | !x.v=2\n"
                                                                       "\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfNoAtomsIsAnEmptyLine)
{
    std::vector<Atom*> none;
    EXPECT_EQ(printed([&] { engine_.viewAtomVector(&none); }), Pieces{"\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfIdentifiersFlushesEveryLine)
{
    std::vector<Atom*> atoms{two_, one_};
    EXPECT_EQ(printed([&] { engine_.viewAtomVectorId(&atoms); }), (Pieces{"x.v=2\n", "x.v=1\n"}));
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfNoIdentifiersIsNothing)
{
    std::vector<Atom*> none;
    EXPECT_EQ(printed([&] { engine_.viewAtomVectorId(&none); }), Pieces{});
}

TEST_F(PrintoutsTest, OfClausesShowsTheirLiteralsWithoutLabels)
{
    std::vector<Clause*> clauses{other_, clause_};
    EXPECT_EQ(printed([&] { engine_.viewClauseVector(&clauses); }),
              Pieces{"!x.v=3\nx.v=1 | !x.v=2\n\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfNoClausesIsAnEmptyLine)
{
    std::vector<Clause*> none;
    EXPECT_EQ(printed([&] { engine_.viewClauseVector(&none); }), Pieces{"\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfAtomsByNameFollowsTheNamesAndDoesNotShowThem)
{
    std::multimap<std::string, Atom*, eqstring> atoms;
    atoms.insert({"second", one_});
    atoms.insert({"first", two_});
    EXPECT_EQ(printed([&] { engine_.viewMultimapAtom(&atoms); }), Pieces{"x.v=2 : unknown\n"
                                                                         "support : \n"
                                                                         "x.v=1 | !x.v=2\n"
                                                                         "x.v=1 : true\n"
                                                                         "support : \n"
                                                                         "\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfNoAtomsByNameIsAnEmptyLine)
{
    std::multimap<std::string, Atom*, eqstring> none;
    EXPECT_EQ(printed([&] { engine_.viewMultimapAtom(&none); }), Pieces{"\n"});
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfAMapOfAtomsEndsWithoutAnEmptyLineOrAFlush)
{
    AtomMap atoms;
    atoms[two_->getId()] = two_;
    atoms[one_->getId()] = one_;
    // The hashes of the identifiers differ in their last character alone: 1 comes before 2.
    EXPECT_EQ(printed([&] { engine_.viewHashMapAtom(&atoms); }), Pieces{"x.v=1 : true\n"
                                                                        "support : \n"
                                                                        "x.v=2 : unknown\n"
                                                                        "support : \n"
                                                                        "x.v=1 | !x.v=2\n"});
    EXPECT_TRUE(unflushed_);
}

TEST_F(PrintoutsTest, OfAMapOfAtomsDoesNotShowTheKeys)
{
    AtomMap atoms;
    atoms["another key"] = one_;
    EXPECT_EQ(printed([&] { engine_.viewHashMapAtom(&atoms); }),
              Pieces{"x.v=1 : true\nsupport : \n"});
}

TEST_F(PrintoutsTest, OfAnEmptyMapOfAtomsIsNothing)
{
    AtomMap none;
    EXPECT_EQ(printed([&] { engine_.viewHashMapAtom(&none); }), Pieces{});
}

TEST_F(PrintoutsTest, OfAnAtomWithoutSupportEndsWithTheWordSupport)
{
    std::vector<Atom*> atoms{three_};
    EXPECT_EQ(printed([&] { engine_.viewAtomVector(&atoms); }),
              Pieces{"x.v=3 : unknown\nsupport : \n\n"});
}

TEST_F(PrintoutsTest, OfConflictsShowsTheClausesOfEachStep)
{
    std::vector<Clause*> atTwo{clause_, other_};
    std::vector<Clause*> atFive;
    NumberMap<std::vector<Clause*>*> conflicts;
    conflicts[5] = &atFive;
    conflicts[2] = &atTwo;
    EXPECT_EQ(printed([&] { engine_.viewTrajectoryConflicts(&conflicts); }),
              (Pieces{"conflict's timestep : 2\n", "x.v=1 | !x.v=2\n!x.v=3\n\n",
                      "conflict's timestep : 5\n", "\n"}));
    EXPECT_FALSE(unflushed_);
}

TEST_F(PrintoutsTest, OfConflictsLeavesANullEntryOut)
{
    std::vector<Clause*> atTwo{other_};
    NumberMap<std::vector<Clause*>*> conflicts;
    conflicts[1] = nullptr;
    conflicts[2] = &atTwo;
    EXPECT_EQ(printed([&] { engine_.viewTrajectoryConflicts(&conflicts); }),
              (Pieces{"conflict's timestep : 2\n", "!x.v=3\n\n"}));
    NumberMap<std::vector<Clause*>*> onlyNull;
    onlyNull[1] = nullptr;
    EXPECT_EQ(printed([&] { engine_.viewTrajectoryConflicts(&onlyNull); }), Pieces{});
}

TEST_F(PrintoutsTest, OfNoConflictsIsNothing)
{
    NumberMap<std::vector<Clause*>*> none;
    EXPECT_EQ(printed([&] { engine_.viewTrajectoryConflicts(&none); }), Pieces{});
}

TEST_F(PrintoutsTest, WalkNothingWhenTheTraceIsMuted)
{
    std::vector<Atom*> atoms{nullptr};
    std::vector<Clause*> clauses{nullptr};
    std::multimap<std::string, Atom*, eqstring> byName;
    byName.insert({"null", nullptr});
    AtomMap map;
    map["null"] = nullptr;
    NumberMap<std::vector<Clause*>*> conflicts;
    conflicts[1] = &clauses;
    const Pieces pieces = printed([&] {
        const MutedTrace muted;
        engine_.viewAtomVector(&atoms);
        engine_.viewAtomVectorId(&atoms);
        engine_.viewClauseVector(&clauses);
        engine_.viewMultimapAtom(&byName);
        engine_.viewHashMapAtom(&map);
        engine_.viewTrajectoryConflicts(&conflicts);
    });
    EXPECT_EQ(pieces, Pieces{});
}

} // namespace
