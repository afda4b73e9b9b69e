#include "telemetry/Names.h"

#include "plant/Names.h"
#include "text/NearestName.h"

#include <algorithm>
#include <fmt/format.h>
#include <unordered_set>

namespace telemetry {

Names::Names(const plant::Model& model, const plant::Bindings& bindings,
             const std::map<std::string, std::string>& renamed)
{
    std::unordered_map<const StateVar*, const plant::ChannelBinding*> bound;
    for (const plant::ChannelBinding& binding : bindings.channels) {
        bound.emplace(binding.variable, &binding);
        if (binding.kind == plant::ChannelBinding::Kind::observation)
            addVariable(binding.variable, &binding);
    }
    std::vector<StateVar*> commands;
    for (const auto& component : model.components()) {
        std::unordered_set<const StateVar*> commanded;
        if (component->commandVars)
            commanded.insert(component->commandVars->begin(), component->commandVars->end());
        for (StateVar* variable : *component->stateVars) {
            if (commanded.contains(variable)) {
                commands.push_back(variable);
            } else if (!bound.contains(variable)) {
                addVariable(variable, nullptr);
            }
        }
    }
    observedCount_ = variables_.size();
    for (StateVar* variable : commands) {
        const auto found = bound.find(variable);
        addVariable(variable, found == bound.end() ? nullptr : found->second);
    }
    for (std::uint32_t i = 0; i < variables_.size(); ++i) {
        if (variables_[i].binding && !variables_[i].binding->computed)
            addName(variables_[i].binding->channel, i, true);
    }
    for (std::uint32_t i = 0; i < variables_.size(); ++i) {
        if (variables_[i].bindingNumber > 0) continue;
        addName(variables_[i].name, i, false);
        std::string dotted = variables_[i].name;
        std::replace(dotted.begin(), dotted.end(), '/', '.');
        if (dotted != variables_[i].name) addName(dotted, i, false);
    }
    addOperands(bindings);
    std::vector<std::pair<std::string, std::uint32_t>> others;
    for (const auto& [other, name] : renamed) {
        if (const std::uint32_t index = find(name); index != none)
            others.emplace_back(other, index);
    }
    for (const auto& [other, index] : others) {
        indices_[other] = index;
    }
}

void Names::addOperands(const plant::Bindings& bindings)
{
    const auto addAll = [this](const std::optional<plant::ChannelExpression>& expression) {
        if (!expression) return;
        plant::forEach(*expression, [this](const plant::ChannelExpression& part) {
            if (part.kind == plant::ChannelExpression::Kind::channel) addOperand(part.channel);
        });
    };
    for (const plant::ChannelBinding& binding : bindings.channels) {
        addAll(binding.computed);
        if (const auto* table = std::get_if<plant::ThresholdTable>(&binding.translation)) {
            for (const plant::ThresholdTable::Limit& limit : table->limits) {
                addAll(limit.computed);
            }
        }
        if (!binding.settling) continue;
        for (const std::string& channel : binding.settling->channels) {
            addOperand(channel);
        }
    }
}

void Names::addOperand(const std::string& channel)
{
    const auto [entry, isNew] = indices_.emplace(channel, static_cast<std::uint32_t>(names_.size()));
    if (isNew) {
        names_.emplace_back().isChannel = true;
        texts_.push_back(entry->first);
    }
    std::optional<std::uint32_t>& operand = names_[entry->second].operand;
    if (operand) return;
    operand = static_cast<std::uint32_t>(operands_.size());
    operands_.push_back(channel);
}

void Names::addVariable(StateVar* variable, const plant::ChannelBinding* binding)
{
    variables_.push_back({variable, plant::nameOf(*variable), binding, bindingNumbers_[variable]++});
}

void Names::addName(const std::string& name, std::uint32_t variable, bool isChannel)
{
    const auto [entry, isNew] = indices_.emplace(name, static_cast<std::uint32_t>(names_.size()));
    if (isNew) {
        names_.emplace_back().isChannel = isChannel;
        texts_.push_back(entry->first);
    }
    Name& known = names_[entry->second];
    if (known.isChannel != isChannel) return;
    (variable < observedCount_ ? known.observed : known.commanded).push_back(variable);
}

std::uint32_t Names::find(std::string_view name) const
{
    const auto found = indices_.find(name);
    return found == indices_.end() ? none : found->second;
}

std::string Names::hint(std::string_view name, bool observed, bool commanded) const
{
    std::vector<std::string_view> known;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if ((observed && !names_[i].observed.empty()) ||
            (commanded && !names_[i].commanded.empty()) || names_[i].operand)
            known.push_back(texts_[i]);
    }
    return text::didYouMean(name, known);
}

text::Message Names::unknown(std::string_view name, Side side) const
{
    const bool command = side == Side::command;
    const std::uint32_t index = find(name);
    if (index != none && names_[index].observed.empty() && names_[index].commanded.empty()) {
        return {text::quoted(name) + " is a channel of no variable: others are computed from it",
                "a channel of a variable, or COMPONENT.VARIABLE", ""};
    }
    if (index != none) {
        return {text::quoted(name) + (command ? " is observed, it is not a command"
                                              : " is a command, it is not observed"),
                "", fmt::format("it belongs in '{}'", command ? "observations" : "commands")};
    }
    return {
        fmt::format("{} {} is not known", command ? "command" : "observation", text::quoted(name)),
        "a channel, or COMPONENT.VARIABLE", hint(name, !command, command)};
}

text::Message Names::unknown(std::string_view name) const
{
    const std::uint32_t index = find(name);
    if (index != none) {
        return {fmt::format("{} is a channel of an observation and of a command", text::quoted(name)),
                "COMPONENT.VARIABLE, which says which of them is meant",
                fmt::format("'{}' or '{}'", variables_[names_[index].observed.front()].name,
                            variables_[names_[index].commanded.front()].name)};
    }
    return {fmt::format("{} is not known", text::quoted(name)), "a channel, or COMPONENT.VARIABLE",
            hint(name, true, true)};
}

} // namespace telemetry
