// The distribution over transitions of a step, and rough likelihoods.
//
// "Rough" asks no more of a transition than what its formula touches. Let its formula be {m}, m a value of
// component C. A variable of C, or of a component that C imports, has the value that some clause opposes to m
// with probability 1, and any other with 0; a variable out of reach has each of its n values with 1/n. The
// clause (!m | a) gives a the probability 1, and 0 to the values of a's variable that no clause opposes to m.
//
// Distributions are not normalised here. Rating one element against one transition costs the clauses of the
// formula's atoms at most; the likelihood of a step's observations is quadratic in its elements.
#include "engine/itms.h"
#include "model/trace.h"

#include <algorithm>

void itms::initStateProbas(State* state)
{
    for (const auto& [name, comp] : *state->comps) {
        for (const Transition* transition : *comp->transitions) {
            (*state->postProbs)[transition->id] = transition->proba;
        }
    }
}

void itms::sortPostProbs(State* state)
{
    state->sortedPostProbs->clear();
    for (const auto& [id, probability] : *state->postProbs) {
        state->sortedPostProbs->insert({probability, id});
    }
}

void itms::computeObsCondRough(State* state)
{
    state->obsCondProba = 1.0;
    for (const auto& [id, observed] : *state->elements) {
        if (!observed || (observed->lock != 0 && observed->lock != 3)) {
            continue;
        }
        double sum = 0.0;
        for (const auto& [modeId, mode] : *state->elements) {
            if (!mode || mode->label != "true" || mode->getStateVar()->type != "Mode") {
                continue;
            }
            for (Transition* transition : *mode->atom->transitions) {
                sum += computeCondProbRough(observed, transition, state, nullptr);
            }
        }
        state->obsCondProba *= sum;
    }
}

double itms::computeCondProbRough(TrajEl* el, Transition* transition, State* /*state*/,
                                  ElMap* /*elements*/)
{
    return roughProbability(el->atom, transition);
}

double itms::roughProbability(Atom* atom, const Transition* transition)
{
    if (piTable && piTable->getPIs(atom)) {
        std::cout << "rough proba computation - strange end\n";
        return 0.0;
    }
    SignedAtoms* formulaAtoms = transition->formula ? transition->formula->getAtoms() : nullptr;
    if (!formulaAtoms || !checkInImportedComps(atom, formulaAtoms)) {
        return 1.0 / static_cast<double>(atom->getStateVar()->getAtomLinks()->size());
    }
    return checkInOpposites(atom, formulaAtoms) ? 1.0 : 0.0;
}

namespace {

// Whether `atom` is among clause.getOpposites(of), without making the vector.
bool opposes(const Clause& clause, const Atom* of, const Atom* atom)
{
    const SignedAtoms& literals = *clause.literals;
    const auto own = std::find_if(literals.begin(), literals.end(),
                                  [of](const auto& literal) { return literal.second == of; });
    return own != literals.end() &&
           std::any_of(literals.begin(), literals.end(), [&](const auto& literal) {
               return literal.second == atom && literal.first != own->first;
           });
}

bool belongsTo(const Comp& comp, const StateVar* variable)
{
    return std::find(comp.stateVars->begin(), comp.stateVars->end(), variable) !=
           comp.stateVars->end();
}

} // namespace

bool itms::checkInOpposites(Atom* atom, SignedAtoms* formulaAtoms)
{
    for (const auto& [sign, formulaAtom] : *formulaAtoms) {
        for (const Clause* clause : *formulaAtom->clauses) {
            if (opposes(*clause, formulaAtom, atom)) {
                return true;
            }
        }
    }
    return false;
}

bool itms::checkInImportedComps(Atom* atom, SignedAtoms* formulaAtoms)
{
    const StateVar* variable = atom->getStateVar();
    for (const auto& [sign, formulaAtom] : *formulaAtoms) {
        const Comp& comp = *formulaAtom->getVarComp();
        if (belongsTo(comp, variable)) {
            return true;
        }
        for (const Comp* imported : *comp.importedComps) {
            if (belongsTo(*imported, variable)) {
                return true;
            }
        }
    }
    return false;
}
