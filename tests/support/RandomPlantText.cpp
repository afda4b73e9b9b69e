#include "tests/support/RandomPlantText.h"

#include <fmt/format.h>

namespace written {

namespace {

using Values = std::vector<std::string>;

const Values truth{"no", "yes"};
const Values levels{"low", "mid", "high"};

class Drawing {
public:
    Drawing(Random& random, const PlantTextOptions& options) : random_(random), options_(options) {}

    PlantText plant()
    {
        plant_.system.name = "Rig";
        const int machines = random_.between(options_.fewestMachines, options_.mostMachines);
        for (int i = 0; i < machines; ++i) {
            addMachine(i);
        }
        for (std::size_t i = 0; i < ins_.size(); ++i) {
            if (i == 0 || random_.chance(25)) {
                feedFromOutside(ins_[i]);
            } else {
                connect(outs_[i - 1], ins_[i]);
            }
        }
        for (const Point& point : observable_) {
            observe(point);
        }
        return std::move(plant_);
    }

private:
    /// A condition and its values.
    struct Point {
        std::string path;
        Values values;
    };
    struct Type {
        std::string name;
        Values values; ///< of what goes in and comes out
        bool gauged = false;
        bool alarmed = false;
    };

    std::string probability(int least, int most)
    {
        return fmt::format("{:.4f}", 1e-4 * random_.between(least, most));
    }
    std::string ofFault() { return probability(options_.rarestFault, options_.commonestFault); }
    Formula some(const Point& point) { return is(point.path, random_.pick(point.values)); }

    void addMachine(int number)
    {
        if (number == 0 || random_.chance(75)) {
            Type type{fmt::format("Machine{}", number), random_.chance(50) ? truth : levels, false,
                      random_.chance(50)};
            plant_.components.push_back(machine(type));
            if (random_.chance(30)) {
                plant_.components.push_back(gauge(type, fmt::format("Gauged{}", number)));
                type.name = plant_.components.back().name;
                type.gauged = true;
            }
            types_.push_back(type);
        }
        const Type& type = types_.back();
        const std::string name = fmt::format("p{}", number);
        const std::string core = type.gauged ? name + ".core" : name;
        plant_.system.parts.push_back({name, type.name});
        ins_.push_back({core + ".feed", type.values});
        outs_.push_back({core + ".out", type.values});
        observable_.push_back(outs_.back());
        if (type.gauged) observable_.push_back({name + ".shown", type.values});
        if (type.alarmed) observable_.push_back({core + ".alarm", truth});
    }

    void feedFromOutside(const Point& point)
    {
        if (random_.chance(options_.inputPercent)) {
            plant_.system.bindings.push_back({"input", point.path});
        } else {
            observe(point);
        }
    }

    void connect(const Point& from, const Point& to)
    {
        if (from.values == to.values && random_.chance(70)) {
            plant_.system.laws.push_back(same(from.path, to.path, to.values));
        } else {
            plant_.system.laws.push_back(follows(some(from), some(to)));
        }
    }

    void observe(const Point& point)
    {
        if (!random_.chance(options_.observedPercent)) {
            return;
        }
        const std::string varies = random_.chance(options_.variesPercent)
                                       ? fmt::format("{:.2f}", 0.01 * random_.between(2, 40))
                                       : "";
        const std::string misread =
            options_.misreadPercent > 0 && random_.chance(options_.misreadPercent)
                ? probability(10, 500)
                : "";
        plant_.system.bindings.push_back({"observe", point.path, varies, misread});
    }

    Body machine(const Type& type)
    {
        Body body{type.name};
        const bool commanded = random_.chance(60);
        if (commanded) {
            body.variables.push_back(
                {"command",
                 "go",
                 {"none", "start", "stop"},
                 {},
                 random_.chance(options_.lostPercent) ? probability(100, 1500) : ""});
        }
        body.variables.push_back({"cond", "feed", type.values});
        body.variables.push_back({"cond", "out", type.values});
        if (type.alarmed) body.variables.push_back({"cond", "alarm", truth});
        Variable state{"mode", "state", commanded ? Values{"off", "on"} : Values{"on"}};
        state.marks[state.values.front()] = "initial";
        const std::size_t sound = state.values.size();
        for (int i = random_.between(1, 2); i > 0; --i) {
            state.values.push_back(fmt::format("bad{}", i));
            state.marks[state.values.back()] = "fault";
        }
        if (commanded)
            body.laws.push_back(follows(is("state", "off"), is("out", type.values.front())));
        whenOn(type, body.laws);
        if (type.alarmed) {
            const Formula silent = is("alarm", "no");
            const Formula isSound =
                in("state", {state.values.begin(), state.values.begin() + std::ptrdiff_t(sound)});
            body.laws.push_back(random_.chance(50) ? equals(isSound, silent)
                                                   : follows(isSound, silent));
        }
        for (std::size_t i = sound; i < state.values.size(); ++i) {
            whenBad(type, state.values[i], body.laws);
        }
        body.changes = changes(type, commanded,
                               {state.values.begin() + std::ptrdiff_t(sound), state.values.end()});
        body.variables.push_back(std::move(state));
        return body;
    }

