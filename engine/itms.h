// The engine: an incremental truth-maintenance and state-tracking system over the active model.
//
// Life of an engine
//
//     itms engine;              // over the model in the registry in use (model/Registry.h)
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
// - `state` is a time step, `traj` its trajectory, and `rank` the step's index in it (>= 0), not a count of
//   faults. Evaluations reach elements through getElt, which instantiates the components of the atoms they meet.
// - Every call after set-up requires that rtInit has run over the active model, that no argument is null unless
//   null is mentioned, that the state has its map of elements, and that atoms are atoms of the model.
// - What is "the caller's" was made with `new`, and the caller deletes it. What a function does not mention stays
//   with its owner.
// - "First" and "last" mean the container's own iteration order, which decides every tie.
// - "Linear in a clause" counts its literals, each with a constant-time look-up of its element; an element that has
//   to be made first costs the atoms and transitions of its component in addition, once per state.
// - The trace goes to std::cout; its texts are part of the behaviour. When the stream is not good nothing is
//   formatted (model/trace.h).
// - No function reports anything by an exception. One thread.
//
// The members are in one file per phase: engine/setup.cpp, transitions.cpp, implicates.cpp, evaluation.cpp,
// supports.cpp, conflicts.cpp, retraction.cpp, propositions.cpp, propagation.cpp, expansion.cpp,
// distribution.cpp, entropy.cpp, formulas.cpp, printouts.cpp.
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

/// The engine. Several may exist, all over the active model of the registry in use; an engine cannot be copied.
class itms : public mdlChk {
public:
    /// Every variable of every active component; null before rtInit. Owned vector, the variables are the model's.
    std::vector<StateVar*>* stateVars;
    bool addingPropositions; ///< true while addPropositions runs with `adding` set
    PiTable* piTable;        ///< prime implicates; null before readPI; never released by the engine

    /// Ensures: an engine without variables and table. The registry is not looked at before rtInit.
    itms();
    /// Releases `stateVars`, the vector only. The prime-implicate table outlives the engine.
    ~itms();
    itms(const itms&) = delete;
    itms& operator=(const itms&) = delete;

    // ---- Set-up (engine/setup.cpp) ------------------------------------------------------------------

    /// Sets up over the active model. Linear in the model, except that every entry in an `outTransitions` is
    /// compared with those before it. A second call starts over, with transitions from 0 again.
    ///
    /// Requires: the registry holds the components and the clauses; every transition has its variable and its
    /// atom.
    /// Ensures: transitions are numbered from 0 and weighted (idTransitions); `stateVars` lists the variables;
    /// `DataManager::active_atoms` is a new map of the atoms that occur in a clause; each component knows its
    /// atoms, and each atom its components; dead ends are marked (a mark is never withdrawn); the initial
    /// assignment is applied (initialize). The vector and the map that an earlier call made stay allocated, until
    /// the engine dies and until DataManager::reset.
    void rtInit();
    /// Applies the initial assignment to the active atoms. Linear in the model. Called by rtInit.
    /// Ensures: the probability of each active atom is compiled; one that holds is labelled "true" and has
    /// `initTrue` 1, and the other values of its variable are labelled "false".
    void initialize();
    /// Every atom that occurs in `clauses`, then in the clauses of `stateVars`, if there are any, by identifier.
    /// Linear in the clauses.
    /// Ensures: the map is the caller's.
    AtomMap* loadAtoms(std::vector<Clause*>* clauses);
    /// Ensures: the atom is marked as a dead end when no transition in its `outTransitions` is named "Nominal" and
    /// not idle; else its mark stays as it is.
    void deadEndAtom(Atom* atom);
    /// Same as initStateProbas.
    void initPb(State* state);
    /// True when the two sets of clauses share *no* atom (by identifier). Linear in both.
    bool intersectClauses(std::vector<Clause*>* a, std::vector<Clause*>* b);
    /// True when the clauses of `x` share no atom with those of any of `ys`. Linear in the clauses of all of
    /// them, those of `x` once for each.
    bool intersectClauses(Atom* x, std::vector<Atom*>* ys);

