// The laws, the domains of the variables that they mention and the initial values go to a satisfiability search. What it finds to be
// contradictory is made minimal by leaving out one law or value after the other and asking again.
#include "plant/Contradictions.h"

#include "plant/Satisfiability.h"
#include "text/Wording.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace plant {

namespace {

constexpr std::size_t mostConflicts = 2000;
constexpr std::size_t mostReported = 10;
constexpr std::size_t mostMinimized = 200;
constexpr std::size_t mostNamed = 6;

using LawPlaces = std::function<WrittenLaw(std::size_t)>;

// What cannot hold together. Both lists are in the order of the model.
struct Contradiction {
    std::vector<std::size_t> laws;     // indices in Model::laws
    std::vector<const Atom*> initials; // values that are needed for it
};

class Contradictions {
public:
    Contradictions(const Model& model, const LawPlaces& written);

    void find(const std::function<void(const Contradiction&)>& report) const;

private:
    static constexpr std::uint32_t domain = static_cast<std::uint32_t>(-1);
    using Origins = std::vector<std::size_t>; // indices of laws, then of initial values

    std::optional<Origins> conflict(const Origins& within, std::size_t budget) const;
    static void addDomain(const StateVar& variable, Satisfiability& solver);
    static std::uint32_t originOf(std::size_t origin) { return static_cast<std::uint32_t>(origin); }
    Origins minimal(Origins core) const;
    Contradiction contradiction(const Origins& core) const;
    bool isInitial(std::size_t origin) const { return origin >= model_.lawCount(); }

    const Model& model_;
    const LawPlaces& written_;
    std::vector<const StateVar*> variables_;
    std::vector<Atom*> initials_;           // of modes and conditions
    std::vector<std::uint32_t> variableOf_; // by the number of an atom: a place in `variables_`
};

Contradictions::Contradictions(const Model& model, const LawPlaces& written)
    : model_(model), written_(written), variableOf_(model.atoms().size())
{
    for (const Comp* component : model.components()) {
        for (const StateVar* variable : *component->stateVars) {
            for (const Atom* value : *variable->atomLinks) {
                variableOf_[value->number] = static_cast<std::uint32_t>(variables_.size());
            }
            variables_.push_back(variable);
            if (variable->type != "Command" && variable->initial) {
                initials_.push_back(variable->initial);
            }
        }
    }
}

void Contradictions::find(const std::function<void(const Contradiction&)>& report) const
{
    Origins all(model_.lawCount() + initials_.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    for (std::size_t reported = 0; reported < mostReported; ++reported) {
        const auto core = conflict(all, mostConflicts);
        if (!core) return;
        const Origins least = minimal(*core);
        report(contradiction(least));
        // Without the law that was reported, in all instances, there may be others.
        const auto last = std::find_if(least.rbegin(), least.rend(),
                                       [&](std::size_t origin) { return !isInitial(origin); });
        if (last == least.rend()) return;
        const PlaceHandle at = written_(*last).at;
        std::erase_if(all, [&](std::size_t origin) {
            return !isInitial(origin) && (origin == *last || written_(origin).at == at);
        });
    }
}

std::optional<Contradictions::Origins> Contradictions::conflict(const Origins& within,
                                                                std::size_t budget) const
{
    Satisfiability solver(model_.atoms().size());
    std::vector<SignedNumber> literals;
    std::vector<bool> needed(variables_.size());
    for (const std::size_t origin : within) {
        if (isInitial(origin)) {
            const Atom* initial = initials_[origin - model_.lawCount()];
            solver.add(std::array{signedNumber(initial->number, false)}, originOf(origin));
            needed[variableOf_[initial->number]] = true;
            continue;
        }
        const auto law = model_.signedLiteralsOf(origin);
        literals.assign(law.begin(), law.end());
        sortAsListed(literals);
        solver.add(literals, originOf(origin));
        for (const SignedNumber literal : literals) {
            needed[variableOf_[literal / 2]] = true;
        }
    }
    // In the order of the model: what is found must not depend on addresses.
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        if (needed[i]) addDomain(*variables_[i], solver);
    }
    if (solver.solve(budget) != Satisfiability::Answer::unsatisfiable) return std::nullopt;
    Origins core;
    for (const std::uint32_t origin : solver.core()) {
        if (origin != domain) core.push_back(origin);
    }
    return core;
}

// That the variable has exactly one value.
void Contradictions::addDomain(const StateVar& variable, Satisfiability& solver)
{
    std::vector<SignedNumber> values;
    for (const Atom* value : *variable.atomLinks) {
        values.push_back(signedNumber(value->number, false));
    }
    std::vector<SignedNumber> some = values;
    sortAsListed(some);
    solver.add(some, domain);
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i + 1; j < values.size(); ++j) {
            solver.add(std::array{values[j] | 1U, values[i] | 1U}, domain); // as listed
        }
    }
}

