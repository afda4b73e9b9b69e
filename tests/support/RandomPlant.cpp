#include "tests/support/RandomPlant.h"

#include <algorithm>
#include <cstdlib>

using plant::Literal;
using plant::ModelBuilder;
using plant::ValueDeclaration;
using plant::VariableKind;

namespace {

std::vector<ValueDeclaration> numbers(std::size_t count)
{
    std::vector<ValueDeclaration> values;
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back({std::to_string(i)});
    }
    return values;
}

double sixtyFourths(int count)
{
    return count / 64.0;
}

// A component in the making.
struct Part {
    Comp* comp;
    StateVar* mode;
    std::vector<StateVar*> inputs;
    StateVar* output;
    CommandVar* command = nullptr;
};

class Maker {
public:
    explicit Maker(Random& random) : random_(random), builder_("random") {}

    std::unique_ptr<plant::Model> mixed()
    {
        const int count = random_.between(2, 4);
        for (int i = 0; i < count; ++i) {
            addPart(i, random_.chance(40));
        }
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            connect(parts_[i]);
        }
        for (int i = random_.between(-3, 2); i > 0; --i) {
            addRandomLaw();
        }
        return builder_.build();
    }

    std::unique_ptr<plant::Model> circuit()
    {
        std::vector<StateVar*> signals;
        const int inputs = random_.between(2, 4);
        for (int i = 0; i < inputs; ++i) {
            signals.push_back(builder_.variable(builder_.component("in" + std::to_string(i)), "v",
                                                VariableKind::condition, numbers(2)));
        }
        const int gates = random_.between(3, 6);
        for (int i = 0; i < gates; ++i) {
            signals.push_back(gate(i, signals));
        }
        return builder_.build();
    }

