#include "tests/reference/ExactWorlds.h"

#include <algorithm>

ExactWorlds::ExactWorlds(const plant::Model& model)
{
    for (const char* type : {"Mode", "Command", "Cond"}) {
        for (const auto& component : model.components()) {
            for (const StateVar* variable : *component->stateVars) {
                if (variable->type == type) {
                    index_[variable] = variables_.size();
                    variables_.push_back(variable);
                }
            }
        }
    }
    lawsEndingAt_.resize(variables_.size());
    for (std::size_t law = 0; law < model.lawCount(); ++law) {
        const auto& literals = laws_.emplace_back(model.literalsOf(law));
        contradictory_ = contradictory_ || literals.empty();
        std::size_t last = 0;
        for (const plant::Literal& literal : literals) {
            last = std::max(last, indexOf(literal.atom->stateVar));
        }
        if (!literals.empty()) {
            lawsEndingAt_[last].push_back(law);
        }
    }
}

std::vector<const StateVar*> ExactWorlds::variables(const std::string& type) const
{
    std::vector<const StateVar*> result;
    std::copy_if(variables_.begin(), variables_.end(), std::back_inserter(result),
                 [&](const StateVar* variable) { return variable->type == type; });
    return result;
}

bool ExactWorlds::satisfied(std::size_t law, const World& world) const
{
    const auto& literals = laws_[law];
    return std::any_of(literals.begin(), literals.end(), [&](const plant::Literal& literal) {
        return (value(world, literal.atom->stateVar) == literal.atom) != literal.negated;
    });
}

void ExactWorlds::complete(World& world, std::size_t next, const World& fixed,
                           std::vector<World>& found) const
{
    if (next == variables_.size()) {
        found.push_back(world);
        return;
    }
    for (const Atom* value : *variables_[next]->atomLinks) {
        if (fixed[next] && fixed[next] != value) {
            continue;
        }
        world[next] = value;
        const std::vector<std::size_t>& laws = lawsEndingAt_[next];
        if (std::all_of(laws.begin(), laws.end(),
                        [&](std::size_t law) { return satisfied(law, world); })) {
            complete(world, next + 1, fixed, found);
        }
    }
    world[next] = nullptr;
}

std::vector<World> ExactWorlds::with(const std::vector<const Atom*>& given) const
{
    World fixed(variables_.size(), nullptr);
    for (const Atom* atom : given) {
        const Atom*& value = fixed[indexOf(atom->stateVar)];
        if (value && value != atom) {
            return {};
        }
        value = atom;
    }
    std::vector<World> found;
    World world(variables_.size(), nullptr);
    if (!contradictory_) {
        complete(world, 0, fixed, found);
    }
    return found;
}

std::vector<World> ExactWorlds::with(const std::vector<World>& worlds,
                                     const std::vector<const Atom*>& given) const
{
    std::vector<World> result;
    std::copy_if(worlds.begin(), worlds.end(), std::back_inserter(result), [&](const World& world) {
        return std::all_of(given.begin(), given.end(),
                           [&](const Atom* atom) { return value(world, atom->stateVar) == atom; });
    });
    return result;
}

std::set<std::vector<const Atom*>> ExactWorlds::combinations(
    const std::vector<World>& worlds, const std::vector<const StateVar*>& variables) const
{
    std::set<std::vector<const Atom*>> result;
    for (const World& world : worlds) {
        std::vector<const Atom*> combination;
        for (const StateVar* variable : variables) {
            combination.push_back(value(world, variable));
        }
        result.insert(std::move(combination));
    }
    return result;
}

std::vector<World> ExactWorlds::withoutCommands(const std::vector<World>& worlds) const
{
    std::set<World> result;
    for (World world : worlds) {
        for (const StateVar* command : variables("Command")) {
            world[indexOf(command)] = nullptr;
        }
        result.insert(std::move(world));
    }
    return {result.begin(), result.end()};
}
