// Each clause is watched by two of its literals: only when one of them becomes false is the clause looked at. A literal that follows
// remembers its clause as its reason; a conflict blames the clauses behind it, and the search turns back to the last decision that
// has not been tried the other way.
#include "plant/Satisfiability.h"

#include <algorithm>
#include <utility>

namespace plant {

void Satisfiability::add(std::span<const Literal> literals, std::uint32_t origin)
{
    const auto number = static_cast<std::uint32_t>(clauses_.size());
    clauses_.push_back({static_cast<std::uint32_t>(literals_.size()), origin});
    literals_.insert(literals_.end(), literals.begin(), literals.end());
    after_.resize(2 * clauses_.size(), none);
    if (literals.empty()) {
        hasEmpty_ = true;
        clauses_.back().blamed = true;
    }
    if (literals.size() < 2) return;
    watch(literals[0], 2 * number);
    watch(literals[1], 2 * number + 1);
}

std::span<Satisfiability::Literal> Satisfiability::literalsOf(std::size_t clause)
{
    const std::size_t end =
        clause + 1 < clauses_.size() ? clauses_[clause + 1].begin : literals_.size();
    return std::span(literals_).subspan(clauses_[clause].begin, end - clauses_[clause].begin);
}

void Satisfiability::watch(Literal literal, std::uint32_t watch)
{
    Watchers& watchers = watchers_[literal];
    after_[watch] = none;
    (watchers.first == none ? watchers.first : after_[watchers.last]) = watch;
    watchers.last = watch;
}

Satisfiability::Value Satisfiability::value(Literal literal) const
{
    const Value of = values_[literal / 2];
    if (of == open || literal % 2 == 0) return of;
    return of == isTrue ? isFalse : isTrue;
}

void Satisfiability::assign(Literal literal, std::uint32_t reason)
{
    values_[literal / 2] = literal % 2 == 0 ? isTrue : isFalse;
    reasons_[literal / 2] = reason;
    trail_.push_back(literal);
}

Satisfiability::Answer Satisfiability::solve(std::size_t mostConflicts)
{
    if (hasEmpty_) return Answer::unsatisfiable;
    for (std::uint32_t i = 0; i < clauses_.size(); ++i) {
        if (literalsOf(i).size() != 1) continue;
        const Literal literal = literalsOf(i).front();
        if (value(literal) == open) assign(literal, i);
        if (value(literal) == isFalse) {
            blame(i);
            return Answer::unsatisfiable;
        }
    }
    std::size_t conflicts = 0;
    std::size_t next = 0;
    while (true) {
        const std::uint32_t violated = propagate();
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
        assign(static_cast<Literal>(2 * next), none);
    }
}

std::uint32_t Satisfiability::propagate()
{
    while (propagated_ < trail_.size()) {
        const std::uint32_t violated = propagate(trail_[propagated_++] ^ 1U);
        if (violated != none) return violated;
    }
    return none;
}

// The clauses that watch the literal find another one that is not false, or become unit.
std::uint32_t Satisfiability::propagate(Literal falsified)
{
    std::uint32_t next = std::exchange(watchers_[falsified], Watchers{}).first;
    std::uint32_t violated = none;
    while (next != none) {
        const std::uint32_t watch = std::exchange(next, after_[next]);
        if (violated == none) {
            if (watchAnother(watch, falsified)) continue;
            const Literal other = literalsOf(watch / 2)[0];
            if (value(other) == isFalse) {
                violated = watch / 2;
            } else if (value(other) == open) {
                assign(other, watch / 2);
            }
        }
        this->watch(falsified, watch);
    }
    return violated;
}

// The literal that is left goes to the second place. False when the clause holds, or has no other literal.
bool Satisfiability::watchAnother(std::uint32_t watch, Literal falsified)
{
    const std::span<Literal> literals = literalsOf(watch / 2);
    if (literals[0] == falsified) std::swap(literals[0], literals[1]);
    if (value(literals[0]) == isTrue) return false;
    const auto other = std::find_if(literals.begin() + 2, literals.end(),
                                    [&](Literal each) { return value(each) != isFalse; });
    if (other == literals.end()) return false;
    std::swap(literals[1], *other);
    this->watch(literals[1], watch);
    return true;
}

// The clauses that led to the conflict. What follows from the other branch of a decision rests on that branch's conflicts,
// which were blamed then.
void Satisfiability::blame(std::uint32_t clause)
{
    std::vector<std::uint32_t> open_{clause};
    std::vector<bool> visited(values_.size(), false);
    while (!open_.empty()) {
        const std::uint32_t blamed = open_.back();
        open_.pop_back();
        clauses_[blamed].blamed = true;
        for (const Literal literal : literalsOf(blamed)) {
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

std::vector<std::uint32_t> Satisfiability::core() const
{
    std::vector<std::uint32_t> origins;
    for (const Clause& clause : clauses_) {
        if (clause.blamed) origins.push_back(clause.origin);
    }
    std::sort(origins.begin(), origins.end());
    origins.erase(std::unique(origins.begin(), origins.end()), origins.end());
    return origins;
}

} // namespace plant
