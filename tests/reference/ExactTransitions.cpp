#include "tests/reference/ExactTransitions.h"

#include <algorithm>
#include <cstdlib>

namespace {

// That a sum of probabilities is 1.
constexpr double tolerance = 1e-9;

} // namespace

ExactTransitions::ExactTransitions(const plant::Model& model, const ExactWorlds& worlds)
    : worlds_(worlds)
{
    std::map<std::size_t, std::size_t> places;
    for (std::size_t i = 0; i < model.transitions().size(); ++i) {
        const Transition& transition = *model.transitions()[i];
        const auto [place, isNew] = places.emplace(model.changeOf(i), statements_.size());
        if (isNew) {
            statements_.push_back({transition.atom, transition.proba, {}});
        }
        Statement& statement = statements_[place->second];
        if (statement.target != transition.atom || statement.probability != transition.proba) {
            std::abort();
        }
        statement.alternatives.push_back(model.preconditionOf(i));
    }
}

bool ExactTransitions::holds(const Statement& statement, const World& world) const
{
    return std::any_of(
        statement.alternatives.begin(), statement.alternatives.end(), [&](const auto& alternative) {
            return std::all_of(alternative.begin(), alternative.end(), [&](const auto& literal) {
                const auto& [mustHold, atom] = literal;
                return (worlds_.value(world, atom->stateVar) == atom) == mustHold;
            });
        });
}

ExactFraction ExactTransitions::share(const Statement& statement, const std::vector<World>& before,
                                      const std::vector<const Atom*>& commands) const
{
    // The commands of this step take the place of those before it, in every way that is open.
    std::vector<World> combinations = before;
    for (const StateVar* command : worlds_.variables("Command")) {
        std::vector<const Atom*> values(command->atomLinks->begin(), command->atomLinks->end());
        for (const Atom* given : commands) {
            if (given->stateVar == command) {
                values = {given};
            }
        }
        const bool mentioned =
            std::any_of(statement.alternatives.begin(), statement.alternatives.end(),
                        [&](const auto& alternative) {
                            return std::any_of(alternative.begin(), alternative.end(),
                                               [&](const auto& literal) {
                                                   return literal.second->stateVar == command;
                                               });
                        });
        if (!mentioned) {
            continue;
        }
        std::vector<World> more;
        for (World world : combinations) {
            for (const Atom* value : values) {
                world[worlds_.indexOf(command)] = value;
                more.push_back(world);
            }
        }
        combinations = std::move(more);
    }
    const auto count = std::count_if(combinations.begin(), combinations.end(),
                                     [&](const World& world) { return holds(statement, world); });
    return {static_cast<std::uint32_t>(count), static_cast<std::uint32_t>(combinations.size())};
}

std::map<const Atom*, ExactFraction> ExactTransitions::chances(
    const StateVar* mode, const Atom* from, const std::vector<World>& before,
    const std::vector<const Atom*>& commands) const
{
    std::map<const Atom*, ExactFraction> result;
    ExactFraction leaving;
    for (const Statement& statement : statements_) {
        if (statement.target->stateVar != mode || statement.target == from ||
            statement.probability <= 0.0) {
            continue;
        }
        const ExactFraction chance =
            ExactFraction::of(statement.probability) * share(statement, before, commands);
        if (!chance.isZero()) {
            result[statement.target] += chance;
            leaving += chance;
        }
    }
    if (leaving + ExactFraction::of(tolerance) < ExactFraction(1)) {
        result[from] = ExactFraction(1) - leaving;
    }
    return result;
}