    // ---- Transition compilation (engine/transitions.cpp) ----------------------------------------------

    /// Numbers, registers and weighs the component's transitions. Called by rtInit.
    ///
    /// Requires: every transition of the component has its variable and its atom.
    /// Ensures: identifiers go on from `counter`, which is the next free one afterwards; `active_trans` has the
    /// transitions; `weight` is the probability over the number of the component's transitions, `guardProba`
    /// the probability over the number of the variable's guards (not finite where it has none). A transition that
    /// is idle or a fault, and whose guard names no command, is not `commanded`, and every command value of the
    /// component refers to it.
    void idTransitions(Comp* comp, int& counter);
    /// Ensures: the atom's `compiledProba` is the mean probability of its transitions; without any it stays.
    void compileTransitionsProb(Atom* atom);

    // ---- Prime implicates (engine/implicates.cpp) -----------------------------------------------------

    /// Reads `DataManager::model_name`.pi into a new table, `piTable`. A line is `HEAD:ATOM ATOM,ATOM`, with no
    /// space but the single ones between atoms; a line without a set adds nothing, and characters after the
    /// last newline are no line. Linear in the file.
    ///
    /// Returns 1 when the file was read, 0 when it could not be opened (the table is empty then), -1 when an
    /// atom is not known (it is named on std::cerr, and the lines before are in the table).
    /// Ensures: `piTable` is the new table, the registry's; an earlier one stays allocated until
    /// DataManager::reset.
    int readPI();

    // ---- Elements and clauses (engine/evaluation.cpp) -------------------------------------------------