private:
    std::vector<ValueDeclaration> modeValues(bool valve)
    {
        std::vector<ValueDeclaration> values{{"ok"}};
        if (valve) {
            values = {{"closed"}, {"open"}};
        }
        for (const char* fault : {"stuck", "broken"}) {
            if (random_.chance(60)) {
                values.push_back({fault, true});
            }
        }
        if (values.back().fault == false || random_.chance(40)) {
            values.push_back({"unknown", true});
        }
        return values;
    }

    void addPart(int number, bool valve)
    {
        Part part{};
        part.comp = builder_.component("c" + std::to_string(number));
        part.mode = builder_.variable(part.comp, "mode", VariableKind::mode, modeValues(valve), 0);
        for (int i = random_.between(1, 2); i > 0; --i) {
            part.inputs.push_back(builder_.variable(part.comp, "in" + std::to_string(i),
                                                    VariableKind::condition,
                                                    numbers(random_.chance(70) ? 2 : 3)));
        }
        part.output = builder_.variable(
            part.comp, "out", VariableKind::condition,
            numbers(static_cast<std::size_t>(random_.chance(60) ? 2 : random_.between(3, 4))));
        if (valve) {
            part.command = static_cast<CommandVar*>(builder_.variable(
                part.comp, "request", VariableKind::command, {{"none"}, {"open"}, {"close"}}, 0));
            part.command->commandBlocked = random_.chance(5);
        }
        parts_.push_back(part);
        for (Atom* mode : *part.mode->atomLinks) {
            addModeLaws(part, mode);
            addTransitions(part, mode);
        }
    }

    void addModeLaws(const Part& part, Atom* mode)
    {
        const std::vector<Atom*>& outputs = *part.output->atomLinks;
        if (mode->value == "unknown") {
            return;
        }
        if (mode->fail && random_.chance(70)) {
            builder_.law(part.comp, {{true, mode}, {false, random_.pick(outputs)}});
            return;
        }
        for (Atom* a : *part.inputs.front()->atomLinks) {
            for (Atom* b : *part.inputs.back()->atomLinks) {
                const bool open = random_.chance(mode->fail ? 20 : 5);
                if (!open) {
                    builder_.law(
                        part.comp,
                        {{true, mode}, {true, a}, {true, b}, {false, random_.pick(outputs)}});
                }
            }
        }
    }

    void addTransitions(const Part& part, Atom* from)
    {
        for (Atom* to : *part.mode->atomLinks) {
            if (to == from || (from->fail && !random_.chance(15))) {
                continue;
            }
            if (to->fail) {
                builder_.fault(from, to, sixtyFourths(random_.between(1, 2)));
            } else if (from->fail) {
                // A repair, which may be what is predicted, or come by itself.
                builder_.nominal(from, to, requested(part, "none"),
                                 sixtyFourths(random_.between(1, 32)));
            } else {
                std::vector<std::pair<bool, Atom*>> guard =
                    requested(part, to->value == "open" ? "open" : "close");
                if (random_.chance(20)) {
                    guard.emplace_back(random_.chance(50),
                                       random_.pick(*part.inputs.front()->atomLinks));
                }
                builder_.nominal(from, to, guard, sixtyFourths(random_.between(40, 56)));
            }
        }
        if (random_.chance(50)) {
            builder_.idle(from, 1.0);
        }
    }

    static std::vector<std::pair<bool, Atom*>> requested(const Part& part, const std::string& text)
    {
        if (!part.command) {
            return {};
        }
        return {{true, plant::value(part.command, text)}};
    }

    // The inputs follow the outputs of earlier components.
    void connect(const Part& part)
    {
        for (const StateVar* input : part.inputs) {
            if (!random_.chance(80)) {
                continue;
            }
            const auto position = static_cast<std::size_t>(
                std::find_if(parts_.begin(), parts_.end(),
                             [&](const Part& other) { return other.comp == part.comp; }) -
                parts_.begin());
            const std::vector<Atom*>& from = *parts_[random_.below(position)].output->atomLinks;
            for (std::size_t i = 0; i < from.size(); ++i) {
                Atom* to = (*input->atomLinks)[i % input->atomLinks->size()];
                builder_.law(part.comp, {{true, from[i]}, {false, to}});
            }
        }
    }

    void addRandomLaw()
    {
        std::vector<Literal> literals;
        for (int i = random_.chance(10) ? 1 : random_.between(2, 3); i > 0; --i) {
            const Part& part = random_.pick(parts_);
            const StateVar* variable = random_.chance(25)                   ? part.mode
                                       : random_.chance(50)                 ? part.output
                                       : part.command && random_.chance(30) ? part.command
                                                                            : part.inputs.front();
            literals.push_back({random_.chance(60), random_.pick(*variable->atomLinks)});
        }
        builder_.law(parts_.front().comp, literals);
    }

    StateVar* gate(int number, const std::vector<StateVar*>& signals)
    {
        Comp* comp = builder_.component("g" + std::to_string(number));
        std::vector<ValueDeclaration> values{{"ok"}};
        const std::size_t faults = 1 + random_.below(3);
        for (std::size_t i = 0; i < faults; ++i) {
            values.push_back({std::vector<std::string>{"unknown", "stuck0", "stuck1"}[i], true});
        }
        StateVar* mode = builder_.variable(comp, "mode", VariableKind::mode, values, 0);
        StateVar* out = builder_.variable(comp, "v", VariableKind::condition, numbers(2));
        const StateVar* a = random_.pick(signals);
        const StateVar* b = random_.pick(signals);
        const std::size_t table = random_.below(16);
        for (std::size_t row = 0; row < 4; ++row) {
            builder_.law(comp, {{true, (*mode->atomLinks)[0]},
                                {true, (*a->atomLinks)[row & 1]},
                                {true, (*b->atomLinks)[row >> 1]},
                                {false, (*out->atomLinks)[(table >> row) & 1]}});
        }
        for (std::size_t i = 1; i < mode->atomLinks->size(); ++i) {
            Atom* fault = (*mode->atomLinks)[i];
            builder_.fault((*mode->atomLinks)[0], fault, sixtyFourths(static_cast<int>(i)));
            if (fault->value != "unknown") {
                builder_.law(comp, {{true, fault}, {false, (*out->atomLinks)[i - 2]}});
            }
        }
        return out;
    }

    Random& random_;
    ModelBuilder builder_;
    std::vector<Part> parts_;
};

