// The engine: an incremental truth-maintenance and state-tracking system over the active model.
//
// Life of an engine
//
//     itms engine;              // over the model that DataManager holds
//     engine.rtInit();          // once, after the model is loaded: numbers transitions, labels initial atoms
//     engine.readPI();          // optional: prime implicates from MODEL.pi
//
//     // Once per time step: what was observed and commanded goes in, the candidates come out.
//     SignedEls propositions;                              // key true: holds; key false: does not hold
//     propositions.insert({true, element});
//     auto* found = engine.addPropositions(&propositions, nullptr, state, nullptr, typeRules, maxRank, 0.0,
//                                          &trajectory, step, false);
//     for (ItmsRes* candidate : *found) { use(candidate->state); candidate->clear(); delete candidate; }
//     delete found;
//
// The state handed to addPropositions belongs to the search from then on (it is released, or comes back in a
// record). Only the early returns that addPropositions describes leave it with the caller.
//
// Conventions
//
// - Labels are "true", "false", "unknown". In a clause the key true marks a negated literal; among the
//   propositions the key is the truth value to assign.
// - Evaluations take a state, the trajectory and the step's index. They reach elements through getElt, which
//   instantiates the components of the atoms it meets.
// - "First" and "last" mean the container's own iteration order, which decides every tie.
// - The trace goes to std::cout; its texts are part of the behaviour. When the stream is not good nothing is
//   formatted (model/trace.h).
// - Nothing is reported by exceptions. One thread.
//
// The members are in one file per phase: engine/setup.cpp, transitions.cpp, implicates.cpp, evaluation.cpp,
// supports.cpp, conflicts.cpp, retraction.cpp, propositions.cpp, propagation.cpp, expansion.cpp;
// engine/distribution.cpp, entropy.cpp; engine/formulas.cpp, printouts.cpp.
#pragma once

#include "engine/ItmsRes.h"
#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Trajectory.h"
#include "model/Transition.h"
#include "model/mdlChk.h"

#include <chrono>
#include <memory>

/// The engine. Several may exist, all over the one active model; copies make no sense and are not possible.
class itms : public mdlChk {
public:
    std::vector<StateVar*>* stateVars; ///< every variable of every active component; null before rtInit
    bool addingPropositions;           ///< true while addPropositions runs with `adding` set
    PiTable* piTable; ///< prime implicates; null before readPI; never released by the engine

    itms();
    /// Releases `stateVars`, the vector only. The prime-implicate table outlives the engine.
    ~itms();
    itms(const itms&) = delete;
    itms& operator=(const itms&) = delete;

    // ---- Set-up (engine/setup.cpp) ------------------------------------------------------------------

    /// Sets up over the active model: numbers and weights every transition, gathers the variables, rebuilds
    /// `DataManager::active_atoms` from the clauses, links atoms and components, marks dead ends, and applies
    /// the initial assignment. Linear in the model. A second call starts over, with transitions from 0 again.
    void rtInit();
    /// Compiles each active atom's probability; an atom that holds is set, has `initTrue` 1, and the other
    /// values of its variable are labelled "false".
    void initialize();
    /// Every atom that occurs in `clauses`, then in the clauses of `stateVars`. The caller owns the map.
    AtomMap* loadAtoms(std::vector<Clause*>* clauses);
    /// Marks the atom when no non-idle transition named "Nominal" stands in its `outTransitions`.
    void deadEndAtom(Atom* atom);
    /// Same as initStateProbas.
    void initPb(State* state);
    /// True when the two sets of clauses share *no* atom.
    bool intersectClauses(std::vector<Clause*>* a, std::vector<Clause*>* b);
    /// True when the clauses of `x` share no atom with those of any of `ys`.
    bool intersectClauses(Atom* x, std::vector<Atom*>* ys);

    // ---- Transition compilation (engine/transitions.cpp) ----------------------------------------------

    /// Numbers the component's transitions from `counter` on, which it advances, registers and weighs them,
    /// and refers idle and failure transitions that no command guards from every command value.
    void idTransitions(Comp* comp, int& counter);
    /// Sets the atom's `compiledProba` to the mean probability of its transitions, if it has any.
    void compileTransitionsProb(Atom* atom);

    // ---- Prime implicates (engine/implicates.cpp) -----------------------------------------------------

