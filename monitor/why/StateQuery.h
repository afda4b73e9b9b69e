// Whether a formula holds after a step, as a hypothesis has it.
//
// The labels of the hypothesis are put into a trajectory, and itms::evalStateFormula evaluates the formula there, clause by
// clause. It knows two answers, and takes what is not known to be true for false. So the trajectory has two steps: in the first
// an atom that the hypothesis leaves open does not hold, in the second it does. `a | !b` is certain when `a` holds in the first
// or `!b` in the second, and possible when `a` holds in the second or `!b` in the first. A formula that is certain is true, one
// that is not possible is false, and any other is open: the three values of S. C. Kleene, "On notation for ordinal numbers",
// The Journal of Symbolic Logic 3 (1938). An open formula may still follow from the laws.
#pragma once

#include "engine/itms.h"
#include "language/meaning/FormulaReader.h"
#include "monitor/track/Tracker.h"

#include <memory>

namespace monitor {

enum class Truth { isTrue, isFalse, open };

/// "true", "false", "unknown".
const char* name(Truth truth);

/// What the kept hypotheses say of a formula.
struct QueryAnswer {
    Truth best = Truth::open;     ///< in the most probable one
    double probability = 0.0;     ///< of those in which it is true, 0..1
    double openProbability = 0.0; ///< of those that leave it open, 0..1
};

/// A formula that is asked at one step after the other.
class StateQuery {
public:
    /// Engine, plant and the formula's atoms outlive it.
    StateQuery(itms& engine, const Plant& plant, const language::FormulaClauses& formula);

    /// Linear in the formula.
    Truth evaluate(const Hypothesis& hypothesis);
    /// Over the hypotheses of an answer.
    QueryAnswer evaluate(const TrackAnswer& answer);

private:
    // The literals of a clause that are not negated, and those that are.
    struct Clause {
        std::unique_ptr<StateFormula> holding;
        std::unique_ptr<StateFormula> denied;
    };

    void enter(Atom* atom);
    void label(const Hypothesis& hypothesis);
    bool certain(const Clause& clause);
    bool possible(const Clause& clause);

    itms& engine_;
    const Plant& plant_;
    bool negated_;
    std::vector<Clause> clauses_;
    Trajectory trajectory_;
    std::vector<Atom*> atoms_;
};

} // namespace monitor
