#include "language/meaning/TransitionBuilder.h"

#include "language/meaning/FormulaTranslator.h"
#include "language/meaning/OwnVariables.h"
#include "plant/TransitionRules.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

plant::ChangeKind kindOf(const syntax::Transition& transition)
{
    switch (transition.kind) {
    case syntax::TransitionKind::nominal: return plant::ChangeKind::nominal;
    case syntax::TransitionKind::fault: return plant::ChangeKind::fault;
    case syntax::TransitionKind::repair: return plant::ChangeKind::repair;
    case syntax::TransitionKind::idle: return plant::ChangeKind::idle;
    }
    return plant::ChangeKind::nominal;
}

bool isAmongAny(const syntax::Transition& transition, bool isFault)
{
    return isFault == (transition.kind == syntax::TransitionKind::repair);
}

namespace {

// Loops count their turns, so each instance goes through its own.
bool isSelfContained(const ComponentType& type)
{
    return std::all_of(type.members->begin(), type.members->end(), [](const auto& member) {
        if (std::holds_alternative<syntax::Loop>(member)) return false;
        const auto* transition = std::get_if<syntax::Transition>(&member);
        return !transition || !transition->guard || speaksOfOwnVariables(*transition->guard);
    });
}

} // namespace

void TransitionBuilder::build(Instance& instance)
{
    const auto known = known_.find(instance.type);
    if (known != known_.end() && known->second.parameters == instance.parameters) {
        for (const plant::Change& change : shifted(known->second, instance)) {
            builder_.change(change);
        }
        return;
    }
    Changes changes = changesOf(instance);
    for (const plant::Change& change : changes) {
        builder_.change(change);
    }
    if (!changes.empty() && isSelfContained(*instance.type)) {
        known_.insert_or_assign(
            instance.type, Known{instance.parameters, firstAtom(instance), std::move(changes)});
    }
}

TransitionBuilder::Changes TransitionBuilder::shifted(const Known& known,
                                                      const Instance& instance) const
{
    Changes changes = known.changes;
    const std::uint32_t first = firstAtom(instance);
    const auto shift = [&](Atom*& atom) {
        atom = builder_.atom(atom->number - known.first + first);
    };
    for (plant::Change& change : changes) {
        shift(change.from);
        shift(change.to);
        for (plant::Conjunction& alternative : change.alternatives) {
            for (auto& [holds, atom] : alternative) {
                shift(atom);
            }
        }
    }
    return changes;
}

TransitionBuilder::Changes TransitionBuilder::changesOf(Instance& instance)
{
    Changes changes;
    plant_.forEachMember(instance, Elaboration::Wanted::transitions,
                         [&](const syntax::Member& member, Environment& environment) {
                             const auto* transition = std::get_if<syntax::Transition>(&member);
                             if (transition) gather(*transition, instance, environment, changes);
                         });
    for (const std::size_t mode : instance.type->modes) {
        if (!instance.variables[mode]) continue;
        for (const Atom* from : *instance.variables[mode]->atomLinks) {
            std::vector<plant::Change*> leaving;
            for (plant::Change& change : changes) {
                if (change.from == from) leaving.push_back(&change);
            }
            plant::completeProbabilities(leaving);
            plant::checkSum({leaving.begin(), leaving.end()});
        }
    }
    return changes;
}

void TransitionBuilder::gather(const syntax::Transition& transition, Instance& instance,
                               const Environment& environment, Changes& changes)
{
    const ComponentType& type = *instance.type;
    std::size_t mode = type.modes.front();
    for (const std::size_t each : type.modes) {
        if (transition.variable &&
            type.variables[each].syntax->name.text == transition.variable->text) {
            mode = each;
        }
    }
    const StateVar* variable = instance.variables[mode];
    plant::Change change{kindOf(transition),          nullptr, nullptr, {{}}, std::nullopt,
                         report_.at(transition.range)};
    if (transition.target) change.to = plant::value(variable, transition.target->text);
    if (transition.guard) {
        auto alternatives = alternativesOf(transition, instance, environment);
        if (!alternatives) return;
        change.alternatives = std::move(*alternatives);
    }
    if (transition.probability) {
        change.probability =
            probabilityPerStep(*transition.probability, environment, stepSeconds_, report_);
        if (!change.probability) return;
    }
    for (Atom* from : *variable->atomLinks) {
        const bool named =
            std::any_of(transition.sources.begin(), transition.sources.end(),
                        [&](const syntax::Name& name) { return name.text == from->value; });
        if (transition.any ? from == change.to || !isAmongAny(transition, from->fail) : !named)
            continue;
        plant::Change& made = changes.emplace_back(change);
        made.from = from;
        if (!made.to) made.to = from;
    }
}

// The clauses of the guard's negation, each negated.
std::optional<std::vector<plant::Conjunction>> TransitionBuilder::alternativesOf(
    const syntax::Transition& transition, Instance& instance, const Environment& environment)
{
    FormulaTranslator translator(
        [&](const syntax::Path& path) { return plant_.find(instance, path, environment); }, report_);
    auto guard = translator.translate(*transition.guard, true);
    if (!guard) return std::nullopt;
    std::vector<plant::LawFormula> operand;
    operand.push_back(std::move(*guard));
    const plant::LawFormula negation =
        plant::LawFormula::make(plant::LawFormula::Kind::negation, std::move(operand));
    const auto clauses = plant::normalForm(negation, mostAlternatives_);
    if (!clauses) {
        report_.error(transition.guard->range,
                      "the guard has " + std::to_string(plant::countClauses(negation)) +
                          " alternatives",
                      "at most " + std::to_string(mostAlternatives_),
                      "give what recurs in it a cond of its own");
        return std::nullopt;
    }
    std::vector<plant::Conjunction> alternatives;
    for (const plant::ClauseLiterals& clause : *clauses) {
        plant::Conjunction& alternative = alternatives.emplace_back();
        for (const plant::Literal& literal : clause) {
            alternative.emplace_back(literal.negated, literal.atom);
        }
    }
    if (!plant::checkGuard(alternatives, report_.at(transition.guard->range))) return std::nullopt;
    return alternatives;
}

} // namespace language
