// The registry: what it holds before a model is loaded, look-ups, benchmark entries, and unloading.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

// Run on its own, as CTest does, this sees the registry as the program starts with it.
TEST(Registry, PointsToEmptyContainersBeforeAnythingIsLoaded)
{
    ASSERT_NE(DataManager::active_atoms, nullptr);
    ASSERT_NE(DataManager::active_comps, nullptr);
    ASSERT_NE(DataManager::active_trans, nullptr);
    ASSERT_NE(DataManager::cls, nullptr);
    EXPECT_TRUE(DataManager::active_atoms->empty());
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_TRUE(DataManager::active_trans->empty());
    EXPECT_TRUE(DataManager::cls->empty());
    EXPECT_EQ(DataManager::model_name, "");
    EXPECT_TRUE(DataManager::itmsBmkEntries.empty());
}

class RegistryTest : public testing::Test {
protected:
    RegistryTest()
    {
        valve_ = model_.comp("valve");
        pos_ = model_.variable(valve_, "pos", "Mode", {"open", "closed"});
    }

    TestModel model_;
    DataManager registry_;
    Comp* valve_;
    StateVar* pos_;
};

TEST_F(RegistryTest, FindsAnActiveAtom)
{
    EXPECT_EQ(registry_.getAtom("valve.pos=open"), model_.atom("valve.pos=open"));
}

TEST_F(RegistryTest, FindsAnAtomByTheCharactersOfItsIdentifier)
{
    const std::string id = std::string("valve.pos") + "=closed";
    EXPECT_EQ(registry_.getAtom(id.c_str()), model_.atom("valve.pos=closed"));
}

TEST_F(RegistryTest, FindsAnAtomThatIsNotActiveAmongThoseOfItsComponent)
{
    DataManager::active_atoms->clear();
    pos_->atomLinks->clear();
    EXPECT_EQ(registry_.getAtom("valve.pos=open"), model_.atom("valve.pos=open"));
}

TEST_F(RegistryTest, FindsAnAtomThatIsNotActiveAmongThoseOfAVariable)
{
    DataManager::active_atoms->clear();
    valve_->atoms->clear();
    EXPECT_EQ(registry_.getAtom("valve.pos=open"), model_.atom("valve.pos=open"));
}

TEST_F(RegistryTest, FindsNoAtomThatTheModelDoesNotHave)
{
    EXPECT_EQ(registry_.getAtom("valve.pos=ajar"), nullptr);
    EXPECT_EQ(registry_.getAtom(""), nullptr);
    EXPECT_EQ(registry_.getAtom("valve.pos"), nullptr);
}

TEST_F(RegistryTest, FindsNoAtomOfAComponentThatIsNotActive)
{
    DataManager::active_atoms->clear();
    DataManager::active_comps->clear();
    EXPECT_EQ(registry_.getAtom("valve.pos=open"), nullptr);
}

TEST_F(RegistryTest, MakesNoEntryWhenItLooksUp)
{
    registry_.getAtom("valve.pos=ajar");
    EXPECT_EQ(DataManager::active_atoms->size(), 2u);
    EXPECT_EQ(valve_->atoms->size(), 2u);
}

