#include "monitor/why/Measurement.h"

#include "tests/monitor/why/EngineEntropy.h"
#include "tests/reference/ExpectedEntropy.h"
#include "tests/reference/Random.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

class MeasurementTest : public testing::Test {
protected:
    // A hypothesis of a probability, made of what it assumes.
    void believe(double probability, const Names& assumed, const Names& read = {})
    {
        if (!active_) active_ = model_.activate();
        std::vector<plant::AtomIndex> assumptions;
        for (const std::string& id : assumed) {
            assumptions.push_back(active_->index(id));
        }
        monitor::Hypothesis made{monitor::StepLabels(*active_->plant),
                                 {},
                                 std::log(probability),
                                 0.0,
                                 {},
                                 {},
                                 {},
                                 {},
                                 {}};
        made.labels.take(assumptions, input(*active_, {}, read).observations);
        answer_.hypotheses.push_back(std::make_shared<const monitor::Hypothesis>(std::move(made)));
        answer_.probabilities.push_back(probability);
    }
    monitor::Advice advise(const Names& observed = {}, bool modes = false) const
    {
        std::vector<plant::AtomIndex> observations;
        for (const std::string& id : observed) {
            observations.push_back(active_->index(id));
        }
        return monitor::advise(*active_->plant, answer_, observations, {modes});
    }
    // The variables, best first.
    Names names(const monitor::Advice& advice) const
    {
        Names names;
        for (const monitor::Measurement& measurement : advice.measurements) {
            const StateVar& variable = *active_->plant->variable(measurement.variable).variable;
            names.push_back(variable.comp->name + "." + variable.name);
        }
        return names;
    }
    std::string id(const monitor::Outcome& outcome) const
    {
        return active_->plant->atom(outcome.value)->id;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    monitor::TrackAnswer answer_;
};

TEST_F(MeasurementTest, CountsTheValuesThatLawsLeaveOpen)
{
    model_.mode("m.mode", {"ok", "bad!"});
    model_.condition("x.v", {"a", "b", "c"});
    model_.law("!m.mode=bad | x.v=b | x.v=c");
    believe(0.5, {"m.mode=ok"});
    believe(0.5, {"m.mode=bad"});
    const monitor::Advice advice = advise();
    ASSERT_EQ(advice.measurements.size(), 1U);
    for (const monitor::Outcome& outcome : advice.measurements.front().outcomes) {
        const bool isA = id(outcome) == "x.v=a";
        EXPECT_NEAR(outcome.probability, isA ? 1.0 / 6 : 5.0 / 12, 1e-12);
        EXPECT_NEAR(outcome.hypotheses[1], isA ? 0.0 : 3.0 / 5, 1e-12);
    }
}

// Where it is bad x and y are not both 1. That x is 0 has 1/2 of two values; with y read as well each has 1/3.
TEST_F(MeasurementTest, LeavesTheProbabilitiesThatTheReadingTogetherWithTheOthersWould)
{
    model_.mode("m.mode", {"ok", "bad!"});
    model_.condition("x.v", {"0", "1"});
    model_.condition("y.v", {"0", "1"});
    model_.law("!m.mode=bad | x.v=0 | y.v=0");
    believe(0.5, {"m.mode=ok"}, {"x.v=0"});
    believe(0.5, {"m.mode=bad"}, {"x.v=0"});
    const monitor::Advice advice = advise({"x.v=0"});
    ASSERT_EQ(advice.measurements.size(), 1U);
    for (const monitor::Outcome& outcome : advice.measurements.front().outcomes) {
        EXPECT_NEAR(outcome.hypotheses[1], (2.0 / 3) / (2.0 / 3 + 1.0 / 2), 1e-12);
    }
}

TEST_F(MeasurementTest, RatesWhatCanBeMeasuredOnly)
{
    model_.mode("m.mode", {"ok", "bad!"});
    model_.condition("a.out", {"0", "1"});
    model_.condition("b.out", {"0", "1"});
    believe(0.75, {"m.mode=ok", "a.out=0", "b.out=0"});
    believe(0.25, {"m.mode=bad", "a.out=1", "b.out=1"});
    monitor::AdviceSettings settings;
    settings.measurable.resize(active_->plant->variables().size());
    const auto declare = [&](const char* value) {
        settings
            .measurable[static_cast<std::size_t>(active_->plant->variableOf(active_->index(value)))] =
            true;
    };
    declare("b.out=0");
    const monitor::Advice conditions = monitor::advise(*active_->plant, answer_, {}, settings);
    EXPECT_EQ(names(conditions), Names{"b.out"});
    EXPECT_EQ(conditions.unmeasurable, 1U);
    declare("m.mode=ok");
    EXPECT_EQ(names(monitor::advise(*active_->plant, answer_, {}, settings)),
              (Names{"b.out", "m.mode"}));
}

TEST_F(MeasurementTest, LeavesNoDoubtWhereEveryHypothesisPredictsAnotherValue)
{
    model_.condition("a.out", {"0", "1"});
    believe(0.75, {"a.out=0"});
    believe(0.25, {"a.out=1"});
    const monitor::Advice advice = advise();
    EXPECT_DOUBLE_EQ(advice.entropy, entropyTerm(0.75) + entropyTerm(0.25));
    ASSERT_EQ(advice.measurements.size(), 1U);
    const monitor::Measurement& out = advice.measurements.front();
    EXPECT_EQ(out.expectedEntropy, 0.0);
    ASSERT_EQ(out.outcomes.size(), 2U);
    EXPECT_EQ(id(out.outcomes[0]), "a.out=0");
    EXPECT_EQ(out.outcomes[0].probability, 0.75);
    EXPECT_EQ(out.outcomes[0].hypotheses, (std::vector<double>{1.0, 0.0}));
    EXPECT_EQ(out.outcomes[0].entropy, 0.0);
    EXPECT_EQ(id(out.outcomes[1]), "a.out=1");
    EXPECT_EQ(out.outcomes[1].hypotheses, (std::vector<double>{0.0, 1.0}));
}

TEST_F(MeasurementTest, LeavesOutWhatTellsNothing)
{
    model_.condition("a.out", {"0", "1"});
    model_.condition("b.out", {"0", "1"});
    model_.condition("c.out", {"0", "1", "2"});
    believe(0.5, {"a.out=0", "b.out=1"});
    believe(0.5, {"a.out=1", "b.out=1"});
    const monitor::Advice advice = advise();
    EXPECT_EQ(names(advice), Names{"a.out"});
    EXPECT_EQ(advice.useless, 2U);
}

TEST_F(MeasurementTest, TakesTheValuesThatAHypothesisLeavesOpenAsEquallyProbable)
{
    model_.condition("a.out", {"0", "1"});
    model_.condition("b.out", {"0", "1"});
    believe(0.5, {"a.out=1"});
    believe(0.5, {});
    const monitor::Advice advice = advise();
    ASSERT_EQ(names(advice), Names{"a.out"});
    const monitor::Measurement& out = advice.measurements.front();
    ASSERT_EQ(out.outcomes.size(), 2U);
    EXPECT_EQ(id(out.outcomes[0]), "a.out=1");
    EXPECT_EQ(out.outcomes[0].probability, 0.75);
    EXPECT_DOUBLE_EQ(out.outcomes[0].hypotheses[0], 2.0 / 3);
    EXPECT_DOUBLE_EQ(out.outcomes[0].entropy, entropyTerm(2.0 / 3) + entropyTerm(1.0 / 3));
    EXPECT_EQ(out.outcomes[1].probability, 0.25);
    EXPECT_EQ(out.outcomes[1].entropy, 0.0);
    EXPECT_DOUBLE_EQ(out.expectedEntropy, 0.75 * (entropyTerm(2.0 / 3) + entropyTerm(1.0 / 3)));
}

TEST_F(MeasurementTest, CountsNoOpenValueThatTheLawsRuleOut)
{
    model_.condition("a.out", {"0", "1", "2"});
    model_.condition("b.out", {"0", "1"});
    // Whatever b is, a is not 2: propagation sees it only when a=2 is tried.
    model_.law("!a.out=2 | b.out=0");
    model_.law("!a.out=2 | b.out=1");
    model_.condition("c.out", {"0", "1"});
    believe(0.5, {"a.out=0"});
    believe(0.5, {"c.out=0"});
    const monitor::Advice advice = advise();
    ASSERT_EQ(names(advice).front(), "a.out");
    ASSERT_EQ(advice.measurements.front().outcomes.size(), 2U);
    EXPECT_EQ(advice.measurements.front().outcomes[0].probability, 0.75);
    EXPECT_EQ(id(advice.measurements.front().outcomes[1]), "a.out=1");
}

TEST_F(MeasurementTest, MeasuresNoVariableThatWasObserved)
{
    model_.condition("a.out", {"0", "1"});
    model_.condition("b.out", {"0", "1"});
    believe(0.5, {"a.out=0", "b.out=0"});
    believe(0.5, {"a.out=1", "b.out=1"});
    EXPECT_EQ(names(advise({"a.out=0"})), Names{"b.out"});
}

TEST_F(MeasurementTest, MeasuresModesOnRequestAndCommandsNever)
{
    model_.mode("a.mode", {"ok", "broken!"});
    model_.command("a.cmd", {"none", "go"});
    believe(0.5, {"a.mode=ok", "a.cmd=none"});
    believe(0.5, {"a.mode=broken", "a.cmd=go"});
    EXPECT_EQ(names(advise()), Names{});
    EXPECT_EQ(names(advise({}, true)), Names{"a.mode"});
}

TEST_F(MeasurementTest, RanksTheBestFirstAndEqualOnesByName)
{
    for (const char* id : {"d.out", "c.out", "b.out", "a.out"}) {
        model_.condition(id, {"0", "1"});
    }
    believe(0.5, {"d.out=0", "c.out=0", "b.out=0", "a.out=0"});
    believe(0.25, {"d.out=0", "c.out=1", "b.out=1", "a.out=0"});
    believe(0.25, {"d.out=1", "c.out=1", "b.out=1", "a.out=1"});
    EXPECT_EQ(names(advise()), (Names{"b.out", "c.out", "a.out", "d.out"}));
}

TEST_F(MeasurementTest, HasNothingToTellApartInASingleHypothesis)
{
    model_.condition("a.out", {"0", "1"});
    model_.condition("b.out", {"0", "1"});
    believe(1.0, {"a.out=1"});
    const monitor::Advice advice = advise();
    EXPECT_EQ(advice.entropy, 0.0);
    EXPECT_TRUE(advice.measurements.empty());
    EXPECT_EQ(advice.useless, 2U);
}

TEST_F(MeasurementTest, RatesHypothesesThatContradictTheLaws)
{
    model_.condition("a.out", {"0", "1"});
    model_.mode("a.mode", {"ok", "broken!"});
    model_.law("!a.mode=ok | a.out=0");
    model_.law("!a.mode=ok | a.out=1");
    believe(0.5, {"a.mode=ok"});
    believe(0.5, {"a.mode=broken"});
    ASSERT_FALSE(answer_.hypotheses.front()->labels.consistent());
    for (const monitor::Measurement& measurement : advise({}, true).measurements) {
        EXPECT_GE(measurement.expectedEntropy, 0.0);
        EXPECT_LE(measurement.expectedEntropy, std::log(2.0) + 1e-12);
    }
}

// ---- compared with a plain computation

// Some conditions, and hypotheses each of which knows some of their values.
struct RandomBeliefs {
    std::vector<std::string> variables;
    std::vector<int> valueCounts;
    std::vector<Fraction> probabilities;
    std::vector<std::vector<int>> known; ///< by hypothesis and variable, -1: left open

