#include "language/meaning/BindingBuilder.h"

#include "language/syntax/Parser.h"
#include "language/syntax/Words.h"
#include "plant/ModelBuilder.h"

#include <algorithm>
#include <cmath>

namespace language {

void BindingBuilder::build(const syntax::Binding& binding, Instance& within,
                           const Environment& environment, plant::Bindings& bindings)
{
    plant::ChannelBinding made;
    made.variable = plant_.find(within, binding.variable, environment);
    if (!made.variable) return;
    const std::string name = made.variable->comp->name + "." + made.variable->name;
    const auto [first, isNew] = bound_.insert({made.variable, binding.range});
    if (!isNew) {
        report_.error(binding.range, text::quoted(name) + " is bound twice", "one channel for it",
                      "the first is at " + report_.where(first->second, binding.range));
        return;
    }
    made.kind = binding.kind == syntax::Binding::Kind::command
                    ? plant::ChannelBinding::Kind::command
                    : plant::ChannelBinding::Kind::observation;
    made.channel = name;
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
    bindings.channels.push_back(std::move(made));
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
    double least = 0;
    for (std::size_t i = 1; i < table.limits.size(); ++i) {
        const double before = table.limits[i - 1].number;
        const double number = table.limits[i].number;
        if (number <= before) {
            report_.error(written.limits[i].number.range,
                          "the limit " + shown(number) + " is not above the one before it, " +
                              shown(before),
                          "limits from the lowest to the highest");
            return false;
        }
        least = i == 1 ? number - before : std::min(least, number - before);
    }
    if (table.hysteresis < 0) {
        report_.error(written.hysteresis->range, "'within' is " + shown(table.hysteresis),
                      "0 or more");
        return false;
    }
    if (table.limits.size() > 1 && table.hysteresis * 2 >= least) {
        report_.error(written.hysteresis->range,
                      "'within' is " + shown(table.hysteresis) + ", and two limits are only " +
                          shown(least) + " apart",
                      "less than half of the distance between two limits");
        return false;
    }
    return true;
}

std::optional<plant::ReadingTable> BindingBuilder::readings(const syntax::Readings& written,
                                                            const StateVar* variable,
                                                            const Environment& environment)
{
    plant::ReadingTable table;
    for (const syntax::Reading& reading : written.readings) {
        Atom* atom = plant::value(variable, reading.value.text);
        if (const auto* text = std::get_if<syntax::Text>(&reading.reading)) {
            table.readings.emplace_back(text->text, atom);
        } else if (const auto* expression = std::get_if<syntax::Expression>(&reading.reading)) {
            const auto number = evaluate(*expression, environment, report_);
            if (!number) return std::nullopt;
            const auto known =
                std::find_if(table.readings.begin(), table.readings.end(), [&](const auto& entry) {
                    const double* other = std::get_if<double>(&entry.first);
                    return other && *other == *number;
                });
            if (known != table.readings.end()) {
                report_.error(expression->range,
                              "the reading " + shown(*number) + " stands for two values");
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
                          didYouMean(written, known));
            return std::nullopt;
        }
        name += *number == std::floor(*number) && std::abs(*number) < 1e15
                    ? std::to_string(static_cast<long long>(*number))
                    : shown(*number);
        at = close + 1;
    }
    return name + text.text.substr(at);
}

std::optional<double> BindingBuilder::seconds(const syntax::Duration& duration,
                                              const Environment& environment)
{
    const auto amount = evaluate(duration.amount, environment, report_);
    if (!amount) return std::nullopt;
    if (*amount < 0) {
        report_.error(duration.amount.range, "the time is " + shown(*amount), "0 or more");
        return std::nullopt;
    }
    return *amount * secondsOf(duration.unit.text).value_or(1);
}

} // namespace language
