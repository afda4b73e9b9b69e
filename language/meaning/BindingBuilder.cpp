#include "language/meaning/BindingBuilder.h"

#include "language/syntax/Parser.h"
#include "language/syntax/Words.h"
#include "plant/BindingRules.h"
#include "plant/Names.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <cmath>

namespace language {

plant::ChannelBinding::Kind kindOf(const syntax::Binding& binding)
{
    return binding.kind == syntax::Binding::Kind::command ? plant::ChannelBinding::Kind::command
                                                          : plant::ChannelBinding::Kind::observation;
}

void BindingBuilder::build(const syntax::Binding& binding, Instance& within,
                           const Environment& environment)
{
    plant::ChannelBinding made;
    made.variable = plant_.find(within, binding.variable, environment);
    if (!made.variable) return;
    if (!builder_.bind(made.variable, report_.at(binding.range))) return;
    made.kind = kindOf(binding);
    made.input = binding.kind == syntax::Binding::Kind::input;
    made.channel = plant::nameOf(*made.variable);
    if (binding.channel) {
        const auto channel = channelName(*binding.channel, environment);
        if (!channel) return;
        made.channel = *channel;
    }
    if (const auto* row = std::get_if<syntax::Thresholds>(&binding.translation)) {
        auto table = thresholds(*row, made.variable, environment);
        if (!table) return;
        made.translation = std::move(*table);
    } else if (const auto* list = std::get_if<syntax::Readings>(&binding.translation)) {
        auto table = readings(*list, made.variable, environment);
        if (!table) return;
        made.translation = std::move(*table);
    }
    if (binding.hold) {
        made.holdSeconds = seconds(*binding.hold, environment);
        if (!made.holdSeconds) return;
    }
    if (binding.varies) {
        made.varies = probabilityPerStep(*binding.varies, environment, stepSeconds_, report_);
        if (!made.varies) return;
        if (!plant::checkVaries(*made.varies, report_.at(binding.varies->range))) return;
    }
    builder_.channel(std::move(made));
}

std::optional<plant::ThresholdTable> BindingBuilder::thresholds(const syntax::Thresholds& written,
                                                                const StateVar* variable,
                                                                const Environment& environment)
{
    plant::ThresholdTable table;
    for (const syntax::Name& name : written.values) {
        table.values.push_back(plant::value(variable, name.text));
    }
    for (const syntax::Thresholds::Limit& limit : written.limits) {
        const auto number = evaluate(limit.number, environment, report_);
        if (!number) return std::nullopt;
        table.limits.push_back({*number, limit.above == syntax::Order::lessOrEqual});
    }
    if (written.hysteresis) {
        const auto hysteresis = evaluate(*written.hysteresis, environment, report_);
        if (!hysteresis) return std::nullopt;
        table.hysteresis = *hysteresis;
    }
    if (!checkLimits(written, table)) return std::nullopt;
    return table;
}

bool BindingBuilder::checkLimits(const syntax::Thresholds& written,
                                 const plant::ThresholdTable& table)
{
    for (std::size_t i = 0; i < table.limits.size(); ++i) {
        if (!plant::checkLimit(table, i, report_.at(written.limits[i].number.range))) return false;
    }
    return !written.hysteresis ||
           plant::checkHysteresis(table, report_.at(written.hysteresis->range));
}

std::optional<plant::ReadingTable> BindingBuilder::readings(const syntax::Readings& written,
                                                            const StateVar* variable,
                                                            const Environment& environment)
{
    plant::ReadingTable table;
    plant::ReadingSet numbers;
    for (const syntax::Reading& reading : written.readings) {
        Atom* atom = plant::value(variable, reading.value.text);
        if (const auto* text = std::get_if<syntax::Text>(&reading.reading)) {
            table.readings.emplace_back(text->text, atom);
        } else if (const auto* expression = std::get_if<syntax::Expression>(&reading.reading)) {
            const auto number = evaluate(*expression, environment, report_);
            if (!number) return std::nullopt;
            if (!numbers.add(*number, "the reading " + text::shown(*number),
                             report_.at(expression->range))) {
                return std::nullopt;
            }
            table.readings.emplace_back(*number, atom);
        } else {
            table.otherwise = atom;
        }
    }
    return table;
}

// Outside of loops braces are part of the name. In a loop, what stands in them is read as the value of a constant.
std::optional<std::string> BindingBuilder::channelName(const syntax::Text& text,
                                                       const Environment& environment)
{
    if (environment.local.empty()) return text.text;
    std::string name;
    std::size_t at = 0;
    for (std::size_t open = text.text.find('{'); open != std::string::npos;
         open = text.text.find('{', at)) {
        const std::size_t close = text.text.find('}', open);
        if (close == std::string::npos) break;
        name += text.text.substr(at, open - at);
        const std::string written = text.text.substr(open + 1, close - open - 1);
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
            report_.error(text.range, "{" + written + "} is not a number",
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
    return name + text.text.substr(at);
}

std::optional<double> BindingBuilder::seconds(const syntax::Duration& duration,
                                              const Environment& environment)
{
    const auto amount = evaluate(duration.amount, environment, report_);
    if (!amount) return std::nullopt;
    const double seconds = *amount * secondsOf(duration.unit.text).value_or(1);
    if (!plant::checkSeconds(seconds, report_.at(duration.amount.range))) return std::nullopt;
    return seconds;
}

} // namespace language
