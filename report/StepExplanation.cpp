#include "report/StepExplanation.h"

#include "plant/Names.h"

#include <algorithm>
#include <deque>
#include <map>

namespace report {

namespace {

using monitor::Contradiction;
using monitor::Hypothesis;

// A conflict that was derived.
struct Known {
    const Contradiction* contradiction;
    monitor::CheckedConflict checked;
    bool listed;
    std::size_t number = 0;
};

class Explaining {
public:
    Explaining(const ExplainedRun& run, std::size_t shown)
        : run_(run), names_(run.model), shown_(shown)
    {
    }

    void explain(StepExplanation& result)
    {
        for (const Contradiction& one : run_.history.ofBest()) {
            if (derive(one, true).empty()) result.stepsOpen.push_back(one.input.step);
        }
        for (std::size_t i = 0; i < shown_; ++i) addOthers(*run_.answer.hypotheses[i]);
        list(result);
        for (std::size_t i = 0; i < shown_; ++i) {
            result.candidates.push_back(
                reasons(*run_.answer.hypotheses[i], result.report.explanations[i]));
        }
    }

private:
    std::vector<Known*> derive(const Contradiction& contradiction, bool listed)
    {
        std::vector<Known*> derived;
        for (auto& conflict : conflictsOf(run_.plant, contradiction)) {
            known_.push_back({&contradiction, std::move(conflict), listed});
            derived.push_back(&known_.back());
        }
        return derived;
    }

    // Those of each other hypothesis once.
    const std::vector<Known*>& ofOther(const Contradiction& contradiction)
    {
        const auto found = others_.find(&contradiction);
        if (found != others_.end()) return found->second;
        return others_[&contradiction] = derive(contradiction, false);
    }

    // The value that the conflict assumed of a variable which has another one since then.
    std::optional<plant::AtomIndex> instead(const Known& known, plant::VariableIndex variable,
                                            const monitor::Since& since) const
    {
        if (known.contradiction->input.step < since.step) return {};
        for (const monitor::AssumedMode& mode : known.checked.conflict.modes) {
            if (run_.plant.variableOf(mode.value) == variable && mode.value != since.value) {
                return mode.value;
            }
        }
        return {};
    }

    // A deviation that the conflict assumes, and that the hypothesis does not have.
    std::optional<plant::AtomIndex> foreignDeviation(const Known& known,
                                                     const Hypothesis& hypothesis) const
    {
        const auto& believed = known.contradiction->believed->since;
        for (const monitor::AssumedMode& mode : known.checked.conflict.modes) {
            const plant::VariableIndex variable = run_.plant.variableOf(mode.value);
            const auto assumed = believed.find(variable);
            const auto own = hypothesis.since.find(variable);
            if (assumed != believed.end() && assumed->second.value == mode.value &&
                (own == hypothesis.since.end() || own->second.value != mode.value)) {
                return mode.value;
            }
        }
        return {};
    }

    // Whether the hypothesis, which is one after the step that is explained, has all modes that the conflict assumes.
    bool sharesModes(const Known& known, const Hypothesis& hypothesis) const
    {
        const auto& modes = known.checked.conflict.modes;
        return known.contradiction->input.step == run_.answer.step &&
               std::all_of(modes.begin(), modes.end(), [&](const monitor::AssumedMode& mode) {
                   return std::find(hypothesis.modes.begin(), hypothesis.modes.end(), mode.value) !=
                          hypothesis.modes.end();
               });
    }

    // Of a contradiction, or of anything at all, which an inconsistent hypothesis leaves unexplained.
    bool isAbout(const Known& known, plant::AtomIndex observed) const
    {
        return known.checked.conflict.observed.value_or(observed) == observed;
    }

    // Lists conflicts of other hypotheses where no listed one gives the reason for something in this one.
    void addOthers(const Hypothesis& hypothesis)
    {
        for (const auto& [variable, since] : hypothesis.since) {
            const auto resolves = [&, variable = variable, since = since](const Known& known) {
                return instead(known, variable, since) && !foreignDeviation(known, hypothesis);
            };
            if (since.step > 0) addFirst(resolves);
        }
        for (const plant::AtomIndex observed : hypothesis.unexplained) {
            addFirst([&](const Known& known) {
                return isAbout(known, observed) && sharesModes(known, hypothesis);
            });
        }
    }

    // Unless one is listed already, the conflicts of the first hypothesis that has such ones.
    template <class Condition> void addFirst(const Condition& fits)
    {
        if (std::any_of(known_.begin(), known_.end(),
                        [&](const Known& known) { return known.listed && fits(known); })) {
            return;
        }
        for (const Contradiction& other : run_.history.ofOthers()) {
            bool found = false;
            for (Known* known : ofOther(other)) {
                if (fits(*known)) {
                    known->listed = true;
                    found = true;
                }
            }
            if (found) return;
        }
    }

