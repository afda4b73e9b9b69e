// The variables of the components of a JSON model.
#pragma once

#include "language/json/PlantNames.h"
#include "language/meaning/Elaboration.h"
#include "plant/Bindings.h"
#include "plant/ModelBuilder.h"

#include <optional>
#include <vector>

namespace language {

class JsonVariables {
public:
    JsonVariables(plant::ModelBuilder& builder, PlantNames& names, plant::Bindings& bindings,
                  const ExpansionLimits& limits)
        : builder_(builder), names_(names), bindings_(bindings), limits_(limits)
    {
    }

    /// Makes those of a component. `list` is the node of all of them.
    void add(const JsonNode& list, Comp* component);

    std::size_t count() const { return count_; }

private:
    bool addOne(const JsonNode& node, Comp* component);
    static std::optional<plant::VariableKind> kindOf(const JsonNode& node);
    static std::optional<std::vector<plant::ValueDeclaration>> valuesOf(const JsonNode& node);
    static bool readInitial(const JsonNode& variable, plant::VariableKind kind,
                            const std::vector<plant::ValueDeclaration>& values,
                            std::optional<std::size_t>& initial);
    bool fits(const JsonNode& node, std::size_t values);

    plant::ModelBuilder& builder_;
    PlantNames& names_;
    plant::Bindings& bindings_;
    const ExpansionLimits& limits_;
    std::size_t domainClauses_ = 0;
    std::size_t count_ = 0;
};

} // namespace language
