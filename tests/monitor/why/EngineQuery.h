// Whether a formula holds, as the engine evaluates it: a second opinion on monitor::StateQuery.
//
// itms::evalStateFormula takes what is not known to be true for false. So the labels stand in a trajectory of two steps: in the
// first an atom that is open does not hold, in the second it does. `a | !b` is certain when `a` holds in the first or `!b` in
// the second, and possible when `a` holds in the second or `!b` in the first.
#pragma once

#include "engine/itms.h"
#include "monitor/why/StateQuery.h"

#include <algorithm>
#include <memory>

class EngineQuery {
public:
    EngineQuery(itms& engine, const plant::Plant& plant, const language::FormulaClauses& formula)
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

    monitor::Truth evaluate(const monitor::Prediction& labels)
    {
        label(labels);
        const auto all = [this](bool (EngineQuery::*test)(const Clause&)) {
            return std::all_of(clauses_.begin(), clauses_.end(),
                               [&](const Clause& clause) { return (this->*test)(clause); });
        };
        if (all(&EngineQuery::certain)) {
            return negated_ ? monitor::Truth::isFalse : monitor::Truth::isTrue;
        }
        if (!all(&EngineQuery::possible)) {
            return negated_ ? monitor::Truth::isTrue : monitor::Truth::isFalse;
        }
        return monitor::Truth::open;
    }

private:
    // The literals of a clause that are not negated, and those that are.
    struct Clause {
        std::unique_ptr<StateFormula> holding;
        std::unique_ptr<StateFormula> denied;
    };

    static constexpr int openAreFalse = 0;
    static constexpr int openAreTrue = 1;

    static std::unique_ptr<StateFormula> disjunction()
    {
        auto formula = std::make_unique<StateFormula>();
        formula->op = "or";
        formula->atoms = new SignedAtoms;
        return formula;
    }

    void enter(Atom* atom)
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

    void label(const monitor::Prediction& labels)
    {
        for (const Atom* atom : atoms_) {
            const plant::AtomIndex index = plant_.indexOf(atom);
            const auto set = [&](int step, bool value) {
                const State& state = *trajectory_.states[static_cast<std::size_t>(step)];
                (*state.elements)[atom->getId()]->setLabel(value ? "true" : "false");
            };
            set(openAreFalse, labels.isTrue(index));
            set(openAreTrue, labels.isTrue(index) || !labels.isKnown(index));
        }
    }

    bool certain(const Clause& clause)
    {
        return engine_.evalStateFormula(clause.holding.get(), &trajectory_, openAreFalse) ||
               engine_.evalStateFormula(clause.denied.get(), &trajectory_, openAreTrue);
    }
    bool possible(const Clause& clause)
    {
        return engine_.evalStateFormula(clause.holding.get(), &trajectory_, openAreTrue) ||
               engine_.evalStateFormula(clause.denied.get(), &trajectory_, openAreFalse);
    }

    itms& engine_;
    const plant::Plant& plant_;
    bool negated_;
    std::vector<Clause> clauses_;
    Trajectory trajectory_;
    std::vector<Atom*> atoms_;
};
