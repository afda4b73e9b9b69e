#include "monitor/why/StateQuery.h"

#include <algorithm>

namespace monitor {

namespace {

Truth negation(Truth truth)
{
    switch (truth) {
    case Truth::isTrue: return Truth::isFalse;
    case Truth::isFalse: return Truth::isTrue;
    case Truth::open: break;
    }
    return Truth::open;
}

Truth valueOf(const PlantLiteral& literal, const Prediction& labels)
{
    if (!labels.isKnown(literal.atom)) {
        return Truth::open;
    }
    return labels.isTrue(literal.atom) != literal.negated ? Truth::isTrue : Truth::isFalse;
}

Truth valueOf(const std::vector<PlantLiteral>& clause, const Prediction& labels)
{
    Truth result = Truth::isFalse;
    for (const PlantLiteral& literal : clause) {
        const Truth truth = valueOf(literal, labels);
        if (truth == Truth::isTrue) {
            return truth;
        }
        if (truth == Truth::open) {
            result = truth;
        }
    }
    return result;
}

Truth valueOf(const std::vector<std::vector<PlantLiteral>>& clauses, const Prediction& labels)
{
    Truth result = Truth::isTrue;
    for (const std::vector<PlantLiteral>& clause : clauses) {
        const Truth truth = valueOf(clause, labels);
        if (truth == Truth::isFalse) {
            return truth;
        }
        if (truth == Truth::open) {
            result = truth;
        }
    }
    return result;
}

} // namespace

const char* name(Truth truth)
{
    switch (truth) {
    case Truth::isTrue: return "true";
    case Truth::isFalse: return "false";
    case Truth::open: break;
    }
    return "unknown";
}

StateQuery::StateQuery(const Plant& plant, const language::FormulaClauses& formula)
    : negated_(formula.negated)
{
    for (const plant::ClauseLiterals& literals : formula.clauses) {
        std::vector<PlantLiteral>& clause = clauses_.emplace_back();
        for (const plant::Literal& literal : literals) {
            clause.push_back({plant.indexOf(literal.atom), literal.negated});
        }
    }
}

Truth StateQuery::evaluate(const Hypothesis& hypothesis) const
{
    const Truth truth = valueOf(clauses_, hypothesis.labels.prediction());
    return negated_ ? negation(truth) : truth;
}

QueryAnswer StateQuery::evaluate(const TrackAnswer& answer) const
{
    QueryAnswer result;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        const Truth truth = evaluate(*answer.hypotheses[i]);
        if (i == 0) {
            result.best = truth;
        }
        if (truth == Truth::isTrue) {
            result.probability += answer.probabilities[i];
        } else if (truth == Truth::open) {
            result.openProbability += answer.probabilities[i];
        }
    }
    return result;
}

} // namespace monitor
