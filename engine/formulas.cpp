// Does a formula hold at a step? A flat conjunction or disjunction over the labels of a trajectory.
//
// {(true, a), (false, b)} with "and" holds when a is "true" and b is not: "unknown" counts as not holding. Every
// atom's element is fetched and evaluated, even when the result is settled already. Linear in the formula.
#include "engine/itms.h"

bool itms::evalStateFormula(StateFormula* formula, Trajectory* trajectory, int step)
{
    const bool conjunction = formula->op == "and" || formula->op.empty();
    if ((!conjunction && formula->op != "or") || !formula->atoms) {
        return false;
    }
    bool result = conjunction;
    for (const auto& [polarity, atom] : *formula->atoms) {
        const bool holds = trajectory->getElt(atom->getId(), step, 0)->evalTrajEl() == polarity;
        result = conjunction ? (result && holds) : (result || holds);
    }
    return result;
}
