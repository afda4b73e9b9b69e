// The engine a second time, plain and slow, to judge the first.
//
// Every operation of class itms is here under its own name, written step by step as its behaviour is
// described: states are copied whole, clauses are walked anew each time, retraction recurses, nothing is
// remembered between two calls. It works on the same model objects and the same registry, and shares no
// line of code with engine/, probability/ and query/ except the record class ItmsRes.
//
// What the engine leaves allocated for good is released here at once, or when the PlainEngine dies: nobody can
// tell, and the leak checker stays useful.
#pragma once

#include "engine/ItmsRes.h"
#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Trajectory.h"
#include "model/Transition.h"
#include "model/mdlChk.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <set>

/// Thrown when a search resolves more conflicts than PlainEngine::maxRecords; everything that the search held
/// is released first, the state it was given included.
struct SearchTooLarge {};

/// See engine/itms.h for what each operation does.
class PlainEngine : public mdlChk {
public:
    std::vector<StateVar*>* stateVars = nullptr;
    bool addingPropositions = false;
    PiTable* piTable = nullptr;

    /// Conflicts that one search may resolve before it throws SearchTooLarge.
    std::size_t maxRecords = std::numeric_limits<std::size_t>::max();

    PlainEngine() = default;
    ~PlainEngine();
    PlainEngine(const PlainEngine&) = delete;
    PlainEngine& operator=(const PlainEngine&) = delete;

    // PlainSetup.cpp
    void rtInit();
    void initialize();
    AtomMap* loadAtoms(std::vector<Clause*>* clauses);
    void deadEndAtom(Atom* atom);
    void initPb(State* state);
    bool intersectClauses(std::vector<Clause*>* a, std::vector<Clause*>* b);
    bool intersectClauses(Atom* x, std::vector<Atom*>* ys);
    void idTransitions(Comp* comp, int& counter);
    void compileTransitionsProb(Atom* atom);

    // PlainImplicates.cpp
    int readPI();

