// The prime-implicate file: what is read from it, what is printed, and how reading ends.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using Sets = std::vector<std::vector<std::string>>;

class PrimeImplicateFileTest : public testing::Test {
protected:
    PrimeImplicateFileTest() : engine_(std::make_unique<itms>())
    {
        model_.variable(model_.comp("a"), "x", "Cond", {"1", "2"});
        model_.variable(model_.comp("b"), "y", "Cond", {"1", "2"});
        std::string folder =
            (std::filesystem::temp_directory_path() / "itms-implicates-XXXXXX").string();
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        folder_ = folder;
        DataManager::model_name = (folder_ / "plant").string();
    }
    ~PrimeImplicateFileTest() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::string fileName() const { return DataManager::model_name + ".pi"; }
    std::string found() const { return "*** File " + fileName() + " found. Reading file...\n"; }
    void write(const std::string& text) { std::ofstream(fileName(), std::ios::binary) << text; }
    // Reads, and keeps what was printed in `out_` and `err_`.
    int read()
    {
        const FlushLog out;
        const FlushLog err(std::cerr);
        const int result = engine_->readPI();
        out_ = out.text();
        err_ = err.text();
        outPieces_ = out.pieces();
        return result;
    }
    int read(const std::string& text)
    {
        write(text);
        return read();
    }
    static Sets setsOf(const PiTable* table, const Atom* head)
    {
        Sets sets;
        const PiTable::Implicates* list = table->getPIs(const_cast<Atom*>(head));
        if (!list) {
            return {{"none"}};
        }
        for (const std::vector<Atom*>* set : *list) {
            sets.emplace_back();
            for (const Atom* atom : *set) {
                sets.back().push_back(atom->id);
            }
        }
        return sets;
    }
    Sets sets(const char* head) { return setsOf(engine_->piTable, model_.atom(head)); }
    const Sets none_ = {{"none"}};

    TestModel model_;
    std::unique_ptr<itms> engine_;
    std::filesystem::path folder_;
    std::string out_;
    std::string err_;
    std::vector<std::string> outPieces_;
};

TEST_F(PrimeImplicateFileTest, IsNotReadByItself)
{
    write("a.x=1:b.y=2\n");
    EXPECT_EQ(engine_->piTable, nullptr);
}

TEST_F(PrimeImplicateFileTest, ThatIsMissingLeavesAnEmptyTable)
{
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(out_, "can't open " + fileName() + "\n");
    EXPECT_EQ(err_, "");
    ASSERT_NE(engine_->piTable, nullptr);
    EXPECT_EQ(sets("a.x=1"), none_);
}

TEST_F(PrimeImplicateFileTest, ThatIsMissingIsReportedWithAFlush)
{
    const FlushLog log;
    engine_->readPI();
    EXPECT_EQ(log.pieces(), std::vector<std::string>{"can't open " + fileName() + "\n"});
    EXPECT_EQ(log.flushes(), 1u);
}

TEST_F(PrimeImplicateFileTest, ThatIsMissingLeavesRoughProbabilitiesAsTheyAre)
{
    read();
    TrajEl el;
    el.atom = model_.atom("b.y=1");
    Transition* transition = model_.transition(model_.atom("a.x=1"), "Nominal", 0.5);
    const FlushLog log;
    EXPECT_EQ(engine_->computeCondProbRough(&el, transition, nullptr, nullptr), 0.5);
    EXPECT_EQ(log.text(), "");
}

TEST_F(PrimeImplicateFileTest, ThatIsEmptyIsRead)
{
    EXPECT_EQ(read(""), 1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "");
    ASSERT_NE(engine_->piTable, nullptr);
    EXPECT_EQ(sets("a.x=1"), none_);
}

TEST_F(PrimeImplicateFileTest, GivesAHeadItsSetsInTheOrderOfTheLine)
{
    EXPECT_EQ(read("a.x=1:b.y=2 a.x=2,b.y=1\n"), 1);
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2", "a.x=2"}, {"b.y=1"}}));
    EXPECT_EQ(sets("b.y=2"), none_);
    EXPECT_EQ(err_, "");
}