    /// The element of the atom `id` in `state`. When there is none, the atom's component is instantiated
    /// (Trajectory::addComp) and joins the state's components if `addFlag` is set. Null only where that did not
    /// make the element. Constant time on average for an element that is there, else linear in the component.
    ///
    /// Requires: the model has an atom `id`, and the characters outlive the state, as those of Atom::getId do.
    /// Ensures: the element is the state's. The entry that the look-up makes stays, null, if nothing filled it.
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank,
                   const bool& addFlag);
    /// The same with `addFlag` true.
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank);
    /// The elements that `state` has for the identifiers of `from`'s elements, under the same keys. Linear in
    /// `from`.
    /// Requires: `from` has no null entry.
    /// Ensures: the map is the caller's, its elements the state's. An element that the state lacks is a null
    /// entry in both.
    ElMap* copyState(ElMap* from, State* state);
    /// The value of a literal: "true", "false", "unknown", or "" for a label that is none of these.
    std::string evalAtomOnLabels(SignedAtoms::iterator literal, State* state, Trajectory* traj,
                                 const int& rank);
    /// True when some literal holds. False says only that none does yet. Linear in the clause.
    bool testClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The last element of the clause whose label is "unknown", unless a positive literal that holds comes
    /// first in the scan; null when there is none. A negated literal that holds does not stop the scan. Linear
    /// in the clause.
    TrajEl* unitClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The first clause of the atom for which unitClause finds an element, or null. Prints what it scans.
    /// Linear in the clauses scanned.
    Clause* getFirstUnitClause(Atom* atom, State* state, Trajectory* traj, const int& rank);
    /// The same over `DataManager::cls`; prints the clause it returns once more.
    Clause* getFirstUnitClause(State* state, Trajectory* traj, const int& rank);
    /// The same over the clauses of the elements' atoms; prints the clause it returns once more.
    Clause* getFirstUnitClause(std::vector<TrajEl*>* els, State* state, Trajectory* traj,
                               const int& rank);
    /// The first element of the clause whose label is "unknown", or null. Linear in the clause.
    TrajEl* getUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The clause's *unknown* literals, with their signs. Linear in the clause.
    /// Ensures: the map is the caller's, its elements the state's.
    SignedEls* getNotUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The elements' variables by name, the first of each name. Linear.
    /// Ensures: the map is the caller's.
    StateVarMap* getStateVars(std::vector<TrajEl*>* els);

    // Membership, by pointer (texts by their characters). Linear.

    /// Whether `atom` is in `atoms`.
    bool inVector(Atom* atom, std::vector<Atom*>* atoms);
    /// Whether a text with the same characters is in `texts`.
    bool inVector(const char* text, std::vector<const char*>* texts);
    /// Whether `el` is in `els`.
    bool inVector(TrajEl* el, std::vector<TrajEl*>* els);
    /// Whether `transition` is in `transitions`.
    bool inVector(Transition* transition, std::vector<Transition*>* transitions);
    /// Whether `variable` is in `variables`.
    bool inVectorStateVar(StateVar* variable, std::vector<StateVar*>* variables);
    /// Whether `clause` is in `clauses`.
    bool inVectorClause(Clause* clause, std::vector<Clause*>* clauses);
    /// Whether `atom` is in `atoms`, with either sign.
    bool inMultimap(Atom* atom, SignedAtoms* atoms);

    // ---- Supports (engine/supports.cpp) -------------------------------------------------------------

    /// Makes `clause` the support of `el`. Linear in the two clauses and the dependents of their elements.
    ///
    /// Ensures: `el` was entered among the dependents of the clause's other elements, and one entry of `el` was
    /// withdrawn from those of each other element of the support it had. A literal of `clause` for which the
    /// state has no element gets a null entry there, and no dependent. The propagation number stays.
    void setSupport(Clause* clause, TrajEl* el, State* state, Trajectory* traj, const int& rank);
    /// Sets the clause's first unknown element to "true", whatever its sign, and prints it. Records no support.
    /// Linear in the clause.
    /// Requires: the clause has an unknown element.
    void propagateClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    /// The largest propagation number among the clause's elements, at least 0. `el` is ignored, and may be
    /// null. Linear in the clause.
    int maxPropagationNumber(Clause* clause, TrajEl* el, State* state, Trajectory* traj,
                             const int& rank);

    // ---- Conflicts (engine/conflicts.cpp) -----------------------------------------------------------
    // A clause is violated when none of its literals is true and none unknown.

    /// The last violated one among the own clauses of `el`'s variable, or null. Linear in these clauses.
    Clause* checkForInternalConflicts(TrajEl* el, State* state, Trajectory* traj, const int& rank);
    /// Appends to `out`, once for each variable in `focus`, what checkForInternalConflicts finds.
    /// Requires: `focus` has no null entry. Evaluation may add entries to the state, so `focus` is not the
    /// state's own map.
    void checkForFocusedInternalConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                          Trajectory* traj, const int& rank);
    /// Appends to `out` the violated clauses of the atoms in `focus`, as often as they are met, and prints
    /// what it scans.
    /// Requires: as for checkForFocusedInternalConflicts.
    void checkForFocusedConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                  Trajectory* traj, const int& rank);
    /// Appends to `out` every clause of `DataManager::cls` without a true literal, and prints what `out` then
    /// has. `out` may be null: then they are printed only. Linear in the model's clauses.
    void checkForConflicts(std::vector<Clause*>* out, State* state, Trajectory* traj,
                           const int& rank);

    // ---- Retraction and resupport (engine/retraction.cpp) ---------------------------------------------

    /// Whether `clause` may support `el`: it occurs there with `sign` only, no other element of the clause is
    /// "true", and its propagation number exceeds the `initTrue` of none of their atoms. Linear in the clause.
    bool isResupportable(TrajEl* el, Clause* clause, const bool& sign, State* state,
                         Trajectory* traj, const int& rank);
    /// Gives the unknown elements in the satisfied clauses around `el` these clauses as support where they may
    /// have it. At most quadratic in each clause around `el`.
    /// Ensures: these elements are in `focus`, one deeper than the deepest of their clause; the elements of a
    /// former support have lost them as dependents, those of the new one have not gained them.
    void resupportDependence(TrajEl* el, ElMap* focus, State* state, Trajectory* traj,
                             const int& rank);
    /// Retracts `el`, then every dependent whose support no longer holds, and so on. No recursion: any depth of
    /// dependents will do. Linear in what is visited.
    /// Ensures: each of them is "unknown", without support, at depth 0, without dependents, and was appended to
    /// `out` in that order, which is returned.
    std::vector<TrajEl*>* deleteClause(TrajEl* el, std::vector<TrajEl*>* out, State* state,
                                       Trajectory* traj, const int& rank);

    // ---- The search (engine/propositions.cpp, propagation.cpp, expansion.cpp) -------------------------

    /// One time step: labels the elements of `props` in order, propagates, and searches the candidates that
    /// leave no clause violated. Appends them to `results` (a new vector, the caller's, when null) and returns
    /// it.
    ///
    /// typeRules    false: the state's probabilities are initialised, and commands may only be switched off;
    ///              true: conditions may only be switched off, and modes that a transition produced stay
    /// maxRank      largest number of faults along the trajectory, this step's included, >= 0
    /// unusedEls, unusedBound   not read
    /// rank         the step's index in `traj`
    /// adding       raises `addingPropositions` while the call runs
    ///
    /// Requires: the elements of `props` are elements of `state`; the state was made with `new` and stands
    /// neither in the trajectory nor in a record.
    /// Ensures: the records in `results` are the caller's, the state is the search's. A benchmark entry is
    /// filed, `DataManager::searchWork` says what was done, `addingPropositions` is false.
    ///
    /// Returns at once, with labels written so far, the state still the caller's, `searchWork.begun` false and
    /// nothing printed, when a proposition concerns a command that is blocked, or asserts a fault held "false"
    /// whose rank exceeds `maxRank`; `addingPropositions` then stays raised if `adding` raised it.
    ///
    /// The number of records is bounded by the faults and by `DataManager::searchLimits` only.
    std::vector<ItmsRes*>* addPropositions(SignedEls* props, ElMap* unusedEls, State* state,
                                           std::vector<ItmsRes*>* results, const bool& typeRules,
                                           const double& maxRank, const double& unusedBound,
                                           Trajectory* traj, const int& rank, const bool& adding);
    /// Runs the search from `res` and appends the candidates to `results`.
    /// Requires: `already_changed` of `res` has the elements that were decided; neither may be null.
    /// Ensures: `res` was taken over: it was released, or is among the results, which are the caller's.
    /// `DataManager::searchWork` says what was done.
    void unitPropagate(ItmsRes* res, std::vector<ItmsRes*>* results, const bool& typeRules,
                       const double& maxRank, Trajectory* traj, const int& rank);
    /// Resolves one violated clause: one child record for every element of it that may be flipped (and for every
    /// prime implicate of its atom), in the order of rising expected entropy. Costs a copy of the state for each
    /// child but one, and a rating for each element that may be flipped.
    ///
    /// Ensures: `res` was released. Returns the child of the first branch, or null when there is no branch or the
    /// first one was rejected for a fault that may not be flipped; the others are on `agenda`, the last one on
    /// top. All of them are the caller's, and share nothing.
    ItmsRes* propagateThroughConflict(Clause* conflict, ItmsRes* res, std::stack<ItmsRes*>* agenda,
                                      const bool& typeRules, const double& maxRank,
                                      Trajectory* traj, const int& rank);

    // ---- Probabilities (engine/distribution.cpp) -------------------------------------------------
    // Calls of this section and the next that take a state require that it has a map `postProbs`.

    /// Enters the probability of every transition of the state's components in `postProbs`. Linear in them.
    void initStateProbas(State* state);
    /// Rebuilds `sortedPostProbs` from `postProbs`: falling probability, of equal ones the latest met first.
    /// Costs n log n.
    void sortPostProbs(State* state);
    /// Sets `obsCondProba`: the product, over the elements locked 0 or 3, of the sum of their rough conditional
    /// probabilities given the transitions of the modes that hold. Quadratic in the elements. Not normalised:
    /// it may exceed 1.
    void computeObsCondRough(State* state);
    /// The rough probability that `el` is as labelled given `transition`: 1 or 0 where the transition's formula
    /// reaches the element's variable, by whether some clause opposes the two, else 1 over the variable's
    /// number of values; 0, with a message, for an atom that has prime implicates. The last two are ignored,
    /// and may be null. Linear in the clauses of the formula's atoms.
    double computeCondProbRough(TrajEl* el, Transition* transition, State* state, ElMap* elements);
    /// True when some clause of a formula atom lists `atom` among that atom's opposites. Linear in the clauses
    /// of the formula's atoms.
    bool checkInOpposites(Atom* atom, SignedAtoms* formulaAtoms);
    /// True when the atom's variable belongs to the component of a formula atom or to one that it imports.
    /// Linear in the variables of these components.
    bool checkInImportedComps(Atom* atom, SignedAtoms* formulaAtoms);

    // ---- Entropies and predictions (engine/entropy.cpp) ------------------------------------------

    /// Expected entropy (nats, not normalised over the values) of the state's distribution over transitions
    /// once the variable is known. 0 for a variable without values; NaN where likely transitions exist and none
    /// admits one of the values. Weighs every likely transition of the state's components once per value. The
    /// last argument is ignored, and may be null.
    /// Ensures: `condProbs` has the distribution given each value; a transition without an entry in `postProbs`
    /// has one, 0.
    double entropy(StateVar* variable, State* state, ElMap* elements);
    /// Entropy (nats) of the distribution given the atom, every transition being equally compatible with it.
    /// Linear in the transitions of the state's components. The last argument is ignored, and may be null.
    /// Requires: `condProbs` has a distribution for the atom. It is refilled; entries of transitions that are
    /// not likely stay in it, and are scaled with the others.
    double entropy(Atom* atom, State* state, ElMap* elements);
    /// Adds to `accumulator` (a new vector, the caller's, when null) the opposites of `atom` in its clauses, and
    /// `atom` itself, none twice, and returns it. Quadratic in what it adds.
    std::vector<Atom*>* predictedAtoms(Atom* atom, std::vector<Atom*>* accumulator);
    /// The number of `observed` atoms that `atom` predicts, over the number observed (NaN when that is 0).
    double probaCondObsAtom(Atom* atom, std::vector<Atom*>* observed);

    // ---- Queries and printouts (engine/formulas.cpp, printouts.cpp) --------------------------------------

    /// Whether the formula holds at a step: its entries with key true must hold, those with key false must not.
    /// A formula without an atom map, or with another connective than "and", "" or "or", is false. An atom that
    /// the step's committed state lacks is taken with its own label (Trajectory::getElt). Linear in the formula.
    bool evalStateFormula(StateFormula* formula, Trajectory* trajectory, int step);

    /// Prints each atom with its own label and its support, then an empty line. Printouts are linear, and go to
    /// std::cout.
    void viewAtomVector(std::vector<Atom*>* atoms);
    /// Prints the identifier of each atom, one per line.
    void viewAtomVectorId(std::vector<Atom*>* atoms);
    /// Prints each clause, then an empty line.
    void viewClauseVector(std::vector<Clause*>* clauses);
    /// Prints each atom with its own label and its support, in the order of the names, then an empty line.
    void viewMultimapAtom(std::multimap<std::string, Atom*, eqstring>* atoms);
    /// Prints each atom with its own label and its support; no empty line follows.
    void viewHashMapAtom(AtomMap* atoms);
    /// Prints the number of each step that has a vector (null: it has none), then its clauses as
    /// viewClauseVector does.
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
        /// By expected entropy, ties in the clause's order.
        std::multimap<double, TrajEl*> candidates = {};
        unsigned int attempts = 0; ///< children begun, rejected ones included
        ItmsRes* first = nullptr;
        std::vector<ItmsRes*> others = {}; ///< in the order of their making
    };

    /// One way of resolving a conflict.
    struct Branch {
        TrajEl* el;                   ///< the candidate, an element of the parent's state
        std::vector<Atom*> implicate; ///< what is adopted along with it
    };

    void expand(Expansion& expansion);
    void giveUp(Expansion& expansion);
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
    bool overspent(std::uint64_t work);
    void release(ItmsRes* record);
    void abandonAgenda(Search& search);

    std::vector<std::unique_ptr<std::vector<StateVar*>>> earlierStateVars_;
    std::chrono::steady_clock::time_point searchStart_;
};
