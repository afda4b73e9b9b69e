#include "tests/support/LawForms.h"

#include <algorithm>
#include <utility>

namespace written {

using Kind = Formula::Kind;

const Variable& variableOf(const PlantText& plant, const Body& body, const std::string& path)
{
    const std::size_t dot = path.find('.');
    if (dot == std::string::npos) {
        return *std::find_if(body.variables.begin(), body.variables.end(),
                             [&](const Variable& one) { return one.name == path; });
    }
    const auto part = std::find_if(body.parts.begin(), body.parts.end(),
                                   [&](const Part& one) { return one.name == path.substr(0, dot); });
    const auto type = std::find_if(plant.components.begin(), plant.components.end(),
                                   [&](const Body& one) { return one.name == part->type; });
    return variableOf(plant, *type, path.substr(dot + 1));
}

std::vector<Formula> splitUp(const Formula& law)
{
    if (law.kind == Kind::both) {
        std::vector<Formula> laws;
        for (const Formula& part : law.parts) {
            for (Formula& one : splitUp(part)) laws.push_back(std::move(one));
        }
        return laws;
    }
    if (law.kind == Kind::equals) {
        return splitUp(
            both({follows(law.parts[0], law.parts[1]), follows(law.parts[1], law.parts[0])}));
    }
    if (law.kind == Kind::same) {
        std::vector<Formula> laws;
        for (const std::string& value : law.values) {
            laws.push_back(follows(is(law.variable, value), is(law.other, value)));
        }
        return laws;
    }
    if (law.kind != Kind::follows) {
        return {law};
    }
    const Formula& condition = law.parts[0];
    std::vector<Formula> conditions{condition};
    if (condition.kind == Kind::either) {
        conditions = condition.parts;
    } else if (condition.kind == Kind::in) {
        conditions.clear();
        for (const std::string& value : condition.values) {
            conditions.push_back(is(condition.variable, value));
        }
    }
    std::vector<Formula> laws;
    for (const Formula& one : conditions) {
        for (const Formula& conclusion : splitUp(law.parts[1])) {
            laws.push_back(conclusion.kind == Kind::follows
                               ? follows(both({one, conclusion.parts[0]}), conclusion.parts[1])
                               : follows(one, conclusion));
        }
    }
    return laws;
}

namespace {

using Clauses = std::vector<Clause>;

Clauses product(const std::vector<Clauses>& factors)
{
    Clauses result{{}};
    for (const Clauses& factor : factors) {
        Clauses longer;
        for (const auto& one : result) {
            for (const auto& other : factor) {
                longer.push_back(one);
                longer.back().insert(longer.back().end(), other.begin(), other.end());
            }
        }
        result = std::move(longer);
    }
    return result;
}

Clauses sum(const std::vector<Clauses>& terms)
{
    Clauses result;
    for (const Clauses& term : terms) {
        result.insert(result.end(), term.begin(), term.end());
    }
    return result;
}

} // namespace

std::vector<Clause> clausesOf(const Formula& formula, bool holds)
{
    std::vector<Clauses> parts;
    switch (formula.kind) {
    case Kind::is:
    case Kind::isNot: {
        const std::string& value = formula.values.front();
        const bool positive = (formula.kind == Kind::is) == holds;
        return {{positive ? is(formula.variable, value) : isNot(formula.variable, value)}};
    }
    case Kind::in:
        for (const std::string& value : formula.values) {
            parts.push_back(clausesOf(is(formula.variable, value), holds));
        }
        return holds ? product(parts) : sum(parts);
    case Kind::same:
        for (const std::string& value : formula.values) {
            const Formula one = is(formula.variable, value);
            const Formula other = is(formula.other, value);
            parts.push_back(clausesOf(holds ? equals(one, other) : no(both({one, other})), true));
        }
        return sum(parts);
    case Kind::no: return clausesOf(formula.parts.front(), !holds);
    case Kind::both:
    case Kind::either:
        for (const Formula& part : formula.parts) {
            parts.push_back(clausesOf(part, holds));
        }
        return (formula.kind == Kind::both) == holds ? sum(parts) : product(parts);
    case Kind::follows: return clausesOf(either({no(formula.parts[0]), formula.parts[1]}), holds);
    case Kind::equals: break;
    }
    return clausesOf(both({follows(formula.parts[0], formula.parts[1]),
                           follows(formula.parts[1], formula.parts[0])}),
                     holds);
}

std::optional<Clause> resolved(const Clause& one, const Clause& other)
{
    const auto deny = [](const Formula& a, const Formula& b) {
        return a.variable == b.variable && a.values == b.values && a.kind != b.kind;
    };
    Clause rest;
    int denied = 0;
    for (const auto& [from, against] : {std::pair(&one, &other), std::pair(&other, &one)}) {
        for (const Formula& literal : *from) {
            if (std::any_of(against->begin(), against->end(),
                            [&](const Formula& b) { return deny(literal, b); })) {
                ++denied;
            } else {
                rest.push_back(literal);
            }
        }
    }
    return denied == 2 && !rest.empty() ? std::optional(rest) : std::nullopt;
}

Formula turned(const PlantText& plant, const Body& body, const Formula& atom, Kind to)
{
    const bool has = atom.kind == Kind::is || atom.kind == Kind::in;
    if (atom.kind == Kind::same || has != (to == Kind::isNot)) return atom;
    std::vector<std::string> others;
    for (const std::string& value : variableOf(plant, body, atom.variable).values) {
        if (std::count(atom.values.begin(), atom.values.end(), value) == 0) others.push_back(value);
    }
    if (others.empty()) return atom;
    if (!has) return in(atom.variable, others);
    std::vector<Formula> exclusions;
    for (const std::string& value : others) {
        exclusions.push_back(isNot(atom.variable, value));
    }
    return both(exclusions);
}

} // namespace written
