// The variables of the components of a JSON model.
#pragma once

#include "language/Bindings.h"
#include "language/Elaboration.h"
#include "language/ModelBuilder.h"
#include "language/PlantNames.h"

#include <optional>
#include <vector>

namespace language {

class JsonVariables {
public:
    JsonVariables(ModelBuilder& builder, PlantNames& names, Bindings& bindings,
                  const ExpansionLimits& limits)
        : builder_(builder), names_(names), bindings_(bindings), limits_(limits)
    {
    }

    /// Makes those of a component. `list` is the node of all of them.
    void add(const JsonNode& list, Comp* component);

    std::size_t count() const { return count_; }

private:
    bool addOne(const JsonNode& node, Comp* component);
    static std::optional<VariableKind> kindOf(const JsonNode& node);
    static std::optional<std::vector<ValueDeclaration>> valuesOf(const JsonNode& node);
    static bool readInitial(const JsonNode& variable, VariableKind kind,
                            const std::vector<ValueDeclaration>& values,
                            std::optional<std::size_t>& initial);
    bool fits(const JsonNode& node, std::size_t values);

    ModelBuilder& builder_;
    PlantNames& names_;
    Bindings& bindings_;
    const ExpansionLimits& limits_;
    std::size_t domainClauses_ = 0;
    std::size_t count_ = 0;
};

} // namespace language
