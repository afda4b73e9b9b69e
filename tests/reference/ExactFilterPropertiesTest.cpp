// What holds for every plant: on random ones, with all that makes them difficult.
#include "tests/reference/BruteForceTrajectories.h"
#include "tests/reference/ExactFilter.h"
#include "tests/reference/WatchedPlant.h"

#include <gtest/gtest.h>

namespace {

using Ways = std::map<std::set<const Atom*>, double>;

Ways waysOf(const FilterAnswer& answer)
{
    Ways result;
    for (const auto& [modes, probability] : answer.probabilities) {
        result[{modes.begin(), modes.end()}] = probability.value();
    }
    return result;
}

Ways waysOf(const BruteForceTrajectories& sequences)
{
    Ways result;
    const WholeNumber total = sequences.total();
    for (const auto& [modes, weight] : sequences.weights()) {
        result[{modes.begin(), modes.end()}] = WholeNumber::ratio(weight, total);
    }
    return result;
}

TrajectoryStep sequenceStep(const WatchedPlant& plant, const WatchedStep& step)
{
    TrajectoryStep result{step.commands, step.observations, {}};
    for (const Atom* command : step.commands) {
        const Atom* fallback = command->stateVar->atomLinks->front();
        const auto lost = plant.lost.find(command->stateVar);
        if (lost != plant.lost.end() && command != fallback) {
            result.lossy.push_back({command, fallback, lost->second});
        }
    }
    return result;
}

// Calculated in another way: all sequences of modes, with what follows by propagation. It is the same where all that follows does so
// by propagation, from the initial values as well.
TEST(ExactFilterProperties, WhereEverythingFollowsItIsTheSumOverAllSequences)
{
    const WatchedOptions options{.mostParts = 2,
                                 .observedPercent = 50,
                                 .unreadPercent = 20,
                                 .lostPercent = 50,
                                 .initialValues = true,
                                 .shuffled = true,
                                 .unseenChanges = true,
                                 .conditionGuards = true};
    int several = 0;
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        WatchedPlant plant = makeWatchedPlant(random, options);
        plant.model->activate();
        ExactFilter filter(*plant.model, {.lost = plant.lost});
        BruteForceTrajectories sequences(BruteForceTrajectories::Which::all, 1000);
        WatchedRun run(random, plant, options);
        for (int number = 1; number <= 4; ++number) {
            SCOPED_TRACE("step " + std::to_string(number));
            const std::optional<WatchedStep> step = run.next();
            ASSERT_TRUE(step);
            sequences.advance(sequenceStep(plant, *step));
            const Ways exact = waysOf(filter.advance({step->commands, step->observations}));
            const Ways summed = waysOf(sequences);
            ASSERT_EQ(exact.size(), summed.size()) << plant.described();
            for (const auto& [modes, probability] : summed) {
                ASSERT_TRUE(exact.contains(modes)) << plant.described();
                EXPECT_NEAR(exact.at(modes), probability, 1e-12) << plant.described();
            }
            several += exact.size() > 2 ? 1 : 0;
        }
    }
    EXPECT_GT(several, 100);
}

class ReadingsOfAStep : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(InTimeOrNot, ReadingsOfAStep, testing::Bool());

// Every combination of values of these variables.
std::vector<Observations> allReadings(const std::vector<const StateVar*>& variables)
{
    std::vector<Observations> result{{}};
    for (const StateVar* variable : variables) {
        std::vector<Observations> more;
        for (const Observations& readings : result) {
            for (const Atom* value : *variable->atomLinks) {
                more.push_back(readings);
                more.back().push_back(value);
            }
        }
        result = std::move(more);
    }
    return result;
}

// Whatever was before, the readings of a step are one of those that it may have.
TEST_P(ReadingsOfAStep, HaveProbabilityOneTogether)
{
    const WatchedOptions options{.mostParts = 1,
                                 .observedPercent = 60,
                                 .givenPercent = 70,
                                 .lostPercent = 50,
                                 .unseenChanges = true,
                                 .openConditions = true,
                                 .conditionGuards = true,
                                 .disjunctiveGuards = true,
                                 .lawsByCases = true,
                                 .supply = true};
    int possible = 0;
    for (std::uint64_t seed = 0; seed < 25; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const WatchedPlant plant = makeWatchedPlant(random, options);
        FilterSettings settings{.inputs = plant.inputs, .lost = plant.lost};
        settings.readingsInTime = GetParam();
        for (const StateVar* variable : plant.observed) {
            settings.changing[variable] = {static_cast<std::uint32_t>(random.between(1, 7)), 8};
        }
        WatchedRun run(random, plant, options);
        std::vector<FilterStep> past;
        for (int number = 1; number <= 4; ++number) {
            const std::optional<WatchedStep> step = run.next();
            ASSERT_TRUE(step);
            past.push_back({step->commands, step->observations});
        }
        FilterStep last = past.back();
        past.pop_back();
        std::vector<const StateVar*> read;
        Observations given;
        for (const Atom* observed : last.observations) {
            if (plant.inputs.contains(observed->stateVar)) {
                given.push_back(observed);
            } else {
                read.push_back(observed->stateVar);
            }
        }
        ExactFraction sum;
        for (Observations readings : allReadings(read)) {
            readings.insert(readings.end(), given.begin(), given.end());
            ExactFilter filter(*plant.model, settings);
            for (const FilterStep& step : past) {
                ASSERT_FALSE(filter.advance(step).inconsistent) << plant.described();
            }
            const ExactFraction likelihood = filter.advance({last.commands, readings}).likelihood;
            possible += likelihood.isZero() ? 0 : 1;
            sum += likelihood;
        }
        EXPECT_EQ(sum, ExactFraction(1)) << plant.described();
    }
    EXPECT_GT(possible, 100);
}

} // namespace