TEST_F(PrimeImplicateFileTest, IsPrintedWholeWhenItWasRead)
{
    EXPECT_EQ(read("a.x=1:b.y=2 a.x=2,b.y=1\nb.y=1:a.x=1\n"), 1);
    EXPECT_EQ(out_, found() + "a.x=1: b.y=2 a.x=2, b.y=1\n"
                              "b.y=1: a.x=1\n");
}

TEST_F(PrimeImplicateFileTest, FlushesNothingWhileAllIsWell)
{
    write("a.x=1:b.y=2\n");
    const FlushLog log;
    engine_->readPI();
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(PrimeImplicateFileTest, PassesDuplicatesOnAsTheyStand)
{
    EXPECT_EQ(read("a.x=1:b.y=2 b.y=2,b.y=2,b.y=2\na.x=1:b.y=1\n"), 1);
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2", "b.y=2"}, {"b.y=2"}, {"b.y=2"}}));
    EXPECT_EQ(out_, found() + "a.x=1: b.y=2 b.y=2, b.y=2, b.y=2\n"
                              "a.x=1: b.y=1\n");
}

TEST_F(PrimeImplicateFileTest, IgnoresALastLineWithoutNewline)
{
    EXPECT_EQ(read("a.x=1:b.y=2\nb.y=1:a.x=1"), 1);
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
    EXPECT_EQ(sets("b.y=1"), none_);
    EXPECT_EQ(read("nobody:nothing"), 1);
    EXPECT_EQ(err_, "");
}

TEST_F(PrimeImplicateFileTest, AddsNothingForAHeadWithoutImplicates)
{
    EXPECT_EQ(read("a.x=1:\nb.y=1:a.x=2\n"), 1);
    EXPECT_EQ(sets("a.x=1"), none_);
    EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=2"}}));
    EXPECT_EQ(out_, found() + "b.y=1: a.x=2\n");
}

TEST_F(PrimeImplicateFileTest, LooksUpAHeadWithoutImplicates)
{
    EXPECT_EQ(read("a.x=9:\n"), -1);
    EXPECT_EQ(err_, "Atom not found: a.x=9\n");
}

TEST_F(PrimeImplicateFileTest, SkipsALineWhoseFirstImplicateIsEmpty)
{
    EXPECT_EQ(read("a.x=1:,b.y=1 nobody\nb.y=1:a.x=2\n"), 1);
    EXPECT_EQ(sets("a.x=1"), none_);
    EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=2"}}));
    EXPECT_EQ(err_, "");
}

TEST_F(PrimeImplicateFileTest, TrimsNothing)
{
    for (const char* text : {"a.x=1: b.y=2\n", "a.x=1:b.y=2 \n", "a.x=1:b.y=1  b.y=2\n",
                             "a.x=1:b.y=1, b.y=2\n", "a.x=1:b.y=1,\n", "a.x=1:b.y=1,,b.y=2\n"}) {
        EXPECT_EQ(read(text), -1) << text;
        EXPECT_EQ(err_, "Atom not found: \n") << text;
        EXPECT_EQ(out_, found()) << text;
        EXPECT_EQ(sets("a.x=1"), none_) << text;
    }
}

TEST_F(PrimeImplicateFileTest, TakesABlankAroundTheHeadAsPartOfIt)
{
    EXPECT_EQ(read("a.x=1 :b.y=2\n"), -1);
    EXPECT_EQ(err_, "Atom not found: a.x=1 \n");
    EXPECT_EQ(read(" a.x=1:b.y=2\n"), -1);
    EXPECT_EQ(err_, "Atom not found:  a.x=1\n");
    EXPECT_EQ(out_, found() + "Component not found:  a\n");
}

TEST_F(PrimeImplicateFileTest, KeepsACarriageReturnInTheLastName)
{
    EXPECT_EQ(read("a.x=1:b.y=1 b.y=2\r\n"), -1);
    EXPECT_EQ(err_, "Atom not found: b.y=2\r\n");
}

TEST_F(PrimeImplicateFileTest, ReadsOnWhenTheComponentIsNotKnown)
{
    DataManager::active_comps->find("a")->second->altName = "A";
    EXPECT_EQ(read("a.x=1:b.y=2\n"), 1);
    EXPECT_EQ(out_, found() + "Component not found: a\na.x=1: b.y=2\n");
    EXPECT_EQ(outPieces_.front(), found() + "Component not found: a\n"); // flushed
    EXPECT_EQ(err_, "");
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
}

TEST_F(PrimeImplicateFileTest, LooksTheHeadUpByItsOwnTextOnly)
{
    DataManager::active_comps->find("a")->second->altName = "A";
    EXPECT_EQ(read("A.x=1:b.y=2\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: A.x=1\n");
}

TEST_F(PrimeImplicateFileTest, TranslatesNoComponentInAnImplicate)
{
    DataManager::active_comps->find("b")->second->altName = "B";
    EXPECT_EQ(read("a.x=1:B.y=2\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: B.y=2\n");
}

TEST_F(PrimeImplicateFileTest, ChecksNoComponentInAnImplicate)
{
    DataManager::active_comps->find("b")->second->altName = "B";
    EXPECT_EQ(read("a.x=1:b.y=2\n"), 1);
    EXPECT_EQ(out_, found() + "a.x=1: b.y=2\n");
}

TEST_F(PrimeImplicateFileTest, TakesAHeadWithoutDotAsItsOwnComponent)
{
    EXPECT_EQ(read("nobody:b.y=2\n"), -1);
    EXPECT_EQ(out_, found() + "Component not found: nobody\n");
    EXPECT_EQ(err_, "Atom not found: nobody\n");
    EXPECT_EQ(read("a:b.y=2\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: a\n");
}

TEST_F(PrimeImplicateFileTest, TakesTheComponentBeforeTheFirstDot)
{
    EXPECT_EQ(read("a.b.y=2:b.y=2\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: a.b.y=2\n");
}

TEST_F(PrimeImplicateFileTest, ReadsALineWithoutColonAsHeadAndImplicates)
{
    EXPECT_EQ(read("a.x=1\n"), 1);
    EXPECT_EQ(sets("a.x=1"), (Sets{{"a.x=1"}}));
    EXPECT_EQ(read("a.x=1 b.y=2\n"), -1);
    EXPECT_EQ(err_, "Atom not found: a.x=1 b.y=2\n");
}

TEST_F(PrimeImplicateFileTest, ReadsAnEmptyLineAsAnEmptyHead)
{
    EXPECT_EQ(read("\na.x=1:b.y=2\n"), -1);
    EXPECT_EQ(out_, found() + "Component not found: \n");
    EXPECT_EQ(err_, "Atom not found: \n");
    EXPECT_EQ(sets("a.x=1"), none_);
}

TEST_F(PrimeImplicateFileTest, CutsALineAtItsFirstColon)
{
    EXPECT_EQ(read("a.x=1:b.y=2:b.y=1\n"), -1);
    EXPECT_EQ(err_, "Atom not found: b.y=2:b.y=1\n");
}

TEST_F(PrimeImplicateFileTest, EndsAtAnUnknownHead)
{
    EXPECT_EQ(read("a.x=1:b.y=2\nb.y=9:a.x=1\nb.y=1:a.x=1\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: b.y=9\n");
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
    EXPECT_EQ(sets("b.y=1"), none_);
}

TEST_F(PrimeImplicateFileTest, EndsAtAnUnknownNameAndDropsItsLine)
{
    EXPECT_EQ(read("a.x=1:b.y=2\nb.y=2:a.x=1,a.x=2 a.x=9,a.x=1\nb.y=1:a.x=1\n"), -1);
    EXPECT_EQ(out_, found());
    EXPECT_EQ(err_, "Atom not found: a.x=9\n");
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
    EXPECT_EQ(sets("b.y=2"), none_);
    EXPECT_EQ(sets("b.y=1"), none_);
}

TEST_F(PrimeImplicateFileTest, ReportsAnUnknownNameWithAFlush)
{
    write("a.x=9:b.y=2\n");
    std::cerr.unsetf(std::ios::unitbuf);
    const FlushLog err(std::cerr);
    {
        const MutedTrace muted;
        EXPECT_EQ(engine_->readPI(), -1);
    }
    std::cerr.setf(std::ios::unitbuf);
    EXPECT_EQ(err.pieces(), std::vector<std::string>{"Atom not found: a.x=9\n"});
    EXPECT_EQ(err.flushes(), 1u);
}

TEST_F(PrimeImplicateFileTest, FindsAtomsThatStandInNoClause)
{
    DataManager::active_atoms->clear();
    EXPECT_EQ(read("a.x=1:b.y=2\n"), 1);
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
}

TEST_F(PrimeImplicateFileTest, HasLinesOfAnyLength)
{
    for (const std::size_t names : {170u, 171u, 1000u}) {
        std::string line = "a.x=1:b.y=2";
        std::vector<std::string> expected{"b.y=2"};
        for (std::size_t i = 1; i < names; ++i) {
            line += i % 2 != 0 ? " b.y=1" : " a.x=2";
            expected.emplace_back(i % 2 != 0 ? "b.y=1" : "a.x=2");
        }
        ASSERT_GT(line.size(), 1023u);
        EXPECT_EQ(read(line + "\nb.y=1:a.x=1\n"), 1) << err_;
        EXPECT_EQ(sets("a.x=1"), Sets{expected});
        EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=1"}}));
    }
}

// Names of a length that puts the newline before, at and after the end of the first chunk that is read.
TEST_F(PrimeImplicateFileTest, HasLinesThatEndAnywhereInAChunk)
{
    for (std::size_t length = 1000; length <= 1030; ++length) {
        Atom* atom = model_.atom("b.y=2");
        const std::string id = atom->id;
        DataManager::active_atoms->clear();
        DataManager::active_comps->find("b")->second->atoms->clear();
        atom->id = "b." + std::string(length, 'y');
        EXPECT_EQ(read("a.x=1:" + atom->id + "\nb.y=1:a.x=2\n"), 1) << length;
        EXPECT_EQ(sets("a.x=1"), Sets{{atom->id}}) << length;
        EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=2"}})) << length;
        atom->id = id;
    }
}

TEST_F(PrimeImplicateFileTest, ReadAgainMakesAFreshTableAndKeepsTheFirst)
{
    ASSERT_EQ(read("a.x=1:b.y=2\n"), 1);
    const PiTable* first = engine_->piTable;
    ASSERT_EQ(read("b.y=1:a.x=2\n"), 1);
    EXPECT_NE(engine_->piTable, first);
    EXPECT_EQ(sets("a.x=1"), none_);
    EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=2"}}));
    EXPECT_EQ(setsOf(first, model_.atom("a.x=1")), (Sets{{"b.y=2"}}));
}

TEST_F(PrimeImplicateFileTest, ReadAgainWhenItIsGoneLeavesAnEmptyTable)
{
    ASSERT_EQ(read("a.x=1:b.y=2\n"), 1);
    const PiTable* first = engine_->piTable;
    std::filesystem::remove(fileName());
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(sets("a.x=1"), none_);
    EXPECT_EQ(setsOf(first, model_.atom("a.x=1")), (Sets{{"b.y=2"}}));
}

TEST_F(PrimeImplicateFileTest, LeavesATableThatOutlivesTheEngine)
{
    ASSERT_EQ(read("a.x=1:b.y=2\n"), 1);
    const PiTable* table = engine_->piTable;
    engine_.reset();
    EXPECT_EQ(setsOf(table, model_.atom("a.x=1")), (Sets{{"b.y=2"}}));
}

TEST_F(PrimeImplicateFileTest, IsReadTheSameWithAMutedTrace)
{
    write("a.x=1:b.y=2\nb.y=1:a.x=2\n");
    const FlushLog log;
    {
        const MutedTrace muted;
        EXPECT_EQ(engine_->readPI(), 1);
    }
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(sets("a.x=1"), (Sets{{"b.y=2"}}));
    EXPECT_EQ(sets("b.y=1"), (Sets{{"a.x=2"}}));
}

} // namespace