    void list(StepExplanation& result)
    {
        for (Known& known : known_) {
            if (known.listed) listed_.push_back(&known);
        }
        std::stable_sort(listed_.begin(), listed_.end(), [](const Known* a, const Known* b) {
            const Contradiction& left = *a->contradiction;
            const Contradiction& right = *b->contradiction;
            return std::pair(left.input.step, left.rank) < std::pair(right.input.step, right.rank);
        });
        for (Known* known : listed_) {
            ExplainedConflict conflict =
                conflictReport(run_.plant, names_, *known->contradiction, known->checked);
            known->number = result.conflicts.size() + 1;
            conflict.number = known->number;
            result.conflicts.push_back(std::move(conflict));
        }
    }

    CandidateReasons reasons(const Hypothesis& hypothesis,
                             const TrackedExplanation& explanation) const
    {
        CandidateReasons result;
        result.explanation = explanation;
        std::map<std::string, std::vector<Resolution>> byName;
        int visible = static_cast<int>(explanation.lost.size());
        for (const auto& [variable, since] : hypothesis.since) {
            byName[plant::nameOf(*run_.plant.variable(variable).variable)] =
                resolutions(variable, since);
            // Any other value may be left from a command that was lost then.
            const bool fault = run_.plant.atom(since.value)->fail;
            visible += since.step > 0 && (fault || since.step < run_.answer.step) ? 1 : 0;
        }
        for (const DeviatingMode& mode : explanation.modes) {
            result.ofModes.push_back(byName[mode.variable]);
        }
        for (const plant::AtomIndex lost : hypothesis.lost) {
            const bool isCommand = run_.plant.variable(run_.plant.variableOf(lost)).isCommand;
            (isCommand ? result.ofLost : result.ofMisread).push_back(numbers([&](const Known& known) {
                return isCommand ? restsOnCommand(known, lost) : restsOnReading(known, lost);
            }));
        }
        for (const plant::AtomIndex observed : hypothesis.unexplained) {
            result.ofUnexplained.push_back(numbers([&](const Known& known) {
                return isAbout(known, observed) && sharesModes(known, hypothesis);
            }));
        }
        result.avoided = avoided(hypothesis);
        result.over = std::max(0, hypothesis.faultCount() - visible);
        return result;
    }

    std::vector<Resolution> resolutions(plant::VariableIndex variable,
                                        const monitor::Since& since) const
    {
        std::vector<Resolution> result;
        for (const Known* known : listed_) {
            if (const auto assumed = instead(*known, variable, since)) {
                result.push_back({known->number, run_.plant.atom(*assumed)->value});
            }
        }
        return result;
    }

    std::vector<Avoided> avoided(const Hypothesis& hypothesis) const
    {
        std::vector<Avoided> result;
        for (const Known* known : listed_) {
            const auto value = foreignDeviation(*known, hypothesis);
            const bool resolved =
                std::any_of(hypothesis.since.begin(), hypothesis.since.end(),
                            [&](const auto& own) { return instead(*known, own.first, own.second); });
            if (value && !resolved) {
                const Atom& atom = *run_.plant.atom(*value);
                result.push_back({known->number, plant::nameOf(*atom.stateVar), atom.value});
            }
        }
        return result;
    }

    template <class Condition> std::vector<std::size_t> numbers(const Condition& fits) const
    {
        std::vector<std::size_t> result;
        for (const Known* known : listed_) {
            if (fits(*known)) result.push_back(known->number);
        }
        return result;
    }

    // Of the step that is explained: the command itself counts, or a mode is what it is by it.
    bool restsOnReading(const Known& known, plant::AtomIndex reading) const
    {
        const monitor::DerivedConflict& conflict = known.checked.conflict;
        return known.contradiction->input.step == run_.answer.step &&
               (conflict.observed == reading ||
                std::find(conflict.readings.begin(), conflict.readings.end(), reading) !=
                    conflict.readings.end());
    }

    bool restsOnCommand(const Known& known, plant::AtomIndex command) const
    {
        const monitor::DerivedConflict& conflict = known.checked.conflict;
        const auto isIt = [command](plant::AtomIndex other) { return other == command; };
        return known.contradiction->input.step == run_.answer.step &&
               (std::any_of(conflict.commands.begin(), conflict.commands.end(), isIt) ||
                std::any_of(conflict.modes.begin(), conflict.modes.end(),
                            [&](const monitor::AssumedMode& mode) {
                                const auto commands = commandsFor(run_.plant, mode);
                                return std::any_of(commands.begin(), commands.end(), isIt);
                            }));
    }

    const ExplainedRun& run_;
    ModelNames names_;
    std::size_t shown_;
    std::deque<Known> known_;
    std::map<const Contradiction*, std::vector<Known*>> others_;
    std::vector<Known*> listed_;
};

} // namespace

StepExplanation explainStep(const ExplainedRun& run, const Shown& shown)
{
    StepExplanation result;
    result.report = stepReport(run.plant, run.answer);
    result.stepsLeftOut = run.history.leftOut();
    Explaining(run, shownCount(result.report, shown)).explain(result);
    return result;
}

} // namespace report
