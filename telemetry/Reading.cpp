#include "telemetry/Reading.h"

#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace telemetry {

namespace {

using plant::ChannelBinding;
using plant::ReadingTable;
using plant::ThresholdTable;

const ReadingTable* tableOf(const Variable& variable)
{
    return variable.binding ? std::get_if<ReadingTable>(&variable.binding->translation) : nullptr;
}

bool hasThresholds(const Variable& variable)
{
    return variable.binding && std::holds_alternative<ThresholdTable>(variable.binding->translation);
}

Atom* mapped(const Variable& variable, std::string_view text)
{
    const ReadingTable* table = tableOf(variable);
    if (!table) return nullptr;
    for (const auto& [reading, atom] : table->readings) {
        const std::string* known = std::get_if<std::string>(&reading);
        if (known && *known == text) return atom;
    }
    return nullptr;
}

Atom* named(const Variable& variable, std::string_view text)
{
    for (Atom* atom : *variable.variable->atomLinks) {
        if (atom->value == text) return atom;
    }
    return nullptr;
}

constexpr std::size_t mostListed = 12;

std::vector<std::string_view> valueNames(const Variable& variable)
{
    std::vector<std::string_view> names;
    for (const Atom* atom : *variable.variable->atomLinks) {
        names.push_back(atom->value);
    }
    return names;
}

std::string shortened(const std::vector<std::string_view>& items)
{
    return text::enumerated(items, mostListed, text::Rest::more);
}

std::string allowed(const Variable& variable)
{
    const std::string values = shortened(valueNames(variable));
    if (hasThresholds(variable)) return "a finite number, or " + values;
    const ReadingTable* table = tableOf(variable);
    if (!table || table->readings.empty()) return values;
    std::vector<std::string> readings;
    for (const auto& [reading, atom] : table->readings) {
        const double* number = std::get_if<double>(&reading);
        readings.push_back(number ? fmt::format("{}", *number)
                                  : fmt::format("\"{}\"", std::get<std::string>(reading)));
    }
    return shortened({readings.begin(), readings.end()}) + ", or " + values;
}

std::string hintFor(const Variable& variable, const Reading& reading)
{
    const auto number =
        reading.kind == Reading::Kind::number ? reading.number : parseNumber(reading.text);
    if (number && !std::isfinite(*number)) return "leave out what was not observed";
    if (number && reading.kind == Reading::Kind::text && variable.binding &&
        valueOf(variable, true, {Reading::Kind::number, *number, {}}, nullptr)) {
        return "a number stands without quotes";
    }
    if (number && !variable.binding)
        return "a number needs a binding in the model that says which value it stands for";
    return text::didYouMean(reading.text, valueNames(variable));
}

} // namespace

std::optional<double> parseNumber(std::string_view text, char decimal)
{
    if (decimal != '.') {
        if (text.find('.') != std::string_view::npos) return std::nullopt;
        std::string pointed(text);
        std::replace(pointed.begin(), pointed.end(), decimal, '.');
        return parseNumber(pointed);
    }
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    // Numbers too large and numbers too near to zero both give this error; strtod distinguishes them.
    if (error == std::errc::result_out_of_range)
        number = std::strtod(std::string(text).c_str(), nullptr);
    return number;
}

bool wantsNumber(const Variable& variable)
{
    if (hasThresholds(variable)) return true;
    const ReadingTable* table = tableOf(variable);
    return table && !table->otherwise && !table->readings.empty() &&
           std::all_of(table->readings.begin(), table->readings.end(), [](const auto& reading) {
               return std::holds_alternative<double>(reading.first);
           });
}

std::optional<double> numberOf(const Reading& reading)
{
    switch (reading.kind) {
    case Reading::Kind::number: return reading.number;
    case Reading::Kind::cell: return parseNumber(reading.text);
    case Reading::Kind::text: break;
    }
    return std::nullopt;
}

bool isNumber(const Reading& reading)
{
    const auto number = numberOf(reading);
    return number && std::isfinite(*number);
}

Atom* valueOf(const Variable& variable, bool byChannel, const Reading& reading, const Atom* last)
{
    const ChannelBinding* binding = variable.binding;
    if (reading.kind == Reading::Kind::number)
        return binding && std::isfinite(reading.number) ? binding->read(reading.number, last)
                                                        : nullptr;
    Atom* exact = byChannel ? mapped(variable, reading.text) : named(variable, reading.text);
    if (!exact) exact = byChannel ? named(variable, reading.text) : mapped(variable, reading.text);
    if (exact || !binding) return exact;
    const auto number = parseNumber(reading.text);
    if (number && !std::isfinite(*number)) return nullptr;
    if (number && reading.kind == Reading::Kind::cell) return binding->read(*number, last);
    return binding->read(reading.text);
}

text::Message notAValue(const Variable& variable, std::string_view name, const Reading& reading)
{
    const std::string found = reading.kind == Reading::Kind::number ? std::string(reading.text)
                                                                    : text::quoted(reading.text);
    return {fmt::format("the value of {} is {}", text::quoted(name), found), allowed(variable),
            hintFor(variable, reading)};
}

} // namespace telemetry
