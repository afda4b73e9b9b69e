// The one way to make the objects of a model.
//
//     ModelBuilder builder("pump");
//     Comp* pump = builder.component("pump");
//     StateVar* mode = builder.variable(pump, "mode", VariableKind::mode, {{"ok"}, {"broken", true}}, 0);
//     StateVar* flow = builder.variable(pump, "flow", VariableKind::condition, {{"zero"}, {"positive"}});
//     builder.law(pump, {{true, value(mode, "ok")}, {false, value(flow, "positive")}});      // ok -> flow = positive
//     builder.fault(value(mode, "ok"), value(mode, "broken"), 0.01);
//     std::unique_ptr<Model> model = builder.build();
//
// It makes identifiers, and the list of imported components; it checks nothing that has to be reported with a place in a file: that is
// CheckedBuilder, on top of it. What it requires of its caller is checked by assertion.
#pragma once

#include "plant/KnownLists.h"
#include "plant/Model.h"
#include "plant/Names.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace plant {

enum class VariableKind { mode, condition, command };

/// A value of a variable as it is declared.
struct ValueDeclaration {
    std::string name;
    bool fault = false;
};

/// Builds one model. Components, variables and laws keep the order in which they are made.
class ModelBuilder {
public:
    /// `name` is the model's base name: its prime implicates are read from NAME.pi.
    explicit ModelBuilder(std::string name);

    /// A component.
    /// Requires: a new name.
    Comp* component(const std::string& name);

    /// A variable with one atom for each value, `COMPONENT.NAME=VALUE`, of which exactly one holds. `initial` is the index of the
    /// initial value.
    /// Requires: a name that is new in the component, one value at least, and no value twice.
    StateVar* variable(Comp* component, const std::string& name, VariableKind kind,
                       const std::vector<ValueDeclaration>& values,
                       std::optional<std::size_t> initial = {});

    /// A model-wide clause, its literals in the given order, without repetitions. A clause that always holds
    /// (an atom with both signs) and one that was given before are left out: false is returned then. The law is
    /// `owner`'s: the other components that it mentions become imported components of `owner`, unless null.
    /// Costs n log n for n literals.
    bool law(Comp* owner, const std::vector<Literal>& literals);

    /// A nominal transition: from a mode value to another when the guard's atoms hold, with key true, or do not,
    /// with key false. `proba` is its probability per step.
    void nominal(Atom* from, Atom* to, const std::vector<GuardLiteral>& guard, double proba);
    /// A fault: named after its target, of type "Fail", possible whatever is commanded.
    void fault(Atom* from, Atom* to, double proba, const std::vector<GuardLiteral>& guard = {});
    /// Something that was wrong is mended: named "Repair", of type "Repair", and so neither nominal nor a fault.
    void repair(Atom* from, Atom* to, double proba, const std::vector<GuardLiteral>& guard = {});
    /// Staying in a mode value when nothing is asked of it.
    void idle(Atom* at, double proba, const std::vector<GuardLiteral>& guard = {});
    /// Another alternative of the guard of the transition made last: a transition like it that counts as the same change
    /// (Model::changeOf).
    /// Requires: a transition was made.
    void alternative(const std::vector<GuardLiteral>& guard);

    /// Makes `imported` an imported component of `importer`, once; a component never imports itself.
    void import(Comp* importer, Comp* imported);

    /// The atom of a number; atoms are numbered in the order of their making.
    Atom* atom(std::uint32_t number) const { return model_->atoms_[number]; }

    /// Hands the model over.
    /// Ensures: the builder is spent.
    std::unique_ptr<Model> build();

private:
    void add(TransitionKind kind, Atom* from, Atom* to, double proba,
             const std::vector<GuardLiteral>& guard);

    std::unique_ptr<Model> model_;
    KnownLists knownLaws_;             ///< sorted
    std::vector<SignedNumber> sorted_; ///< of the law that is added
    std::unordered_map<Comp*, std::unordered_set<Comp*>> knownImports_;
};

} // namespace plant
