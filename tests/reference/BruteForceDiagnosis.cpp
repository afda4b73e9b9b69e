#include "tests/reference/BruteForceDiagnosis.h"

#include "model/Comp.h"
#include "model/DataManager.h"
#include "model/StateFormula.h"
#include "model/Transition.h"

#include <algorithm>
#include <functional>

std::vector<const StateVar*> allVariables(const std::string& type)
{
    std::vector<const StateVar*> variables;
    for (const auto& [name, comp] : *DataManager::active_comps) {
        for (const StateVar* variable : *comp->stateVars) {
            if (type.empty() || variable->type == type) {
                variables.push_back(variable);
            }
        }
    }
    return variables;
}

std::vector<const Clause*> allClauses()
{
    std::vector<const Clause*> clauses;
    for (const StateVar* variable : allVariables()) {
        clauses.insert(clauses.end(), variable->clauses->begin(), variable->clauses->end());
    }
    clauses.insert(clauses.end(), DataManager::cls->begin(), DataManager::cls->end());
    return clauses;
}

namespace {

bool contains(const std::vector<const Atom*>& atoms, const Atom* atom)
{
    return std::find(atoms.begin(), atoms.end(), atom) != atoms.end();
}

const Atom* valueAmong(const StateVar* variable, const std::vector<const Atom*>& atoms)
{
    for (const Atom* atom : *variable->atomLinks) {
        if (contains(atoms, atom)) {
            return atom;
        }
    }
    return nullptr;
}

bool label(AtomLabels& labels, const Atom* atom, bool value)
{
    return labels.emplace(atom, value).first->second == value;
}

// A search for values of all variables: numbers instead of pointers, otherwise as plain as can be.
class Worlds {
public:
    Worlds(const std::vector<const Atom*>& given, std::size_t turn)
        : variables_(allVariables()), turn_(turn)
    {
        for (const StateVar* variable : variables_) {
            for (const Atom* atom : *variable->atomLinks) {
                number_.emplace(atom, labels_.size());
                labels_.push_back(0);
            }
        }
        for (const Clause* clause : allClauses()) {
            auto& literals = clauses_.emplace_back();
            for (const auto& [negated, atom] : *clause->literals) {
                literals.emplace_back(number_.at(atom), negated ? -1 : 1);
            }
        }
        const auto isGiven = [&](const StateVar* variable) { return valueAmong(variable, given); };
        std::stable_partition(variables_.begin(), variables_.end(), isGiven);
        for (const StateVar* variable : variables_) {
            std::vector<const Atom*>& values = choices_.emplace_back();
            for (const Atom* atom : *variable->atomLinks) {
                if (!isGiven(variable) || contains(given, atom)) {
                    values.push_back(atom);
                }
            }
        }
    }

    std::optional<std::vector<const Atom*>> find()
    {
        return assign(0) ? std::optional(chosen_) : std::nullopt;
    }

    // The combinations of values of these variables for which there is a world. Requires that find() was not called.
    std::uint32_t count(const std::vector<const StateVar*>& counted)
    {
        const auto toFront = [this](std::size_t begin, auto&& wanted) {
            for (std::size_t i = begin; i < variables_.size(); ++i) {
                if (wanted(i)) {
                    std::swap(variables_[i], variables_[begin]);
                    std::swap(choices_[i], choices_[begin]);
                    ++begin;
                }
            }
            return begin;
        };
        const std::size_t first =
            toFront(0, [this](std::size_t i) { return choices_[i].size() == 1; });
        const std::size_t last = toFront(first, [&](std::size_t i) {
            return std::find(counted.begin(), counted.end(), variables_[i]) != counted.end();
        });
        for (std::size_t i = 0; i < first; ++i) {
            write(i, choices_[i].front());
        }
        return countFrom(first, last);
    }

private:
    std::uint32_t countFrom(std::size_t index, std::size_t last)
    {
        if (index == last) {
            const bool possible = assign(index);
            for (std::size_t i = index; i < variables_.size(); ++i) {
                write(i, nullptr);
            }
            return possible ? 1 : 0;
        }
        std::uint32_t sum = 0;
        for (const Atom* value : choices_[index]) {
            write(index, value);
            sum += violated() ? 0 : countFrom(index + 1, last);
        }
        write(index, nullptr);
        return sum;
    }

