// The seam between the monitor and what searches for it: another search in the engine's place leads to the same answers.
#include "monitor/step/ExplanationSearch.h"

#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/RandomPlant.h"
#include "tests/support/TestModel.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using monitor::Deviations;
using monitor::Explanations;

/// Predicts the step with every set of deviations of so many faults, the smaller sets first.
class EverySet final : public monitor::ExplanationSearch {
public:
    Explanations search(const monitor::StepFrame& frame, int faultBudget,
                        const SearchLimits& /*limits*/) override
    {
        Explanations answer;
        extend(frame, 0, {}, faultBudget, answer);
        return answer;
    }

private:
    void extend(const monitor::StepFrame& frame, std::size_t next, const Deviations& deviations,
                int faultBudget, Explanations& answer)
    {
        if (next < frame.modes.size()) {
            const monitor::ModeStep& mode = frame.modes[next];
            extend(frame, next + 1, deviations, faultBudget, answer);
            for (const monitor::ModeOption& option : mode.options) {
                const int left = faultBudget - (option.fault ? 1 : 0);
                if (option.value != mode.predicted && left >= 0) {
                    Deviations more = deviations;
                    more.push_back(option.value);
                    extend(frame, next + 1, more, left, answer);
                }
            }
            return;
        }
        const monitor::Scenario scenario(frame, deviations);
        if (scenario.consistent() && scenario.discrepancies().empty()) {
            Deviations sorted = deviations;
            std::sort(sorted.begin(), sorted.end());
            answer.found.insert(sorted);
        }
    }
};

std::string text(const monitor::StepAnswer& answer)
{
    std::string text = name(answer.status);
    for (const monitor::Candidate& candidate : answer.candidates) {
        text += " " + testing::PrintToString(candidate.modes) + " " +
                std::to_string(candidate.probability);
    }
    return text;
}

std::string text(const monitor::TrackAnswer& answer)
{
    std::string text = name(answer.status);
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        text += " " + testing::PrintToString(answer.hypotheses[i]->modes.toVector()) + " " +
                std::to_string(answer.probabilities[i]);
    }
    return text;
}

class ExplanationSearchTest : public testing::Test {
protected:
    void compareStep(std::uint64_t seed, PlantKind kind)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        const DiagnosisProblem problem = randomProblem(random, kind);
        const monitor::StepSettings settings{problem.maxFaults, {}};
        const monitor::StepAnswer byEngine =
            monitor::StepSolver(active.engine, *active.plant)
                .solve(active.before(problem), active.input(problem), settings);
        const monitor::StepAnswer byEverySet =
            monitor::StepSolver(std::make_shared<EverySet>(), *active.plant)
                .solve(active.before(problem), active.input(problem), settings);
        EXPECT_EQ(byEverySet.work.records, 0U);
        if (byEngine.complete && byEverySet.complete) {
            EXPECT_EQ(text(byEverySet), text(byEngine));
            ++compared_;
            deviating_ += byEngine.candidates.size() > 1 ? 1 : 0;
        }
    }
    void compareTrack(std::uint64_t seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, PlantKind::circuit));
        RandomTrack track(random, {.deviating = 25});
        monitor::Tracker byEngine(active.engine, *active.plant, {.maxFaults = 2});
        monitor::Tracker byEverySet(std::make_shared<EverySet>(), *active.plant, {.maxFaults = 2});
        for (std::size_t step = 1; step <= 5; ++step) {
            const monitor::TrackInput input = trackInput(active, track.next(), step);
            const std::string expected = text(byEngine.advance(input));
            const std::string found = text(byEverySet.advance(input));
            if (!byEngine.answer().complete || !byEverySet.answer().complete) {
                return;
            }
            EXPECT_EQ(found, expected);
            ++compared_;
            deviating_ += byEngine.answer().contradicted.empty() ? 0 : 1;
        }
    }

    MutedTrace muted_;
    int compared_ = 0;
    int deviating_ = 0; ///< of these, those in which there was something to search
};

TEST_F(ExplanationSearchTest, OfAStepCanBeAnotherOne)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        compareStep(seed, seed % 2 == 0 ? PlantKind::mixed : PlantKind::circuit);
    }
    EXPECT_GT(compared_, 40);
    EXPECT_GT(deviating_, 5);
}

TEST_F(ExplanationSearchTest, OfATrackerCanBeAnotherOne)
{
    for (std::uint64_t seed = 101; seed <= 140; ++seed) {
        compareTrack(seed);
    }
    EXPECT_GT(compared_, 40);
    EXPECT_GT(deviating_, 10);
}

} // namespace
