#include "language/syntax/ChannelGrammar.h"

#include "text/NearestName.h"

namespace language::grammar {

void give(Duration&& duration, Operand& operand)
{
    Expression earlier;
    earlier.kind = Expression::Kind::ago;
    earlier.unit = std::move(duration.unit);
    earlier.operands.push_back(std::move(operand.expression));
    earlier.operands.push_back(std::move(duration.amount));
    operand.expression = std::move(earlier);
    ++operand.depth;
}

Mistake function_name::unknownFunction(const TokenInput& in)
{
    const std::string name(in.text(in.front()));
    std::vector<std::string_view> known;
    for (const ChannelFunction& function : channelFunctions()) {
        known.push_back(function.name);
    }
    return {&in.front(), "no function is called '" + name + "'",
            "abs, min, max, mean, spread or rate", ::text::didYouMean(name, known)};
}

Expression expressionOf(Call&& call, const Token* at)
{
    using Kind = Expression::Kind;
    using Over = ChannelFunction::Over;
    const std::string name(call.function->name);
    const bool isOver = call.over.has_value();
    if (isOver && call.function->over == Over::never)
        throw Mistake{at, "'" + name + "' over a time", name + "(...) alone", {}};
    if (!isOver && call.function->over == Over::always)
        throw Mistake{at, "'" + name + "' without a time", name + "(...) over 5 min", {}};
    const bool several = call.function->over == Over::may && !isOver;
    if (several ? call.arguments.size() < 2 : call.arguments.size() != 1) {
        throw Mistake{at,
                      "'" + name + "' of " + std::to_string(call.arguments.size()) +
                          (call.arguments.size() == 1 ? " argument" : " arguments"),
                      several ? "two or more, or " + name + "(...) over 5 min" : "one argument",
                      {}};
    }
    Expression made;
    made.kind = name == "abs"    ? Kind::absolute
                : name == "mean" ? Kind::mean
                : name == "rate" ? Kind::rate
                : name == "min"  ? (isOver ? Kind::minimum : Kind::least)
                : name == "max"  ? (isOver ? Kind::maximum : Kind::greatest)
                                 : Kind::spread;
    made.operands = std::move(call.arguments);
    if (isOver) {
        made.unit = std::move(call.over->unit);
        made.operands.push_back(std::move(call.over->amount));
    }
    return made;
}

} // namespace language::grammar
