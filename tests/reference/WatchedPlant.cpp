#include "tests/reference/WatchedPlant.h"

#include "plant/ModelBuilder.h"
#include "plant/Names.h"

#include <algorithm>
#include <sstream>

namespace {

using plant::GuardLiteral;
using plant::VariableKind;
using Guard = std::vector<GuardLiteral>;

double sixtyFourths(int count)
{
    return count / 64.0;
}

struct WatchedPart {
    Comp* comp = nullptr;
    StateVar* mode = nullptr;
    StateVar* request = nullptr;
    StateVar* out = nullptr;
    StateVar* flow = nullptr;
    std::vector<StateVar*> gauges; // and the sum
};

class WatchedMaker {
public:
    WatchedMaker(Random& random, const WatchedOptions& options) : random_(random), options_(options)
    {
    }

    WatchedPlant make()
    {
        if (options_.supply) {
            supply_ = builder_.variable(builder_.component("supply"), "v", VariableKind::condition,
                                        {{"0"}, {"1"}});
            plant_.observed.push_back(supply_);
            plant_.inputs.insert(supply_);
            plant_.alwaysObserved.insert(supply_);
        }
        const int count = random_.between(options_.fewestParts, options_.mostParts);
        for (int i = 0; i < count; ++i) {
            addPart("p" + std::to_string(i));
        }
        for (const WatchedPart& part : parts_) {
            addTransitions(part);
        }
        for (const StateVar* variable : plant_.observed) {
            if (options_.misreadPercent > 0 && random_.chance(options_.misreadPercent)) {
                plant_.misread[variable] =
                    sixtyFourths(random_.between(1, 16)) / (options_.rareFaults ? 16.0 : 1.0);
            }
        }
        plant_.model = builder_.build();
        return std::move(plant_);
    }

private:
    // The first value may be the initial one.
    StateVar* condition(Comp* comp, const std::string& name, std::size_t values, bool observed,
                        bool firstIsInitial = false)
    {
        std::vector<plant::ValueDeclaration> declared;
        for (std::size_t i = 0; i < values; ++i) {
            declared.push_back({std::to_string(i)});
        }
        StateVar* made =
            builder_.variable(comp, name, VariableKind::condition, declared,
                              firstIsInitial ? std::optional<std::size_t>(0) : std::nullopt);
        if (observed) {
            plant_.observed.push_back(made);
        }
        return made;
    }
    static Atom* value(const StateVar* variable, std::size_t index)
    {
        return (*variable->atomLinks)[index];
    }

    void addPart(const std::string& name)
    {
        WatchedPart part;
        part.comp = builder_.component(name);
        std::vector<plant::ValueDeclaration> modes{{"off"}, {"on"}, {"worn", true}};
        if (random_.chance(60)) {
            modes.push_back({"dead", true});
        }
        part.mode = builder_.variable(part.comp, "mode", VariableKind::mode, modes, 0);
        part.request = builder_.variable(part.comp, "request", VariableKind::command,
                                         {{"none"}, {"on"}, {"off"}});
        if (random_.chance(options_.lostPercent)) {
            plant_.lost[part.request] =
                sixtyFourths(random_.between(1, 16)) / (options_.rareFaults ? 16.0 : 1.0);
        }
        part.out = condition(part.comp, "out", 3, true, options_.initialValues);
        for (std::size_t i = 0; i < modes.size(); ++i) {
            const std::size_t shown =
                i < 2 ? i : (options_.unseenChanges ? random_.below(3) : std::size_t{2});
            builder_.law(part.comp, {{true, value(part.mode, i)}, {false, value(part.out, shown)}});
        }
        addFlow(part);
        if (options_.echoes) {
            addEcho(part);
        }
        if (options_.openConditions) {
            addGauges(part);
        }
        if (options_.lawsByCases) {
            addCases(part);
        }
        plant_.gauges.insert(part.gauges.begin(), part.gauges.end());
        parts_.push_back(part);
    }

    // 1 where this part gives 1 and so does what comes before it.
    void addFlow(WatchedPart& part)
    {
        part.flow = condition(part.comp, "flow", 2, true, options_.initialValues);
        const StateVar* before = parts_.empty() ? supply_ : parts_.back().flow;
        std::vector<plant::Literal> bothGive{{true, value(part.out, 1)},
                                             {false, value(part.flow, 1)}};
        if (before) {
            bothGive.push_back({true, value(before, 1)});
            builder_.law(part.comp, {{true, value(before, 0)}, {false, value(part.flow, 0)}});
        }
        builder_.law(part.comp, bothGive);
        builder_.law(part.comp, {{false, value(part.out, 1)}, {false, value(part.flow, 0)}});
    }