    void whenOn(const Type& type, std::vector<Formula>& laws)
    {
        const Formula on = is("state", "on");
        switch (random_.below(4)) {
        case 0:
            for (const std::string& value : type.values) {
                laws.push_back(
                    follows(both({on, is("feed", value)}), is("out", random_.pick(type.values))));
            }
            break;
        case 1: laws.push_back(follows(on, is("out", type.values.back()))); break;
        default: laws.push_back(follows(on, same("out", "feed", type.values)));
        }
    }

    void whenBad(const Type& type, const std::string& value, std::vector<Formula>& laws)
    {
        const Formula bad = is("state", value);
        const Point out{"out", type.values};
        switch (random_.below(8)) {
        case 0: break;
        case 1: laws.push_back(follows(bad, isNot("out", random_.pick(type.values)))); break;
        case 2: laws.push_back(follows(bad, in("out", twoOf(type.values)))); break;
        case 3: laws.push_back(follows(both({bad, some({"feed", type.values})}), some(out))); break;
        case 4:
            laws.push_back(follows(bad, either({some(out), some({"feed", type.values})})));
            break;
        case 5: laws.push_back(follows(some(out), isNot("state", value))); break;
        default: laws.push_back(follows(bad, some(out)));
        }
        if (type.alarmed && random_.chance(60)) {
            laws.push_back(follows(bad, random_.chance(50)
                                            ? is("alarm", "yes")
                                            : either({is("alarm", "yes"), some(out)})));
        }
    }

    Values twoOf(const Values& values)
    {
        const std::size_t first = random_.below(values.size());
        return {values[first], values[(first + 1) % values.size()]};
    }

    // A guard that reads commands and, where it may, conditions.
    Formula guard(const Formula& command, const Type& type)
    {
        Formula condition = some({random_.chance(50) ? "feed" : "out", type.values});
        if (random_.chance(30)) condition.kind = Formula::Kind::isNot;
        if (!options_.guardsReadConditions || random_.chance(60)) return command;
        return random_.chance(50) ? both({command, condition}) : either({command, condition});
    }

    std::vector<Change> changes(const Type& type, bool commanded, const Values& bad)
    {
        std::vector<Change> changes;
        if (commanded) {
            changes.push_back(
                {"nominal", {"off"}, "on", guard(is("go", "start"), type), probability(8000, 9900)});
            changes.push_back({"nominal", {"on"}, "off", is("go", "stop"), probability(8000, 9900)});
        }
        for (const std::string& value : bad) {
            Change fault{"fault", {"on"}, value, {}, ofFault()};
            if (commanded && random_.chance(40)) fault.from = {"off", "on"};
            if (commanded && random_.chance(20)) fault.guard = guard(isNot("go", "none"), type);
            if (!commanded && options_.guardsReadConditions && random_.chance(20)) {
                fault.guard = some({"feed", type.values});
            }
            changes.push_back(fault);
        }
        if (random_.chance(options_.repairPercent)) {
            Change repair{
                "repair", {bad.front()}, commanded ? "off" : "on", {}, probability(500, 3000)};
            if (commanded && random_.chance(50)) repair.guard = is("go", "stop");
            changes.push_back(repair);
        }
        return changes;
    }

    // A part that shows what comes out of another one.
    Body gauge(const Type& type, const std::string& name)
    {
        Body body{name};
        body.parts.push_back({"core", type.name});
        body.variables.push_back({"cond", "shown", type.values});
        body.variables.push_back(
            {"mode", "gauge", {"good", "stuck"}, {{"good", "initial"}, {"stuck", "fault"}}});
        body.laws.push_back(follows(is("gauge", "good"), same("shown", "core.out", type.values)));
        if (random_.chance(60)) {
            body.laws.push_back(follows(is("gauge", "stuck"), some({"shown", type.values})));
        }
        body.changes.push_back({"fault", {"good"}, "stuck", {}, ofFault()});
        return body;
    }

    Random& random_;
    const PlantTextOptions& options_;
    PlantText plant_;
    std::vector<Type> types_;
    std::vector<Point> ins_;
    std::vector<Point> outs_;
    std::vector<Point> observable_;
};

} // namespace

PlantText randomPlantText(Random& random, const PlantTextOptions& options)
{
    return Drawing(random, options).plant();
}

} // namespace written
