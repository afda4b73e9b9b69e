// Unit propagation with a trail. Labels are appended to the trail in the order in which they are found, so that reasons always
// stand before what they give: taking back is cutting the trail, and the modes under a label are found in one pass from its end.
// reassume() cuts out what rests on the changed assumptions, and visits the clauses around that. Shared labels have no trail below
// what can still be taken back: there the order is found from the reasons, where it is asked for.
#include "monitor/labels/Prediction.h"

#include "monitor/labels/Meter.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <unordered_set>

namespace monitor {

namespace {

/// The clauses of so many fit into the processor's cache.
constexpr std::size_t fewAtoms = 10'000;

} // namespace

Prediction::Prediction(const Plant& plant)
    : plant_(&plant), labels_(plant.atomCount(), Label::unknown),
      reasons_(plant.atomCount(), assumed)
{
    Meter::spend(plant.atomCount());
    trail_.reserve(plant.atomCount());
}

bool Prediction::assume(AtomIndex value)
{
    const PlantVariable& variable = plant_->variable(plant_->variableOf(value));
    for (const AtomIndex atom : variable.values) {
        if (label(atom) == (atom == value ? Label::isFalse : Label::isTrue)) {
            return false;
        }
    }
    for (const AtomIndex atom : variable.values) {
        if (!isKnown(atom)) {
            set(atom, atom == value ? Label::isTrue : Label::isFalse, assumed);
        }
    }
    return true;
}

bool Prediction::exclude(AtomIndex value)
{
    if (!isKnown(value)) {
        set(value, Label::isFalse, assumed);
    }
    return !isTrue(value);
}

bool Prediction::propagate()
{
    if (next_ == 0 && !visitAll(plant_->unitClauses())) {
        return false;
    }
    const bool isLarge = plant_->atomCount() > fewAtoms;
    for (; next_ < mark(); ++next_) {
        if (isLarge) {
            fetchAhead();
        }
        if (!visitAll(plant_->clausesOf(trail_[next_ - settled_]))) {
            return false;
        }
    }
    return true;
}

// Propagation goes from part to part, in whatever order they are numbered: what the next visits will read is prefetched.
void Prediction::fetchAhead() const
{
    using Reading = Plant::Reading;
    const auto fetch = [this](std::size_t ahead, Reading what) {
        const std::size_t place = next_ - settled_ + ahead;
        if (place < trail_.size()) {
            plant_->prefetch(trail_[place], what);
        }
    };
    fetch(12, Reading::listPlace);
    fetch(8, Reading::list);
    fetch(4, Reading::clausePlaces);
    fetch(2, Reading::clauses);
}

// Where the labels are is asked once for all the clauses: this is the innermost loop of a search.
bool Prediction::visitAll(std::span<const ClauseIndex> clauses)
{
    const auto kept = [this](AtomIndex atom) {
        return known_[static_cast<std::size_t>(atom)].label();
    };
    const auto flat = [labels = labels_.data()](AtomIndex atom) {
        return labels[static_cast<std::size_t>(atom)];
    };
    return shared_ ? visitAll(clauses, kept) : visitAll(clauses, flat);
}

template <typename LabelOf>
bool Prediction::visitAll(std::span<const ClauseIndex> clauses, LabelOf labelOf)
{
    std::uint64_t literals = 0;
    bool sound = true;
    for (const ClauseIndex clause : clauses) {
        literals += plant_->clause(clause).size();
        if (!visit(clause, labelOf)) {
            violated_ = clause;
            sound = false;
            break;
        }
    }
    Meter::spend(literals);
    return sound;
}

// Labels the clause's only open literal so that the clause holds. False when every literal is false.
template <typename LabelOf> bool Prediction::visit(ClauseIndex clause, LabelOf labelOf)
{
    const PlantLiteral* open = nullptr;
    for (const PlantLiteral& literal : plant_->clause(clause)) {
        const Label value = labelOf(literal.atom);
        if (value == Label::unknown) {
            if (open) {
                return true;
            }
            open = &literal;
        } else if ((value == Label::isTrue) != literal.negated) {
            return true;
        }
    }
    if (!open) {
        return false;
    }
    set(open->atom, open->negated ? Label::isFalse : Label::isTrue, clause);
    return true;
}

bool Prediction::reassume(const std::vector<AtomIndex>& values)
{
    std::vector<AtomIndex> changed = values;
    std::erase_if(changed, [this](AtomIndex value) { return isTrue(value); });
    if (changed.empty()) {
        return true;
    }
    const std::vector<AtomIndex> retracted = retract(changed);
    // What stays may give a label that was taken back, by another clause.
    for (const AtomIndex atom : retracted) {
        if (!isKnown(atom) && !visitAll(plant_->clausesOf(atom))) {
            return false;
        }
    }
    if (!propagate()) {
        return false;
    }
    if (shared_) {
        settle();
    }
    return true;
}

// What follows from new assumptions, though it was known before: as far as it would be taken back with the old ones.
class Prediction::StillGiven {
public:
    explicit StillGiven(const Plant& plant) : plant_(plant) {}

