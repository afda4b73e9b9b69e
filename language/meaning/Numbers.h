// Expressions computed: numbers, constants, parameters and the indices of loops.
#pragma once

#include "language/meaning/Types.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace language {

/// The names that have values at a place: parameters and indices here, and the constants behind them.
struct Environment {
    const Types& types;
    std::vector<std::pair<std::string_view, double>> local;

    const double* find(std::string_view name) const;
};

/// The value; nothing, and an error reported, for a division by zero or a number that is too large. Names that are not known
/// have been reported before, by ExpressionNames.
std::optional<double> evaluate(const syntax::Expression& expression, const Environment& environment,
                               Report& report);

/// The same for what has to be a whole number from `least` to `most`; `what` says what it is.
std::optional<long> evaluateWhole(const syntax::Expression& expression,
                                  const Environment& environment, Report& report, long least,
                                  long most, const std::string& what);

/// Reports the names of an expression that nothing in `local` and no constant has. Marks constants as used.
bool checkNames(const syntax::Expression& expression, const std::vector<std::string_view>& local,
                const SourceFiles& files, Types& types, Report& report);

} // namespace language
