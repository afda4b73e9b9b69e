// The names by which JSON models refer to components, variables and values.
#pragma once

#include "language/json/JsonNode.h"
#include "plant/Names.h"

#include <string_view>
#include <unordered_set>

namespace language {

/// Finds what texts name: `valve`, `valve.position`, `valve.position=open`. What is unknown is reported with the nearest name,
/// unless a part of the plant that could not be read may have had it.
class JsonNames {
public:
    /// The component's name must be new.
    void add(Comp* component) { names_.add(component); }
    void add(StateVar* variable) { names_.add(variable); }
    /// Something of the component, or in the whole plant when null, was reported and left out.
    void noteUnread(const Comp* component);

    Comp* component(const JsonNode& node) const;
    StateVar* variable(const JsonNode& node) const;
    Atom* atom(const JsonNode& node) const;
    /// An atom, with `!` before it when it is negated. True in `negated` then.
    Atom* literal(const JsonNode& node, bool& negated) const;
    /// The value of a variable by its own text.
    static Atom* value(const JsonNode& node, const StateVar& variable);

private:
    Atom* atomNamed(const JsonNode& node, std::string_view name) const;
    StateVar* variableNamed(const JsonNode& node, std::string_view name) const;
    Comp* componentNamed(const JsonNode& node, std::string_view name) const;

    plant::Names names_;
    std::unordered_set<const Comp*> unread_; ///< components of which something is missing
    bool anyUnread_ = false;                 ///< a component is missing
};

} // namespace language