    explicit RandomBeliefs(Random& random)
    {
        const int variableCount = random.between(1, 5);
        for (int i = 0; i < variableCount; ++i) {
            variables.push_back("c" + std::to_string(i) + ".out");
            valueCounts.push_back(random.between(2, 4));
        }
        std::vector<int> weights;
        int sum = 0;
        for (int i = random.between(1, 6); i > 0; --i) {
            weights.push_back(random.between(1, 50));
            sum += weights.back();
        }
        for (const int weight : weights) {
            probabilities.emplace_back(weight, sum);
            std::vector<int>& values = known.emplace_back();
            for (const int count : valueCounts) {
                values.push_back(random.chance(30) ? -1 : random.between(0, count - 1));
            }
        }
    }

    std::vector<std::vector<Fraction>> predicted(std::size_t variable) const
    {
        const int count = valueCounts[variable];
        std::vector<std::vector<Fraction>> predicted;
        for (const std::vector<int>& values : known) {
            std::vector<Fraction>& row = predicted.emplace_back();
            for (int value = 0; value < count; ++value) {
                const bool holds = values[variable] == value;
                row.push_back(values[variable] < 0 ? Fraction(1, count) : Fraction(holds ? 1 : 0));
            }
        }
        return predicted;
    }
};

class MeasurementRandomTest : public MeasurementTest {
protected:
    void make(const RandomBeliefs& beliefs)
    {
        for (std::size_t i = 0; i < beliefs.variables.size(); ++i) {
            std::vector<std::string> values;
            for (int value = 0; value < beliefs.valueCounts[i]; ++value) {
                values.push_back(std::to_string(value));
            }
            model_.condition(beliefs.variables[i], values);
        }
        for (std::size_t h = 0; h < beliefs.known.size(); ++h) {
            Names assumed;
            for (std::size_t i = 0; i < beliefs.variables.size(); ++i) {
                const int value = beliefs.known[h][i];
                if (value >= 0)
                    assumed.push_back(beliefs.variables[i] + "=" + std::to_string(value));
            }
            believe(beliefs.probabilities[h].value(), assumed);
        }
    }
    void compare(const RandomBeliefs& beliefs)
    {
        const monitor::Advice advice = advise();
        EXPECT_NEAR(advice.entropy, plainEntropy(beliefs.probabilities), 1e-12);
        EXPECT_NEAR(
            advice.entropy,
            EngineEntropy(answer_.probabilities.size()).outcome(answer_.probabilities).weighted,
            1e-15);
        const Names found = names(advice);
        double before = 0.0;
        for (const monitor::Measurement& measurement : advice.measurements) {
            EXPECT_GE(measurement.expectedEntropy, before - 1e-9);
            before = measurement.expectedEntropy;
        }
        for (std::size_t i = 0; i < beliefs.variables.size(); ++i) {
            const auto predicted = beliefs.predicted(i);
            const double expected = plainExpectedEntropy(beliefs.probabilities, predicted);
            const auto place = std::find(found.begin(), found.end(), beliefs.variables[i]);
            if (place == found.end()) {
                EXPECT_NEAR(expected, advice.entropy, 1e-12) << beliefs.variables[i];
                continue;
            }
            const monitor::Measurement& measurement =
                advice.measurements[static_cast<std::size_t>(place - found.begin())];
            EXPECT_NEAR(measurement.expectedEntropy, expected, 1e-12) << beliefs.variables[i];
            EXPECT_LE(expected, advice.entropy + 1e-12);
            compareOutcomes(measurement, beliefs, predicted);
        }
    }
    void compareOutcomes(const monitor::Measurement& measurement, const RandomBeliefs& beliefs,
                         const std::vector<std::vector<Fraction>>& predicted)
    {
        Fraction total;
        EngineEntropy engine(predicted.size());
        double expected = 0.0;
        for (const monitor::Outcome& outcome : measurement.outcomes) {
            const auto value =
                static_cast<std::size_t>(std::stoi(active_->plant->atom(outcome.value)->value));
            Fraction sum;
            for (std::size_t h = 0; h < predicted.size(); ++h) {
                sum = sum + beliefs.probabilities[h] * predicted[h][value];
            }
            std::vector<double> weights;
            for (std::size_t h = 0; h < predicted.size(); ++h) {
                weights.push_back(beliefs.probabilities[h].value() * predicted[h][value].value());
            }
            const EngineEntropy::Outcome second = engine.outcome(weights);
            expected += second.weighted;
            EXPECT_NEAR(outcome.probability, second.probability, 1e-15);
            EXPECT_NEAR(outcome.probability * outcome.entropy, second.weighted, 1e-15);
            EXPECT_EQ(outcome.hypotheses, second.hypotheses);
            EXPECT_NEAR(outcome.probability, sum.value(), 1e-12);
            for (std::size_t h = 0; h < predicted.size(); ++h) {
                const Fraction left = beliefs.probabilities[h] * predicted[h][value] / sum;
                EXPECT_NEAR(outcome.hypotheses[h], left.value(), 1e-12);
            }
            total = total + sum;
        }
        EXPECT_EQ(total, Fraction(1));
        EXPECT_NEAR(measurement.expectedEntropy, expected, 1e-14);
    }
};

class MeasurementSeeds : public MeasurementRandomTest, public testing::WithParamInterface<int> {};

TEST_P(MeasurementSeeds, AreRatedByTheExpectedEntropyOfTheHypotheses)
{
    Random random(static_cast<std::uint64_t>(GetParam()));
    const RandomBeliefs beliefs(random);
    make(beliefs);
    compare(beliefs);
}

INSTANTIATE_TEST_SUITE_P(Random, MeasurementSeeds, testing::Range(0, 300));

} // namespace
