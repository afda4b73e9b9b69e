#include "language/meaning/TransitionBuilder.h"

#include "language/syntax/Words.h"
#include "plant/LikeliestSet.h"

#include <algorithm>
#include <cmath>

namespace language {

namespace {

using syntax::TransitionKind;

const char* word(TransitionKind kind)
{
    return kind == TransitionKind::fault  ? "fault"
           : kind == TransitionKind::idle ? "idle"
                                          : "nominal";
}

} // namespace

void TransitionBuilder::build(Instance& instance)
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
            std::vector<Change*> leaving;
            for (Change& change : changes) {
                if (change.from == from) leaving.push_back(&change);
            }
            complete(leaving);
            checkSum(leaving);
        }
    }
    for (const Change& change : changes) {
        add(change);
    }
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
    Change change{&transition, nullptr, nullptr, {{}}, std::nullopt};
    if (transition.target) change.to = plant::value(variable, transition.target->text);
    if (transition.guard) {
        auto alternatives = alternativesOf(transition, instance, environment);
        if (!alternatives) return;
        change.alternatives = std::move(*alternatives);
    }
    if (transition.probability) {
        change.probability = probabilityOf(*transition.probability, environment);
        if (!change.probability) return;
    }
    for (Atom* from : *variable->atomLinks) {
        const bool named =
            std::any_of(transition.sources.begin(), transition.sources.end(),
                        [&](const syntax::Name& name) { return name.text == from->value; });
        if (transition.any ? from->fail || from == change.to : !named) continue;
        Change& made = changes.emplace_back(change);
        made.from = from;
        if (!made.to) made.to = from;
    }
}

// The clauses of the guard's negation, each negated.
std::optional<std::vector<TransitionBuilder::Conjunction>> TransitionBuilder::alternativesOf(
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
    if (clauses->empty()) {
        report_.error(transition.guard->range, "this guard can never hold",
                      "a formula that can hold");
        return std::nullopt;
    }
    std::vector<Conjunction> alternatives;
    for (const plant::ClauseLiterals& clause : *clauses) {
        Conjunction& alternative = alternatives.emplace_back();
        for (const plant::Literal& literal : clause) {
            alternative.emplace_back(literal.negated, literal.atom);
        }
    }
    return alternatives;
}

std::optional<double> TransitionBuilder::probabilityOf(const syntax::Probability& written,
                                                       const Environment& environment)
{
    const std::optional<double> seconds =
        written.per ? secondsOf(written.per->text) : std::optional<double>();
    if (!seconds) return probability(written.amount, environment, report_);
    const std::optional<double> amount = evaluate(written.amount, environment, report_);
    if (!amount) return std::nullopt;
    if (*amount < 0) {
        report_.error(written.amount.range, "the rate is " + shown(*amount), "0 or more");
        return std::nullopt;
    }
    return -std::expm1(-*amount / *seconds * stepSeconds_);
}

// What the faults that are always possible leave.
void TransitionBuilder::complete(const std::vector<Change*>& leaving)
{
    double faults = 0;
    for (const Change* change : leaving) {
        if (change->syntax->kind == TransitionKind::fault && change->always()) {
            faults += *change->probability;
        }
    }
    for (Change* change : leaving) {
        if (!change->probability) change->probability = std::max(0.0, 1 - faults);
    }
}

void TransitionBuilder::checkSum(const std::vector<Change*>& leaving)
{
    // Idle ones are what happens when no nominal one does.
    for (const TransitionKind kind : {TransitionKind::nominal, TransitionKind::idle}) {
        std::vector<Change*> together;
        for (Change* change : leaving) {
            const bool fault = change->syntax->kind == TransitionKind::fault;
            if ((fault || change->syntax->kind == kind) && *change->probability > 0) {
                together.push_back(change);
            }
        }
        const std::vector<Change*> likeliest =
            plant::LikeliestSet<Change>(std::move(together)).find();
        double sum = 0;
        std::string list;
        const Change* last = nullptr;
        for (const Change* change : likeliest) {
            sum += *change->probability;
            list += (list.empty() ? "" : ", ") + std::string(word(change->syntax->kind)) + " -> " +
                    change->to->value + " " + shown(*change->probability) + " (line " +
                    std::to_string(change->syntax->range.line) + ")";
            last = change;
        }
        if (sum <= 1 + plant::probabilityTolerance) continue;
        report_.error(last->syntax->range,
                      "the transitions from " + text::quoted(last->from->value) +
                          " that are possible at once add up to " + shown(sum),
                      "at most 1", list);
        return;
    }
}

void TransitionBuilder::add(const Change& change)
{
    for (const Conjunction& alternative : change.alternatives) {
        if (change.syntax->kind == TransitionKind::fault) {
            builder_.fault(change.from, change.to, *change.probability, alternative);
        } else if (change.syntax->kind == TransitionKind::idle) {
            builder_.idle(change.from, *change.probability, alternative);
        } else {
            builder_.nominal(change.from, change.to, alternative, *change.probability);
        }
        ++count_;
    }
}

} // namespace language