    // PlainEvaluation.cpp
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank,
                   const bool& addFlag);
    TrajEl* getElt(const char* id, State* state, Trajectory* traj, const int& rank);
    ElMap* copyState(ElMap* from, State* state);
    std::string evalAtomOnLabels(SignedAtoms::iterator literal, State* state, Trajectory* traj,
                                 const int& rank);
    bool testClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    TrajEl* unitClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    Clause* getFirstUnitClause(Atom* atom, State* state, Trajectory* traj, const int& rank);
    Clause* getFirstUnitClause(State* state, Trajectory* traj, const int& rank);
    Clause* getFirstUnitClause(std::vector<TrajEl*>* els, State* state, Trajectory* traj,
                               const int& rank);
    TrajEl* getUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    SignedEls* getNotUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank);
    StateVarMap* getStateVars(std::vector<TrajEl*>* els);
    bool inVector(Atom* atom, std::vector<Atom*>* atoms);
    bool inVector(const char* text, std::vector<const char*>* texts);
    bool inVector(TrajEl* el, std::vector<TrajEl*>* els);
    bool inVector(Transition* transition, std::vector<Transition*>* transitions);
    bool inVectorStateVar(StateVar* variable, std::vector<StateVar*>* variables);
    bool inVectorClause(Clause* clause, std::vector<Clause*>* clauses);
    bool inMultimap(Atom* atom, SignedAtoms* atoms);

    // PlainRepair.cpp: supports, conflict checks, retraction and resupport
    void setSupport(Clause* clause, TrajEl* el, State* state, Trajectory* traj, const int& rank);
    void propagateClause(Clause* clause, State* state, Trajectory* traj, const int& rank);
    int maxPropagationNumber(Clause* clause, TrajEl* el, State* state, Trajectory* traj,
                             const int& rank);
    Clause* checkForInternalConflicts(TrajEl* el, State* state, Trajectory* traj, const int& rank);
    void checkForFocusedInternalConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                          Trajectory* traj, const int& rank);
    void checkForFocusedConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                  Trajectory* traj, const int& rank);
    void checkForConflicts(std::vector<Clause*>* out, State* state, Trajectory* traj,
                           const int& rank);
    bool isResupportable(TrajEl* el, Clause* clause, const bool& sign, State* state,
                         Trajectory* traj, const int& rank);
    void resupportDependence(TrajEl* el, ElMap* focus, State* state, Trajectory* traj,
                             const int& rank);
    std::vector<TrajEl*>* deleteClause(TrajEl* el, std::vector<TrajEl*>* out, State* state,
                                       Trajectory* traj, const int& rank);

    // PlainSearch.cpp
    std::vector<ItmsRes*>* addPropositions(SignedEls* props, ElMap* unusedEls, State* state,
                                           std::vector<ItmsRes*>* results, const bool& typeRules,
                                           const double& maxRank, const double& unusedBound,
                                           Trajectory* traj, const int& rank, const bool& adding);
    void unitPropagate(ItmsRes* res, std::vector<ItmsRes*>* results, const bool& typeRules,
                       const double& maxRank, Trajectory* traj, const int& rank);

    // PlainExpansion.cpp
    ItmsRes* propagateThroughConflict(Clause* conflict, ItmsRes* res, std::stack<ItmsRes*>* agenda,
                                      const bool& typeRules, const double& maxRank,
                                      Trajectory* traj, const int& rank);

    // PlainProbability.cpp
    void initStateProbas(State* state);
    void sortPostProbs(State* state);
    void computeObsCondRough(State* state);
    double computeCondProbRough(TrajEl* el, Transition* transition, State* state, ElMap* elements);
    bool checkInOpposites(Atom* atom, SignedAtoms* formulaAtoms);
    bool checkInImportedComps(Atom* atom, SignedAtoms* formulaAtoms);
    double entropy(StateVar* variable, State* state, ElMap* elements);
    double entropy(Atom* atom, State* state, ElMap* elements);
    std::vector<Atom*>* predictedAtoms(Atom* atom, std::vector<Atom*>* accumulator);
    double probaCondObsAtom(Atom* atom, std::vector<Atom*>* observed);

    // PlainQuery.cpp
    bool evalStateFormula(StateFormula* formula, Trajectory* trajectory, int step);
    void viewAtomVector(std::vector<Atom*>* atoms);
    void viewAtomVectorId(std::vector<Atom*>* atoms);
    void viewClauseVector(std::vector<Clause*>* clauses);
    void viewMultimapAtom(std::multimap<std::string, Atom*, eqstring>* atoms);
    void viewHashMapAtom(AtomMap* atoms);
    void viewTrajectoryConflicts(NumberMap<std::vector<Clause*>*>* conflicts);

private:
    void addAtomsOf(Clause* clause, AtomMap* map);
    int readImplicateLine(const std::string& line);
    bool blockedCommand(TrajEl* el);
    void checkAround(ElMap* focus, ItmsRes* record, Trajectory* traj, const int& rank);
    ItmsRes* workOn(ItmsRes* record, std::stack<ItmsRes*>* agenda, const bool& typeRules,
                    const double& maxRank, Trajectory* traj, const int& rank);
    bool rankTest(State* state, const double& maxRank, Trajectory* traj);
    bool flippable(TrajEl* el, ElMap* changed);
    void showCandidate(Atom* atom, TrajEl* el, ItmsRes* res, bool passed);
    bool keptWithTypeRules(Atom* atom, TrajEl* el);
    bool keptWithoutTypeRules(Atom* atom, TrajEl* el);
    bool adopt(const std::vector<Atom*>& implicate, TrajEl* target, ItmsRes* child, ItmsRes* res,
               const double& maxRank, Trajectory* traj, const int& rank);
    void flip(Clause* conflict, TrajEl* el, TrajEl* target, ItmsRes* child, Trajectory* traj,
              const int& rank);
    void release(ItmsRes* record);

    std::vector<std::unique_ptr<std::vector<StateVar*>>> earlierStateVars_;
    std::vector<std::unique_ptr<ItmsRes>> abandonedRecords_; // of calls that ended at once
    std::set<ItmsRes*> live_; // of the search that is running, its results included
};
