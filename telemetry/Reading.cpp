#include "telemetry/Reading.h"

#include "text/NearestName.h"

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

// What is listed of many values.
class List {
public:
    void add(const std::string& item)
    {
        if (++count_ > most) return;
        text_ += (text_.empty() ? "" : ", ") + item;
    }
    std::string text() const
    {
        return count_ > most ? fmt::format("{} and {} more", text_, count_ - most) : text_;
    }

private:
    static constexpr std::size_t most = 12;
    std::string text_;
    std::size_t count_ = 0;
};

std::string valueNames(const Variable& variable)
{
    List list;
    for (const Atom* atom : *variable.variable->atomLinks) {
        list.add(atom->value);
    }
    return list.text();
}

std::string allowed(const Variable& variable)
{
    if (hasThresholds(variable)) return "a finite number, or " + valueNames(variable);
    List list;
    if (const ReadingTable* table = tableOf(variable)) {
        for (const auto& [reading, atom] : table->readings) {
            const double* number = std::get_if<double>(&reading);
            list.add(number ? fmt::format("{}", *number)
                            : fmt::format("\"{}\"", std::get<std::string>(reading)));
        }
    }
    const std::string readings = list.text();
    return readings.empty() ? valueNames(variable) : readings + ", or " + valueNames(variable);
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
    std::vector<std::string_view> known;
    for (const Atom* atom : *variable.variable->atomLinks) {
        known.push_back(atom->value);
    }
    return didYouMean(text::nearestName(reading.text, known));
}

} // namespace

std::optional<double> parseNumber(std::string_view text)
{
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    // Neither what is too large nor what is too near to zero gives a number here; strtod tells them apart.
    if (error == std::errc::result_out_of_range)
        number = std::strtod(std::string(text).c_str(), nullptr);
    return number;
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

Complaint notAValue(const Variable& variable, std::string_view name, const Reading& reading)
{
    const std::string found = reading.kind == Reading::Kind::number ? std::string(reading.text)
                                                                    : text::quoted(reading.text);
    return {Complaint::About::value, fmt::format("the value of {} is {}", text::quoted(name), found),
            allowed(variable), hintFor(variable, reading)};
}

} // namespace telemetry
