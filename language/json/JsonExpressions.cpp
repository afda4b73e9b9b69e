#include "language/json/JsonExpressions.h"

#include "plant/BindingRules.h"

#include <array>
#include <nlohmann/json.hpp>

namespace language {

namespace {

using plant::ChannelExpression;
using ExpressionKind = ChannelExpression::Kind;

constexpr std::size_t deepestExpression = 100; // as in a model file

// In the order of their words below. `-` is a negation where it has one operand, and with a time `min` and `max` are of one operand.
constexpr std::array<ExpressionKind, 11> operationKinds{
    ExpressionKind::sum,      ExpressionKind::difference, ExpressionKind::product,
    ExpressionKind::quotient, ExpressionKind::absolute,   ExpressionKind::least,
    ExpressionKind::greatest, ExpressionKind::mean,       ExpressionKind::spread,
    ExpressionKind::rate,     ExpressionKind::ago};

std::optional<ExpressionKind> operationOf(const JsonNode& node)
{
    const auto word =
        node["op"].oneOf({"+", "-", "*", "/", "abs", "min", "max", "mean", "spread", "rate", "ago"});
    if (!word) return std::nullopt;
    const ExpressionKind kind = operationKinds.at(*word);
    if (kind == ExpressionKind::least && node.has("seconds")) return ExpressionKind::minimum;
    if (kind == ExpressionKind::greatest && node.has("seconds")) return ExpressionKind::maximum;
    return kind;
}

bool checkOperandCount(const JsonNode& of, ExpressionKind& kind)
{
    const std::size_t count = of.size();
    const bool several = kind == ExpressionKind::least || kind == ExpressionKind::greatest;
    const bool single = kind == ExpressionKind::absolute || plant::isWindow(kind);
    if (kind == ExpressionKind::difference && count == 1) kind = ExpressionKind::negation;
    const bool right =
        several ? count >= 2 : count == (single || kind == ExpressionKind::negation ? 1 : 2);
    if (!right) {
        of.error(std::to_string(count) + (count == 1 ? " operand" : " operands"),
                 several  ? "two or more"
                 : single ? "one"
                          : "two");
    }
    return right;
}

std::optional<ChannelExpression> readExpression(const JsonNode& node, double stepSeconds,
                                                std::size_t depth)
{
    ChannelExpression made;
    if (depth > deepestExpression) {
        node.error("nested deeper than " + std::to_string(deepestExpression) + " levels");
        return std::nullopt;
    }
    if (!node.isObjectAtAll()) {
        const auto number = node.number();
        if (!number) return std::nullopt;
        made.number = *number;
        return made;
    }
    if (node.has("channel")) {
        if (!node.isObject({"channel"})) return std::nullopt;
        const auto channel = node["channel"].text();
        if (!channel) return std::nullopt;
        made.kind = ExpressionKind::channel;
        made.channel = *channel;
        return made;
    }
    if (!node.isObject({"op", "of"}, {"seconds"})) return std::nullopt;
    const auto kind = operationOf(node);
    const JsonNode of = node["of"];
    if (!kind || !of.isArray()) return std::nullopt;
    made.kind = *kind;
    if (!checkOperandCount(of, made.kind)) return std::nullopt;
    if (plant::isWindow(made.kind) != node.has("seconds")) {
        node.error(plant::isWindow(made.kind) ? "an operation without its time"
                                              : "an operation that has no time",
                   plant::isWindow(made.kind) ? "\"seconds\"" : "");
        return std::nullopt;
    }
    if (plant::isWindow(made.kind)) {
        const JsonNode seconds = node["seconds"];
        const auto number = seconds.number();
        if (!number || !plant::checkWindow(*number, stepSeconds, seconds.at())) return std::nullopt;
        made.number = *number;
    }
    for (std::size_t i = 0; i < of.size(); ++i) {
        auto operand = readExpression(of[i], stepSeconds, depth + 1);
        if (!operand) return std::nullopt;
        made.operands.push_back(std::move(*operand));
    }
    return made;
}

} // namespace

std::optional<ChannelExpression> channelExpression(const JsonNode& node, double stepSeconds)
{
    return readExpression(node, stepSeconds, 1);
}

nlohmann::ordered_json expressionJson(const ChannelExpression& expression)
{
    if (expression.kind == ExpressionKind::constant) return expression.number;
    if (expression.kind == ExpressionKind::channel) return {{"channel", expression.channel}};
    nlohmann::ordered_json of = nlohmann::ordered_json::array();
    for (const ChannelExpression& operand : expression.operands) {
        of.push_back(expressionJson(operand));
    }
    nlohmann::ordered_json made{{"op", std::string(plant::wordOf(expression.kind))},
                                {"of", std::move(of)}};
    if (plant::isWindow(expression.kind)) made["seconds"] = expression.number;
    return made;
}

} // namespace language
