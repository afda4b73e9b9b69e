// What the checked way to a model reports, and that it leaves out what is wrong.
#include "plant/CheckedBuilder.h"
#include "plant/Contradictions.h"
#include "tests/plant/NotedPlaces.h"

#include <gtest/gtest.h>

namespace {

using namespace plant;

class CheckedBuilderTest : public testing::Test {
protected:
    NotedPlaces places;
    CheckedBuilder builder{"pump", 1000};
    Comp* pump = builder.component("pump", places.at(1), places.at(1));
    StateVar* state = builder.variable(pump, "state", VariableKind::mode,
                                       {{"off"}, {"on"}, {"broken", true}}, 0, places.at(2));
    StateVar* flow = builder.variable(pump, "flow", VariableKind::condition, {{"zero"}, {"full"}},
                                      {}, places.at(3));
};

TEST_F(CheckedBuilderTest, TakesAComponentOnce)
{
    EXPECT_EQ(builder.component("pump", places.at(7), places.at(8)), nullptr);
    EXPECT_EQ(places.take(), "8: the component 'pump' is declared twice\n"
                             "  expected: a name that no other component has\n"
                             "  hint: the first is #1\n");
}

TEST_F(CheckedBuilderTest, ReportsOnceThatVariablesNeedTooManyClauses)
{
    CheckedBuilder small("pump", 5);
    Comp* owner = small.component("pump", places.at(1), places.at(1));
    const auto add = [&](const std::string& name, std::uint32_t at) {
        return small.variable(owner, name, VariableKind::condition, {{"a"}, {"b"}, {"c"}}, {},
                              places.at(at));
    };
    EXPECT_NE(add("x", 1), nullptr);
    EXPECT_TRUE(small.variablesFit());
    EXPECT_EQ(add("y", 2), nullptr);
    EXPECT_EQ(add("z", 3), nullptr);
    EXPECT_FALSE(small.variablesFit());
    EXPECT_EQ(small.variableCount(), 1U);
    EXPECT_EQ(places.take(), "2: the values of all variables would need more than 5 clauses\n");
}

TEST_F(CheckedBuilderTest, LeavesOutALawThatNothingSatisfies)
{
    places.ownWords.unsatisfiable = {"never", "sometimes", ""};
    const ClauseLiterals clause{{true, value(state, "on")}, {false, value(flow, "full")}};
    EXPECT_EQ(builder.law(pump, {clause, {}}, places.at(4)), 0U);
    EXPECT_EQ(places.take(), "4: never\n  expected: sometimes\n");
    EXPECT_EQ(builder.law(pump, {clause, clause}, places.at(5)), 1U);
    EXPECT_EQ(builder.law(pump, {clause}, places.at(6)), 0U);
    EXPECT_EQ(places.take(), "");
    EXPECT_EQ(builder.build()->laws().size(), 1U);
}

TEST_F(CheckedBuilderTest, MakesATransitionForEachAlternative)
{
    const Change change{ChangeKind::fault,
                        value(state, "on"),
                        value(state, "broken"),
                        {{{true, value(flow, "full")}}, {{true, value(flow, "zero")}}},
                        0.1,
                        places.at(4)};
    EXPECT_EQ(builder.change(change), 2U);
    EXPECT_EQ(builder.transitionCount(), 2U);
    const auto model = builder.build();
    ASSERT_EQ(model->transitions().size(), 2U);
    EXPECT_EQ(model->transitions()[1]->type, "Fail");
}

TEST_F(CheckedBuilderTest, MakesARepairThatIsNeitherNominalNorAFault)
{
    builder.change({ChangeKind::repair,
                    value(state, "broken"),
                    value(state, "on"),
                    {{{true, value(flow, "full")}}, {{true, value(flow, "zero")}}},
                    0.1,
                    places.at(4)});
    const auto model = builder.build();
    ASSERT_EQ(model->transitions().size(), 2U);
    for (const auto& transition : model->transitions()) {
        EXPECT_EQ(transition->type, "Repair");
        EXPECT_EQ(transition->name, "Repair");
    }
}

TEST_F(CheckedBuilderTest, BindsAVariableToSeveralChannelsOfOneKind)
{
    using Kind = ChannelBinding::Kind;
    EXPECT_TRUE(builder.bind(flow, Kind::observation, false, places.at(4)));
    EXPECT_TRUE(builder.bind(flow, Kind::observation, false, places.at(5)));
    EXPECT_FALSE(builder.bind(flow, Kind::observation, true, places.at(6)));
    EXPECT_EQ(places.take(), "6: 'pump.flow' is observed and an input\n"
                             "  expected: the same for all of its channels\n"
                             "  hint: the first is #4\n");
}

TEST_F(CheckedBuilderTest, BindsACommandOnce)
{
    using Kind = ChannelBinding::Kind;
    EXPECT_TRUE(builder.bind(flow, Kind::command, false, places.at(4)));
    EXPECT_FALSE(builder.bind(flow, Kind::command, false, places.at(5)));
    EXPECT_EQ(places.take(), "5: 'pump.flow' is bound twice\n"
                             "  expected: one channel for it\n"
                             "  hint: the first is #4\n");
}

TEST_F(CheckedBuilderTest, NamesLawsThatContradictEachOther)
{
    places.ownWords.law = "that at ";
    builder.law(pump, {{{true, value(state, "off")}, {false, value(flow, "full")}}}, places.at(9));
    builder.law(pump, {{{true, value(state, "on")}, {false, value(flow, "full")}}}, places.at(9));
    builder.law(pump, {{{false, value(flow, "zero")}}}, places.at(9));
    const auto model = builder.build();
    reportContradictions(*model, [&](std::size_t law) {
        return WrittenLaw{places.at(static_cast<std::uint32_t>(20 - law)), "p1"};
    });
    EXPECT_EQ(
        places.take(),
        "20: nothing satisfies this law in 'p1' together with that at #18 while pump.state=off\n"
        "  expected: laws that can hold together in the initial modes\n");
}

} // namespace
