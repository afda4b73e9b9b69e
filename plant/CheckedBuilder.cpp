#include "plant/CheckedBuilder.h"

#include "plant/Names.h"

#include <algorithm>

namespace plant {

CheckedBuilder::CheckedBuilder(std::string name, std::size_t mostDomainClauses)
    : builder_(std::move(name)), mostDomainClauses_(mostDomainClauses)
{
}

Comp* CheckedBuilder::component(const std::string& name, const PlaceHandle& at,
                                const PlaceHandle& nameAt)
{
    const auto first = components_.find(name);
    if (first == components_.end()) {
        Comp* made = builder_.component(name);
        components_.emplace(made->name, at);
        return made;
    }
    reportTwice(nameAt, first->second, "the component " + text::quoted(name) + " is declared twice",
                "a name that no other component has");
    return nullptr;
}

StateVar* CheckedBuilder::variable(Comp* component, const std::string& name, VariableKind kind,
                                   const std::vector<ValueDeclaration>& values,
                                   std::optional<std::size_t> initial, const PlaceHandle& at)
{
    const bool fitted = variablesFit();
    domainClauses_ += 1 + values.size() * (values.size() - 1) / 2;
    if (!variablesFit()) {
        if (fitted) {
            at.report("the values of all variables would need more than " +
                      std::to_string(mostDomainClauses_) + " clauses");
        }
        return nullptr;
    }
    ++variableCount_;
    return builder_.variable(component, name, kind, values, initial);
}

std::size_t CheckedBuilder::law(Comp* owner, const std::vector<ClauseLiterals>& clauses,
                                const PlaceHandle& at)
{
    if (std::any_of(clauses.begin(), clauses.end(),
                    [](const ClauseLiterals& clause) { return clause.empty(); })) {
        at.report(at.words().unsatisfiable);
        return 0;
    }
    return static_cast<std::size_t>(
        std::count_if(clauses.begin(), clauses.end(),
                      [&](const ClauseLiterals& clause) { return builder_.law(owner, clause); }));
}

std::size_t CheckedBuilder::change(const Change& change)
{
    const Conjunction& first = change.alternatives.front();
    switch (change.kind) {
    case ChangeKind::nominal:
        builder_.nominal(change.from, change.to, first, *change.probability);
        break;
    case ChangeKind::fault:
        builder_.fault(change.from, change.to, *change.probability, first);
        break;
    case ChangeKind::repair:
        builder_.repair(change.from, change.to, *change.probability, first);
        break;
    case ChangeKind::idle: builder_.idle(change.from, *change.probability, first); break;
    }
    for (std::size_t i = 1; i < change.alternatives.size(); ++i) {
        builder_.alternative(change.alternatives[i]);
    }
    transitionCount_ += change.alternatives.size();
    return change.alternatives.size();
}

bool CheckedBuilder::bind(const StateVar* variable, ChannelBinding::Kind kind, bool input,
                          const PlaceHandle& at)
{
    const std::uint32_t number = variable->atomLinks->front()->number;
    if (number >= boundOf_.size()) boundOf_.resize(number + number / 2 + 1);
    if (boundOf_[number] == 0) {
        bound_.push_back({at, input});
        boundOf_[number] = static_cast<std::uint32_t>(bound_.size());
        return true;
    }
    const Bound& first = bound_[boundOf_[number] - 1];
    if (kind == ChannelBinding::Kind::command) {
        reportTwice(at, first.at, text::quoted(nameOf(*variable)) + " is bound twice",
                    "one channel for it");
        return false;
    }
    if (first.input == input) return true;
    reportTwice(at, first.at, text::quoted(nameOf(*variable)) + " is observed and an input",
                "the same for all of its channels");
    return false;
}

Bindings CheckedBuilder::takeBindings()
{
    bindings_.channels.shrink_to_fit();
    return std::move(bindings_);
}

// What was needed for checks only is given back before others need memory.
std::unique_ptr<Model> CheckedBuilder::build()
{
    components_ = {};
    boundOf_ = {};
    bound_ = {};
    measurable_ = {};
    return builder_.build();
}

void CheckedBuilder::measurable(StateVar* variable, const PlaceHandle& at)
{
    const auto [entry, isNew] = measurable_.try_emplace(variable, at);
    if (isNew) {
        bindings_.measurable.push_back(variable);
        return;
    }
    reportTwice(at, entry->second,
                text::quoted(nameOf(*variable)) + " is declared measurable twice", "it once");
}

} // namespace plant
