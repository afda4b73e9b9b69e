#include "tests/support/PlantText.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace written {

using Kind = Formula::Kind;

Formula is(const std::string& variable, const std::string& value)
{
    return {.kind = Kind::is, .variable = variable, .values = {value}};
}

Formula isNot(const std::string& variable, const std::string& value)
{
    return {.kind = Kind::isNot, .variable = variable, .values = {value}};
}

Formula in(const std::string& variable, const std::vector<std::string>& values)
{
    return {.kind = Kind::in, .variable = variable, .values = values};
}

Formula same(const std::string& variable, const std::string& other,
             const std::vector<std::string>& values)
{
    return {.kind = Kind::same, .variable = variable, .other = other, .values = values};
}

Formula no(const Formula& formula)
{
    return {.kind = Kind::no, .parts = {formula}};
}

Formula both(const std::vector<Formula>& parts)
{
    return {.kind = Kind::both, .parts = parts};
}

Formula either(const std::vector<Formula>& parts)
{
    return {.kind = Kind::either, .parts = parts};
}

Formula follows(const Formula& condition, const Formula& conclusion)
{
    return {.kind = Kind::follows, .parts = {condition, conclusion}};
}

Formula equals(const Formula& one, const Formula& other)
{
    return {.kind = Kind::equals, .parts = {one, other}};
}

namespace {

bool isConnective(Kind kind)
{
    return kind == Kind::both || kind == Kind::either || kind == Kind::follows ||
           kind == Kind::equals;
}

std::string operand(const Formula& formula)
{
    return isConnective(formula.kind) ? "(" + text(formula) + ")" : text(formula);
}

std::string joined(const Formula& formula, const char* sign)
{
    std::vector<std::string> operands;
    for (const Formula& part : formula.parts) {
        operands.push_back(operand(part));
    }
    return fmt::format("{}", fmt::join(operands, sign));
}

std::string line(const Variable& variable)
{
    std::vector<std::string> values;
    for (const std::string& value : variable.values) {
        const auto mark = variable.marks.find(value);
        values.push_back(mark == variable.marks.end() ? value : value + ' ' + mark->second);
    }
    const std::string lost = variable.lost.empty() ? "" : " lost " + variable.lost;
    return fmt::format("{} {}: {}{}", variable.kind, variable.name, fmt::join(values, ", "), lost);
}

std::string line(const Change& change)
{
    std::string line =
        fmt::format("{} {} -> {}", change.kind, fmt::join(change.from, ", "), change.to);
    if (change.guard) line += " when " + text(*change.guard);
    if (!change.probability.empty()) line += " : " + change.probability;
    return line;
}

bool readsCondition(const Body& body, const Formula& formula)
{
    if (formula.parts.empty()) {
        return std::any_of(body.variables.begin(), body.variables.end(), [&](const Variable& one) {
            return one.name == formula.variable && one.kind == "cond";
        });
    }
    return std::any_of(formula.parts.begin(), formula.parts.end(),
                       [&](const Formula& part) { return readsCondition(body, part); });
}

std::string line(const Binding& binding)
{
    const std::string varies = binding.varies.empty() ? "" : " varies " + binding.varies;
    const std::string misread = binding.misread.empty() ? "" : " misread " + binding.misread;
    return binding.kind + ' ' + binding.variable + misread + varies;
}

} // namespace

std::string text(const Formula& formula)
{
    switch (formula.kind) {
    case Kind::is: return formula.variable + " = " + formula.values.front();
    case Kind::isNot: return formula.variable + " != " + formula.values.front();
    case Kind::in:
        return fmt::format("{} in {{{}}}", formula.variable, fmt::join(formula.values, ", "));
    case Kind::same: return formula.variable + " = " + formula.other;
    case Kind::no: return "!(" + text(formula.parts.front()) + ')';
    case Kind::both: return joined(formula, " & ");
    case Kind::either: return joined(formula, " | ");
    case Kind::follows: return joined(formula, " -> ");
    case Kind::equals: break;
    }
    return joined(formula, " <-> ");
}

std::vector<std::string> lines(const Body& body)
{
    std::vector<std::string> lines;
    for (const Variable& variable : body.variables) {
        lines.push_back(line(variable));
    }
    for (const Part& part : body.parts) {
        lines.push_back(part.name + ": " + part.type);
    }
    for (const Formula& law : body.laws) {
        lines.push_back("law " + text(law));
    }
    for (const Change& change : body.changes) {
        lines.push_back(line(change));
    }
    for (const Binding& binding : body.bindings) {
        lines.push_back(line(binding));
    }
    return lines;
}

std::vector<Lines> blocks(const PlantText& plant)
{
    std::vector<Lines> blocks;
    for (const Body& component : plant.components) {
        blocks.push_back({"component " + component.name, lines(component)});
    }
    blocks.push_back({"system " + plant.system.name, lines(plant.system)});
    return blocks;
}

std::string text(const std::vector<Lines>& blocks)
{
    std::string text;
    for (const Lines& block : blocks) {
        text += block.head + " {\n";
        for (const std::string& line : block.lines) {
            text += "    " + line + '\n';
        }
        text += "}\n";
    }
    return text;
}

std::string text(const PlantText& plant)
{
    return text(blocks(plant));
}

bool guardsReadConditions(const PlantText& plant)
{
    return std::any_of(plant.components.begin(), plant.components.end(), [](const Body& body) {
        return std::any_of(body.changes.begin(), body.changes.end(), [&](const Change& change) {
            return change.guard && readsCondition(body, *change.guard);
        });
    });
}

} // namespace written
