// The declarations of a model: constants, component types with their variables and parts, the system.
//
// Everything here is about types, not instances: what can be said of `Valve` once and for all. Nodes of the syntax tree that
// have been found wrong are remembered as broken, so that no later step stumbles over them and complains again.
#pragma once

#include "language/meaning/Imports.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace language {

struct VariableType {
    const syntax::Variable* syntax = nullptr;
    std::vector<std::string_view> values; ///< as declared, without repetitions

    std::optional<std::size_t> indexOf(std::string_view value) const;
    bool isMode() const { return syntax->kind == syntax::VariableKind::mode; }
    bool isFault(std::size_t value) const;
    bool hasFaults() const;
    /// The value that is marked as initial.
    std::optional<std::size_t> marked() const;

    std::vector<std::size_t> declared; ///< for each value, its place in syntax->values
    std::vector<bool> beginning;       ///< for each value, whether an instance begins with it
    bool lacksInitial = false;         ///< reported already
};

struct ComponentType;

struct PartType {
    const syntax::Part* syntax = nullptr;
    ComponentType* type = nullptr; ///< null: unknown, and reported
    bool mentioned = false;        ///< by a law, a guard, a binding or an initial value around it
};

struct ComponentType {
    std::string_view name;
    text::Range range; ///< of the name
    bool system = false;
    const std::vector<syntax::Parameter>* parameters = nullptr; ///< null of the system
    const std::vector<syntax::Member>* members = nullptr;

    std::vector<VariableType> variables;
    std::vector<PartType> parts;
    std::vector<std::size_t> modes; ///< the variables that are modes

    /// What a path may begin with: a variable or a part.
    struct Entry {
        bool part;
        std::size_t index;
    };
    std::unordered_map<std::string_view, Entry> names;

    bool used = false; ///< some part is one
    std::unordered_set<std::string_view> usedParameters;
};

struct ConstantValue {
    double value = 0;
    bool known = true; ///< false: its expression was wrong
    text::Range range;
    bool used = false;
};

struct Types {
    std::unordered_map<std::string_view, ConstantValue> constants;
    std::deque<ComponentType> components; ///< the system is among them
    std::unordered_map<std::string_view, ComponentType*> byName;
    ComponentType* system = nullptr;
    std::unordered_set<const void*> broken; ///< nodes of the syntax tree
    bool endless = false;                   ///< component types contain each other

    bool sound(const void* node) const { return !broken.contains(node); }
};

/// Enters the declarations of all files, and reports what is wrong with them: names declared twice, unknown component types,
/// variables with too few values, component types that contain each other.
class Declarations {
public:
    Declarations(const SourceFiles& files, Types& types, Report& report)
        : files_(files), types_(types), report_(report)
    {
    }

    void enter();

private:
    void enterConstant(const syntax::Constant& constant);
    void enterComponent(const syntax::Component& component);
    void enterSystem(const syntax::System& system);
    void enterParameters(const syntax::Component& component);
    void enterMembers(ComponentType& type);
    void enterVariable(ComponentType& type, const syntax::Variable& variable);
    void enterValues(VariableType& made);
    void enterPart(ComponentType& type, const syntax::Part& part);
    bool enterName(ComponentType& type, const syntax::Name& name, ComponentType::Entry entry);
    void checkNameOfSystem();
    void findCircles();
    bool findCircle(const ComponentType& type, std::vector<const PartType*>& way,
                    std::unordered_map<const ComponentType*, std::size_t>& depths);

    const SourceFiles& files_;
    Types& types_;
    Report& report_;
};

} // namespace language