    /// Reads `DataManager::model_name`.pi into a new table, `piTable`. A line is `HEAD:ATOM ATOM,ATOM`, with no
    /// space but the single ones between atoms. Returns 1 when the file was read, 0 when it could not be
    /// opened (the table is empty then), -1 when an atom is not known (the lines before are in the table).
    int readPI();

    // ---- Elements and clauses (engine/evaluation.cpp) -------------------------------------------------

    /// The element of the atom `id` in `state`. When there is none, the atom's component is instantiated
    /// (Trajectory::addComp) and joins the state's components if `addFlag` is set. The entry that the look-up
    /// makes stays, null, if that did not fill it.
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank,
                   const bool& addFlag);
    /// The same with `addFlag` true.
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank);
    /// The elements that `state` has for the identifiers of `from`'s elements, under the same keys; an element
    /// it lacks becomes a null entry in both. The caller owns the map.
    ElMap* copyState(ElMap* from, State* state);
    /// The value of a literal: "true", "false", "unknown", or "" for a label that is none of these.
    std::string evalAtomOnLabels(SignedAtoms::iterator literal, State* state, Trajectory* traj,
                                 const int& rank);
    /// True when some literal holds. False says only that none does yet.
    bool testClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The last element of the clause whose label is "unknown", unless a positive literal that holds comes
    /// first in the scan; null when there is none. A negated literal that holds does not stop the scan.
    TrajEl* unitClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The first clause of the atom for which unitClause finds an element, or null. Prints what it scans.
    Clause* getFirstUnitClause(Atom* atom, State* state, Trajectory* traj, const int& rank);
    /// The same over `DataManager::cls`; prints the clause it returns once more.
    Clause* getFirstUnitClause(State* state, Trajectory* traj, const int& rank);
    /// The same over the clauses of the elements' atoms; prints the clause it returns once more.
    Clause* getFirstUnitClause(std::vector<TrajEl*>* els, State* state, Trajectory* traj,
                               const int& rank);
    /// The first element of the clause whose label is "unknown", or null.
    TrajEl* getUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The clause's *unknown* literals, with their signs. The caller owns the map.
    SignedEls* getNotUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The elements' variables by name, the first of each name. The caller owns the map.
    StateVarMap* getStateVars(std::vector<TrajEl*>* els);

    // Membership, by pointer (texts by their characters). Linear.
    bool inVector(Atom* atom, std::vector<Atom*>* atoms);
    bool inVector(const char* text, std::vector<const char*>* texts);
    bool inVector(TrajEl* el, std::vector<TrajEl*>* els);
    bool inVector(Transition* transition, std::vector<Transition*>* transitions);
    bool inVectorStateVar(StateVar* variable, std::vector<StateVar*>* variables);
    bool inVectorClause(Clause* clause, std::vector<Clause*>* clauses);
    bool inMultimap(Atom* atom, SignedAtoms* atoms);

    // ---- Supports (engine/supports.cpp) -------------------------------------------------------------

    /// Makes `clause` the support of `el`, and `el` a dependent of the clause's other elements; withdraws one
    /// entry of `el` from the dependents of each other element of the support it had.
    /// Requires an element in `state` for every literal of `clause`.
    void setSupport(Clause* clause, TrajEl* el, State* state, Trajectory* traj, const int& rank);
    /// Sets the clause's first unknown element to "true", whatever its sign, and prints it. Records no support.
    /// Requires that there is one.
    void propagateClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The largest propagation number among the clause's elements, at least 0. `el` is ignored.
    int maxPropagationNumber(Clause* clause, TrajEl* el, State* state, Trajectory* traj,
                             const int& rank);

    // ---- Conflicts (engine/conflicts.cpp) -----------------------------------------------------------
    // A clause is violated when none of its literals is true and none unknown.

    /// The last violated one among the own clauses of `el`'s variable, or null.
    Clause* checkForInternalConflicts(TrajEl* el, State* state, Trajectory* traj, const int& rank);
    /// Appends to `out`, once for each variable in `focus`, what checkForInternalConflicts finds.
    void checkForFocusedInternalConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                          Trajectory* traj, const int& rank);
    /// Appends to `out` the violated clauses of the atoms in `focus`, as often as they are met.
    void checkForFocusedConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                  Trajectory* traj, const int& rank);
    /// Appends to `out` (a vector of its own when null) every clause of `DataManager::cls` without a true
    /// literal, and prints them.
    void checkForConflicts(std::vector<Clause*>* out, State* state, Trajectory* traj,
                           const int& rank);

    // ---- Retraction and resupport (engine/retraction.cpp) ---------------------------------------------

    /// Whether `clause` may support `el`, which occurs in it with `sign`.
    bool isResupportable(TrajEl* el, Clause* clause, const bool& sign, State* state,
                         Trajectory* traj, const int& rank);
    /// Gives the unknown elements in the satisfied clauses around `el` these clauses as support where they may
    /// have it, and enters them in `focus`.
    void resupportDependence(TrajEl* el, ElMap* focus, State* state, Trajectory* traj,
                             const int& rank);
    /// Sets `el` back to "unknown" without support, then every dependent whose support no longer holds, and so
    /// on. Appends them to `out` in that order, and returns it. No recursion: any depth of dependents will do.
    std::vector<TrajEl*>* deleteClause(TrajEl* el, std::vector<TrajEl*>* out, State* state,
                                       Trajectory* traj, const int& rank);

    // ---- The search (engine/propositions.cpp, propagation.cpp, expansion.cpp) -------------------------

    /// One time step: labels the elements of `props` in order, propagates, and searches the candidates that
    /// leave no clause violated. Appends them to `results` (a new vector when null) and returns it; the records
    /// are the caller's, the state is the search's. Files a benchmark entry. Respects
    /// `DataManager::searchLimits`, and tells in `DataManager::searchWork` what it did.
    ///
    /// Returns at once, with labels written so far, the state still the caller's and nothing printed, when a
    /// proposition concerns a command that is blocked, or asserts a fault held "false" whose rank exceeds
    /// `maxRank`; `addingPropositions` then stays raised if `adding` raised it.
    ///
    /// typeRules    false: the state's probabilities are initialised, and commands may only be switched off;
    ///              true: conditions may only be switched off, and modes that a transition produced stay
    /// maxRank      largest number of faults along the trajectory, this step's included
    /// unusedEls, unusedBound   not read
    /// rank         the step's index in `traj`
    std::vector<ItmsRes*>* addPropositions(SignedEls* props, ElMap* unusedEls, State* state,
                                           std::vector<ItmsRes*>* results, const bool& typeRules,
                                           const double& maxRank, const double& unusedBound,
                                           Trajectory* traj, const int& rank, const bool& adding);
    /// Runs the search from `res`, which it takes over, and appends the candidates to `results`.
    void unitPropagate(ItmsRes* res, std::vector<ItmsRes*>* results, const bool& typeRules,
                       const double& maxRank, Trajectory* traj, const int& rank);
    /// Resolves one violated clause: one child record for every element of it that may be flipped (and for every
    /// prime implicate of its atom), in the order of rising expected entropy. Returns the first child, or null,
    /// pushes the others on `agenda`, and releases `res`.
    ItmsRes* propagateThroughConflict(Clause* conflict, ItmsRes* res, std::stack<ItmsRes*>* agenda,
                                      const bool& typeRules, const double& maxRank,
                                      Trajectory* traj, const int& rank);

    // ---- Probabilities (engine/distribution.cpp) -------------------------------------------------

    /// Enters the probability of every transition of the state's components in `postProbs`.
    void initStateProbas(State* state);
    /// Rebuilds `sortedPostProbs` from `postProbs`: falling probability, of equal ones the latest met first.
    void sortPostProbs(State* state);
    /// Sets `obsCondProba`: the product, over the elements locked 0 or 3, of the sum of their rough conditional
    /// probabilities given the transitions of the modes that hold. Quadratic in the elements.
    void computeObsCondRough(State* state);
    /// The rough probability that `el` is as labelled given `transition`: 1 or 0 where the transition's formula
    /// reaches the element's variable, by whether some clause opposes the two, else 1 over the variable's
    /// number of values; 0, with a message, for an atom that has prime implicates. The last two are ignored.
    double computeCondProbRough(TrajEl* el, Transition* transition, State* state, ElMap* elements);
    /// True when some clause of a formula atom lists `atom` among that atom's opposites.
    bool checkInOpposites(Atom* atom, SignedAtoms* formulaAtoms);
    /// True when the atom's variable belongs to the component of a formula atom or to one that it imports.
    bool checkInImportedComps(Atom* atom, SignedAtoms* formulaAtoms);

    // ---- Entropies and predictions (engine/entropy.cpp) ------------------------------------------

    /// Expected entropy (nats, not normalised over the values) of the state's distribution over transitions
    /// once the variable is known; leaves the distribution given each value in `condProbs`. May be NaN.
    double entropy(StateVar* variable, State* state, ElMap* elements);
    /// Entropy (nats) of the distribution given the atom, every transition being equally compatible with it.
    /// Requires the atom's entry in `condProbs`, which it refills. The last argument is ignored.
    double entropy(Atom* atom, State* state, ElMap* elements);
    /// Adds to `accumulator` (a new vector when null: the caller's) the opposites of `atom` in its clauses, and
    /// `atom` itself, none twice.
    std::vector<Atom*>* predictedAtoms(Atom* atom, std::vector<Atom*>* accumulator);
    /// The number of `observed` atoms that `atom` predicts, over the number observed (NaN when that is 0).
    double probaCondObsAtom(Atom* atom, std::vector<Atom*>* observed);

    // ---- Queries and printouts (engine/formulas.cpp, printouts.cpp) --------------------------------------

    /// Whether the formula holds at a step: its entries with key true must hold, those with key false must not.
    /// A formula without an atom map, or with another connective than "and", "" or "or", is false.
    bool evalStateFormula(StateFormula* formula, Trajectory* trajectory, int step);

    void viewAtomVector(std::vector<Atom*>* atoms);
    void viewAtomVectorId(std::vector<Atom*>* atoms);
    void viewClauseVector(std::vector<Clause*>* clauses);
    void viewMultimapAtom(std::multimap<std::string, Atom*, eqstring>* atoms);
    void viewHashMapAtom(AtomMap* atoms);
    void viewTrajectoryConflicts(NumberMap<std::vector<Clause*>*>* conflicts);

