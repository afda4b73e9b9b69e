#include "model/Registry.h"

#include "model/DataManager.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class RegistriesTest : public testing::Test {
protected:
    RegistriesTest() { DataManager::reset(); }
    ~RegistriesTest() override
    {
        Registry::useFirst();
        DataManager::reset();
    }

    Comp pump_;
    Comp valve_;
};

TEST_F(RegistriesTest, AreEmptyAtFirst)
{
    (*DataManager::active_comps)["pump"] = &pump_;
    DataManager::model_name = "pumps";
    DataManager::searchLimits.maxRecords = 5;
    DataManager::searchWork.partial = true;
    DataManager::itmsBmkEntries.push_back({});
    Registry registry;
    EXPECT_FALSE(registry.inUse());
    registry.use();
    EXPECT_TRUE(registry.inUse());
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_TRUE(DataManager::active_atoms->empty());
    EXPECT_TRUE(DataManager::active_trans->empty());
    EXPECT_TRUE(DataManager::cls->empty());
    EXPECT_EQ(DataManager::model_name, "");
    EXPECT_EQ(DataManager::searchLimits.maxRecords, SearchLimits::unlimited);
    EXPECT_FALSE(DataManager::searchWork.partial);
    EXPECT_TRUE(DataManager::itmsBmkEntries.empty());
}

TEST_F(RegistriesTest, KeepWhatIsInThemWhileOthersAreInUse)
{
    Registry pumps;
    Registry valves;
    pumps.use();
    (*DataManager::active_comps)["pump"] = &pump_;
    DataManager::model_name = "pumps";
    DataManager::searchLimits.maxRecords = 5;
    DataManager::replaceActiveAtoms(std::make_unique<AtomMap>());
    const CompMap* comps = DataManager::active_comps;
    const AtomMap* atoms = DataManager::active_atoms;
    const PiTable* table = DataManager::newPiTable();
    valves.use();
    (*DataManager::active_comps)["valve"] = &valve_;
    DataManager::model_name = "valves";
    DataManager::reset(); // of this one only
    EXPECT_EQ(DataManager::model_name, "");
    pumps.use();
    EXPECT_EQ(DataManager::model_name, "pumps");
    EXPECT_EQ(DataManager::active_comps, comps);
    EXPECT_EQ(DataManager::active_comps->count("pump"), 1U);
    EXPECT_EQ(DataManager::active_comps->count("valve"), 0U);
    EXPECT_EQ(DataManager::active_atoms, atoms);
    EXPECT_EQ(DataManager::searchLimits.maxRecords, 5U);
    EXPECT_NE(DataManager::newPiTable(), table);
}

TEST_F(RegistriesTest, KeepContainersOfTheCaller)
{
    CompMap own;
    DataManager::active_comps = &own;
    {
        Registry other;
        other.use();
        EXPECT_NE(DataManager::active_comps, &own);
    }
    EXPECT_EQ(DataManager::active_comps, &own);
}

TEST_F(RegistriesTest, LeaveTheirPlaceToTheFirstOneWhenTheyDie)
{
    DataManager::model_name = "first";
    {
        Registry other;
        other.use();
        other.use();
        DataManager::model_name = "other";
    }
    EXPECT_EQ(DataManager::model_name, "first");
    {
        const Registry unused;
    }
    EXPECT_EQ(DataManager::model_name, "first");
}

} // namespace