    void addEcho(const WatchedPart& part)
    {
        StateVar* echo = condition(part.comp, "echo", 3, true);
        plant_.alwaysObserved.insert(echo);
        for (std::size_t i = 0; i < 3; ++i) {
            builder_.law(part.comp, {{true, value(part.request, i)}, {false, value(echo, i)}});
        }
    }

    // Off and on determine both; a fault leaves them open but for a law or two.
    void addGauges(WatchedPart& part)
    {
        for (const char* name : {"gauge", "meter"}) {
            part.gauges.push_back(condition(part.comp, name, 3, true));
            for (std::size_t i = 0; i < 2; ++i) {
                builder_.law(part.comp,
                             {{true, value(part.mode, i)}, {false, value(part.gauges.back(), i)}});
            }
        }
        for (std::size_t i = 2; i < part.mode->atomLinks->size(); ++i) {
            for (int laws = random_.between(0, 2); laws > 0; --laws) {
                const std::size_t first = random_.below(3);
                const std::size_t second = random_.below(3);
                builder_.law(part.comp, {{true, value(part.mode, i)},
                                         {random_.chance(50), value(part.gauges[0], first)},
                                         {random_.chance(50), value(part.gauges[1], second)}});
            }
        }
    }

    // `sum` is a number for each mode, at once or whatever `either` is.
    void addCases(WatchedPart& part)
    {
        StateVar* either = condition(part.comp, "either", 2, false);
        StateVar* sum = condition(part.comp, "sum", 3, true);
        part.gauges.push_back(sum);
        for (std::size_t i = 0; i < part.mode->atomLinks->size(); ++i) {
            Atom* mode = value(part.mode, i);
            Atom* result = value(sum, random_.below(3));
            if (random_.chance(50)) {
                builder_.law(part.comp, {{true, mode}, {false, result}});
                continue;
            }
            for (Atom* one : *either->atomLinks) {
                builder_.law(part.comp, {{true, mode}, {true, one}, {false, result}});
            }
        }
    }

    // Of the mode of another part than that to which the guard belongs, or of a command; or of a condition.
    GuardLiteral anyLiteral(const WatchedPart& own)
    {
        const WatchedPart& part = random_.pick(parts_);
        std::vector<const StateVar*> variables{part.request};
        if (part.mode != own.mode) {
            variables.push_back(part.mode);
        }
        if (options_.conditionGuards) {
            variables = {part.out, part.flow};
            variables.insert(variables.end(), part.gauges.begin(), part.gauges.end());
        }
        const bool mustHold = random_.chance(50);
        return {mustHold, random_.pick(*random_.pick(variables)->atomLinks)};
    }

    // The literal, or nothing; and more.
    std::vector<Guard> alternatives(const WatchedPart& part,
                                    const std::optional<GuardLiteral>& first, int morePercent)
    {
        std::vector<Guard> result(1);
        if (first) {
            result[0].push_back(*first);
        }
        if (random_.chance(morePercent)) {
            result[0].push_back(anyLiteral(part));
        }
        if (options_.disjunctiveGuards && !result[0].empty() && random_.chance(60)) {
            for (int i = random_.between(1, 2); i > 0; --i) {
                result.push_back({anyLiteral(part)});
            }
        }
        return result;
    }

    void addTransitions(const WatchedPart& part)
    {
        const std::vector<Atom*>& modes = *part.mode->atomLinks;
        for (Atom* from : modes) {
            for (Atom* to : modes) {
                if (from == to || (to->fail && from->fail && !options_.unseenChanges) ||
                    (from->fail && !to->fail && to != modes[0])) {
                    continue;
                }
                if (to->fail) {
                    const std::vector<Guard> guards = alternatives(part, {}, 40);
                    builder_.fault(from, to, faultChance(to) / (options_.rareFaults ? 64.0 : 1.0),
                                   guards.front());
                    addAlternatives(guards);
                    continue;
                }
                const GuardLiteral asked{true, value(part.request, to == modes[0] ? 2 : 1)};
                const std::vector<Guard> guards = alternatives(part, asked, 20);
                builder_.nominal(from, to, guards.front(), sixtyFourths(from->fail ? 24 : 50));
                addAlternatives(guards);
            }
        }
    }

    void addAlternatives(const std::vector<Guard>& guards)
    {
        for (std::size_t i = 1; i < guards.size(); ++i) {
            builder_.alternative(guards[i]);
        }
    }

    static double faultChance(const Atom* fault)
    {
        return sixtyFourths(fault->value == "worn" ? 5 : 3);
    }

    Random& random_;
    WatchedOptions options_;
    plant::ModelBuilder builder_{"watched"};
    WatchedPlant plant_;
    StateVar* supply_ = nullptr;
    std::vector<WatchedPart> parts_;
};

} // namespace

