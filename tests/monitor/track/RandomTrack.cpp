#include "tests/monitor/track/RandomTrack.h"

#include <algorithm>

RandomTrack::RandomTrack(Random& random, const TrackOdds& odds) : random_(random), odds_(odds)
{
    for (const StateVar* mode : allVariables("Mode")) {
        world_.push_back(mode->initial ? mode->initial : mode->atomLinks->front());
    }
}

std::vector<const Atom*> RandomTrack::drawModes(const std::vector<const Atom*>& commands)
{
    const BruteForceDiagnosis diagnosis({world_, commands, {}, 0});
    std::vector<const Atom*> modes;
    for (const StateVar* mode : allVariables("Mode")) {
        std::vector<const Atom*> possible;
        for (const Atom* value : *mode->atomLinks) {
            if (diagnosis.chances(mode).count(value) != 0) {
                possible.push_back(value);
            }
        }
        modes.push_back(random_.chance(odds_.deviating) ? random_.pick(possible)
                                                        : diagnosis.predicted(mode));
    }
    return modes;
}

TrajectoryStep RandomTrack::next()
{
    TrajectoryStep step;
    std::vector<const Atom*> arriving;
    for (const StateVar* variable : allVariables("Command")) {
        const std::vector<Atom*>& values = *variable->atomLinks;
        step.commands.push_back(random_.chance(50) ? values.front() : random_.pick(values));
        arriving.push_back(step.commands.back());
        if (arriving.back() != values.front() && random_.chance(odds_.lossy)) {
            step.lossy.push_back({arriving.back(), values.front(), random_.between(1, 8) / 64.0});
            arriving.back() = random_.chance(50) ? values.front() : arriving.back();
        }
    }
    const std::vector<const Atom*> modes = drawModes(arriving);
    std::vector<const Atom*> fixed = modes;
    fixed.insert(fixed.end(), arriving.begin(), arriving.end());
    const auto world = BruteForceDiagnosis::world(fixed, random_.below(12));
    world_ = modes;
    for (const StateVar* variable : allVariables("Cond")) {
        if (!world) {
            continue;
        }
        const Atom* value = *std::find_if(world->begin(), world->end(), [&](const Atom* atom) {
            return atom->stateVar == variable;
        });
        world_.push_back(value);
        if (random_.chance(odds_.observed)) {
            step.observations.push_back(
                random_.chance(odds_.noise) ? random_.pick(*variable->atomLinks) : value);
        }
    }
    return step;
}

monitor::TrackInput trackInput(const ActivePlant& active, const TrajectoryStep& step,
                               std::size_t number)
{
    monitor::TrackInput input;
    input.step = number;
    input.t = 10.0 * static_cast<double>(number);
    input.values = {active.indices(step.commands), active.indices(step.observations)};
    for (const LossyAtom& lossy : step.lossy) {
        input.lossy.push_back({active.plant->indexOf(lossy.given),
                               active.plant->indexOf(lossy.fallback), lossy.probability});
    }
    return input;
}