    void add(AtomIndex atom)
    {
        given_.insert(atom);
        for (const ClauseIndex clause : plant_.clausesOf(atom)) {
            for (const PlantLiteral& literal : plant_.clause(clause)) {
                around_.insert(literal.atom);
            }
        }
    }
    // Whether a clause of the atom may give it a label from some of these.
    bool isAround(AtomIndex atom) const { return around_.contains(atom); }
    bool has(AtomIndex atom) const { return given_.contains(atom); }

private:
    const Plant& plant_;
    std::unordered_set<AtomIndex> given_;
    std::unordered_set<AtomIndex> around_;
};

// Another clause that gives the label from what is assumed, some of it anew, takes the place of its reason. Looked for once: what stays
// gives others.
bool Prediction::stays(AtomIndex atom, StillGiven& still)
{
    if (still.has(atom) || !still.isAround(atom)) {
        return still.has(atom);
    }
    const auto agrees = [&](const PlantLiteral& literal) {
        const bool holds = isTrue(literal.atom) != literal.negated;
        return literal.atom == atom
                   ? holds
                   : isKnown(literal.atom) && !holds &&
                         (reason(literal.atom) == assumed || still.has(literal.atom));
    };
    for (const ClauseIndex clause : plant_->clausesOf(atom)) {
        const std::span<const PlantLiteral> literals = plant_->clause(clause);
        Meter::spend(literals.size());
        if (std::all_of(literals.begin(), literals.end(), agrees)) {
            enter(atom, label(atom), clause);
            still.add(atom);
            return true;
        }
    }
    return false;
}

// Takes back the labels of the values' variables, and all that rests on them, and assumes the values. Reasons lead from earlier labels to
// later ones, never in a circle, so what is left is still justified. Of shared labels, those that the values give as well stay; else
// their reasons might come before what gives them.
std::vector<AtomIndex> Prediction::retract(const std::vector<AtomIndex>& values)
{
    std::vector<AtomIndex> retracted;
    const auto takeBack = [&](AtomIndex atom) {
        enter(atom, Label::unknown, assumed);
        retracted.push_back(atom);
    };
    for (const AtomIndex value : values) {
        const plant::ValueRange atoms = plant_->variable(plant_->variableOf(value)).values;
        std::for_each(atoms.begin(), atoms.end(), takeBack);
    }
    const auto assumeAnew = [&] {
        next_ = mark();
        std::for_each(values.begin(), values.end(), [this](AtomIndex value) { assume(value); });
    };
    const std::size_t own = retracted.size();
    StillGiven still(*plant_); // nothing, where the labels are not shared
    if (shared_) {
        settled_ -= own;
        assumeAnew();
        std::for_each(retracted.begin(), retracted.end(), [&](AtomIndex atom) { still.add(atom); });
    }
    for (std::size_t i = 0; i < retracted.size(); ++i) {
        for (const ClauseIndex clause : plant_->clausesOf(retracted[i])) {
            Meter::spend(plant_->clause(clause).size());
            for (const PlantLiteral& literal : plant_->clause(clause)) {
                // No clause is the reason of what is unknown.
                if (reason(literal.atom) == clause && !stays(literal.atom, still)) {
                    takeBack(literal.atom);
                }
            }
        }
    }
    if (shared_) {
        settled_ -= retracted.size() - own;
        next_ -= retracted.size() - own;
    } else {
        std::erase_if(trail_, [this](AtomIndex atom) { return !isKnown(atom); });
        assumeAnew();
    }
    return retracted;
}

void Prediction::set(AtomIndex atom, Label label, ClauseIndex reason)
{
    enter(atom, label, reason);
    trail_.push_back(atom);
}

void Prediction::enter(AtomIndex atom, Label label, ClauseIndex reason)
{
    const auto place = static_cast<std::size_t>(atom);
    if (shared_) {
        known_.set(place, Known::of(label, reason));
    } else {
        labels_[place] = label;
        reasons_[place] = reason;
    }
}

void Prediction::undo(std::size_t mark)
{
    if (mark < settled_) { // all of them
        shared_ = false;
        known_ = {};
        settled_ = 0;
        labels_.assign(plant_->atomCount(), Label::unknown);
        reasons_.assign(plant_->atomCount(), assumed);
        trail_.clear();
    }
    while (this->mark() > mark) {
        enter(trail_.back(), Label::unknown, assumed);
        trail_.pop_back();
    }
    next_ = std::min(next_, mark);
    violated_ = -1;
}

void Prediction::share(std::size_t mark)
{
    if (!shared_) {
        std::vector<Known> known(labels_.size());
        for (std::size_t i = 0; i < known.size(); ++i) {
            known[i] = Known::of(labels_[i], labels_[i] == Label::unknown ? assumed : reasons_[i]);
        }
        known_ = known;
        shared_ = true;
        labels_ = {};
        reasons_ = {};
    }
    // What contradicts itself was not visited to its end, and has to stay on the trail.
    const std::size_t settled = std::max(settled_, std::min(mark, next_));
    trail_ = {trail_.begin() + static_cast<std::ptrdiff_t>(settled - settled_), trail_.end()};
    settled_ = settled;
}

// Where nothing is on the trail but what was assumed anew, and what follows from it.
void Prediction::settle()
{
    settled_ += trail_.size();
    trail_.clear();
}

bool Prediction::satisfies(ClauseIndex clause) const
{
    const std::span<const PlantLiteral> literals = plant_->clause(clause);
    return std::any_of(literals.begin(), literals.end(), [this](const PlantLiteral& literal) {
        return label(literal.atom) == (literal.negated ? Label::isFalse : Label::isTrue);
    });
}

std::optional<AtomIndex> Prediction::valueOf(const PlantVariable& variable) const
{
    for (const AtomIndex atom : variable.values) {
        if (isTrue(atom)) {
            return atom;
        }
    }
    return std::nullopt;
}

namespace {

/// A set of modes, one bit each, in a table of such sets.
class ModeSets {
public:
    ModeSets(std::size_t sets, std::size_t modes) : words_((modes + 63) / 64), bits_(sets * words_)
    {
    }

