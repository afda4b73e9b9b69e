// The explanations of a step by trying everything: every assignment of values to the mode variables, and under each
// every assignment to the rest. Slow, and meant to be seen to be right.
//
// It works on the objects of the active model, and shares nothing with the monitor that it judges.
#pragma once

#include "model/Atom.h"
#include "model/Clause.h"
#include "tests/reference/Fraction.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Labels of atoms: an atom without an entry is unknown.
using AtomLabels = std::map<const Atom*, bool>;

/// What is given for a step.
struct DiagnosisProblem {
    std::vector<const Atom*>
        before; ///< a value of every mode variable, and of every condition that a guard mentions
    std::vector<const Atom*> commands;
    std::vector<const Atom*> observations;
    int maxFaults = 1;
};

/// A value that a mode variable may have after the step.
struct ModeChance {
    Fraction probability;
    bool fault = false;
};

/// Modes that agree with everything given.
struct BruteExplanation {
    std::set<std::string> modes; ///< identifiers of the mode values other than predicted
    int faults = 0;
    Fraction joint; ///< product of the transitions' probabilities and the observations' likelihood
};

class BruteForceDiagnosis {
public:
    /// Of the active model.
    explicit BruteForceDiagnosis(DiagnosisProblem problem);

    /// The value that is predicted of a mode variable, and what each value's chance is; impossible ones are missing.
    const Atom* predicted(const StateVar* mode) const { return predicted_.at(mode); }
    const std::map<const Atom*, ModeChance>& chances(const StateVar* mode) const
    {
        return chances_.at(mode);
    }

    /// All explanations within the bound on faults.
    std::vector<BruteExplanation> explanations() const;
    /// Those that contain no other.
    static std::vector<BruteExplanation> minimal(const std::vector<BruteExplanation>& all);

    /// Values for all variables that agree with the clauses and with `given`, if there are any. Which ones depends on
    /// `turn`: it rotates the order in which the values are tried.
    static std::optional<std::vector<const Atom*>> world(const std::vector<const Atom*>& given,
                                                         std::size_t turn = 0);
    /// How many combinations of values the variables can have beside `given`: those with which there is a world.
    static std::uint32_t combinations(const std::vector<const Atom*>& given,
                                      const std::vector<const StateVar*>& variables);
    /// What follows from values by unit propagation: every clause is looked at until nothing changes. Nothing when
    /// they contradict one another.
    static std::optional<AtomLabels> consequences(const std::vector<const Atom*>& given);
    static std::optional<AtomLabels> consequences(AtomLabels given);

private:
    void findChances(const StateVar* mode);
    Fraction share(const Transition* transition) const;
    Fraction likelihood(const std::vector<const Atom*>& given) const;

    DiagnosisProblem problem_;
    std::vector<const StateVar*> modes_;
    std::map<const StateVar*, const Atom*> predicted_;
    std::map<const StateVar*, std::map<const Atom*, ModeChance>> chances_;
};

/// All clauses of the active model, the variables' own first; all its variables of a type, all for "".
std::vector<const Clause*> allClauses();
std::vector<const StateVar*> allVariables(const std::string& type = "");
