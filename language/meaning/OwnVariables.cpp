#include "language/meaning/OwnVariables.h"

#include <algorithm>

namespace language {

namespace {

bool isName(const syntax::Path& path)
{
    return path.segments.empty() || (path.segments.size() == 1 && !path.segments.front().index);
}

} // namespace

bool speaksOfOwnVariables(const syntax::Formula& formula)
{
    return isName(formula.left) && isName(formula.right) &&
           std::all_of(formula.operands.begin(), formula.operands.end(), speaksOfOwnVariables);
}

std::uint32_t firstAtom(const Instance& instance)
{
    const auto first = std::find_if(instance.variables.begin(), instance.variables.end(),
                                    [](const StateVar* variable) { return variable != nullptr; });
    return (*first)->atomLinks->front()->number;
}

} // namespace language