    bool assign(std::size_t index)
    {
        if (violated()) {
            return false;
        }
        if (index == variables_.size()) {
            return true;
        }
        const std::vector<const Atom*>& values = choices_[index];
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Atom* value = values[(i + turn_ * (index + 1)) % values.size()];
            write(index, value);
            chosen_.push_back(value);
            if (assign(index + 1)) {
                return true;
            }
            chosen_.pop_back();
            write(index, nullptr);
        }
        return false;
    }

    void write(std::size_t index, const Atom* value)
    {
        for (const Atom* atom : *variables_[index]->atomLinks) {
            labels_[number_.at(atom)] = !value ? 0 : atom == value ? 1 : -1;
        }
    }

    bool violated() const
    {
        return std::any_of(clauses_.begin(), clauses_.end(), [&](const auto& literals) {
            return std::all_of(literals.begin(), literals.end(), [&](const auto& literal) {
                return labels_[literal.first] == -literal.second;
            });
        });
    }

    std::vector<const StateVar*> variables_;
    std::size_t turn_;
    std::map<const Atom*, std::size_t> number_;
    std::vector<int> labels_;
    std::vector<std::vector<std::pair<std::size_t, int>>> clauses_;
    std::vector<std::vector<const Atom*>> choices_;
    std::vector<const Atom*> chosen_;
};

} // namespace

std::optional<std::vector<const Atom*>> BruteForceDiagnosis::world(
    const std::vector<const Atom*>& given, std::size_t turn)
{
    // Two values of one variable: valueAmong finds the first, so the other one is found out.
    for (const Atom* atom : given) {
        if (valueAmong(atom->stateVar, given) != atom) {
            return std::nullopt;
        }
    }
    return Worlds(given, turn).find();
}

std::optional<AtomLabels> BruteForceDiagnosis::consequences(const std::vector<const Atom*>& given)
{
    AtomLabels labels;
    for (const Atom* value : given) {
        for (const Atom* atom : *value->stateVar->atomLinks) {
            if (!label(labels, atom, atom == value)) {
                return std::nullopt;
            }
        }
    }
    return consequences(std::move(labels));
}

std::optional<AtomLabels> BruteForceDiagnosis::consequences(AtomLabels labels)
{
    const std::vector<const Clause*> clauses = allClauses();
    for (bool changed = true; changed;) {
        changed = false;
        for (const Clause* clause : clauses) {
            bool holds = false;
            std::vector<std::pair<bool, const Atom*>> open;
            for (const auto& [negated, atom] : *clause->literals) {
                const auto known = labels.find(atom);
                if (known == labels.end()) {
                    open.emplace_back(negated, atom);
                } else {
                    holds = holds || known->second != negated;
                }
            }
            if (!holds && open.empty()) {
                return std::nullopt;
            }
            if (!holds && open.size() == 1) {
                labels.emplace(open.front().second, !open.front().first);
                changed = true;
            }
        }
    }
    return labels;
}

BruteForceDiagnosis::BruteForceDiagnosis(DiagnosisProblem problem)
    : problem_(std::move(problem)), modes_(allVariables("Mode"))
{
    for (const StateVar* mode : modes_) {
        findChances(mode);
    }
}

// Of the values that the commands may have that are not given, how many make the guard hold.
Fraction BruteForceDiagnosis::share(const Transition* transition) const
{
    const SignedAtoms& guard = *transition->guard->atoms;
    std::vector<std::vector<const Atom*>> combinations{problem_.before};
    for (const StateVar* command : allVariables("Command")) {
        const Atom* given = valueAmong(command, problem_.commands);
        std::vector<std::vector<const Atom*>> more;
        for (const std::vector<const Atom*>& combination : combinations) {
            for (const Atom* value : *command->atomLinks) {
                if (!given || value == given) {
                    more.push_back(combination);
                    more.back().push_back(value);
                }
            }
        }
        combinations = std::move(more);
    }
    const auto holding =
        std::count_if(combinations.begin(), combinations.end(), [&](const auto& combination) {
            const auto holds = [&](const auto& literal) {
                return literal.first == contains(combination, literal.second);
            };
            return transition->guard->op == "or" ? std::any_of(guard.begin(), guard.end(), holds)
                                                 : std::all_of(guard.begin(), guard.end(), holds);
        });
    return {holding, static_cast<std::int64_t>(combinations.size())};
}

