#include "tests/support/Rewriting.h"

#include "tests/support/LawForms.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <set>

namespace written {

using Kind = Formula::Kind;

std::string renamed(const std::string& name, const Names& names)
{
    std::string result;
    std::size_t begin = 0;
    while (begin <= name.size()) {
        const std::size_t end = std::min(name.find_first_of("/.= ", begin), name.size());
        const std::string word = name.substr(begin, end - begin);
        const auto found = names.find(word);
        result += found == names.end() ? word : found->second;
        if (end < name.size()) result += name[end];
        begin = end + 1;
    }
    return result;
}

namespace {

template <class T> void shuffle(std::vector<T>& items, Random& random)
{
    for (std::size_t left = items.size(); left > 1; --left) {
        std::swap(items[left - 1], items[random.below(left)]);
    }
}

std::vector<Body*> bodies(PlantText& plant)
{
    std::vector<Body*> bodies;
    for (Body& component : plant.components) {
        bodies.push_back(&component);
    }
    bodies.push_back(&plant.system);
    return bodies;
}

// Each law replaced by those that it becomes.
template <class Rewrite> Rewritten withLaws(PlantText plant, const Rewrite& rewrite)
{
    for (Body* body : bodies(plant)) {
        std::vector<Formula> laws;
        for (const Formula& law : body->laws) {
            for (Formula& one : rewrite(*body, law)) {
                laws.push_back(std::move(one));
            }
        }
        body->laws = std::move(laws);
    }
    return {text(plant)};
}

} // namespace

Rewritten permuted(const PlantText& plant, Random& random)
{
    std::vector<Lines> order = blocks(plant);
    shuffle(order, random);
    for (Lines& block : order) {
        const auto bindings = [](const std::string& line) {
            return line.starts_with("observe") || line.starts_with("input");
        };
        const auto begin = std::stable_partition(block.lines.begin(), block.lines.end(), bindings);
        std::vector<std::string> others(begin, block.lines.end());
        shuffle(others, random);
        block.lines.erase(begin, block.lines.end());
        // The bindings keep their order, somewhere between the others.
        for (std::string& line : others) {
            block.lines.insert(block.lines.begin() +
                                   std::ptrdiff_t(random.below(block.lines.size() + 1)),
                               std::move(line));
        }
    }
    return {text(order)};
}

Rewritten bindingsPermuted(const PlantText& original, Random& random)
{
    PlantText plant = original;
    shuffle(plant.system.bindings, random);
    return {text(plant)};
}

Rewritten valuesPermuted(const PlantText& original, Random& random)
{
    PlantText plant = original;
    for (Body* body : bodies(plant)) {
        for (Variable& variable : body->variables) {
            if (variable.kind != "command") shuffle(variable.values, random);
        }
    }
    return {text(plant)};
}

Rewritten contrapositive(const PlantText& plant, Random&)
{
    return withLaws(plant, [](const Body&, const Formula& law) -> std::vector<Formula> {
        switch (law.kind) {
        case Kind::follows: return {follows(no(law.parts[1]), no(law.parts[0]))};
        case Kind::equals: return {equals(no(law.parts[0]), no(law.parts[1]))};
        default: return {no(no(law))};
        }
    });
}

Rewritten split(const PlantText& plant, Random&)
{
    return withLaws(plant, [](const Body&, const Formula& law) { return splitUp(law); });
}

Rewritten asClauses(const PlantText& plant, Random& random)
{
    return withLaws(plant, [&](const Body&, const Formula& law) {
        std::vector<Formula> laws;
        for (Clause& literals : clausesOf(law)) {
            shuffle(literals, random);
            laws.push_back(either(literals));
        }
        shuffle(laws, random);
        return laws;
    });
}

Rewritten spelledOut(const PlantText& original, Random&)
{
    const auto rewrite = [](const Formula& atom) {
        if (atom.kind != Kind::in) return atom;
        std::vector<Formula> values;
        for (const std::string& value : atom.values) {
            values.push_back(is(atom.variable, value));
        }
        return either(values);
    };
    PlantText plant = original;
    for (Body* body : bodies(plant)) {
        for (Change& change : body->changes) {
            if (change.guard) change.guard = withAtoms(*change.guard, rewrite);
        }
    }
    return withLaws(plant, [&](const Body&, const Formula& law) {
        return std::vector<Formula>{withAtoms(law, rewrite)};
    });
}

Rewritten asExclusions(const PlantText& plant, Random&)
{
    return withLaws(plant, [&](const Body& body, const Formula& law) {
        return std::vector<Formula>{withAtoms(
            law, [&](const Formula& atom) { return turned(plant, body, atom, Kind::isNot); })};
    });
}

Rewritten guardsTurned(const PlantText& original, Random&)
{
    PlantText plant = original;
    for (Body* body : bodies(plant)) {
        for (Change& change : body->changes) {
            if (!change.guard) continue;
            change.guard = withAtoms(*change.guard, [&](const Formula& atom) {
                return turned(plant, *body, atom, atom.kind == Kind::isNot ? Kind::in : Kind::isNot);
            });
        }
    }
    return {text(plant)};
}

Rewritten withConsequences(const PlantText& original, Random& random)
{
    PlantText plant = original;
    for (Body* body : bodies(plant)) {
        std::vector<Clause> clauses;
        for (const Formula& law : body->laws) {
            for (Clause& clause : clausesOf(law)) clauses.push_back(std::move(clause));
        }
        if (clauses.empty()) continue;
        for (int i = 0; i < 20; ++i) {
            if (const auto both = resolved(random.pick(clauses), random.pick(clauses))) {
                body->laws.push_back(either(*both));
            }
        }
    }
    return {text(plant)};
}

Rewritten withOtherNames(const PlantText& original, Random& random)
{
    std::set<std::string> words;
    PlantText plant = original;
    for (const Body* body : bodies(plant)) {
        words.insert(body->name);
        for (const Part& part : body->parts) words.insert(part.name);
        for (const Variable& variable : body->variables) {
            words.insert(variable.name);
            words.insert(variable.values.begin(), variable.values.end());
        }
    }
    std::vector<std::string> fresh;
    for (std::size_t i = 0; i < words.size(); ++i) {
        fresh.push_back(fmt::format("n{:02}", i));
    }
    shuffle(fresh, random);
    Names names;
    for (const std::string& word : words) {
        names[word] = fresh[names.size()];
    }
    const auto rename = [&](std::string& word) { word = renamed(word, names); };
    const auto renameAtom = [&](Formula atom) {
        rename(atom.variable);
        rename(atom.other);
        for (std::string& value : atom.values) rename(value);
        return atom;
    };
    for (Body* body : bodies(plant)) {
        rename(body->name);
        for (Part& part : body->parts) {
            rename(part.name);
            rename(part.type);
        }
        for (Variable& variable : body->variables) {
            rename(variable.name);
            for (std::string& value : variable.values) rename(value);
            std::map<std::string, std::string> marks;
            for (const auto& [value, mark] : variable.marks) marks[renamed(value, names)] = mark;
            variable.marks = std::move(marks);
        }
        for (Formula& law : body->laws) law = withAtoms(law, renameAtom);
        for (Change& change : body->changes) {
            for (std::string& value : change.from) rename(value);
            rename(change.to);
            if (change.guard) change.guard = withAtoms(*change.guard, renameAtom);
        }
        for (Binding& binding : body->bindings) rename(binding.variable);
    }
    return {text(plant), names};
}

Rewritten withOpenSpare(const PlantText& original, Random& random)
{
    PlantText plant = original;
    Body& body = plant.components[random.below(plant.components.size())];
    body.variables.insert(body.variables.begin() +
                              std::ptrdiff_t(random.below(body.variables.size() + 1)),
                          Variable{"cond", "spare", {"left", "centre", "right"}});
    return {text(plant)};
}

Rewritten withFixedSpare(const PlantText& original, Random& random)
{
    PlantText plant = original;
    Body& body = plant.components[random.below(plant.components.size())];
    body.variables.insert(body.variables.begin(), Variable{"cond", "spare", {"left", "right"}});
    body.laws.insert(body.laws.begin() + std::ptrdiff_t(random.below(body.laws.size() + 1)),
                     is("spare", "right"));
    return {text(plant)};
}

Rewritten withACopy(const PlantText& original, Random& random)
{
    PlantText plant = original;
    Body& body = plant.components[random.below(plant.components.size())];
    std::vector<Variable> conditions;
    std::copy_if(body.variables.begin(), body.variables.end(), std::back_inserter(conditions),
                 [](const Variable& one) { return one.kind == "cond"; });
    const Variable copied = random.pick(conditions);
    for (Formula& law : body.laws) {
        if (random.chance(50)) continue;
        law = withAtoms(law, [&](Formula atom) {
            if (atom.variable == copied.name) atom.variable = "copy";
            if (atom.other == copied.name) atom.other = "copy";
            return atom;
        });
    }
    body.variables.push_back({"cond", "copy", copied.values});
    body.laws.push_back(same("copy", copied.name, copied.values));
    return {text(plant)};
}

Rewritten wrapped(const PlantText& original, Random& random)
{
    PlantText plant = original;
    Names names;
    const std::size_t first = random.below(plant.system.parts.size());
    for (std::size_t i = 0; i < plant.system.parts.size(); ++i) {
        Part& part = plant.system.parts[i];
        if (i != first && random.chance(70)) continue;
        const std::string box = "box" + part.name;
        plant.components.push_back({.name = "Box" + part.name, .parts = {part}});
        names[part.name] = box + '/' + part.name;
        part = {box, plant.components.back().name};
    }
    const auto inBox = [&](std::string& path) {
        const std::string inside = renamed(path.substr(0, path.find('.')), names);
        if (inside.find('/') != std::string::npos) {
            path = inside.substr(0, inside.find('/')) + '.' + path;
        }
    };
    for (Formula& law : plant.system.laws) {
        law = withAtoms(law, [&](Formula atom) {
            inBox(atom.variable);
            inBox(atom.other);
            return atom;
        });
    }
    for (Binding& binding : plant.system.bindings) inBox(binding.variable);
    return {text(plant), names};
}

} // namespace written
