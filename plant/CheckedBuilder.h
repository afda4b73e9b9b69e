// The way from what a model says to its objects and bindings, for front ends whose users make mistakes.
//
//     CheckedBuilder builder("plants/pump", mostDomainClauses);
//     Comp* pump = builder.component("pump", at, nameAt);
//     StateVar* state = builder.variable(pump, "state", VariableKind::mode, {{"on"}, {"broken", true}}, 0, at);
//     builder.change({ChangeKind::fault, value(state, "on"), value(state, "broken"), {{}}, 0.01, at});
//     std::unique_ptr<Model> model = builder.build();
//
// Above ModelBuilder, which makes the objects: whatever a model has to keep to is checked here or in the rules beside it
// (TransitionRules.h, BindingRules.h, Contradictions.h), once for all front ends, and reported through place handles. A front end
// itself checks its syntax, its types and its names.
#pragma once

#include "plant/Bindings.h"
#include "plant/Change.h"
#include "plant/ModelBuilder.h"
#include "plant/NormalForm.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace plant {

/// A variable has at least two values: with one it says nothing.
constexpr std::size_t leastValues = 2;
/// Its clauses grow with the square of their number.
constexpr std::size_t mostValues = 200;

/// Builds one model and its bindings. What is wrong is reported and left out, so that the rest can be checked too.
class CheckedBuilder {
public:
    /// `name` is the model's base name. `mostDomainClauses` bounds what the values of all variables need.
    CheckedBuilder(std::string name, std::size_t mostDomainClauses);

    /// A component; null, and reported at its name, when there is one of that name.
    Comp* component(const std::string& name, const PlaceHandle& at, const PlaceHandle& nameAt);
    /// As ModelBuilder::import.
    void import(Comp* importer, Comp* imported) { builder_.import(importer, imported); }

    /// A variable. Null when the clauses of all variables would be too many, which is reported once.
    /// Requires: a name that is new in the component, and values of different names, one at least.
    StateVar* variable(Comp* component, const std::string& name, VariableKind kind,
                       const std::vector<ValueDeclaration>& values,
                       std::optional<std::size_t> initial, const PlaceHandle& at);
    /// False when the variables became too many.
    bool variablesFit() const { return domainClauses_ <= mostDomainClauses_; }
    /// That a command does not arrive, with this probability.
    void lose(const StateVar* command, double probability)
    {
        bindings_.lost[command] = probability;
    }

    /// The clauses of one law, which is `owner`'s unless that is null. Returns how many of them became clauses of the model: those
    /// that say nothing new do not. A law that no assignment satisfies is reported, and adds none.
    std::size_t law(Comp* owner, const std::vector<ClauseLiterals>& clauses, const PlaceHandle& at);

    /// A transition for each alternative of the guard; returns how many.
    /// Requires: a change of a mode, with a probability and an alternative at least. checkSum() is the caller's to call, once all
    /// changes from a value are known.
    std::size_t change(const Change& change);

    /// Reports a command that is bound already, and a variable that is observed and an input.
    bool bind(const StateVar* variable, ChannelBinding::Kind kind, bool input,
              const PlaceHandle& at);
    /// Requires: bind() of its variable succeeded.
    void channel(ChannelBinding binding) { bindings_.channels.push_back(std::move(binding)); }
    /// Notes what can be measured, and reports what was noted before.
    /// Requires: it is no command.
    void measurable(StateVar* variable, const PlaceHandle& at);
    /// Requires: more than 0.
    void step(double seconds) { bindings_.stepSeconds = seconds; }

    /// As ModelBuilder::atom.
    Atom* atom(std::uint32_t number) const { return builder_.atom(number); }
    std::size_t variableCount() const { return variableCount_; }
    std::size_t transitionCount() const { return transitionCount_; }

    /// Hands the bindings over.
    /// Requires: nothing is bound afterwards.
    Bindings takeBindings();
    /// Hands the model over.
    /// Ensures: the builder is spent.
    std::unique_ptr<Model> build();

private:
    ModelBuilder builder_;
    Bindings bindings_;
    std::size_t mostDomainClauses_;
    std::size_t domainClauses_ = 0;
    std::size_t variableCount_ = 0;
    std::size_t transitionCount_ = 0;
    std::unordered_map<std::string_view, PlaceHandle> components_; ///< by the components' own names
    struct Bound {
        PlaceHandle at;
        bool input = false;
    };
    std::vector<std::uint32_t>
        boundOf_; ///< by the number of a variable's first value: its place in `bound_`, plus 1
    std::vector<Bound> bound_;
    std::unordered_map<const StateVar*, PlaceHandle> measurable_;
};

} // namespace plant
