#include "simulate/CommandSource.h"

namespace simulate {

CommandSource::CommandSource(const plant::Plant& plant, std::uint64_t seed, double probability)
    : plant_(plant), chance_(seed), probability_(probability)
{
}

std::vector<plant::AtomIndex> CommandSource::next()
{
    std::vector<plant::AtomIndex> commands;
    for (const plant::PlantVariable& variable : plant_.variables()) {
        if (variable.isCommand && variable.values.size() > 1 && chance_.happens(probability_)) {
            commands.push_back(variable.values[1 + chance_.below(variable.values.size() - 1)]);
        }
    }
    return commands;
}

} // namespace simulate
