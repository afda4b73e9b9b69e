#include "tests/examples/Enumeration.h"

#include <algorithm>

using monitor::ModeOption;
using monitor::ModeStep;
using plant::AtomIndex;

Values::Values(const plant::Plant& plant, const std::vector<AtomIndex>& given)
    : plant_(plant), values_(plant.atomCount(), 0)
{
    possible_ = assume(given);
    for (const plant::ClauseIndex clause : plant.unitClauses()) {
        const plant::PlantLiteral& only = plant.clause(clause).front();
        possible_ = possible_ && set(only.atom, !only.negated) && propagate();
    }
}

bool Values::exist(const std::vector<AtomIndex>& further)
{
    const std::size_t mark = trail_.size();
    const bool found = possible_ && assume(further) && choose();
    undo(mark);
    return found;
}

bool Values::assume(const std::vector<AtomIndex>& atoms)
{
    return std::all_of(atoms.begin(), atoms.end(),
                       [this](AtomIndex atom) { return set(atom, true); }) &&
           propagate();
}

bool Values::set(AtomIndex atom, bool value)
{
    int& now = values_[static_cast<std::size_t>(atom)];
    if (now == 0) {
        now = value ? 1 : -1;
        trail_.push_back(atom);
    }
    return now == (value ? 1 : -1);
}

void Values::undo(std::size_t mark)
{
    for (; trail_.size() > mark; trail_.pop_back()) {
        values_[static_cast<std::size_t>(trail_.back())] = 0;
    }
    next_ = mark;
}

bool Values::propagate()
{
    for (; next_ < trail_.size(); ++next_) {
        for (const plant::ClauseIndex clause : plant_.clausesOf(trail_[next_])) {
            const plant::PlantLiteral* open = nullptr;
            int openCount = 0;
            bool holds = false;
            for (const plant::PlantLiteral& literal : plant_.clause(clause)) {
                const int value = values_[static_cast<std::size_t>(literal.atom)];
                holds = holds || value == (literal.negated ? -1 : 1);
                if (value == 0) {
                    open = &literal;
                    ++openCount;
                }
            }
            if (holds || openCount > 1) continue;
            if (!open) return false;
            set(open->atom, !open->negated);
        }
    }
    return true;
}

bool Values::choose()
{
    const auto open = std::find(values_.begin(), values_.end(), 0);
    if (open == values_.end()) return true;
    const auto atom = static_cast<AtomIndex>(open - values_.begin());
    const std::size_t mark = trail_.size();
    for (const bool value : {true, false}) {
        if (set(atom, value) && propagate() && choose()) return true;
        undo(mark);
    }
    return false;
}

namespace {

// Sets of changes by their size, so that a superset of an explanation is never tried.
class Enumeration {
public:
    Enumeration(const monitor::StepFrame& frame, int maxFaults)
        : frame_(frame), maxFaults_(maxFaults), values_(frame.plant, given(frame))
    {
    }

    std::set<std::set<AtomIndex>> run()
    {
        std::size_t size = 0;
        do {
            sizeReached_ = false;
            choose(0, size++, 0);
        } while (sizeReached_);
        return found_;
    }

private:
    static std::vector<AtomIndex> given(const monitor::StepFrame& frame)
    {
        std::vector<AtomIndex> all = frame.commands.toVector();
        all.insert(all.end(), frame.observations.begin(), frame.observations.end());
        return all;
    }

    void choose(std::size_t from, std::size_t left, int faults)
    {
        if (left == 0) {
            sizeReached_ = true;
            check();
            return;
        }
        for (std::size_t i = from; i < frame_.modes.size(); ++i) {
            for (const ModeOption& option : frame_.modes[i].options) {
                const int count = faults + (option.fault ? 1 : 0);
                if (option.value == frame_.modes[i].predicted || count > maxFaults_) continue;
                changes_.insert(option.value);
                choose(i + 1, left - 1, count);
                changes_.erase(option.value);
            }
        }
    }

    void check()
    {
        for (const std::set<AtomIndex>& smaller : found_) {
            if (std::includes(changes_.begin(), changes_.end(), smaller.begin(), smaller.end())) {
                return;
            }
        }
        std::vector<AtomIndex> modes;
        for (const ModeStep& step : frame_.modes) {
            const auto changed = std::find_if(
                step.options.begin(), step.options.end(),
                [&](const ModeOption& option) { return changes_.count(option.value) != 0; });
            modes.push_back(changed == step.options.end() ? step.predicted : changed->value);
        }
        if (values_.exist(modes)) found_.insert(changes_);
    }

    const monitor::StepFrame& frame_;
    int maxFaults_;
    Values values_;
    std::set<AtomIndex> changes_;
    std::set<std::set<AtomIndex>> found_;
    bool sizeReached_ = false;
};

} // namespace

std::set<std::set<AtomIndex>> minimalExplanations(const monitor::StepFrame& frame, int maxFaults)
{
    return Enumeration(frame, maxFaults).run();
}
