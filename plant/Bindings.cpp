#include "plant/Bindings.h"

#include <algorithm>

namespace plant {

namespace {

// Whether the reading is on the upper side of the limit, moved up by `by`.
bool above(double reading, const ThresholdTable::Limit& limit, double by)
{
    const double number = limit.number + by;
    return limit.belongsAbove ? reading >= number : reading > number;
}

} // namespace

bool ThresholdTable::isComputed() const
{
    return std::any_of(limits.begin(), limits.end(),
                       [](const Limit& limit) { return limit.computed.has_value(); });
}

Atom* ThresholdTable::read(double number, const Atom* last) const
{
    std::size_t plain = 0;
    std::size_t before = values.size();
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (above(number, limits[i], 0)) plain = i + 1;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i] == last) before = i;
    }
    if (before == values.size()) return values[plain];
    while (before < plain && above(number, limits[before], hysteresis)) {
        ++before;
    }
    while (before > plain && !above(number, limits[before - 1], -hysteresis)) {
        --before;
    }
    return values[before];
}

bool ChannelBinding::isLate() const
{
    const auto* thresholds = std::get_if<ThresholdTable>(&translation);
    return computed || persistSeconds || settling || (thresholds && thresholds->isComputed());
}

Atom* ChannelBinding::read(double number, const Atom* last) const
{
    if (const auto* thresholds = std::get_if<ThresholdTable>(&translation)) {
        return number == number ? thresholds->read(number, last) : nullptr;
    }
    const auto* table = std::get_if<ReadingTable>(&translation);
    if (!table) return nullptr;
    for (const auto& [reading, atom] : table->readings) {
        const double* known = std::get_if<double>(&reading);
        if (known && *known == number) return atom;
    }
    return table->otherwise;
}

Atom* ChannelBinding::read(std::string_view text) const
{
    const auto* table = std::get_if<ReadingTable>(&translation);
    if (table) {
        for (const auto& [reading, atom] : table->readings) {
            const std::string* known = std::get_if<std::string>(&reading);
            if (known && *known == text) return atom;
        }
    }
    for (Atom* atom : *variable->atomLinks) {
        if (atom->value == text) return atom;
    }
    return table ? table->otherwise : nullptr;
}

} // namespace plant
