// Whether a formula holds after a step, as a hypothesis has it.
//
// The formula is a conjunction of clauses, and each of its atoms is true, false or open in the hypothesis. A clause is true when
// one of its literals is, false when all are, and open otherwise; the formula is false when one of its clauses is, true when all
// are, and open otherwise. These are the strong three-valued connectives ("On notation for ordinal numbers", The Journal of
// Symbolic Logic 3, 1938). An open formula may still follow from the laws.
#pragma once

#include "language/meaning/FormulaReader.h"
#include "monitor/track/Tracker.h"

#include <vector>

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
    /// Requires a formula over the plant's model. The plant outlives the query. Linear in the formula.
    StateQuery(const Plant& plant, const language::FormulaClauses& formula);

    /// Linear in the formula.
    Truth evaluate(const Hypothesis& hypothesis) const;
    /// Over the hypotheses of an answer. "Unknown" and probabilities of 0 for an answer without any.
    QueryAnswer evaluate(const TrackAnswer& answer) const;

private:
    bool negated_; ///< the clauses say that the formula does not hold
    std::vector<std::vector<PlantLiteral>> clauses_;
};

} // namespace monitor
