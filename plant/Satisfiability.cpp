// Each clause is watched by two of its literals: only when one of them becomes false is the clause looked at. A literal that follows
// remembers its clause as its reason; a conflict blames the clauses behind it, and the search turns back to the last decision that
// has not been tried the other way.
#include "plant/Satisfiability.h"

#include <algorithm>

namespace plant {

void Satisfiability::add(const std::vector<Literal>& literals, std::size_t origin)
{
    const std::size_t number = clauses_.size();
    clauses_.push_back({literals, origin, false});
    if (literals.empty()) {
        hasEmpty_ = true;
        clauses_.back().blamed = true;
    }
    if (literals.size() < 2) return;
    watchers_[literals[0]].push_back(number);
    watchers_[literals[1]].push_back(number);
}

Satisfiability::Value Satisfiability::value(Literal literal) const
{
    const Value of = values_[literal / 2];
    if (of == open || literal % 2 == 0) return of;
    return of == isTrue ? isFalse : isTrue;
}

void Satisfiability::assign(Literal literal, std::size_t reason)
{
    values_[literal / 2] = literal % 2 == 0 ? isTrue : isFalse;
    reasons_[literal / 2] = reason;
    trail_.push_back(literal);
}

Satisfiability::Answer Satisfiability::solve(std::size_t mostConflicts)
{
    if (hasEmpty_) return Answer::unsatisfiable;
    for (std::size_t i = 0; i < clauses_.size(); ++i) {
        if (clauses_[i].literals.size() != 1) continue;
        const Literal literal = clauses_[i].literals.front();
        if (value(literal) == open) assign(literal, i);
        if (value(literal) == isFalse) {
            blame(i);
            return Answer::unsatisfiable;
        }
    }
    std::size_t conflicts = 0;
    std::size_t next = 0;
    while (true) {
        const std::size_t violated = propagate();
        if (violated != none) {
            blame(violated);
            if (++conflicts > mostConflicts) return Answer::unknown;
            if (!turnBack()) return Answer::unsatisfiable;
            next = 0;
            continue;
        }
        while (next < values_.size() && values_[next] != open) {
            ++next;
        }
        if (next == values_.size()) return Answer::satisfiable;
        decisions_.push_back(trail_.size());
        assign(2 * next, none);
    }
}

std::size_t Satisfiability::propagate()
{
    while (propagated_ < trail_.size()) {
        const std::size_t violated = propagate(trail_[propagated_++] ^ 1U);
        if (violated != none) return violated;
    }
    return none;
}

// The clauses that watch the literal find another one that is not false, or become unit.
std::size_t Satisfiability::propagate(Literal falsified)
{
    std::vector<std::size_t>& watching = watchers_[falsified];
    std::size_t kept = 0;
    std::size_t violated = none;
    for (std::size_t i = 0; i < watching.size(); ++i) {
        const std::size_t number = watching[i];
        std::vector<Literal>& literals = clauses_[number].literals;
        if (literals[0] == falsified) std::swap(literals[0], literals[1]);
        if (violated == none && value(literals[0]) != isTrue) {
            const auto other = std::find_if(literals.begin() + 2, literals.end(),
                                            [&](Literal each) { return value(each) != isFalse; });
            if (other != literals.end()) {
                std::swap(literals[1], *other);
                watchers_[literals[1]].push_back(number);
                continue;
            }
            if (value(literals[0]) == isFalse) {
                violated = number;
            } else {
                assign(literals[0], number);
            }
        }
        watching[kept++] = number;
    }
    watching.resize(kept);
    return violated;
}

// The clauses that led to the conflict. What follows from the other branch of a decision rests on that branch's conflicts,
// which were blamed then.
void Satisfiability::blame(std::size_t clause)
{
    std::vector<std::size_t> open_{clause};
    std::vector<bool> visited(values_.size(), false);
    while (!open_.empty()) {
        Clause& blamed = clauses_[open_.back()];
        open_.pop_back();
        blamed.blamed = true;
        for (const Literal literal : blamed.literals) {
            const std::size_t variable = literal / 2;
            if (visited[variable]) continue;
            visited[variable] = true;
            if (values_[variable] != open && reasons_[variable] != none) {
                open_.push_back(reasons_[variable]);
            }
        }
    }
}

bool Satisfiability::turnBack()
{
    if (decisions_.empty()) return false;
    const std::size_t place = decisions_.back();
    decisions_.pop_back();
    const Literal decision = trail_[place];
    for (std::size_t i = place; i < trail_.size(); ++i) {
        values_[trail_[i] / 2] = open;
    }
    trail_.resize(place);
    propagated_ = place;
    assign(decision ^ 1U, none);
    return true;
}

std::vector<std::size_t> Satisfiability::core() const
{
    std::vector<std::size_t> origins;
    for (const Clause& clause : clauses_) {
        if (clause.blamed) origins.push_back(clause.origin);
    }
    std::sort(origins.begin(), origins.end());
    origins.erase(std::unique(origins.begin(), origins.end()), origins.end());
    return origins;
}

} // namespace plant
