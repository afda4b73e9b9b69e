#include "plant/Bindings.h"

namespace plant {

namespace {

// Whether the reading is on the upper side of the limit, moved up by `by`.
bool above(double reading, const ThresholdTable::Limit& limit, double by)
{
    const double number = limit.number + by;
    return limit.belongsAbove ? reading >= number : reading > number;
}

Atom* readByThresholds(const ThresholdTable& table, double reading, const Atom* last)
{
    std::size_t plain = 0;
    std::size_t before = table.values.size();
    for (std::size_t i = 0; i < table.limits.size(); ++i) {
        if (above(reading, table.limits[i], 0)) plain = i + 1;
    }
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        if (table.values[i] == last) before = i;
    }
    if (before == table.values.size()) return table.values[plain];
    while (before < plain && above(reading, table.limits[before], table.hysteresis)) {
        ++before;
    }
    while (before > plain && !above(reading, table.limits[before - 1], -table.hysteresis)) {
        --before;
    }
    return table.values[before];
}

} // namespace

Atom* ChannelBinding::read(double number, const Atom* last) const
{
    if (const auto* thresholds = std::get_if<ThresholdTable>(&translation)) {
        return number == number ? readByThresholds(*thresholds, number, last) : nullptr;
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
