// Going over to other assumptions, compared with drawing all conclusions afresh.
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using monitor::Label;
using monitor::Prediction;
using plant::AtomIndex;
using plant::VariableIndex;
using Assumptions = std::map<VariableIndex, AtomIndex>;

std::vector<AtomIndex> valuesOf(const Assumptions& assumptions)
{
    std::vector<AtomIndex> values;
    for (const auto& [variable, value] : assumptions) {
        values.push_back(value);
    }
    return values;
}

bool draw(Prediction& labels, const std::vector<AtomIndex>& values)
{
    return std::all_of(values.begin(), values.end(),
                       [&](AtomIndex value) { return labels.assume(value); }) &&
           labels.propagate();
}

void expectSameLabels(const ActivePlant& active, const Prediction& given, const Prediction& fresh)
{
    for (AtomIndex atom = 0; atom < static_cast<AtomIndex>(active.plant->atomCount()); ++atom) {
        EXPECT_EQ(given.label(atom), fresh.label(atom)) << active.plant->atom(atom)->id;
    }
    EXPECT_EQ(given.complete(), fresh.complete());
    EXPECT_EQ(given.mark(), fresh.mark());
}

// What is said of a label's modes: they are among those that are assumed, and with everything else that is assumed but no
// other mode, the label follows.
void expectLabelsToFollowFromTheirEnvironment(const ActivePlant& active, const Prediction& given,
                                              const Assumptions& assumptions)
{
    for (AtomIndex atom = 0; atom < static_cast<AtomIndex>(active.plant->atomCount()); ++atom) {
        const std::vector<VariableIndex> modes = given.environment({atom});
        EXPECT_TRUE(std::is_sorted(modes.begin(), modes.end()));
        if (!given.isKnown(atom)) {
            EXPECT_TRUE(modes.empty());
            continue;
        }
        Prediction alone(*active.plant);
        for (const auto& [variable, value] : assumptions) {
            if (!active.plant->variable(variable).isMode ||
                std::binary_search(modes.begin(), modes.end(), variable)) {
                alone.assume(value);
            }
        }
        for (const VariableIndex mode : modes) {
            EXPECT_TRUE(assumptions.contains(mode));
        }
        EXPECT_TRUE(alone.propagate());
        EXPECT_EQ(alone.label(atom), given.label(atom)) << active.plant->atom(atom)->id;
    }
}

class ReassumeTest : public testing::Test {
protected:
    // Random values of some variables: of every mode, most commands, few conditions.
    static Assumptions drawAssumptions(Random& random, const plant::Plant& plant)
    {
        Assumptions assumptions;
        for (std::size_t i = 0; i < plant.variables().size(); ++i) {
            const plant::PlantVariable& variable = plant.variables()[i];
            const int percent = variable.isMode ? 95 : variable.isCommand ? 80 : 10;
            if (random.chance(percent)) {
                assumptions[static_cast<VariableIndex>(i)] = drawValue(random, variable);
            }
        }
        return assumptions;
    }
    static AtomIndex drawValue(Random& random, const plant::PlantVariable& variable)
    {
        return random.chance(60) ? variable.values.front() : random.pick(variable.values);
    }

    enum class Labels { ownOnes, shared };

    void compareSequence(std::uint64_t seed, PlantKind kind, Labels labels = Labels::ownOnes)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        Assumptions assumptions = drawAssumptions(random, *active.plant);
        Prediction carried(*active.plant);
        bool good = draw(carried, valuesOf(assumptions));
        for (int step = 0; step < 15; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            if (!good) {
                assumptions = drawAssumptions(random, *active.plant);
                carried.undo(0);
                good = draw(carried, valuesOf(assumptions));
                continue;
            }
            if (labels == Labels::shared) {
                carried.share(carried.mark());
            } else if (random.chance(20)) {
                carried.preferSmallEnvironments();
            }
            std::vector<AtomIndex> given;
            for (auto& [variable, value] : assumptions) {
                if (random.chance(30)) {
                    value = drawValue(random, active.plant->variable(variable));
                    given.push_back(value);
                } else if (random.chance(50)) {
                    given.push_back(value);
                }
            }
            Prediction fresh(*active.plant);
            const bool expected = draw(fresh, valuesOf(assumptions));
            good = carried.reassume(given);
            ASSERT_EQ(good, expected);
            if (!good) {
                EXPECT_GE(carried.violated(), 0);
                EXPECT_FALSE(carried.propagate());
                ++violated_;
                continue;
            }
            ++drawn_;
            EXPECT_TRUE(carried.propagate());
            expectSameLabels(active, carried, fresh);
            expectLabelsToFollowFromTheirEnvironment(active, carried, assumptions);
        }
    }

    MutedTrace muted_;
    int drawn_ = 0;
    int violated_ = 0;
};