    void insert(std::size_t set, std::size_t mode)
    {
        row(set)[mode / 64] |= std::uint64_t{1} << (mode % 64);
    }
    void clear(std::size_t set) { std::fill_n(row(set), words_, 0); }
    void unite(std::size_t into, std::size_t from)
    {
        for (std::size_t word = 0; word < words_; ++word) {
            row(into)[word] |= row(from)[word];
        }
    }
    void copy(std::size_t into, std::size_t from) { std::copy_n(row(from), words_, row(into)); }
    int size(std::size_t set)
    {
        int count = 0;
        for (std::size_t word = 0; word < words_; ++word) {
            count += std::popcount(row(set)[word]);
        }
        return count;
    }

private:
    std::uint64_t* row(std::size_t set) { return bits_.data() + set * words_; }

    std::size_t words_;
    std::vector<std::uint64_t> bits_;
};

constexpr std::size_t mostModes = 4096;

} // namespace

void Prediction::preferSmallEnvironments()
{
    if (plant_->modesOfWhole() > mostModes) {
        return;
    }
    std::vector<std::size_t> modeNumber(plant_->variables().size());
    std::size_t modes = 0;
    for (std::size_t i = 0; i < modeNumber.size(); ++i) {
        modeNumber[i] = plant_->variables()[i].isMode ? modes++ : 0;
    }
    const std::size_t trial = plant_->atomCount();
    ModeSets environments(plant_->atomCount() + 1, modes);
    std::vector<bool> done(plant_->atomCount(), false);
    for (const AtomIndex atom : inOrder()) {
        const auto own = static_cast<std::size_t>(atom);
        const VariableIndex variable = plant_->variableOf(atom);
        if (reason(atom) == assumed) {
            if (plant_->variable(variable).isMode) {
                environments.insert(own, modeNumber[static_cast<std::size_t>(variable)]);
            }
            done[own] = true;
            continue;
        }
        int smallest = std::numeric_limits<int>::max();
        for (const ClauseIndex clause : plant_->clausesOf(atom)) {
            if (!gives(clause, atom, done)) {
                continue;
            }
            environments.clear(trial);
            Meter::spend(plant_->clause(clause).size() * (1 + modes / 64));
            for (const PlantLiteral& literal : plant_->clause(clause)) {
                if (literal.atom != atom) {
                    environments.unite(trial, static_cast<std::size_t>(literal.atom));
                }
            }
            if (const int size = environments.size(trial); size < smallest) {
                smallest = size;
                enter(atom, label(atom), clause);
                environments.copy(own, trial);
            }
        }
        done[own] = true;
    }
}

// Whether the clause alone gives the atom its label, from literals that are false and `done`.
bool Prediction::gives(ClauseIndex clause, AtomIndex atom, const std::vector<bool>& done) const
{
    const std::span<const PlantLiteral> literals = plant_->clause(clause);
    return std::all_of(literals.begin(), literals.end(), [&](const PlantLiteral& literal) {
        const bool holds = isTrue(literal.atom) != literal.negated;
        return literal.atom == atom ? holds : !holds && done[static_cast<std::size_t>(literal.atom)];
    });
}

// The atoms on whose labels those of the given ones rest, these included, each once.
std::vector<AtomIndex> Prediction::grounds(const std::vector<AtomIndex>& atoms) const
{
    std::vector<AtomIndex> reached;
    std::vector<bool> seen(plant_->atomCount(), false);
    const auto reach = [&](AtomIndex atom) {
        if (!seen[static_cast<std::size_t>(atom)] && isKnown(atom)) {
            seen[static_cast<std::size_t>(atom)] = true;
            reached.push_back(atom);
        }
    };
    std::for_each(atoms.begin(), atoms.end(), reach);
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reason(reached[i]) != assumed) {
            Meter::spend(plant_->clause(reason(reached[i])).size());
            for (const PlantLiteral& literal : plant_->clause(reason(reached[i]))) {
                reach(literal.atom);
            }
        }
    }
    return reached;
}