// Initial values are tried first: laws that contradict each other anyway are reported without one.
Contradictions::Origins Contradictions::minimal(Origins core) const
{
    if (core.size() > mostMinimized) return core;
    const Origins tried(core.rbegin(), core.rend());
    for (const std::size_t origin : tried) {
        Origins rest = core;
        if (std::erase(rest, origin) == 0) continue;
        if (const auto smaller = conflict(rest, mostConflicts)) core = *smaller;
    }
    return core;
}

Contradiction Contradictions::contradiction(const Origins& core) const
{
    Contradiction found;
    for (const std::size_t origin : core) {
        if (isInitial(origin)) {
            found.initials.push_back(initials_[origin - model_.lawCount()]);
        } else {
            found.laws.push_back(origin);
        }
    }
    return found;
}

std::string namesOf(const std::vector<const Atom*>& values)
{
    std::vector<std::string_view> names;
    for (const Atom* value : values) {
        names.emplace_back(value->id);
    }
    return text::enumerated(names, mostNamed);
}

// The laws other than the last one, as the front end speaks of places.
std::string othersOf(const std::vector<WrittenLaw>& laws)
{
    if (laws.size() < 2) return "";
    const PlaceHandle& last = laws.back().at;
    const Words& words = last.words();
    std::string others(" together with ");
    others += laws.size() == 2 ? words.law : words.laws;
    for (std::size_t i = 0; i + 1 < laws.size() && i < mostNamed; ++i) {
        if (i > 0) others += i + 2 == laws.size() ? words.lastLaw : ", ";
        others += laws[i].at.seenFrom(last);
    }
    return laws.size() > mostNamed + 1 ? others + ", ..." : others;
}

void report(const Contradiction& found, const LawPlaces& written)
{
    std::vector<WrittenLaw> laws;
    for (const std::size_t law : found.laws) {
        const WrittenLaw place = written(law);
        if (std::none_of(laws.begin(), laws.end(),
                         [&](const WrittenLaw& known) { return known.at == place.at; })) {
            laws.push_back(place);
        }
    }
    if (laws.empty()) return;
    std::stable_sort(laws.begin(), laws.end(),
                     [](const WrittenLaw& a, const WrittenLaw& b) { return a.at < b.at; });
    const WrittenLaw& last = laws.back();
    const std::string where = last.instance.empty() ? "" : " in " + text::quoted(last.instance);
    const bool allModes =
        std::all_of(found.initials.begin(), found.initials.end(),
                    [](const Atom* value) { return value->stateVar->type == "Mode"; });
    const std::string expected = found.initials.empty() ? ""
                                 : allModes             ? " in the initial modes"
                                                        : " with the initial values";
    last.at.report("nothing satisfies this law" + where + othersOf(laws) +
                       (found.initials.empty() ? "" : " while " + namesOf(found.initials)),
                   "laws that can hold together" + expected);
}

} // namespace

void reportContradictions(const Model& model, const LawPlaces& written)
{
    Contradictions(model, written).find([&](const Contradiction& found) { report(found, written); });
}

} // namespace plant