private:
    /// Erases the first entry of `dependent` among the dependents of `from`, if there is one.
    static void removeDependent(TrajEl* from, const TrajEl* dependent);
    bool violated(Clause* clause, State* state, Trajectory* traj, const int& rank);

    double roughProbability(Atom* atom, const Transition* transition);

    /// One conflict being resolved.
    struct Expansion {
        Clause* conflict;
        ItmsRes* parent;
        bool typeRules;
        double maxRank;
        Trajectory* traj;
        const int& rank;
        std::multimap<double, TrajEl*> candidates = {}; ///< by expected entropy, ties in the clause's order
        unsigned int attempts = 0;                      ///< children begun, rejected ones included
        ItmsRes* first = nullptr;
        std::vector<ItmsRes*> others = {}; ///< in the order of their making
    };

    /// One way of resolving a conflict.
    struct Branch {
        TrajEl* el;                   ///< the candidate, an element of the parent's state
        std::vector<Atom*> implicate; ///< what is adopted along with it
    };

    void expand(Expansion& expansion);
    void collectCandidates(Expansion& expansion);
    void considerCandidate(Expansion& expansion, Atom* atom, TrajEl* el);
    std::vector<Branch> planBranches(const Expansion& expansion) const;
    void makeChild(Expansion& expansion, const Branch& branch, bool last);
    bool adopt(const Expansion& expansion, ItmsRes& child, const TrajEl* target,
               const std::vector<Atom*>& implicate);
    void flip(const Expansion& expansion, ItmsRes& child, TrajEl* el, TrajEl* target);
    static void condition(State* state, const char* id);

    /// The arguments of a search that stay the same throughout it.
    struct Search {
        std::vector<ItmsRes*>& results;
        bool typeRules;
        double maxRank;
        Trajectory* traj;
        const int& rank;
        std::stack<ItmsRes*> agenda;
    };

    void checkAround(ElMap* focus, ItmsRes* record, const Search& search);
    ItmsRes* complete(ItmsRes* record, Search& search);
    ItmsRes* resolveConflicts(ItmsRes* record, Search& search);
    void accept(ItmsRes* record, Search& search);
    bool limitReached();
    void release(ItmsRes* record);
    void abandonAgenda(Search& search);

    std::vector<std::unique_ptr<std::vector<StateVar*>>> earlierStateVars_;
    std::chrono::steady_clock::time_point searchStart_;
};
