// A plant of examples/, and what happens in it.
//
//     ExamplePlant station("water/station.itms");
//     const Labels before = station.after(station.initial(), {"branchA/starter.request=stop"});
//     station.readings(before, {"branchB/starter.request=start"}, {"branchB/pump.state=seized"});
#pragma once

#include "language/Reader.h"
#include "monitor/step/Scenario.h"
#include "tests/support/RandomPlant.h"

#include <set>

using Names = std::vector<std::string>;
/// The values that variables have: of each one at most.
using Labels = std::set<plant::AtomIndex>;

/// Path of a file in examples/.
std::string examplePath(const std::string& file);

/// A model of examples/, active while it lives.
class ExamplePlant {
public:
    /// `ambient` are the values that nothing in the plant determines. Ends the program if the model has errors.
    explicit ExamplePlant(const std::string& file, Names ambient = {});

    const ActivePlant& active() const { return active_; }
    itms& engine() { return active_.engine; }
    const plant::Bindings& bindings() const { return read_.bindings; }
    Labels initial() const { return labels(monitor::initialLabels(*active_.plant)); }
    bool holds(const Labels& labels, const std::string& id) const
    {
        return labels.count(active_.index(id)) != 0;
    }
    /// Every variable has a value.
    bool complete(const Labels& labels) const
    {
        return labels.size() == active_.plant->variables().size();
    }
    /// Commands, what each mode may do, and what is observed.
    monitor::StepFrame frame(const Labels& before, const Names& given,
                             const std::vector<plant::AtomIndex>& observed = {}) const;

    /// Commands that are not given are the first of their values.
    std::vector<plant::AtomIndex> commands(const Names& given) const;
    /// The labels after a step in which the modes `changed` are as named, and all others as predicted. The ambient
    /// values are given, or those of `ambient` instead. Ends the program where that contradicts a law.
    Labels after(const Labels& before, const Names& given, const Names& changed = {},
                 const Names& ambient = {}) const;
    /// What the sensors then show: a value of each observed variable, in the order of the bindings; none of those
    /// that are open.
    std::vector<plant::AtomIndex> readings(const Labels& labels) const;

    /// Explains the step.
    monitor::StepAnswer solve(const Labels& before, const Names& given,
                              const std::vector<plant::AtomIndex>& observed, int maxFaults);

private:
    ExamplePlant(language::ReadResult read, Names ambient);
    Labels labels(const monitor::Prediction& prediction) const;
    monitor::Prediction prediction(const Labels& labels) const;

    language::ReadResult read_;
    ActivePlant active_;
    Names ambient_;
};
