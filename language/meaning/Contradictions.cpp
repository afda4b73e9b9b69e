#include "language/meaning/Contradictions.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace language {

namespace {

constexpr std::size_t mostConflicts = 2000;
constexpr std::size_t mostTold = 10;
constexpr std::size_t mostMinimized = 200;
constexpr std::size_t mostNamed = 6;

bool sameLaw(const LawOrigin& a, const LawOrigin& b)
{
    return a.range.file == b.range.file && a.range.line == b.range.line &&
           a.range.column == b.range.column;
}

void tell(const Contradiction& found, const std::vector<LawOrigin>& origins, Report& report)
{
    std::vector<LawOrigin> laws;
    for (const std::size_t law : found.laws) {
        if (std::none_of(laws.begin(), laws.end(),
                         [&](const LawOrigin& known) { return sameLaw(known, origins[law]); })) {
            laws.push_back(origins[law]);
        }
    }
    if (laws.empty()) return;
    std::stable_sort(laws.begin(), laws.end(), [](const LawOrigin& a, const LawOrigin& b) {
        return std::tie(a.range.file, a.range.line, a.range.column) <
               std::tie(b.range.file, b.range.line, b.range.column);
    });
    const LawOrigin& last = laws.back();
    std::string others;
    for (std::size_t i = 0; i + 1 < laws.size() && i < mostNamed; ++i) {
        others += (i == 0                 ? ""
                   : i + 2 == laws.size() ? " and "
                                          : ", ") +
                  report.where(laws[i].range, last.range);
    }
    if (laws.size() > mostNamed + 1) others += ", ...";
    const std::string where =
        last.instance->path.empty() ? "" : " in " + text::quoted(last.instance->path);
    const bool ofModes = !found.modes.empty();
    report.error(last.range,
                 "nothing satisfies this law" + where +
                     (others.empty()     ? ""
                      : laws.size() == 2 ? " together with the law at " + others
                                         : " together with the laws at " + others) +
                     (ofModes ? " while " + namesOf(found.modes) : ""),
                 "laws that can hold together" + std::string(ofModes ? " in the initial modes" : ""));
}

} // namespace

Contradictions::Contradictions(const plant::Model& model, SameLaw sameLaw)
    : model_(model), sameLaw_(std::move(sameLaw))
{
    for (const auto& atom : model.atoms()) {
        numbers_.insert({atom.get(), numbers_.size()});
    }
    for (const auto& component : model.components()) {
        for (const StateVar* variable : *component->stateVars) {
            variables_.push_back(variable);
            if (variable->type == "Mode" && variable->initial) {
                initials_.push_back(variable->initial);
            }
        }
    }
}

void Contradictions::find(const std::function<void(const Contradiction&)>& tell) const
{
    Origins all(model_.laws().size() + initials_.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    for (std::size_t told = 0; told < mostTold; ++told) {
        const auto core = conflict(all, mostConflicts);
        if (!core) return;
        const Origins least = minimal(*core);
        tell(contradiction(least));
        // Without the law that was told of, in all instances, there may be others.
        const auto last = std::find_if(least.rbegin(), least.rend(),
                                       [&](std::size_t origin) { return !isMode(origin); });
        if (last == least.rend()) return;
        std::erase_if(all, [&](std::size_t origin) {
            return !isMode(origin) && (origin == *last || sameLaw_(origin, *last));
        });
    }
}

std::optional<Contradictions::Origins> Contradictions::conflict(const Origins& within,
                                                                std::size_t budget) const
{
    plant::Satisfiability solver(numbers_.size());
    std::vector<plant::Satisfiability::Literal> literals;
    const auto add = [&](const Clause& clause, std::size_t origin) {
        literals.clear();
        for (const auto& [negated, atom] : *clause.literals) {
            literals.push_back(2 * numbers_.at(atom) + (negated ? 1U : 0U));
        }
        solver.add(literals, origin);
    };
    std::unordered_set<const StateVar*> needed;
    for (const std::size_t origin : within) {
        if (isMode(origin)) {
            const Atom* initial = initials_[origin - model_.laws().size()];
            solver.add({2 * numbers_.at(initial)}, origin);
            needed.insert(initial->stateVar);
            continue;
        }
        add(*model_.laws()[origin], origin);
        for (const auto& [negated, atom] : *model_.laws()[origin]->literals) {
            needed.insert(atom->stateVar);
        }
    }
    // In the order of the model: what is found must not depend on addresses.
    for (const StateVar* variable : variables_) {
        if (!needed.contains(variable)) continue;
        for (const Clause* clause : *variable->clauses) {
            add(*clause, domain);
        }
    }
    if (solver.solve(budget) != plant::Satisfiability::Answer::unsatisfiable) return std::nullopt;
    Origins core = solver.core();
    std::erase(core, domain);
    return core;
}

// Modes are tried first: laws that contradict each other in any mode are told without one.
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
        if (isMode(origin)) {
            found.modes.push_back(initials_[origin - model_.laws().size()]);
        } else {
            found.laws.push_back(origin);
        }
    }
    return found;
}

std::string namesOf(const std::vector<const Atom*>& modes)
{
    std::string names;
    for (std::size_t i = 0; i < modes.size() && i < mostNamed; ++i) {
        names += (i > 0 ? ", " : "") + modes[i]->id;
    }
    return modes.size() > mostNamed ? names + ", ..." : names;
}

void reportContradictions(const plant::Model& model, const std::vector<LawOrigin>& origins,
                          Report& report)
{
    const auto same = [&](std::size_t a, std::size_t b) { return sameLaw(origins[a], origins[b]); };
    Contradictions(model, same).find([&](const Contradiction& found) {
        tell(found, origins, report);
    });
}

} // namespace language
