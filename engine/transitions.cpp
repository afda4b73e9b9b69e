// Compilation of transitions: identifiers, weights, guard probabilities, references from commands.
//
// A transition's weight is its probability over the number of *all* transitions of its component: 0.3, 0.6
// and 0.1 in a component of three weigh 0.1, 0.2 and 0.0333333. An idle or failure transition that no command
// guards can happen under any command, so every command value of the component refers to it. Linear in the
// component's transitions and guards, times its command values.
#include "engine/itms.h"
#include "model/trace.h"

namespace {

bool namesCommand(const Transition& transition)
{
    if (!transition.guard || !transition.guard->atoms) {
        return false;
    }
    for (const auto& [sign, atom] : *transition.guard->atoms) {
        if (atom->stateVar->type == "Command") {
            return true;
        }
    }
    return false;
}

void referFromCommands(Transition& transition, const std::vector<CommandVar*>& commandVars)
{
    for (const CommandVar* command : commandVars) {
        for (Atom* atom : *command->atomLinks) {
            atom->addRefTransPre(&transition);
            if (tracing()) {
                std::cout << "adding idle trans reference :\n" << atom->id << std::endl;
            }
            transition.showTransition();
        }
    }
}

} // namespace

void itms::idTransitions(Comp* comp, int& counter)
{
    const auto transitionsOfComp = static_cast<double>(comp->transitions->size());
    for (Transition* transition : *comp->transitions) {
        transition->id = counter;
        transition->showTransition();
        (*active_trans)[counter] = transition;
        transition->weight = transition->proba / transitionsOfComp;
        if (tracing()) {
            std::cout << "weight : " << transition->weight << std::endl;
        }
        ++counter;
        if ((transition->type == "Fail" || transition->idle) && !namesCommand(*transition)) {
            transition->commanded = false;
            if (comp->commandVars) {
                referFromCommands(*transition, *comp->commandVars);
            }
        }
    }
    comp->getTransitionsGuards();
    for (Transition* transition : *comp->transitions) {
        const StateVar& variable = *transition->stateVar;
        transition->guardProba = transition->proba / variable.guardsNumber;
        if (tracing()) {
            std::cout << "guards number of " << transition->atom->id << " : "
                      << transition->atom->guardsNumber << std::endl;
            std::cout << "guards number of " << variable.name << " : " << variable.guardsNumber
                      << std::endl;
            std::cout << "guard proba : " << transition->guardProba << std::endl;
        }
    }
}

void itms::compileTransitionsProb(Atom* atom)
{
    if (atom->transitions->empty()) {
        return;
    }
    double sum = 0.0;
    for (const Transition* transition : *atom->transitions) {
        sum += transition->proba;
    }
    atom->compiledProba = sum / static_cast<double>(atom->transitions->size());
    if (tracing()) {
        std::cout << "compiled probability : " << atom->id << " -- " << atom->compiledProba
                  << std::endl;
    }
}
