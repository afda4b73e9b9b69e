// Steps of random small models, compared with the explanations found by trying everything.
#include "tests/support/RandomPlant.h"
#include "tests/support/Sanitized.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using monitor::Candidate;
using monitor::StepAnswer;

constexpr std::uint64_t thresholds[] = {0, 1, 5000};

struct Comparison {
    const ActivePlant& active;
    const std::vector<BruteExplanation>& all;
    const StepAnswer& answer;

    std::set<std::string> modes(const Candidate& candidate) const
    {
        const std::vector<std::string> ids = active.ids(candidate.modes);
        return {ids.begin(), ids.end()};
    }

    const BruteExplanation* find(const std::set<std::string>& modes) const
    {
        const auto found = std::find_if(all.begin(), all.end(), [&](const BruteExplanation& one) {
            return one.modes == modes;
        });
        return found == all.end() ? nullptr : &*found;
    }

    // Its faults are counted right, and the probabilities are those of the enumeration.
    void everyCandidateIsReal() const
    {
        Fraction total;
        for (const Candidate& candidate : answer.candidates) {
            const BruteExplanation* real = find(modes(candidate));
            ASSERT_TRUE(real) << testing::PrintToString(active.ids(candidate.modes));
            EXPECT_EQ(candidate.faults, real->faults);
            EXPECT_NEAR(std::exp(candidate.logProbability) / real->joint.value(), 1.0, 1e-9);
            total = total + real->joint;
            for (const Candidate& other : answer.candidates) {
                EXPECT_TRUE(&other == &candidate || modes(other) != modes(candidate));
            }
        }
        double sum = 0.0;
        for (const Candidate& candidate : answer.candidates) {
            const Fraction exact = find(modes(candidate))->joint / total;
            EXPECT_NEAR(candidate.probability, exact.value(), 1e-12);
            sum += candidate.probability;
        }
        EXPECT_NEAR(sum, answer.candidates.empty() ? 0.0 : 1.0, 1e-9);
    }

    void theMinimalOnesAreAllThere() const
    {
        std::set<std::set<std::string>> expected;
        for (const BruteExplanation& one : BruteForceDiagnosis::minimal(all)) {
            expected.insert(one.modes);
        }
        std::set<std::set<std::string>> given;
        for (const Candidate& candidate : answer.candidates) {
            given.insert(modes(candidate));
        }
        EXPECT_EQ(given, expected);
    }

    void theyAreRanked() const
    {
        for (std::size_t i = 1; i < answer.candidates.size(); ++i) {
            const Candidate& a = answer.candidates[i - 1];
            const Candidate& b = answer.candidates[i];
            EXPECT_TRUE(a.logProbability > b.logProbability - 2e-9);
            if (std::abs(a.logProbability - b.logProbability) < 1e-12) {
                EXPECT_LT(active.ids(a.modes), active.ids(b.modes));
            }
        }
    }
};

struct StepTally {
    int steps = 0;
    int complete = 0;
    int discrepant = 0;
    int severalCandidates = 0;
};

void compareStep(std::uint64_t seed, PlantKind kind, StepTally& tally)
{
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    ActivePlant active(randomModel(random, kind));
    const DiagnosisProblem problem = randomProblem(random, kind);
    const std::vector<BruteExplanation> all = BruteForceDiagnosis(problem).explanations();
    for (const std::uint64_t threshold : thresholds) {
        SCOPED_TRACE("taken apart after " + std::to_string(threshold) + " records");
        monitor::StepSettings settings;
        settings.maxFaults = problem.maxFaults;
        const StepAnswer answer =
            monitor::StepSolver(active.engine, *active.plant, threshold)
                .solve(active.before(problem), active.input(problem), settings);
        const Comparison comparison{active, all, answer};
        comparison.everyCandidateIsReal();
        comparison.theyAreRanked();
        if (answer.complete) {
            comparison.theMinimalOnesAreAllThere();
        }
        EXPECT_EQ(answer.limit, SearchLimit::none);
        ++tally.steps;
        tally.complete += answer.complete ? 1 : 0;
        tally.discrepant += answer.discrepancies.empty() ? 0 : 1;
        tally.severalCandidates += answer.candidates.size() > 1 ? 1 : 0;
    }
}

class RandomSteps : public testing::Test {
protected:
    void compare(std::uint64_t firstSeed, std::uint64_t count, PlantKind kind)
    {
        for (std::uint64_t seed = firstSeed;
             seed < firstSeed + fewerUnderSanitizers(count) && !HasFailure(); ++seed) {
            compareStep(seed, kind, tally_);
        }
        // Otherwise little was judged.
        EXPECT_GT(tally_.complete, 3 * tally_.steps / 4);
        EXPECT_GT(tally_.discrepant, tally_.steps / 4);
        EXPECT_GT(tally_.severalCandidates, tally_.steps / 15);
    }

    MutedTrace muted_;
    StepTally tally_;
};

// Solves the step under the limits: right, though perhaps not all, and honest about it.
void solveLimited(ActivePlant& active, const DiagnosisProblem& problem,
                  const std::vector<BruteExplanation>& all, monitor::StepSettings settings,
                  std::uint64_t threshold, int& cut)
{
    settings.maxFaults = problem.maxFaults;
    const StepAnswer answer = monitor::StepSolver(active.engine, *active.plant, threshold)
                                  .solve(active.before(problem), active.input(problem), settings);
    const Comparison comparison{active, all, answer};
    for (const Candidate& candidate : answer.candidates) {
        EXPECT_TRUE(comparison.find(comparison.modes(candidate)));
    }
    if (answer.complete) {
        comparison.theMinimalOnesAreAllThere();
        EXPECT_EQ(answer.limit, SearchLimit::none);
    }
    cut += answer.limit == SearchLimit::none ? 0 : 1;
}

TEST_F(RandomSteps, UnderLimitsAreExplainedInPartAndSaySo)
{
    int cut = 0;
    for (std::uint64_t seed = 9000; seed < 9000 + fewerUnderSanitizers(200U) && !HasFailure();
         ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const PlantKind kind = seed % 2 == 0 ? PlantKind::mixed : PlantKind::circuit;
        ActivePlant active(randomModel(random, kind));
        const DiagnosisProblem problem = randomProblem(random, kind);
        const auto all = BruteForceDiagnosis(problem).explanations();
        for (const std::uint64_t threshold : thresholds) {
            for (const std::uint64_t limit : {0, 1, 2, 3, 5, 8}) {
                SCOPED_TRACE("limit " + std::to_string(limit));
                monitor::StepSettings records;
                records.limits.maxRecords = limit;
                solveLimited(active, problem, all, records, threshold, cut);
                monitor::StepSettings candidates;
                candidates.limits.maxCandidates = limit;
                solveLimited(active, problem, all, candidates, threshold, cut);
            }
            monitor::StepSettings seconds;
            seconds.limits.maxSeconds = 1e-5;
            solveLimited(active, problem, all, seconds, threshold, cut);
        }
    }
    EXPECT_GT(cut, fewerUnderSanitizers(500));
}

TEST_F(RandomSteps, OfMixedModelsAreExplainedAsByTryingEverything)
{
    compare(1000, 400, PlantKind::mixed);
}

TEST_F(RandomSteps, OfCircuitsAreExplainedAsByTryingEverything)
{
    compare(5000, 300, PlantKind::circuit);
}

} // namespace