std::vector<VariableIndex> Prediction::assumptionsBehind(const std::vector<AtomIndex>& atoms) const
{
    std::vector<VariableIndex> variables;
    for (const AtomIndex atom : grounds(atoms)) {
        const VariableIndex variable = plant_->variableOf(atom);
        if (reason(atom) == assumed && !plant_->variable(variable).isCommand) {
            variables.push_back(variable);
        }
    }
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

std::vector<VariableIndex> Prediction::environment(const std::vector<AtomIndex>& atoms) const
{
    std::vector<VariableIndex> modes = assumptionsBehind(atoms);
    std::erase_if(modes, [&](VariableIndex variable) { return !plant_->variable(variable).isMode; });
    return modes;
}

std::vector<AtomIndex> Prediction::derivation(const std::vector<AtomIndex>& atoms) const
{
    if (shared_) {
        return behindTheirReasons(atoms);
    }
    std::vector<bool> needed(plant_->atomCount(), false);
    for (const AtomIndex atom : grounds(atoms)) {
        needed[static_cast<std::size_t>(atom)] = true;
    }
    Meter::spend(trail_.size());
    std::vector<AtomIndex> ordered;
    std::copy_if(trail_.begin(), trail_.end(), std::back_inserter(ordered),
                 [&](AtomIndex atom) { return needed[static_cast<std::size_t>(atom)]; });
    return ordered;
}

// Everything that is known, in an order in which reasons come before what they give.
std::vector<AtomIndex> Prediction::inOrder() const
{
    if (!shared_) {
        return trail_;
    }
    std::vector<AtomIndex> all(plant_->atomCount());
    std::iota(all.begin(), all.end(), 0);
    return behindTheirReasons(all);
}

// Those of the atoms that are known, with what their labels rest on: depth first, so that each comes after its reason.
std::vector<AtomIndex> Prediction::behindTheirReasons(const std::vector<AtomIndex>& atoms) const
{
    std::vector<AtomIndex> ordered;
    std::unordered_set<AtomIndex> seen;
    std::vector<std::pair<AtomIndex, std::size_t>> stack; // and how many literals of the reason were looked at
    for (const AtomIndex atom : atoms) {
        if (isKnown(atom) && seen.insert(atom).second) {
            stack.emplace_back(atom, 0);
        }
        while (!stack.empty()) {
            auto& [top, looked] = stack.back();
            if (reason(top) == assumed || looked == plant_->clause(reason(top)).size()) {
                ordered.push_back(top);
                stack.pop_back();
                continue;
            }
            Meter::spend(1);
            const AtomIndex needed = plant_->clause(reason(top))[looked++].atom;
            if (seen.insert(needed).second) {
                stack.emplace_back(needed, 0);
            }
        }
    }
    return ordered;
}

std::vector<bool> Prediction::dependents(const std::vector<bool>& markedVariables) const
{
    std::vector<bool> dependent(plant_->atomCount(), false);
    for (const AtomIndex atom : inOrder()) {
        const ClauseIndex reason = this->reason(atom);
        if (reason == assumed) {
            dependent[static_cast<std::size_t>(atom)] =
                markedVariables[static_cast<std::size_t>(plant_->variableOf(atom))];
            continue;
        }
        const std::span<const PlantLiteral> literals = plant_->clause(reason);
        Meter::spend(literals.size());
        dependent[static_cast<std::size_t>(atom)] =
            std::any_of(literals.begin(), literals.end(), [&](const PlantLiteral& literal) {
                return literal.atom != atom && dependent[static_cast<std::size_t>(literal.atom)];
            });
    }
    return dependent;
}

Prediction concluded(const Prediction& labels)
{
    Prediction drawn = labels;
    if (!drawn.propagate()) {
        return labels;
    }
    return drawn;
}

Prediction concludedFrom(const Plant& plant, const std::vector<AtomIndex>& values)
{
    Prediction assumed(plant);
    for (const AtomIndex value : values) {
        assumed.assume(value);
    }
    return concluded(assumed);
}

} // namespace monitor
