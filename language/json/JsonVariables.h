// The variables of the components of a JSON model.
#pragma once

#include "language/json/JsonNames.h"
#include "plant/CheckedBuilder.h"

#include <optional>
#include <vector>

namespace language {

class JsonVariables {
public:
    JsonVariables(plant::CheckedBuilder& builder, JsonNames& names)
        : builder_(builder), names_(names)
    {
    }

    /// Makes those of a component. `list` is the node of all of them.
    void add(const JsonNode& list, Comp* component);

private:
    bool addOne(const JsonNode& node, Comp* component);
    static std::optional<plant::VariableKind> kindOf(const JsonNode& node);
    static std::optional<std::vector<plant::ValueDeclaration>> valuesOf(const JsonNode& node);
    static bool readInitial(const JsonNode& variable, plant::VariableKind kind,
                            const std::vector<plant::ValueDeclaration>& values,
                            std::optional<std::size_t>& initial);

    plant::CheckedBuilder& builder_;
    JsonNames& names_;
};

} // namespace language
