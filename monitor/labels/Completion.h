// Whether labels can be completed: values for everything that is still open, such that every clause holds.
//
// Unit propagation that finds no contradiction does not prove that there is none: with (a | b), (a | !b), (!a | b)
// and (!a | !b) it leaves both open. Before a candidate is given out as an explanation, its labels are completed: one
// open variable after the other gets a value, which is propagated, and taken back when it contradicts the others.
#pragma once

#include "monitor/labels/Prediction.h"

#include <functional>

namespace monitor {

enum class Completion {
    possible,
    impossible,
    unsettled ///< neither could be shown within the bound
};

/// Values that are taken back without an alternative, at most, before the answer is "unsettled".
constexpr std::uint64_t completionRetreats = 10000;

/// Whether every open variable can have a value. Requires: `labels` are propagated without contradiction. Linear where no
/// value is taken back; `mostRetreats` bounds the rest.
Completion completionOf(const Plant& plant, Prediction labels,
                        std::uint64_t mostRetreats = completionRetreats);

/// The variables that the labels leave open, and of which it may not be as in other labels whether they can have values: those that
/// open clauses connect with a label that is different. By rising index. Linear in the clauses around them, where both share the rest.
std::vector<VariableIndex> variablesAround(const Plant& plant, const Prediction& labels,
                                           const Prediction& others);

/// Whether these variables can have values without one being taken back that its laws allowed when it came to it: so it makes no
/// difference whether variables that no open clause connects with them are completed before, after or between them.
/// Requires: sorted, and with each variable those that open clauses connect with it.
bool fillsInTurn(const Plant& plant, Prediction labels, const std::vector<VariableIndex>& variables);
/// Whether that is so of all open variables of the labels, given that it was of those before. Looks around what differs; may be false
/// where looking at all of them would show that it is.
bool stillFillsInTurn(const Plant& plant, const Prediction& labels, const Prediction& before);

/// The values of a variable in the order in which a completion tries them. Called again whenever the completion comes to the
/// variable.
using ValueOrder = std::function<std::vector<AtomIndex>(VariableIndex)>;

/// The same, and hands the values out. Requires: `order` names every open variable. Ensures: with "possible", `labels` are
/// complete, otherwise they are as before; the variables get their values in the given order, each the first one with
/// which the rest can be completed.
Completion complete(const Plant& plant, Prediction& labels, const std::vector<VariableIndex>& order,
                    const ValueOrder& values, std::uint64_t mostRetreats = completionRetreats);

} // namespace monitor
