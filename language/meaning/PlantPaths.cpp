#include "language/meaning/PlantPaths.h"

#include "language/meaning/NameMistakes.h"
#include "language/meaning/Numbers.h"
#include "plant/Names.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

namespace {

bool hasName(const syntax::Expression& expression)
{
    return expression.kind == syntax::Expression::Kind::name ||
           std::any_of(expression.operands.begin(), expression.operands.end(), hasName);
}

} // namespace

PlantPaths::PlantPaths(const plant::Model& model, const std::string& system) : system_(system)
{
    for (const auto& component : model.components()) {
        if (component->name == system) {
            root_.component = component;
            continue;
        }
        Part* part = &root_;
        for (std::size_t begin = 0; begin != std::string::npos;) {
            const std::size_t end = component->name.find('/', begin);
            part = &makePart(*part, component->name.substr(begin, end - begin));
            begin = end == std::string::npos ? end : end + 1;
        }
        part->component = component;
    }
}

PlantPaths::Part& PlantPaths::makePart(Part& parent, const std::string& name)
{
    const auto [entry, isNew] = parent.parts.try_emplace(name);
    if (isNew) {
        entry->second = std::make_unique<Part>();
        const std::size_t bracket = name.find('[');
        const std::string base = name.substr(0, bracket);
        if (bracket == std::string::npos || ++parent.counts[base] == 1) {
            parent.names.push_back(base);
        }
    }
    return *entry->second;
}

StateVar* PlantPaths::find(const syntax::Path& path, Report& report) const
{
    const Part* here = &root_;
    std::size_t i = 0;
    const syntax::Segment& front = path.segments.front();
    if (path.segments.size() > 1 && !front.index && front.name.text == system_ &&
        !root_.parts.contains(system_)) {
        i = 1;
    }
    std::string owner;
    for (; i + 1 < path.segments.size(); ++i) {
        const syntax::Segment& segment = path.segments[i];
        if (plant::variableNamed(here->component, segment.name.text)) {
            report.error(segment.name.range,
                         text::quoted(segment.name.text) + " is a variable, and has no parts");
            return nullptr;
        }
        here = step(*here, segment, owner, report);
        if (!here) return nullptr;
        owner = segment.name.text;
    }
    const syntax::Segment& last = path.segments.back();
    StateVar* variable = plant::variableNamed(here->component, last.name.text);
    if (variable && last.index) {
        report.error(last.name.range,
                     text::quoted(last.name.text) + " is a variable, not an array");
        return nullptr;
    }
    if (variable) return variable;
    if (const Part* part = step(*here, last, owner, report)) {
        report.at(path.range).report(partForVariable(last.name.text, namesIn(*part)));
    }
    return nullptr;
}

const PlantPaths::Part* PlantPaths::step(const Part& from, const syntax::Segment& segment,
                                         const std::string& owner, Report& report) const
{
    const std::string& name = segment.name.text;
    const auto array = from.counts.find(name);
    if (array != from.counts.end() && !segment.index) {
        report.at(segment.name.range).report(arrayWithoutIndex(name));
        return nullptr;
    }
    if (array != from.counts.end()) return element(from, segment, array->second, report);
    const auto part = from.parts.find(name);
    if (part == from.parts.end()) {
        reportUnknown(from, segment, owner, report);
        return nullptr;
    }
    if (segment.index) {
        report.at(segment.name.range).report(indexWithoutArray(name));
        return nullptr;
    }
    return part->second.get();
}

const PlantPaths::Part* PlantPaths::element(const Part& from, const syntax::Segment& segment,
                                            std::size_t count, Report& report) const
{
    if (hasName(*segment.index)) {
        report.error(segment.index->range, "an index that is not a number",
                     "a number: constants and the indices of loops are not known here");
        return nullptr;
    }
    const Types none;
    const auto index =
        evaluateWhole(*segment.index, {none, {}}, report, 0, static_cast<long>(count) - 1,
                      "the index of " + text::quoted(segment.name.text));
    if (!index) return nullptr;
    return from.parts.at(segment.name.text + "[" + std::to_string(*index) + "]").get();
}

void PlantPaths::reportUnknown(const Part& from, const syntax::Segment& segment,
                               const std::string& owner, Report& report) const
{
    const std::string& name = segment.name.text;
    text::Message what = unknownVariable(
        name,
        owner.empty() ? text::quoted(name) + " is not known in " +
                            (system_.empty() ? "the model" : text::quoted(system_))
                      : text::quoted(owner) + " has no variable or part " + text::quoted(name),
        namesIn(from));
    if (what.hint.empty() && from.component) {
        for (const StateVar* variable : *from.component->stateVars) {
            if (!plant::value(variable, name)) continue;
            what.hint = valueInPlaceOf(variable->name, name);
            break;
        }
    }
    report.at(segment.name.range).report(std::move(what));
}

std::vector<std::string_view> PlantPaths::namesIn(const Part& part)
{
    std::vector<std::string_view> names;
    if (part.component) names = plant::variablesOf(*part.component);
    names.insert(names.end(), part.names.begin(), part.names.end());
    return names;
}

} // namespace language
