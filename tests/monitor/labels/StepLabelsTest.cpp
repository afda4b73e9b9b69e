// Labels carried from step to step, compared with those drawn afresh at every step.
#include "monitor/labels/StepLabels.h"

#include "tests/support/HandMade.h"
#include "tests/support/Sanitized.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using monitor::StepLabels;
using plant::AtomIndex;
using Values = std::vector<AtomIndex>;

// What is asked of the labels, changing from step to step.
struct Situation {
    Values assumptions;
    Values observations;
};

class StepLabelsTest : public testing::Test {
protected:
    static void expectSame(const ActivePlant& active, const StepLabels& given,
                           const StepLabels& fresh)
    {
        ASSERT_EQ(given.consistent(), fresh.consistent());
        EXPECT_EQ(active.ids(given.contradicted()), active.ids(fresh.contradicted()));
        EXPECT_EQ(given.likelihood().log, fresh.likelihood().log);
        const auto count = static_cast<AtomIndex>(active.plant->atomCount());
        for (AtomIndex atom = 0; given.consistent() && atom < count; ++atom) {
            EXPECT_EQ(given.prediction().label(atom), fresh.prediction().label(atom))
                << active.plant->atom(atom)->id;
        }
    }

    static Values drawAssumptions(Random& random, const plant::Plant& plant)
    {
        Values values;
        for (const plant::PlantVariable& variable : plant.variables()) {
            if (variable.isMode || (variable.isCommand && random.chance(80))) {
                values.push_back(random.chance(70) ? variable.values.front()
                                                   : random.pick(variable.values));
            }
        }
        return values;
    }
    static Values drawObservations(Random& random, const plant::Plant& plant)
    {
        Values values;
        for (const plant::PlantVariable& variable : plant.variables()) {
            if (random.chance(variable.isMode || variable.isCommand ? 5 : 50)) {
                values.push_back(random.pick(variable.values));
            }
        }
        for (std::size_t i = values.size(); i > 1; --i) {
            std::swap(values[i - 1], values[random.below(i)]);
        }
        return values;
    }
    // Other values of the same variables.
    static void redraw(Random& random, const plant::Plant& plant, Values& values, int percent)
    {
        for (AtomIndex& value : values) {
            if (random.chance(percent)) {
                value = random.pick(plant.variable(plant.variableOf(value)).values);
            }
        }
    }
    static void change(Random& random, const plant::Plant& plant, Situation& situation)
    {
        switch (random.below(6)) {
        case 0: break;
        case 1: redraw(random, plant, situation.assumptions, 20); break;
        case 2: redraw(random, plant, situation.observations, 20); break;
        case 3:
            redraw(random, plant, situation.assumptions, 20);
            redraw(random, plant, situation.observations, 20);
            break;
        case 4:
            situation = {drawAssumptions(random, plant), drawObservations(random, plant)};
            break;
        default:
            if (random.chance(50) && !situation.observations.empty()) {
                situation.observations.resize(random.below(situation.observations.size()));
            } else {
                situation.observations = drawObservations(random, plant);
            }
        }
    }

    void compareSequence(std::uint64_t seed, PlantKind kind)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const ActivePlant active(randomModel(random, kind));
        Situation situation{drawAssumptions(random, *active.plant),
                            drawObservations(random, *active.plant)};
        StepLabels carried(*active.plant);
        for (int step = 0; step < 25; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            const StepLabels before = carried;
            StepLabels fresh(*active.plant);
            fresh.take(situation.assumptions, situation.observations);
            carried.take(situation.assumptions, situation.observations);
            expectSame(active, carried, fresh);
            // Of a copy that goes another way the original knows nothing.
            StepLabels copy = carried;
            copy.take(drawAssumptions(random, *active.plant), {});
            expectSame(active, carried, fresh);
            carried = random.chance(10) ? before : carried;
            inconsistent_ += fresh.consistent() ? 0 : 1;
            contradicted_ += fresh.contradicted().empty() ? 0 : 1;
            uncertain_ += fresh.likelihood().log < 0.0 ? 1 : 0;
            change(random, *active.plant, situation);
        }
    }

    MutedTrace muted_;
    int inconsistent_ = 0;
    int contradicted_ = 0;
    int uncertain_ = 0;
};

constexpr std::uint64_t everySoMany = underSanitizers ? 6 : 1;

TEST_F(StepLabelsTest, OfMixedModelsAreThoseThatAreDrawnAfresh)
{
    for (std::uint64_t seed = 0; seed < 300 && !HasFailure(); seed += everySoMany) {
        compareSequence(seed, PlantKind::mixed);
    }
    EXPECT_GT(inconsistent_, fewerUnderSanitizers(100));
    EXPECT_GT(contradicted_, fewerUnderSanitizers(1000));
    EXPECT_GT(uncertain_, fewerUnderSanitizers(1000));
}

TEST_F(StepLabelsTest, OfCircuitsAreThoseThatAreDrawnAfresh)
{
    for (std::uint64_t seed = 1000; seed < 1150 && !HasFailure(); seed += everySoMany) {
        compareSequence(seed, PlantKind::circuit);
    }
    EXPECT_GT(contradicted_, fewerUnderSanitizers(500));
    EXPECT_GT(uncertain_, fewerUnderSanitizers(500));
}

class GateLabels : public StepLabelsTest {
protected:
    GateLabels()
    {
        model_.condition("in.v", {"0", "1"});
        model_.condition("x.v", {"0", "1", "2"});
        model_.follower("a", "in.v");
        active_ = model_.activate();
    }
    Values values(const std::vector<std::string>& ids) const
    {
        return input(*active_, ids, {}).commands.toVector();
    }

    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(GateLabels, CountWhatIsOpenBetweenSeveralValues)
{
    StepLabels labels(*active_->plant);
    labels.take(values({"a.mode=ok"}), values({"in.v=1", "a.out=1", "x.v=2"}));
    EXPECT_TRUE(labels.contradicted().empty());
    EXPECT_NEAR(std::exp(labels.likelihood().log), 1.0 / 6, 1e-15);
    labels.take(values({"a.mode=broken"}), values({"in.v=1", "a.out=1", "x.v=2"}));
    EXPECT_EQ(active_->ids(labels.contradicted()), (std::vector<std::string>{"a.out=1"}));
    EXPECT_NEAR(std::exp(labels.likelihood().log), 1.0 / 6, 1e-15);
}

TEST_F(GateLabels, TakeARepeatedObservationOnce)
{
    StepLabels labels(*active_->plant);
    labels.take(values({"a.mode=ok"}), values({"x.v=2", "x.v=2"}));
    EXPECT_TRUE(labels.contradicted().empty());
    EXPECT_NEAR(std::exp(labels.likelihood().log), 1.0 / 3, 1e-15);
}

TEST_F(GateLabels, GoOnAfterLabelsThatWereFoundOtherwise)
{
    monitor::Prediction found(*active_->plant);
    found.assume(active_->index("x.v=2"));
    StepLabels labels(*active_->plant, found);
    EXPECT_TRUE(labels.prediction().isTrue(active_->index("x.v=2")));
    labels.take(values({"a.mode=ok"}), values({"in.v=1"}));
    EXPECT_FALSE(labels.prediction().isKnown(active_->index("x.v=2")));
    EXPECT_TRUE(labels.prediction().isTrue(active_->index("a.out=1")));
}

} // namespace