// Mostly the first value.
const Atom* modeBefore(Random& random, const StateVar* mode)
{
    return random.chance(80) ? mode->atomLinks->front() : random.pick(*mode->atomLinks);
}

const Atom* valueOf(const StateVar* variable, const std::vector<const Atom*>& world)
{
    return *std::find_if(world.begin(), world.end(),
                         [&](const Atom* atom) { return atom->stateVar == variable; });
}

// What is really going on: modes that the step allows, mostly without a fault, and all that goes with them.
std::optional<std::vector<const Atom*>> drawWorld(Random& random, const DiagnosisProblem& problem,
                                                  const std::vector<const Atom*>& given)
{
    const BruteForceDiagnosis diagnosis(problem);
    std::vector<const Atom*> fixed = given;
    for (const StateVar* mode : allVariables("Mode")) {
        std::vector<const Atom*> possible;
        for (const Atom* value : *mode->atomLinks) {
            if (diagnosis.chances(mode).count(value) != 0) {
                possible.push_back(value);
            }
        }
        fixed.push_back(random.chance(60) ? diagnosis.predicted(mode) : random.pick(possible));
    }
    return BruteForceDiagnosis::world(fixed, random.below(12));
}

} // namespace

std::unique_ptr<plant::Model> randomModel(Random& random, PlantKind kind)
{
    Maker maker(random);
    return kind == PlantKind::mixed ? maker.mixed() : maker.circuit();
}

DiagnosisProblem randomProblem(Random& random, PlantKind kind)
{
    DiagnosisProblem problem;
    problem.maxFaults = random.chance(10) ? 0 : random.between(1, 3);
    for (const StateVar* variable : allVariables("Mode")) {
        problem.before.push_back(modeBefore(random, variable));
    }
    const auto worldBefore = BruteForceDiagnosis::world(problem.before, random.below(12));
    for (const StateVar* variable : allVariables()) {
        if (variable->type == "Cond") {
            problem.before.push_back(worldBefore ? valueOf(variable, *worldBefore)
                                                 : random.pick(*variable->atomLinks));
        } else if (variable->type == "Command" && random.chance(95)) {
            problem.commands.push_back(random.pick(*variable->atomLinks));
        }
    }
    const auto world = drawWorld(random, problem, problem.commands);
    const int observedPercent = random.pick(std::vector<int>{30, 60, 90});
    const int noisePercent = random.pick(std::vector<int>{0, 0, 10});
    for (const StateVar* variable : allVariables()) {
        const bool isInput =
            variable->name.starts_with("in") || variable->comp->name.starts_with("in");
        const int percent = variable->type == "Cond" ? (isInput ? 90 : observedPercent) : 5;
        if (!random.chance(percent)) {
            continue;
        }
        const bool noise =
            !world || random.chance(isInput && kind == PlantKind::circuit ? 0 : noisePercent);
        problem.observations.push_back(noise ? random.pick(*variable->atomLinks)
                                             : valueOf(variable, *world));
    }
    return problem;
}

Atom* ActivePlant::atom(const std::string& id) const
{
    Atom* found = DataManager::findAtom(id.c_str());
    if (!found) {
        std::abort();
    }
    return found;
}

std::vector<plant::AtomIndex> ActivePlant::indices(const std::vector<const Atom*>& atoms) const
{
    std::vector<plant::AtomIndex> result;
    for (const Atom* one : atoms) {
        result.push_back(plant->indexOf(one));
    }
    return result;
}

std::vector<std::string> ActivePlant::ids(const std::vector<plant::AtomIndex>& atoms) const
{
    std::vector<std::string> result;
    for (const plant::AtomIndex one : atoms) {
        result.push_back(plant->atom(one)->id);
    }
    return result;
}

monitor::Prediction ActivePlant::before(const DiagnosisProblem& problem) const
{
    monitor::Prediction labels(*plant);
    for (const plant::AtomIndex value : indices(problem.before)) {
        labels.assume(value);
    }
    return labels;
}

monitor::StepInput ActivePlant::input(const DiagnosisProblem& problem) const
{
    return {indices(problem.commands), indices(problem.observations)};
}
