#include "plant/Model.h"

#include "engine/itms.h"
#include "plant/ModelBuilder.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>

namespace {

using plant::Model;
using plant::ModelBuilder;
using plant::value;
using plant::VariableKind;
using testing::ElementsAre;

// A lamp that is on when it is ok.
std::unique_ptr<Model> lamp(const std::string& model, const std::string& component)
{
    ModelBuilder builder(model);
    Comp* made = builder.component(component);
    const StateVar* mode =
        builder.variable(made, "mode", VariableKind::mode, {{"ok"}, {"broken", true}}, 0);
    const StateVar* light =
        builder.variable(made, "light", VariableKind::condition, {{"dark"}, {"bright"}});
    builder.law(made, {{true, value(mode, "ok")}, {false, value(light, "bright")}});
    builder.fault(value(mode, "ok"), value(mode, "broken"), 0.125);
    return builder.build();
}

class ModelTest : public testing::Test {
protected:
    ModelTest() { DataManager::reset(); }
    ~ModelTest() override { DataManager::reset(); }
};

TEST_F(ModelTest, ListsComponentsAndAtomsInTheOrderOfTheirMaking)
{
    const std::unique_ptr<Model> model = lamp("room", "lamp");
    ASSERT_EQ(model->components().size(), 1U);
    std::vector<std::string> ids;
    for (const auto& atom : model->atoms()) {
        ids.push_back(atom->id);
    }
    EXPECT_THAT(ids, ElementsAre("lamp.mode=ok", "lamp.mode=broken", "lamp.light=dark",
                                 "lamp.light=bright"));
}

TEST_F(ModelTest, CountsLawsAndTheClausesOfVariables)
{
    const std::unique_ptr<Model> model = lamp("room", "lamp");
    EXPECT_EQ(model->laws().size(), 1U);
    EXPECT_EQ(model->clauseCount(), 5U);
}

TEST_F(ModelTest, IsNotActiveUntilItIsToldTo)
{
    const std::unique_ptr<Model> model = lamp("room", "lamp");
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_EQ(DataManager::findAtom("lamp.mode=ok"), nullptr);
}

TEST_F(ModelTest, EntersComponentsAtomsLawsAndItsNameWhenItBecomesActive)
{
    const std::unique_ptr<Model> model = lamp("room", "lamp");
    model->activate();
    EXPECT_EQ(DataManager::model_name, "room");
    EXPECT_EQ((*DataManager::active_comps)["lamp"], model->components()[0].get());
    EXPECT_EQ(DataManager::active_atoms->size(), 4U);
    EXPECT_EQ(DataManager::findAtom("lamp.light=dark")->id, "lamp.light=dark");
    EXPECT_EQ(*DataManager::cls, model->laws());
}

TEST_F(ModelTest, ReplacesTheActiveModel)
{
    const std::unique_ptr<Model> first = lamp("first", "a");
    const std::unique_ptr<Model> second = lamp("second", "b");
    first->activate();
    second->activate();
    EXPECT_EQ(DataManager::model_name, "second");
    EXPECT_EQ(DataManager::active_comps->size(), 1U);
    EXPECT_EQ(DataManager::findAtom("a.mode=ok"), nullptr);
    EXPECT_EQ(*DataManager::cls, second->laws());
}

TEST_F(ModelTest, BecomesActiveAgain)
{
    const std::unique_ptr<Model> first = lamp("first", "a");
    const std::unique_ptr<Model> second = lamp("second", "b");
    first->activate();
    second->activate();
    first->activate();
    EXPECT_EQ(DataManager::findAtom("a.mode=ok"), first->atoms()[0].get());
    EXPECT_EQ(DataManager::cls->size(), 1U);
}

TEST_F(ModelTest, LeavesAnEmptyRegistryWhenItDiesActive)
{
    std::unique_ptr<Model> model = lamp("room", "lamp");
    model->activate();
    model.reset();
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_TRUE(DataManager::active_atoms->empty());
    EXPECT_TRUE(DataManager::cls->empty());
    EXPECT_EQ(DataManager::model_name, "");
}

TEST_F(ModelTest, LeavesAnotherActiveModelAloneWhenItDies)
{
    std::unique_ptr<Model> first = lamp("first", "lamp");
    const std::unique_ptr<Model> second = lamp("second", "lamp");
    first->activate();
    second->activate();
    first.reset();
    EXPECT_EQ(DataManager::model_name, "second");
    EXPECT_EQ((*DataManager::active_comps)["lamp"], second->components()[0].get());
}

TEST_F(ModelTest, CanBeSetUpByTheEngineOnceItIsActive)
{
    const MutedTrace muted;
    const std::unique_ptr<Model> model = lamp("room", "lamp");
    model->activate();
    itms engine;
    engine.rtInit();
    const Comp& made = *model->components()[0];
    ASSERT_EQ(DataManager::active_trans->size(), 1U);
    EXPECT_EQ(DataManager::active_trans->begin()->second, made.transitions->front());
    EXPECT_EQ(model->atoms()[0]->initTrue, 1);
}

} // namespace