TEST_F(ReassumeTest, GivesTheLabelsOfMixedModelsThatAFreshPredictionGives)
{
    for (std::uint64_t seed = 0; seed < 300 && !HasFailure(); ++seed) {
        compareSequence(seed, PlantKind::mixed);
    }
    EXPECT_GT(drawn_, 1000);
    EXPECT_GT(violated_, 50);
}

TEST_F(ReassumeTest, GivesTheLabelsOfCircuitsThatAFreshPredictionGives)
{
    for (std::uint64_t seed = 1000; seed < 1100 && !HasFailure(); ++seed) {
        compareSequence(seed, PlantKind::circuit);
    }
    EXPECT_GT(drawn_, 1000);
}

TEST_F(ReassumeTest, GivesSharedLabelsThatAFreshPredictionGives)
{
    for (std::uint64_t seed = 2000; seed < 2300 && !HasFailure(); ++seed) {
        compareSequence(seed, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed, Labels::shared);
    }
    EXPECT_GT(drawn_, 1000);
    EXPECT_GT(violated_, 30);
}

TEST_F(ReassumeTest, FindsAnotherReasonForALabelThatIsTakenBack)
{
    HandMade model;
    model.mode("a.mode", {"ok", "broken!"});
    model.mode("b.mode", {"ok", "broken!"});
    model.condition("c.v", {"0", "1"});
    model.law("!a.mode=ok | c.v=1");
    model.law("!b.mode=ok | c.v=1");
    const auto active = model.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(draw(labels, {active->index("a.mode=ok"), active->index("b.mode=ok")}));
    EXPECT_TRUE(labels.reassume({active->index("a.mode=broken")}));
    EXPECT_TRUE(labels.isTrue(active->index("c.v=1")));
    EXPECT_EQ(labels.environment({active->index("c.v=1")}),
              (std::vector<VariableIndex>{active->plant->variableOf(active->index("b.mode=ok"))}));
    EXPECT_TRUE(labels.reassume({active->index("b.mode=broken")}));
    EXPECT_FALSE(labels.isKnown(active->index("c.v=1")));
}

// Two labels that would each follow from the other must not hold one another up.
TEST_F(ReassumeTest, TakesBackLabelsThatGiveOneAnother)
{
    HandMade model;
    model.mode("a.mode", {"ok", "broken!"});
    model.condition("c.v", {"0", "1"});
    model.condition("d.v", {"0", "1"});
    model.law("!c.v=1 | d.v=1");
    model.law("!d.v=1 | c.v=1");
    model.law("!a.mode=ok | c.v=1");
    const auto active = model.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(draw(labels, {active->index("a.mode=ok")}));
    ASSERT_TRUE(labels.isTrue(active->index("d.v=1")));
    EXPECT_TRUE(labels.reassume({active->index("a.mode=broken")}));
    EXPECT_FALSE(labels.isKnown(active->index("c.v=1")));
    EXPECT_FALSE(labels.isKnown(active->index("d.v=1")));
}

TEST_F(ReassumeTest, KeepsWhatTheLawsAloneGive)
{
    HandMade model;
    model.mode("a.mode", {"ok", "broken!"});
    model.condition("c.v", {"0", "1"});
    model.law("c.v=1");
    model.law("!a.mode=broken");
    const auto active = model.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(draw(labels, {active->index("a.mode=ok")}));
    EXPECT_FALSE(labels.reassume({active->index("a.mode=broken")}));
    labels.undo(0);
    ASSERT_TRUE(draw(labels, {active->index("a.mode=ok")}));
    EXPECT_TRUE(labels.isTrue(active->index("c.v=1")));
}

} // namespace
