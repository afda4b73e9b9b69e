// Unit resolution over the model's clauses until nothing changes, then a split on the first literal that is open. Every literal
// that is looked at is counted against the bound.
#include "monitor/why/ConflictCheck.h"

#include <algorithm>
#include <unordered_map>

namespace monitor {

namespace {

// A literal without a sign in a clause that no other literal makes hold.
struct OpenLiteral {
    const Atom* atom = nullptr;
    bool holds = false;
};

class Check {
public:
    Check(const std::vector<const Clause*>& clauses, std::uint64_t literals)
        : clauses_(clauses), left_(literals)
    {
    }

    // The variable has this value and no other. False when it has another one.
    bool assume(const Atom* value)
    {
        for (const Atom* atom : *value->stateVar->atomLinks) {
            const auto known = signs_.find(atom);
            if (known == signs_.end()) {
                set(atom, atom == value);
            } else if (known->second != (atom == value)) {
                return false;
            }
        }
        return true;
    }

    ConflictCheck run()
    {
        if (!resolve()) return ConflictCheck::confirmed;
        const OpenLiteral open = undecided();
        if (left_ == 0) return ConflictCheck::unsettled;
        if (!open.atom) return ConflictCheck::refuted;
        const std::size_t mark = order_.size();
        for (const bool holds : {open.holds, !open.holds}) {
            set(open.atom, holds);
            const ConflictCheck outcome = run();
            if (outcome != ConflictCheck::confirmed) return outcome;
            takeBack(mark);
        }
        return ConflictCheck::confirmed;
    }
    std::uint64_t left() const { return left_; }

private:
    enum class Outcome { nothing, given, violated };

    void set(const Atom* atom, bool holds)
    {
        signs_.emplace(atom, holds);
        order_.push_back(atom);
    }
    void takeBack(std::size_t mark)
    {
        for (; order_.size() > mark; order_.pop_back()) {
            signs_.erase(order_.back());
        }
    }
    void spend(std::uint64_t literals) { left_ -= std::min(left_, literals); }

    // False when a clause is violated.
    bool resolve()
    {
        for (bool changed = true; changed && left_ > 0;) {
            changed = false;
            for (const Clause* clause : clauses_) {
                const Outcome outcome = apply(*clause);
                if (outcome == Outcome::violated) return false;
                changed = changed || outcome == Outcome::given;
            }
        }
        return true;
    }

    // A clause whose literals are false but for one that is open gives this one.
    Outcome apply(const Clause& clause)
    {
        OpenLiteral open;
        spend(clause.literals->size());
        for (const auto& [negated, atom] : *clause.literals) {
            const auto known = signs_.find(atom);
            if (known != signs_.end()) {
                if (known->second != negated) return Outcome::nothing;
            } else if (!open.atom) {
                open = {atom, !negated};
            } else if (open.atom != atom || open.holds == negated) {
                return Outcome::nothing;
            }
        }
        if (!open.atom) return Outcome::violated;
        set(open.atom, open.holds);
        return Outcome::given;
    }

    // No atom when all clauses hold.
    OpenLiteral undecided()
    {
        for (const Clause* clause : clauses_) {
            OpenLiteral open;
            bool holds = false;
            spend(clause->literals->size());
            for (const auto& [negated, atom] : *clause->literals) {
                const auto known = signs_.find(atom);
                if (known == signs_.end()) {
                    open = {atom, !negated};
                } else {
                    holds = holds || known->second != negated;
                }
            }
            if (open.atom && !holds) return open;
        }
        return {};
    }

    const std::vector<const Clause*>& clauses_;
    std::unordered_map<const Atom*, bool> signs_;
    std::vector<const Atom*> order_; ///< of the signs
    std::uint64_t left_;             ///< literals that may still be looked at
};

ConflictCheck check(const ConflictClaim& claim, std::uint64_t& literals)
{
    Check check(claim.clauses, literals);
    for (const Atom* value : claim.values) {
        if (!check.assume(value)) return ConflictCheck::confirmed;
    }
    const ConflictCheck outcome = check.run();
    literals = check.left();
    return outcome;
}

} // namespace

const char* name(ConflictCheck outcome)
{
    switch (outcome) {
    case ConflictCheck::confirmed: return "confirmed";
    case ConflictCheck::refuted: return "refuted";
    case ConflictCheck::unsettled: break;
    }
    return "unsettled";
}

ConflictCheck checkConflict(const ConflictClaim& claim, std::uint64_t literals)
{
    return check(claim, literals);
}

std::optional<bool> everyValueCounts(const ConflictClaim& claim, std::uint64_t literals)
{
    for (std::size_t i = 0; i < claim.values.size(); ++i) {
        ConflictClaim less = claim;
        less.values.erase(less.values.begin() + static_cast<std::ptrdiff_t>(i));
        const ConflictCheck outcome = check(less, literals);
        if (outcome == ConflictCheck::unsettled) return {};
        if (outcome == ConflictCheck::confirmed) return false;
    }
    return true;
}

} // namespace monitor
