// The names of a plant's components, variables and values, as JSON models refer to them.
#pragma once

#include "language/json/JsonNode.h"
#include "plant/Model.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace language {

/// Finds what texts name: `valve`, `valve.position`, `valve.position=open`. What is unknown is reported with the nearest name,
/// unless a part of the plant that could not be read may have had it.
class PlantNames {
public:
    /// The component's name must be new; `index` is its number in the list.
    void add(Comp* component, std::size_t index);
    void add(StateVar* variable);
    /// Something of the component, or in the whole plant when null, was reported and left out.
    void noteUnread(const Comp* component);

    /// The number that the component of this name was given.
    std::optional<std::size_t> indexOf(std::string_view component) const;

    Comp* component(const JsonNode& node) const;
    StateVar* variable(const JsonNode& node) const;
    Atom* atom(const JsonNode& node) const;
    /// An atom, with `!` before it when it is negated. True in `negated` then.
    Atom* literal(const JsonNode& node, bool& negated) const;
    /// The value of a variable by its own text.
    static Atom* value(const JsonNode& node, const StateVar& variable);

private:
    struct Entry {
        Comp* component = nullptr;
        std::size_t index = 0;
        bool unread = false;
        std::unordered_map<std::string_view, StateVar*> variables;
    };

    Atom* atomNamed(const JsonNode& node, std::string_view name) const;
    StateVar* variableNamed(const JsonNode& node, std::string_view name) const;
    const Entry* entryNamed(const JsonNode& node, std::string_view name) const;

    std::unordered_map<std::string_view, Entry> components_;
    std::vector<std::string_view> names_; ///< of components, in their order
    bool unread_ = false;
};

} // namespace language
