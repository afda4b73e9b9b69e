#include "tests/examples/PlantTest.h"

#include <algorithm>
#include <cmath>

using monitor::Candidate;
using monitor::StepAnswer;
using plant::AtomIndex;

Situation PlantTest::situation(const std::vector<Names>& steps, const Names& commands,
                               const Names& ambient) const
{
    Labels labels = plant_.initial();
    for (const Names& given : steps) {
        labels = plant_.after(labels, given);
    }
    return {labels, commands, ambient};
}

StepAnswer PlantTest::explain(const Situation& at, const std::vector<AtomIndex>& observed,
                              int maxFaults)
{
    const StepAnswer answer = plant_.solve(at.before, at.commands, observed, maxFaults);
    EXPECT_TRUE(answer.complete);
    const monitor::StepFrame frame = plant_.frame(at.before, at.commands, observed);
    std::set<std::set<AtomIndex>> found;
    for (const Candidate& candidate : answer.candidates) {
        found.insert({candidate.modes.begin(), candidate.modes.end()});
    }
    const auto ids = [&](const std::set<std::set<AtomIndex>>& sets) {
        std::set<Names> result;
        for (const std::set<AtomIndex>& one : sets) {
            result.insert(plant_.active().ids({one.begin(), one.end()}));
        }
        return result;
    };
    EXPECT_EQ(ids(found), ids(minimalExplanations(frame, maxFaults)));
    EXPECT_EQ(found.size(), answer.candidates.size());
    comparePriors(frame, answer);
    return answer;
}

// Where the modes determine every observation the joint probability is that of the transitions.
void PlantTest::comparePriors(const monitor::StepFrame& frame, const StepAnswer& answer) const
{
    for (const Candidate& candidate : answer.candidates) {
        monitor::Prediction labels(frame.plant);
        EXPECT_TRUE(monitor::assumeStep(labels, frame, candidate.modes));
        double product = 1.0;
        for (const monitor::ModeStep& step : frame.modes) {
            product *=
                step.option(*labels.valueOf(frame.plant.variable(step.variable)))->probability;
        }
        EXPECT_LT(candidate.logProbability, std::log(product) + 1e-9);
        if (std::all_of(frame.observations.begin(), frame.observations.end(),
                        [&](AtomIndex observed) { return labels.isTrue(observed); })) {
            EXPECT_NEAR(candidate.logProbability, std::log(product), 1e-9);
        }
    }
    for (std::size_t i = 1; i < answer.candidates.size(); ++i) {
        EXPECT_GE(answer.candidates[i - 1].logProbability,
                  answer.candidates[i].logProbability - 2e-9);
    }
}

void PlantTest::explainEverySingleFault(const Situation& at)
{
    const plant::Plant& plant = *plant_.active().plant;
    int count = 0;
    for (const monitor::ModeStep& step : plant_.frame(at.before, at.commands).modes) {
        for (const monitor::ModeOption& option : step.options) {
            if (!option.fault || HasFailure()) continue;
            const std::string& fault = plant.atom(option.value)->id;
            SCOPED_TRACE(fault);
            const StepAnswer answer = explain(at, Names{fault}, 1);
            EXPECT_FALSE(answer.candidates.empty());
            EXPECT_TRUE(answer.status == monitor::StepStatus::nominal ||
                        std::any_of(answer.candidates.begin(), answer.candidates.end(),
                                    [&](const Candidate& one) {
                                        return one.modes == std::vector{option.value};
                                    }));
            ++count;
        }
    }
    EXPECT_GT(count, 0);
}

std::vector<Names> PlantTest::modes(const StepAnswer& answer) const
{
    std::vector<Names> result;
    for (const Candidate& candidate : answer.candidates) {
        result.push_back(plant_.active().ids(candidate.modes));
    }
    return result;
}

std::set<std::set<std::string>> PlantTest::alike(const std::vector<Situation>& situations) const
{
    std::map<std::vector<AtomIndex>, std::set<std::string>> byReadings;
    const auto add = [&](const Names& fault) {
        std::vector<AtomIndex> all;
        for (const Situation& at : situations) {
            const std::vector<AtomIndex> shown = readings(at, fault);
            all.insert(all.end(), shown.begin(), shown.end());
        }
        byReadings[all].insert(fault.empty() ? "" : fault.front());
    };
    add({});
    for (const plant::PlantVariable& variable : plant_.active().plant->variables()) {
        for (const AtomIndex value : variable.values) {
            const Atom* atom = plant_.active().plant->atom(value);
            if (variable.isMode && atom->fail && atom->value != "unknown") {
                add({atom->id});
            }
        }
    }
    std::set<std::set<std::string>> result;
    for (const auto& [shown, faults] : byReadings) {
        if (faults.size() > 1) {
            result.insert(faults);
        }
    }
    return result;
}

std::set<std::set<std::string>> PlantTest::alikeAt(const Situation& situation) const
{
    std::set<std::set<std::string>> result = alike({situation});
    std::erase_if(result, [](const std::set<std::string>& list) { return list.count("") != 0; });
    return result;
}
