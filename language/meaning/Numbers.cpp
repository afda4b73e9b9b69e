#include "language/meaning/Numbers.h"

#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <cmath>

namespace language {

using syntax::Expression;

const double* Environment::find(std::string_view name) const
{
    for (auto entry = local.rbegin(); entry != local.rend(); ++entry) {
        if (entry->first == name) return &entry->second;
    }
    const auto constant = types.constants.find(name);
    return constant != types.constants.end() && constant->second.known ? &constant->second.value
                                                                       : nullptr;
}

std::optional<double> evaluate(const Expression& expression, const Environment& environment,
                               Report& report)
{
    if (expression.kind == Expression::Kind::number) return expression.number;
    if (expression.kind == Expression::Kind::name) {
        const double* value = environment.find(expression.name);
        return value ? std::optional<double>(*value) : std::nullopt;
    }
    std::vector<double> operands;
    for (const Expression& operand : expression.operands) {
        const std::optional<double> value = evaluate(operand, environment, report);
        if (!value) return std::nullopt;
        operands.push_back(*value);
    }
    double result = 0;
    switch (expression.kind) {
    case Expression::Kind::negation: result = -operands[0]; break;
    case Expression::Kind::sum: result = operands[0] + operands[1]; break;
    case Expression::Kind::difference: result = operands[0] - operands[1]; break;
    case Expression::Kind::product: result = operands[0] * operands[1]; break;
    case Expression::Kind::quotient:
        if (operands[1] == 0.0) {
            report.error(expression.operands[1].range, "a division by zero",
                         "a divisor other than 0");
            return std::nullopt;
        }
        result = operands[0] / operands[1];
        break;
    case Expression::Kind::absolute: result = std::abs(operands[0]); break;
    case Expression::Kind::least:
        result = *std::min_element(operands.begin(), operands.end());
        break;
    case Expression::Kind::greatest:
        result = *std::max_element(operands.begin(), operands.end());
        break;
    default: return std::nullopt; // of channels, which ChannelTranslator reads
    }
    if (!std::isfinite(result)) {
        report.error(expression.range, "the result is too large for a number");
        return std::nullopt;
    }
    return result;
}

std::optional<long> evaluateWhole(const Expression& expression, const Environment& environment,
                                  Report& report, long least, long most, const std::string& what)
{
    const std::optional<double> value = evaluate(expression, environment, report);
    if (!value) return std::nullopt;
    if (*value < static_cast<double>(least) || *value > static_cast<double>(most) ||
        *value != std::floor(*value)) {
        report.error(expression.range, what + " is " + text::shown(*value),
                     "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
        return std::nullopt;
    }
    return static_cast<long>(*value);
}

bool checkNames(const Expression& expression, const std::vector<std::string_view>& local,
                const SourceFiles& files, Types& types, Report& report)
{
    bool sound = true;
    for (const Expression& operand : expression.operands) {
        sound = checkNames(operand, local, files, types, report) && sound;
    }
    if (expression.kind != Expression::Kind::name) return sound;
    if (std::find(local.begin(), local.end(), expression.name) != local.end()) return true;
    const auto constant = types.constants.find(expression.name);
    if (constant != types.constants.end()) {
        constant->second.used = true;
        return constant->second.known;
    }
    std::vector<std::string_view> known = local;
    for (const auto& [name, value] : types.constants) {
        known.push_back(name);
    }
    // A hash map has no order that a message could rely on.
    std::sort(known.begin() + static_cast<std::ptrdiff_t>(local.size()), known.end());
    const std::string hint = text::didYouMean(expression.name, known);
    if (files.unreadWords.contains(expression.name) || (files.unread && hint.empty())) return false;
    report.error(expression.range, "no number is called " + text::quoted(expression.name),
                 known.empty() ? "a number"
                               : "a number, or the name of one: " + text::enumerated(known),
                 hint.empty() ? "declare it: const " + expression.name + " = ..." : hint);
    return false;
}

} // namespace language
