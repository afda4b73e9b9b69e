// Which changes can happen at once, and what is reported of them.
#include "plant/TransitionRules.h"
#include "plant/ModelBuilder.h"
#include "tests/plant/NotedPlaces.h"

#include <gtest/gtest.h>

namespace {

using namespace plant;

class TransitionRulesTest : public testing::Test {
protected:
    Change change(ChangeKind kind, const std::string& to, std::optional<double> probability,
                  std::uint32_t at, Conjunction guard = {})
    {
        return {kind,        value(mode, "ok"), value(mode, to), {std::move(guard)},
                probability, places.at(at)};
    }

    NotedPlaces places;
    ModelBuilder builder{"plant"};
    Comp* part = builder.component("part");
    StateVar* mode = builder.variable(part, "mode", VariableKind::mode,
                                      {{"ok"}, {"stuck", true}, {"broken", true}}, 0);
    StateVar* load =
        builder.variable(part, "load", VariableKind::condition, {{"low"}, {"middle"}, {"high"}});
};

TEST_F(TransitionRulesTest, SaysWhetherLiteralsCanHold)
{
    Atom* const low = value(load, "low");
    Atom* const middle = value(load, "middle");
    Atom* const high = value(load, "high");
    EXPECT_TRUE(canHold({}));
    EXPECT_TRUE(canHold({{true, low}, {true, low}, {false, high}}));
    EXPECT_TRUE(canHold({{false, low}, {false, high}}));
    EXPECT_FALSE(canHold({{false, low}, {false, high}, {false, middle}}));
    EXPECT_FALSE(canHold({{true, low}, {true, high}}));
    EXPECT_FALSE(canHold({{true, low}, {false, low}}));
}

TEST_F(TransitionRulesTest, AddsUpWhatCanHappenAtOnce)
{
    const Change low = change(ChangeKind::fault, "stuck", 0.7, 1, {{true, value(load, "low")}});
    const Change high = change(ChangeKind::fault, "broken", 0.6, 2, {{true, value(load, "high")}});
    EXPECT_EQ(likeliestSet({&low, &high}), (std::vector<const Change*>{&low}));
    checkSum({&low, &high});
    EXPECT_EQ(places.take(), "");

    const Change always = change(ChangeKind::fault, "broken", 0.4, 3);
    checkSum({&low, &high, &always});
    EXPECT_EQ(places.take(),
              "3: the transitions from 'ok' that are possible at once add up to 1.1\n"
              "  expected: at most 1\n"
              "  hint: fault -> stuck 0.7 (#1), fault -> broken 0.4 (#3)\n");
}

TEST_F(TransitionRulesTest, ShowsThatASumIsMoreThanOne)
{
    const Change repair = change(ChangeKind::repair, "stuck", 0.5, 1);
    const Change fault = change(ChangeKind::fault, "broken", 0.5000004, 2);
    checkSum({&repair, &fault});
    EXPECT_EQ(places.take(),
              "2: the transitions from 'ok' that are possible at once add up to 1.0000004\n"
              "  expected: at most 1\n"
              "  hint: repair -> stuck 0.5 (#1), fault -> broken 0.5 (#2)\n");
}

TEST_F(TransitionRulesTest, NeverAddsIdleToNominalChanges)
{
    const Change nominal = change(ChangeKind::nominal, "stuck", 0.9, 1);
    const Change idle = change(ChangeKind::idle, "ok", 0.9, 2);
    checkSum({&nominal, &idle});
    EXPECT_EQ(places.take(), "");
    const Change fault = change(ChangeKind::fault, "broken", 0.2, 3);
    places.ownWords.fullNames = true;
    checkSum({&nominal, &idle, &fault});
    EXPECT_EQ(places.take(),
              "3: the transitions from 'part.mode=ok' that are possible at once add up to 1.1\n"
              "  expected: at most 1\n"
              "  hint: nominal -> stuck 0.9 (#1), fault -> broken 0.2 (#3)\n");
}

TEST_F(TransitionRulesTest, GivesTheRestToChangesWithoutAProbability)
{
    Change idle = change(ChangeKind::idle, "ok", std::nullopt, 1);
    Change fault = change(ChangeKind::fault, "broken", 0.25, 2);
    Change guarded = change(ChangeKind::fault, "stuck", 0.5, 3, {{true, value(load, "low")}});
    completeProbabilities({&idle, &fault, &guarded});
    EXPECT_EQ(idle.probability, 0.75);
}

TEST_F(TransitionRulesTest, AddsRepairsToNominalAndToIdleChanges)
{
    const Change repair = change(ChangeKind::repair, "stuck", 0.2, 1);
    for (const ChangeKind kind : {ChangeKind::nominal, ChangeKind::idle}) {
        const Change other = change(kind, "ok", 0.9, 2);
        checkSum({&repair, &other});
        EXPECT_EQ(places.take(),
                  "2: the transitions from 'ok' that are possible at once add up to 1.1\n"
                  "  expected: at most 1\n"
                  "  hint: repair -> stuck 0.2 (#1), " +
                      std::string(word(kind)) + " -> ok 0.9 (#2)\n");
    }
}

TEST_F(TransitionRulesTest, LeavesToNominalChangesWhatRepairsLeave)
{
    Change nominal = change(ChangeKind::nominal, "stuck", std::nullopt, 1);
    Change repair = change(ChangeKind::repair, "ok", 0.25, 2);
    completeProbabilities({&nominal, &repair});
    EXPECT_EQ(nominal.probability, 0.75);
}

TEST_F(TransitionRulesTest, ReportsARepairThatLeadsToAFault)
{
    EXPECT_TRUE(checkMends(ChangeKind::repair, "ok", false, places.at(1)));
    EXPECT_TRUE(checkMends(ChangeKind::fault, "stuck", true, places.at(1)));
    EXPECT_FALSE(checkMends(ChangeKind::repair, "stuck", true, places.at(1)));
    EXPECT_EQ(places.take(), "1: a repair that leads to 'stuck', which is a fault\n"
                             "  expected: a value that is not a fault\n");
}

TEST_F(TransitionRulesTest, ReportsChangesToThemselvesAndGuardsThatNeverHold)
{
    EXPECT_TRUE(checkLeaves(ChangeKind::nominal, "ok", "ok", "another", places.at(1)));
    EXPECT_TRUE(checkLeaves(ChangeKind::fault, "ok", "stuck", "another", places.at(1)));
    EXPECT_FALSE(checkLeaves(ChangeKind::fault, "ok", "ok", "another", places.at(1)));
    EXPECT_FALSE(checkLeaves(ChangeKind::repair, "ok", "ok", "another", places.at(2)));
    EXPECT_EQ(places.take(), "1: a fault that leads from 'ok' to itself\n  expected: another\n"
                             "2: a repair that leads from 'ok' to itself\n  expected: another\n");

    const Conjunction never{{true, value(load, "low")}, {true, value(load, "high")}};
    EXPECT_TRUE(checkGuard({never, {}}, places.at(2)));
    EXPECT_FALSE(checkGuard({never}, places.at(2)));
    EXPECT_EQ(places.take(), "2: this guard can never hold\n");
}

} // namespace
