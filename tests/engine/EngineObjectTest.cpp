// The engine object: what it starts with, and what it leaves behind.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

TEST(EngineObject, StartsWithoutVariablesAndTable)
{
    const TestModel model;
    const itms engine;
    EXPECT_EQ(engine.stateVars, nullptr);
    EXPECT_EQ(engine.piTable, nullptr);
    EXPECT_FALSE(engine.addingPropositions);
}

TEST(EngineObject, LeavesTheRegistryAloneWhenMade)
{
    TestModel model;
    model.variable(model.comp("x"), "v", "Mode", {"a"});
    const AtomMap* atoms = DataManager::active_atoms;
    const CompMap* comps = DataManager::active_comps;
    {
        const itms engine;
        const itms another;
    }
    EXPECT_EQ(DataManager::active_atoms, atoms);
    EXPECT_EQ(DataManager::active_comps, comps);
    EXPECT_EQ(atoms->size(), 1u);
    EXPECT_EQ(comps->size(), 1u);
}

TEST(EngineObject, IsARegistryAndAModelChecker)
{
    static_assert(std::is_base_of_v<mdlChk, itms>);
    static_assert(std::is_base_of_v<DataManager, itms>);
    static_assert(!std::is_polymorphic_v<itms>);
    static_assert(!std::is_polymorphic_v<ItmsRes>);
    static_assert(!std::is_copy_constructible_v<itms>);
    TestModel model;
    model.variable(model.comp("x"), "v", "Mode", {"a"});
    itms engine;
    EXPECT_EQ(engine.getAtom("x.v=a"), model.atom("x.v=a"));
}

TEST(EngineObject, HasItsFieldsInOrder)
{
    const itms engine;
    const void* variables = &engine.stateVars;
    const void* adding = &engine.addingPropositions;
    const void* table = &engine.piTable;
    EXPECT_LT(variables, adding);
    EXPECT_LT(adding, table);
}

TEST(EngineObject, IsReleasedWithoutSetUp)
{
    const TestModel model;
    auto engine = std::make_unique<itms>();
    engine.reset();
    EXPECT_TRUE(DataManager::active_comps->empty());
}

TEST(EngineObject, ReleasesItsVectorOfVariablesAndNoVariable)
{
    TestModel model;
    StateVar* variable = model.variable(model.comp("x"), "v", "Mode", {"a"});
    const MutedTrace muted;
    auto engine = std::make_unique<itms>(); // the leak check sees to its vector
    engine->rtInit();
    ASSERT_EQ(engine->stateVars->size(), 1u);
    engine.reset();
    EXPECT_EQ(variable->name, "v");
}

TEST(EngineObject, LeavesTheActiveAtomsWhenItDies)
{
    TestModel model;
    model.variable(model.comp("x"), "v", "Mode", {"a"});
    model.clause("x.v=a");
    const MutedTrace muted;
    auto engine = std::make_unique<itms>();
    engine->rtInit();
    engine.reset();
    EXPECT_EQ(DataManager::findAtom("x.v=a"), model.atom("x.v=a"));
    EXPECT_EQ(DataManager::active_atoms->size(), 1u);
}

TEST(EngineObject, LeavesAForeignTableToItsOwner)
{
    PiTable table;
    Atom atom;
    {
        itms engine;
        engine.piTable = &table;
    }
    EXPECT_EQ(table.getPIs(&atom), nullptr);
}

TEST(EngineObject, WorksBesideAnotherOverTheSameModel)
{
    TestModel model;
    StateVar* variable = model.variable(model.comp("x"), "v", "Mode", {"a"});
    const MutedTrace muted;
    itms first;
    first.rtInit();
    {
        itms second;
        second.rtInit();
        EXPECT_NE(first.stateVars, second.stateVars);
    }
    EXPECT_EQ(*first.stateVars, std::vector<StateVar*>{variable});
}

} // namespace
