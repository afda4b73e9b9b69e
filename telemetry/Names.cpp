#include "telemetry/Names.h"

#include "plant/Names.h"
#include "text/NearestName.h"

#include <algorithm>
#include <fmt/format.h>

namespace telemetry {

namespace {

bool isAmong(const std::vector<CommandVar*>& commands, const StateVar* variable)
{
    return std::find(commands.begin(), commands.end(), variable) != commands.end();
}

} // namespace

std::string Variable::name() const
{
    return plant::nameOf(*variable);
}

Names::Names(const plant::Model& model, const plant::Bindings& bindings,
             const std::map<std::string, std::string>& renamed)
{
    addVariables(model, bindings);
    addNames();
    addOperands(bindings);
    std::map<std::string, std::uint32_t, std::less<>> others;
    for (const auto& [other, name] : renamed) {
        if (const std::uint32_t index = find(name); index != none) others.emplace(other, index);
    }
    renamed_ = std::move(others);
}

void Names::addVariables(const plant::Model& model, const plant::Bindings& bindings)
{
    // A variable goes by the number of its first value.
    const auto numberOf = [](const StateVar* variable) {
        return variable->atomLinks->front()->number;
    };
    std::vector<const plant::ChannelBinding*> bound(model.atoms().size()); // to the first channel
    std::vector<std::uint32_t> counts(model.atoms().size()); // of those that are added
    const auto add = [&](StateVar* variable, const plant::ChannelBinding* binding) {
        variables_.push_back({variable, binding, counts[numberOf(variable)]++});
    };
    for (const plant::ChannelBinding& binding : bindings.channels) {
        const plant::ChannelBinding*& first = bound[numberOf(binding.variable)];
        if (!first) first = &binding;
        if (binding.kind == plant::ChannelBinding::Kind::observation)
            add(binding.variable, &binding);
    }
    std::vector<StateVar*> commands;
    for (const Comp* component : model.components()) {
        for (StateVar* variable : *component->stateVars) {
            if (component->commandVars && isAmong(*component->commandVars, variable)) {
                commands.push_back(variable);
            } else if (!bound[numberOf(variable)]) {
                add(variable, nullptr);
            }
        }
    }
    observedCount_ = variables_.size();
    for (StateVar* variable : commands) {
        add(variable, bound[numberOf(variable)]);
    }
}

void Names::addNames()
{
    Meanings observed;
    Meanings commanded;
    for (std::uint32_t i = 0; i < variables_.size(); ++i) {
        if (variables_[i].binding && !variables_[i].binding->computed)
            addName({i, Origin::channel, true}, observed, commanded);
    }
    for (std::uint32_t i = 0; i < variables_.size(); ++i) {
        if (variables_[i].bindingNumber > 0) continue;
        addName({i, Origin::variable, false}, observed, commanded);
        const StateVar& variable = *variables_[i].variable;
        if (variable.comp->name.find('/') != std::string::npos ||
            variable.name.find('/') != std::string::npos)
            addName({i, Origin::dottedVariable, false}, observed, commanded);
    }
    observed_ = plant::ListSequence<std::uint32_t>::grouped(names_.size(), observed);
    commanded_ = plant::ListSequence<std::uint32_t>::grouped(names_.size(), commanded);
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
    const auto number = static_cast<std::uint32_t>(operands_.size());
    operands_.push_back(channel);
    const std::uint32_t name = enter({number, Origin::operand, true}).first;
    if (!operandOf_.try_emplace(name, number).second) operands_.pop_back();
}

void Names::addName(const Entry& entry, Meanings& observed, Meanings& commanded)
{
    const std::uint32_t name = enter(entry).first;
    if (names_[name].isChannel != entry.isChannel) return;
    (entry.of < observedCount_ ? observed : commanded).emplace_back(name, entry.of);
}

// The index of the name with the text of this one, and whether it is new.
std::pair<std::uint32_t, bool> Names::enter(const Entry& entry)
{
    if (2 * (names_.size() + 1) > table_.size()) grow();
    std::string text;
    appendText(entry, text);
    std::uint32_t& index = table_[placeOf(text)];
    if (index != none) return {index, false};
    index = static_cast<std::uint32_t>(names_.size());
    names_.push_back(entry);
    return {index, true};
}

// Where the name stands in the table, or would.
std::size_t Names::placeOf(std::string_view text) const
{
    const std::size_t last = table_.size() - 1;
    std::size_t place = std::hash<std::string_view>()(text) & last;
    while (table_[place] != none && !is(names_[table_[place]], text)) {
        place = (place + 1) & last;
    }
    return place;
}

void Names::grow()
{
    table_.assign(std::max<std::size_t>(16, 2 * table_.size()), none);
    std::string text;
    for (std::uint32_t i = 0; i < names_.size(); ++i) {
        text.clear();
        appendText(names_[i], text);
        std::size_t place = std::hash<std::string_view>()(text) & (table_.size() - 1);
        while (table_[place] != none) {
            place = (place + 1) & (table_.size() - 1);
        }
        table_[place] = i;
    }
}

bool Names::is(const Entry& entry, std::string_view text) const
{
    if (entry.origin == Origin::channel) return variables_[entry.of].binding->channel == text;
    if (entry.origin == Origin::operand) return operands_[entry.of] == text;
    const std::string& component = variables_[entry.of].variable->comp->name;
    const std::string& variable = variables_[entry.of].variable->name;
    if (text.size() != component.size() + 1 + variable.size() || text[component.size()] != '.')
        return false;
    const bool isDotted = entry.origin == Origin::dottedVariable;
    const auto same = [isDotted](char is, char wanted) {
        return (isDotted && is == '/' ? '.' : is) == wanted;
    };
    return std::equal(component.begin(), component.end(), text.begin(), same) &&
           std::equal(variable.rbegin(), variable.rend(), text.rbegin(), same);
}

void Names::appendText(const Entry& entry, std::string& text) const
{
    switch (entry.origin) {
    case Origin::channel: text += variables_[entry.of].binding->channel; return;
    case Origin::operand: text += operands_[entry.of]; return;
    case Origin::variable:
    case Origin::dottedVariable: break;
    }
    const StateVar& variable = *variables_[entry.of].variable;
    text.append(variable.comp->name).append(".").append(variable.name);
    if (entry.origin == Origin::dottedVariable) std::replace(text.begin(), text.end(), '/', '.');
}

std::uint32_t Names::find(std::string_view name) const
{
    const auto other = renamed_.find(name);
    if (other != renamed_.end()) return other->second;
    return table_.empty() ? none : table_[placeOf(name)];
}

Name Names::operator[](std::uint32_t index) const
{
    Name name;
    name.isChannel = names_[index].isChannel;
    if (index < observed_.size()) {
        name.observed = observed_[index];
        name.commanded = commanded_[index];
    }
    const auto operand = operandOf_.find(index);
    if (operand != operandOf_.end()) name.operand = operand->second;
    return name;
}

std::vector<std::string> Names::texts() const
{
    std::vector<std::string> texts(names_.size());
    for (std::size_t i = 0; i < names_.size(); ++i) {
        appendText(names_[i], texts[i]);
    }
    return texts;
}

std::string Names::hint(std::string_view name, bool observed, bool commanded) const
{
    const std::vector<std::string> all = texts();
    std::vector<std::string_view> known;
    for (std::uint32_t i = 0; i < names_.size(); ++i) {
        const Name one = (*this)[i];
        if ((observed && !one.observed.empty()) || (commanded && !one.commanded.empty()) ||
            one.operand)
            known.push_back(all[i]);
    }
    return text::didYouMean(name, known);
}

text::Message Names::unknown(std::string_view name, Side side) const
{
    const bool command = side == Side::command;
    const std::uint32_t index = find(name);
    if (index != none && (*this)[index].observed.empty() && (*this)[index].commanded.empty()) {
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
                fmt::format("'{}' or '{}'", variables_[(*this)[index].observed.front()].name(),
                            variables_[(*this)[index].commanded.front()].name())};
    }
    return {fmt::format("{} is not known", text::quoted(name)), "a channel, or COMPONENT.VARIABLE",
            hint(name, true, true)};
}

} // namespace telemetry
