// What the tests of the example plants have in common.
#pragma once

#include "tests/examples/Enumeration.h"
#include "tests/examples/ExamplePlant.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <map>

/// The labels before a step, and its commands.
struct Situation {
    Labels before;
    Names commands;
    Names ambient = {}; ///< instead of the plant's usual ones
};

class PlantTest : public testing::Test {
protected:
    PlantTest(const std::string& file, Names ambient) : plant_(file, std::move(ambient)) {}

    /// The situation after a row of steps, one list of commands each, without faults.
    Situation situation(const std::vector<Names>& steps, const Names& commands,
                        const Names& ambient = {}) const;
    /// The readings of the step with the modes changed as named.
    std::vector<plant::AtomIndex> readings(const Situation& at, const Names& changed) const
    {
        return plant_.readings(plant_.after(at.before, at.commands, changed, at.ambient));
    }
    /// Explains the readings, and holds the explanations against those of the enumeration: they are the same, with
    /// the probabilities of their transitions.
    monitor::StepAnswer explain(const Situation& at, const std::vector<plant::AtomIndex>& observed,
                                int maxFaults);
    monitor::StepAnswer explain(const Situation& at, const Names& changed, int maxFaults)
    {
        return explain(at, readings(at, changed), maxFaults);
    }
    /// One after the other, every fault that is possible at the step.
    void explainEverySingleFault(const Situation& at);

    /// The modes of the candidates, most probable first.
    std::vector<Names> modes(const monitor::StepAnswer& answer) const;

    /// All faults of the plant by what the sensors show when the fault is there at each of the situations' steps:
    /// those that show the same stand in one list. "" is no fault.
    std::set<std::set<std::string>> alike(const std::vector<Situation>& situations) const;
    /// The same for one situation, without the list of those that do not show.
    std::set<std::set<std::string>> alikeAt(const Situation& situation) const;

    MutedTrace muted_;
    ExamplePlant plant_;

private:
    void comparePriors(const monitor::StepFrame& frame, const monitor::StepAnswer& answer) const;
};
