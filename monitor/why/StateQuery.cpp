#include "monitor/why/StateQuery.h"

#include <algorithm>

namespace monitor {

namespace {

// The steps of the trajectory.
constexpr int openAreFalse = 0;
constexpr int openAreTrue = 1;

std::unique_ptr<StateFormula> disjunction()
{
    auto formula = std::make_unique<StateFormula>();
    formula->op = "or";
    formula->atoms = new SignedAtoms;
    return formula;
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

StateQuery::StateQuery(itms& engine, const Plant& plant, const language::FormulaClauses& formula)
    : engine_(engine), plant_(plant), negated_(formula.negated)
{
    trajectory_.states = {new State, new State};
    for (const plant::ClauseLiterals& literals : formula.clauses) {
        Clause clause{disjunction(), disjunction()};
        for (const plant::Literal& literal : literals) {
            enter(literal.atom);
            (literal.negated ? clause.denied : clause.holding)
                ->atoms->insert({!literal.negated, literal.atom});
        }
        clauses_.push_back(std::move(clause));
    }
}

void StateQuery::enter(Atom* atom)
{
    if (trajectory_.states.front()->elements->count(atom->getId()) > 0) {
        return;
    }
    atoms_.push_back(atom);
    for (const State* state : trajectory_.states) {
        auto element = std::make_unique<TrajEl>();
        element->atom = atom;
        (*state->elements)[atom->getId()] = element.release();
    }
}

void StateQuery::label(const Hypothesis& hypothesis)
{
    const Prediction& labels = hypothesis.labels.prediction();
    for (const Atom* atom : atoms_) {
        const AtomIndex index = plant_.indexOf(atom);
        const bool known = labels.isKnown(index);
        const bool holds = labels.isTrue(index);
        const auto set = [&](int step, bool value) {
            const State& state = *trajectory_.states[static_cast<std::size_t>(step)];
            (*state.elements)[atom->getId()]->setLabel(value ? "true" : "false");
        };
        set(openAreFalse, holds);
        set(openAreTrue, holds || !known);
    }
}

bool StateQuery::certain(const Clause& clause)
{
    return engine_.evalStateFormula(clause.holding.get(), &trajectory_, openAreFalse) ||
           engine_.evalStateFormula(clause.denied.get(), &trajectory_, openAreTrue);
}

bool StateQuery::possible(const Clause& clause)
{
    return engine_.evalStateFormula(clause.holding.get(), &trajectory_, openAreTrue) ||
           engine_.evalStateFormula(clause.denied.get(), &trajectory_, openAreFalse);
}

Truth StateQuery::evaluate(const Hypothesis& hypothesis)
{
    label(hypothesis);
    const auto all = [this](bool (StateQuery::*test)(const Clause&)) {
        return std::all_of(clauses_.begin(), clauses_.end(),
                           [&](const Clause& clause) { return (this->*test)(clause); });
    };
    if (all(&StateQuery::certain)) {
        return negated_ ? Truth::isFalse : Truth::isTrue;
    }
    if (!all(&StateQuery::possible)) {
        return negated_ ? Truth::isTrue : Truth::isFalse;
    }
    return Truth::open;
}

QueryAnswer StateQuery::evaluate(const TrackAnswer& answer)
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
