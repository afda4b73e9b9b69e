// All labellings of a model that violate none of its clauses: slow and obvious.
#pragma once

#include "model/Clause.h"
#include "model/Comp.h"

#include <map>
#include <memory>
#include <vector>

class Labellings {
public:
    using Labelling = std::map<const Atom*, bool>;

    explicit Labellings(std::vector<const Clause*> clauses) : clauses_(std::move(clauses)) {}

    /// A model's laws and the clauses of the components' variables.
    template <typename Model> static Labellings of(const Model& model)
    {
        std::vector<const Clause*> clauses(model.laws().begin(), model.laws().end());
        for (const auto& component : model.components()) {
            for (const StateVar* variable : *component->stateVars) {
                clauses.insert(clauses.end(), variable->clauses->begin(), variable->clauses->end());
            }
        }
        return Labellings(std::move(clauses));
    }

    /// The labellings of the atoms in clauses that agree with the given labels, up to `most` of them.
    std::vector<Labelling> find(const Labelling& given, std::size_t most) const
    {
        std::vector<Labelling> found;
        search(given, most, found);
        return found;
    }

private:
    void search(Labelling labels, std::size_t most, std::vector<Labelling>& found) const
    {
        if (found.size() >= most || !propagate(labels)) return;
        for (const Clause* clause : clauses_) {
            for (const auto& [negated, atom] : *clause->literals) {
                if (labels.contains(atom)) continue;
                for (const bool label : {true, false}) {
                    Labelling chosen = labels;
                    chosen[atom] = label;
                    search(std::move(chosen), most, found);
                }
                return;
            }
        }
        found.push_back(std::move(labels));
    }

    // Labels what follows from single clauses, until nothing does; false when a clause is violated.
    bool propagate(Labelling& labels) const
    {
        for (bool changed = true; changed;) {
            changed = false;
            for (const Clause* clause : clauses_) {
                const std::pair<bool, Atom*>* open = nullptr;
                std::size_t openLiterals = 0;
                bool satisfied = false;
                std::vector<std::pair<bool, Atom*>> literals(clause->literals->begin(),
                                                             clause->literals->end());
                for (const auto& literal : literals) {
                    const auto label = labels.find(literal.second);
                    if (label == labels.end()) {
                        open = &literal;
                        ++openLiterals;
                    } else {
                        satisfied = satisfied || label->second != literal.first;
                    }
                }
                if (satisfied || openLiterals > 1) continue;
                if (openLiterals == 0) return false;
                labels[open->second] = !open->first;
                changed = true;
            }
        }
        return true;
    }

    std::vector<const Clause*> clauses_;
};