WatchedPlant makeWatchedPlant(Random& random, const WatchedOptions& options)
{
    return WatchedMaker(random, options).make();
}

WatchedRun::WatchedRun(Random& random, const WatchedPlant& plant, const WatchedOptions& options)
    : random_(random), plant_(plant), options_(options), worlds_(*plant.model),
      transitions_(*plant.model, worlds_)
{
}

std::optional<WatchedStep> WatchedRun::next()
{
    WatchedStep step;
    std::vector<const Atom*> arrived;
    for (const StateVar* command : worlds_.variables("Command")) {
        const std::vector<Atom*>& values = *command->atomLinks;
        const Atom* given = random_.chance(40) ? values.front() : random_.pick(values);
        arrived.push_back(given);
        if (random_.chance(options_.givenPercent)) {
            step.commands.push_back(given);
            if (plant_.lost.contains(command) && random_.chance(50)) {
                arrived.back() = values.front();
            }
        }
    }
    if (world_.empty()) {
        std::vector<const Atom*> initial;
        for (const StateVar* mode : worlds_.variables("Mode")) {
            initial.push_back(mode->initial);
        }
        world_ = random_.pick(worlds_.with(initial));
    }
    std::vector<const Atom*> given = arrived;
    for (const StateVar* mode : worlds_.variables("Mode")) {
        const auto chances =
            transitions_.chances(mode, worlds_.value(world_, mode), {world_}, arrived);
        const Atom* likeliest = nullptr;
        std::vector<const Atom*> possible;
        for (const Atom* value : *mode->atomLinks) {
            const auto chance = chances.find(value);
            if (chance == chances.end()) {
                continue;
            }
            possible.push_back(value);
            if (!likeliest || chances.at(likeliest) < chance->second) {
                likeliest = value;
            }
        }
        const bool asExpected = random_.chance(options_.rareFaults ? 96 : 70);
        given.push_back(asExpected ? likeliest : random_.pick(possible));
    }
    const std::vector<World> worlds = worlds_.with(given);
    if (worlds.empty()) {
        return std::nullopt;
    }
    world_ = random_.pick(worlds);
    const bool unread = random_.chance(options_.unreadPercent);
    for (const StateVar* variable : plant_.observed) {
        if (plant_.alwaysObserved.contains(variable) ||
            (!unread && random_.chance(options_.observedPercent) &&
             (!plant_.gauges.contains(variable) || random_.chance(options_.gaugesPercent)))) {
            const bool wrong =
                plant_.misread.contains(variable) && random_.chance(options_.rareFaults ? 3 : 20);
            step.observations.push_back(wrong ? random_.pick(*variable->atomLinks)
                                              : worlds_.value(world_, variable));
        }
    }
    if (options_.shuffled) {
        for (std::size_t i = step.observations.size(); i > 1; --i) {
            std::swap(step.observations[i - 1], step.observations[random_.below(i)]);
        }
    }
    return step;
}

std::string WatchedPlant::described() const
{
    std::ostringstream out;
    for (const auto& component : model->components()) {
        for (const StateVar* variable : *component->stateVars) {
            out << variable->type << ' ' << plant::nameOf(*variable) << ':';
            for (const Atom* value : *variable->atomLinks) {
                out << ' ' << value->value << (value->fail ? "!" : "");
            }
            const auto probability = lost.find(variable);
            if (probability != lost.end()) {
                out << " lost " << probability->second;
            }
            const auto wrong = misread.find(variable);
            if (wrong != misread.end()) {
                out << " misread " << wrong->second;
            }
            out << (inputs.contains(variable) ? " (input)\n" : "\n");
        }
    }
    for (std::size_t law = 0; law < model->lawCount(); ++law) {
        out << "law";
        for (const plant::Literal& literal : model->literalsOf(law)) {
            out << (literal.negated ? " !" : " ") << literal.atom->id;
        }
        out << '\n';
    }
    for (std::size_t i = 0; i < model->transitions().size(); ++i) {
        const Transition& transition = *model->transitions()[i];
        out << "change " << model->changeOf(i) << ": " << transition.type << " to "
            << transition.atom->id << " : " << transition.proba << " when";
        for (const auto& [mustHold, atom] : model->preconditionOf(i)) {
            out << (mustHold ? " " : " !") << atom->id;
        }
        out << '\n';
    }
    return out.str();
}

std::string described(const WatchedStep& step)
{
    std::string result = "commands";
    for (const Atom* command : step.commands) {
        result += " " + command->id;
    }
    result += ", observed";
    for (const Atom* observed : step.observations) {
        result += " " + observed->id;
    }
    return result;
}
