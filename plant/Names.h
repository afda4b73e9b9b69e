// What the parts of a plant are called, finding them by these names, and what to say where there is none.
//
//     Names names(model);
//     names.component("valve");  names.variable("valve.position");  names.atom("valve.position=open");
#pragma once

#include "model/Atom.h"
#include "model/Comp.h"
#include "model/StateVar.h"
#include "text/Diagnostic.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace plant {

class Model;

/// `COMPONENT.VARIABLE`.
std::string nameOf(const StateVar& variable);
/// The variables' own names, and the texts of a variable's values, in the model's order.
std::vector<std::string_view> variablesOf(const Comp& component);
std::vector<std::string_view> valuesOf(const StateVar& variable);

/// The variable's atom with that value text, or null. Linear in the values.
Atom* value(const StateVar* variable, std::string_view text);
/// The component's variable of that name; null when there is none, or no component. Linear in the variables.
StateVar* variableNamed(const Comp* component, std::string_view name);

/// The components and variables of a plant by name. What is looked up can be any text; the plant outlives the index.
class Names {
public:
    Names() = default;
    /// Of all of a model. Linear.
    explicit Names(const Model& model);

    /// Requires: the component's name is new.
    void add(Comp* component);
    /// Requires: its component was added, and its name is new there.
    void add(StateVar* variable);

    /// Null when there is none, as below. Constant time.
    Comp* component(std::string_view name) const;
    StateVar* variable(const Comp* component, std::string_view name) const;
    /// `COMPONENT.VARIABLE`.
    StateVar* variable(std::string_view name) const;
    /// `COMPONENT.VARIABLE=VALUE`. Linear in the variable's values.
    Atom* atom(std::string_view name) const;

    /// The names of the components, in the order of their adding.
    const std::vector<std::string_view>& components() const { return components_; }

private:
    struct Entry {
        Comp* component = nullptr;
        std::unordered_map<std::string_view, StateVar*> variables;
    };

    std::unordered_map<std::string_view, Entry> entries_;
    std::vector<std::string_view> components_;
};

/// What is wrong with a name that is not one of the values of a variable, and which of them is the nearest. `variable` is the
/// variable's name as messages show it.
text::Message unknownValue(std::string_view name, const std::string& variable,
                           const std::vector<std::string_view>& values);
/// The same where one of these variables, or parts on the way to one, could stand in place of a value.
text::Message unknownOperand(std::string_view name, const std::string& variable,
                             const std::vector<std::string_view>& values,
                             const std::vector<std::string_view>& variables);

} // namespace plant
