#include "language/meaning/ChannelTranslator.h"

#include "language/syntax/Parser.h"
#include "language/syntax/Words.h"
#include "plant/BindingRules.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <cmath>

namespace language {

namespace {

using From = syntax::Expression::Kind;
using To = plant::ChannelExpression::Kind;

To channelKindOf(From kind)
{
    switch (kind) {
    case From::number:
    case From::name: return To::constant;
    case From::channel: return To::channel;
    case From::negation: return To::negation;
    case From::sum: return To::sum;
    case From::difference: return To::difference;
    case From::product: return To::product;
    case From::quotient: return To::quotient;
    case From::absolute: return To::absolute;
    case From::least: return To::least;
    case From::greatest: return To::greatest;
    case From::mean: return To::mean;
    case From::minimum: return To::minimum;
    case From::maximum: return To::maximum;
    case From::spread: return To::spread;
    case From::rate: return To::rate;
    case From::ago: return To::ago;
    }
    return To::constant;
}

} // namespace

bool isComputed(const syntax::Expression& expression)
{
    return expression.kind == From::channel || expression.unit ||
           std::any_of(expression.operands.begin(), expression.operands.end(), isComputed);
}

std::optional<plant::ChannelExpression> ChannelTranslator::translate(
    const syntax::Expression& expression, const Environment& environment)
{
    plant::ChannelExpression made;
    made.kind = channelKindOf(expression.kind);
    if (!isComputed(expression)) {
        const auto number = evaluate(expression, environment, report_);
        if (!number) return std::nullopt;
        made.kind = To::constant;
        made.number = *number;
        return made;
    }
    if (expression.kind == From::channel) {
        auto name = channelName(expression.name, expression.range, environment);
        if (!name) return std::nullopt;
        made.channel = std::move(*name);
        return made;
    }
    const std::size_t count = expression.operands.size() - (expression.unit ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i) {
        auto operand = translate(expression.operands[i], environment);
        if (!operand) return std::nullopt;
        made.operands.push_back(std::move(*operand));
    }
    if (made.kind == To::quotient && made.operands[1].kind == To::constant &&
        made.operands[1].number == 0) {
        report_.error(expression.operands[1].range, "a division by zero", "a divisor other than 0");
        return std::nullopt;
    }
    if (expression.unit) {
        const syntax::Expression& amount = expression.operands.back();
        const auto time = seconds(amount, *expression.unit, environment);
        if (!time || !plant::checkWindow(*time, stepSeconds_, report_.at(amount.range)))
            return std::nullopt;
        made.number = *time;
    }
    return made;
}

// In a loop, what stands in braces is read as the value of a constant.
std::optional<std::string> ChannelTranslator::channelName(const std::string& text,
                                                          const text::Range& range,
                                                          const Environment& environment)
{
    if (environment.local.empty()) return text;
    std::string name;
    std::size_t at = 0;
    for (std::size_t open = text.find('{'); open != std::string::npos; open = text.find('{', at)) {
        const std::size_t close = text.find('}', open);
        if (close == std::string::npos) break;
        name += text.substr(at, open - at);
        const std::string written = text.substr(open + 1, close - open - 1);
        const ParsedFile parsed = parse(text::SourceText("", "const x = " + written + "\n"));
        const syntax::Constant* constant =
            parsed.file.declarations.size() == 1
                ? std::get_if<syntax::Constant>(&parsed.file.declarations.front())
                : nullptr;
        std::optional<double> number;
        if (constant && parsed.errors.empty()) {
            // Its places are those of another text.
            Report unheard(files_.texts, 0);
            number = evaluate(constant->value, environment, unheard);
        }
        if (!number) {
            std::vector<std::string_view> known;
            for (const auto& [index, value] : environment.local) {
                known.push_back(index);
            }
            report_.error(range, "{" + written + "} is not a number",
                          "an index or a computation with it: {" +
                              std::string(environment.local.back().first) + "}",
                          text::didYouMean(written, known));
            return std::nullopt;
        }
        name += *number == std::floor(*number) && std::abs(*number) < 1e15
                    ? std::to_string(static_cast<long long>(*number))
                    : text::shown(*number);
        at = close + 1;
    }
    return name + text.substr(at);
}

std::optional<double> ChannelTranslator::seconds(const syntax::Expression& amount,
                                                 const syntax::Name& unit,
                                                 const Environment& environment)
{
    const auto number = evaluate(amount, environment, report_);
    if (!number) return std::nullopt;
    const double seconds = *number * secondsOf(unit.text).value_or(1);
    if (!plant::checkSeconds(seconds, report_.at(amount.range))) return std::nullopt;
    return seconds;
}

} // namespace language