// Follows the most probable nominal transition that is enabled where staying is not more probable, else stays. What the enabled
// transitions leave of 1 is the probability of staying; where that is nothing and none is nominal, the most probable value is
// predicted.
void BruteForceDiagnosis::findChances(const StateVar* mode)
{
    const Atom* from = valueAmong(mode, problem_.before);
    std::map<const Atom*, ModeChance>& chances = chances_[mode];
    const Atom* nominal = nullptr;
    double ofNominal = 0.0;
    Fraction staying(1);
    for (const Transition* transition : *mode->comp->transitions) {
        if (transition->stateVar != mode || transition->atom == from || transition->proba == 0.0) {
            continue;
        }
        const Fraction probability = Fraction::ofDyadic(transition->proba) * share(transition);
        if (probability == Fraction(0)) {
            continue;
        }
        ModeChance& chance = chances[transition->atom];
        chance.probability = chance.probability + probability;
        chance.fault = transition->atom->fail;
        staying = staying - probability;
        if (transition->name == "Nominal" && probability.value() > ofNominal) {
            nominal = transition->atom;
            ofNominal = probability.value();
        }
    }
    if (staying.value() > 0.0) {
        chances[from] = {staying, false};
    }
    const bool rather = nominal && staying.value() > chances[nominal].probability.value() + 1e-9;
    predicted_[mode] = nominal && !rather ? nominal : from;
    if (!nominal && staying.value() <= 0.0) {
        for (const auto& [value, chance] : chances) {
            const Atom*& best = predicted_[mode];
            if (best == from || chance.probability.value() > chances[best].probability.value()) {
                best = value;
            }
        }
    }
}

std::uint32_t BruteForceDiagnosis::combinations(const std::vector<const Atom*>& given,
                                                const std::vector<const StateVar*>& variables)
{
    const std::optional<AtomLabels> labels = consequences(given);
    if (!labels) {
        return 0;
    }
    // What follows need not be tried.
    std::vector<const Atom*> known;
    for (const auto& [atom, holds] : *labels) {
        if (holds) {
            known.push_back(atom);
        }
    }
    return Worlds(known, 0).count(variables);
}

// Where the laws allow the modes and the observations together, they are one of the combinations.
Fraction BruteForceDiagnosis::likelihood(const std::vector<const Atom*>& given) const
{
    std::vector<const StateVar*> observed;
    for (const Atom* value : problem_.observations) {
        observed.push_back(value->stateVar);
    }
    const std::uint32_t number = combinations(given, observed);
    return number == 0 ? Fraction(0) : Fraction(1, number);
}

std::vector<BruteExplanation> BruteForceDiagnosis::explanations() const
{
    std::vector<BruteExplanation> found;
    std::vector<const Atom*> chosen;
    const std::function<void(std::size_t, int, Fraction)> choose = [&](std::size_t index,
                                                                       int faults, Fraction prior) {
        if (faults > problem_.maxFaults) {
            return;
        }
        if (index < modes_.size()) {
            for (const auto& [value, chance] : chances_.at(modes_[index])) {
                const bool isFault = chance.fault && value != predicted_.at(modes_[index]);
                chosen.push_back(value);
                choose(index + 1, faults + (isFault ? 1 : 0), prior * chance.probability);
                chosen.pop_back();
            }
            return;
        }
        std::vector<const Atom*> given = chosen;
        given.insert(given.end(), problem_.commands.begin(), problem_.commands.end());
        std::vector<const Atom*> all = given;
        all.insert(all.end(), problem_.observations.begin(), problem_.observations.end());
        if (!world(all)) {
            return;
        }
        BruteExplanation explanation{{}, faults, prior * likelihood(given)};
        for (const Atom* value : chosen) {
            if (value != predicted_.at(value->stateVar)) {
                explanation.modes.insert(value->id);
            }
        }
        found.push_back(std::move(explanation));
    };
    choose(0, 0, 1);
    return found;
}

std::vector<BruteExplanation> BruteForceDiagnosis::minimal(const std::vector<BruteExplanation>& all)
{
    std::vector<BruteExplanation> result;
    for (const BruteExplanation& one : all) {
        const bool containsAnother =
            std::any_of(all.begin(), all.end(), [&](const BruteExplanation& other) {
                return other.modes != one.modes &&
                       std::includes(one.modes.begin(), one.modes.end(), other.modes.begin(),
                                     other.modes.end());
            });
        if (!containsAnother) {
            result.push_back(one);
        }
    }
    return result;
}