TEST_F(RegistryTest, FilesBenchmarkEntriesInOrder)
{
    std::vector<const char*> ids{"a", "b"};
    std::vector<const char*> none;
    DataManager::addItmsBmkEntry(0.5, 3, &ids);
    DataManager::addItmsBmkEntry(0.25, 0, &none);
    ASSERT_EQ(DataManager::itmsBmkEntries.size(), 2u);
    EXPECT_EQ(DataManager::itmsBmkEntries[0].seconds, 0.5);
    EXPECT_EQ(DataManager::itmsBmkEntries[0].count, 3u);
    EXPECT_EQ(DataManager::itmsBmkEntries[0].ids, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(DataManager::itmsBmkEntries[1].seconds, 0.25);
    EXPECT_EQ(DataManager::itmsBmkEntries[1].count, 0u);
    EXPECT_TRUE(DataManager::itmsBmkEntries[1].ids.empty());
}

TEST_F(RegistryTest, CopiesWhatItFiles)
{
    auto id =
        std::make_unique<std::string>("valve.pos=open and a text too long to be kept in place");
    auto ids = std::make_unique<std::vector<const char*>>(1, id->c_str());
    const std::string kept = *id;
    DataManager::addItmsBmkEntry(0.5, 1, ids.get());
    ids.reset();
    id.reset();
    EXPECT_EQ(DataManager::itmsBmkEntries.front().ids, std::vector<std::string>{kept});
}

TEST_F(RegistryTest, KeepsTheActiveAtomsThatWereReplaced)
{
    AtomMap* earlier = DataManager::active_atoms;
    auto made = std::make_unique<AtomMap>();
    AtomMap* expected = made.get();
    DataManager::replaceActiveAtoms(std::move(made));
    EXPECT_EQ(DataManager::active_atoms, expected);
    EXPECT_EQ(earlier->size(), 2u);
    DataManager::replaceActiveAtoms(std::make_unique<AtomMap>());
    EXPECT_TRUE(expected->empty());
}

TEST_F(RegistryTest, LeavesAReplacedMapToItsMaker)
{
    AtomMap mine;
    mine["valve.pos=open"] = model_.atom("valve.pos=open");
    DataManager::active_atoms = &mine;
    DataManager::replaceActiveAtoms(std::make_unique<AtomMap>());
    DataManager::reset();
    EXPECT_EQ(mine.size(), 1u);
}

TEST_F(RegistryTest, GivesANewTableAtEveryCall)
{
    PiTable* first = DataManager::newPiTable();
    PiTable* second = DataManager::newPiTable();
    EXPECT_NE(first, second);
    EXPECT_EQ(first->getPIs(model_.atom("valve.pos=open")), nullptr);
    EXPECT_EQ(second->getPIs(model_.atom("valve.pos=open")), nullptr);
}

TEST_F(RegistryTest, ResetUnloadsTheModel)
{
    Transition transition;
    (*DataManager::active_trans)[0] = &transition;
    model_.clause("valve.pos=open");
    DataManager::model_name = "plant";
    const std::vector<const char*> ids;
    DataManager::addItmsBmkEntry(0.5, 0, const_cast<std::vector<const char*>*>(&ids));
    DataManager::searchLimits.maxRecords = 5;
    DataManager::searchWork.partial = true;
    DataManager::reset();
    EXPECT_TRUE(DataManager::active_atoms->empty());
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_TRUE(DataManager::active_trans->empty());
    EXPECT_TRUE(DataManager::cls->empty());
    EXPECT_EQ(DataManager::model_name, "");
    EXPECT_TRUE(DataManager::itmsBmkEntries.empty());
    EXPECT_EQ(DataManager::searchLimits.maxRecords, SearchLimits::unlimited);
    EXPECT_FALSE(DataManager::searchWork.partial);
}

TEST_F(RegistryTest, ResetPutsItsOwnContainersBack)
{
    AtomMap atoms;
    CompMap comps;
    TransitionMap transitions;
    std::vector<Clause*> clauses;
    DataManager::active_atoms = &atoms;
    DataManager::active_comps = &comps;
    DataManager::active_trans = &transitions;
    DataManager::cls = &clauses;
    DataManager::reset();
    EXPECT_NE(DataManager::active_atoms, &atoms);
    EXPECT_NE(DataManager::active_comps, &comps);
    EXPECT_NE(DataManager::active_trans, &transitions);
    EXPECT_NE(DataManager::cls, &clauses);
}

TEST_F(RegistryTest, ResetLeavesTheObjectsOfTheModelToTheirOwner)
{
    DataManager::reset();
    EXPECT_EQ(valve_->name, "valve");
    EXPECT_EQ(pos_->atomLinks->size(), 2u);
}

TEST_F(RegistryTest, ResetTwiceIsResetOnce)
{
    DataManager::replaceActiveAtoms(std::make_unique<AtomMap>());
    DataManager::reset();
    DataManager::reset();
    EXPECT_TRUE(DataManager::active_atoms->empty());
}

TEST(Registry, SearchIsUnlimitedByDefault)
{
    const SearchLimits limits;
    EXPECT_EQ(limits.maxRecords, SearchLimits::unlimited);
    EXPECT_EQ(limits.maxCandidates, SearchLimits::unlimited);
    EXPECT_EQ(limits.maxSeconds, std::numeric_limits<double>::infinity());
}

} // namespace
