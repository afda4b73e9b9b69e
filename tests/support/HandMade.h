// Models written down in a test.
//
//     HandMade model;
//     model.mode("a.mode", {"ok", "broken!"});             // `!` marks a fault; the first value is the initial one
//     model.condition("a.out", {"0", "1"});
//     model.law("!a.mode=ok | a.out=1");
//     model.fault("a.mode=ok", "a.mode=broken", 0.25);
//     std::unique_ptr<ActivePlant> active = model.activate();
#pragma once

#include "tests/support/RandomPlant.h"

#include <map>

class HandMade {
public:
    StateVar* mode(const std::string& id, const std::vector<std::string>& values);
    StateVar* condition(const std::string& id, const std::vector<std::string>& values);
    StateVar* command(const std::string& id, const std::vector<std::string>& values);
    /// Whether it became a clause.
    bool law(const std::string& text);
    /// The guard as in "p.cmd=go !p.flow=0".
    void nominal(const std::string& from, const std::string& to, double proba,
                 const std::string& guard = "");
    void fault(const std::string& from, const std::string& to, double proba,
               const std::string& guard = "");
    void repair(const std::string& from, const std::string& to, double proba,
                const std::string& guard = "");
    Atom* atom(const std::string& id) const { return atoms_.at(id); }
    plant::ModelBuilder& builder() { return builder_; }

    /// A gate `NAME` that gives what comes in, when ok: its output is NAME.out, its input the variable `input`. It
    /// breaks with probability 1/64 and then gives 0.
    void follower(const std::string& name, const std::string& input);

    /// Hands the model over, as the active one. This one is spent.
    std::unique_ptr<ActivePlant> activate();

private:
    StateVar* variable(const std::string& id, plant::VariableKind kind,
                       const std::vector<std::string>& values);
    std::vector<std::pair<bool, Atom*>> literals(const std::string& text, bool plain) const;

    plant::ModelBuilder builder_{"hand"};
    std::map<std::string, Comp*> comps_;
    std::map<std::string, Atom*> atoms_;
};

/// A step of the plant from the initial labels, by identifiers.
monitor::StepInput input(const ActivePlant& active, const std::vector<std::string>& commands,
                         const std::vector<std::string>& observations);
