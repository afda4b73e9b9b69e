#include "plant/ChannelExpression.h"

#include <fmt/format.h>

namespace plant {

namespace {

using Kind = ChannelExpression::Kind;

std::string quotedChannel(const std::string& name)
{
    std::string text = "\"";
    for (const char sign : name) {
        if (sign == '"' || sign == '\\') text += '\\';
        text += sign;
    }
    return text + "\"";
}

// Operands of operators are told apart by parentheses.
std::string operandText(const ChannelExpression& operand)
{
    const bool isOperator = operand.kind >= Kind::negation && operand.kind <= Kind::quotient;
    return isOperator ? "(" + textOf(operand) + ")" : textOf(operand);
}

} // namespace

bool isWindow(Kind kind)
{
    return kind >= Kind::mean;
}

std::string_view wordOf(Kind kind)
{
    switch (kind) {
    case Kind::negation:
    case Kind::difference: return "-";
    case Kind::sum: return "+";
    case Kind::product: return "*";
    case Kind::quotient: return "/";
    case Kind::absolute: return "abs";
    case Kind::least:
    case Kind::minimum: return "min";
    case Kind::greatest:
    case Kind::maximum: return "max";
    case Kind::mean: return "mean";
    case Kind::spread: return "spread";
    case Kind::rate: return "rate";
    case Kind::ago: return "ago";
    case Kind::constant:
    case Kind::channel: break;
    }
    return {};
}

std::string textOf(const ChannelExpression& expression)
{
    const auto& operands = expression.operands;
    const std::string_view word = wordOf(expression.kind);
    switch (expression.kind) {
    case Kind::constant: return fmt::format("{}", expression.number);
    case Kind::channel: return quotedChannel(expression.channel);
    case Kind::negation: return "-" + operandText(operands[0]);
    case Kind::sum:
    case Kind::difference:
    case Kind::product:
    case Kind::quotient:
        return fmt::format("{} {} {}", operandText(operands[0]), word, operandText(operands[1]));
    case Kind::ago: return fmt::format("{} ago {} s", operandText(operands[0]), expression.number);
    default: break;
    }
    std::string text = fmt::format("{}(", word);
    for (std::size_t i = 0; i < operands.size(); ++i) {
        text += (i == 0 ? "" : ", ") + textOf(operands[i]);
    }
    text += ")";
    return isWindow(expression.kind) ? fmt::format("{} over {} s", text, expression.number) : text;
}

void forEach(const ChannelExpression& expression,
             const std::function<void(const ChannelExpression&)>& visit)
{
    for (const ChannelExpression& operand : expression.operands) {
        forEach(operand, visit);
    }
    visit(expression);
}

} // namespace plant
