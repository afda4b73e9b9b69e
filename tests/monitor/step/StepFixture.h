// What the tests of a step have in common.
#pragma once

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

using Names = std::vector<std::string>;

class StepFixture : public testing::Test {
protected:
    /// Solves a step from the initial labels.
    monitor::StepAnswer solve(const Names& observations, const Names& commands = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        return monitor::StepSolver(active_->engine, *active_->plant, recordsBeforeSplit_)
            .solve(before(), input(*active_, commands, observations), settings_);
    }
    /// The initial labels, with these values instead where a mode is named.
    monitor::Prediction before() const
    {
        monitor::Prediction labels(*active_->plant);
        for (const std::string& id : before_) {
            labels.assume(active_->index(id));
        }
        for (const plant::PlantVariable& variable : active_->plant->variables()) {
            if (variable.isMode && !labels.valueOf(variable)) {
                labels.assume(variable.values.front());
            }
        }
        return labels;
    }
    std::set<Names> modes(const monitor::StepAnswer& answer) const
    {
        std::set<Names> result;
        for (const monitor::Candidate& candidate : answer.candidates) {
            result.insert(active_->ids(candidate.modes));
        }
        return result;
    }
    /// A row of followers NAME0, NAME1, ... from in.v on.
    void makeRow(int length)
    {
        model_.condition("in.v", {"0", "1"});
        std::string from = "in.v";
        for (int i = 0; i < length; ++i) {
            const std::string name = "f" + std::to_string(i);
            model_.follower(name, from);
            from = name + ".out";
        }
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    monitor::StepSettings settings_;
    std::optional<std::uint64_t> recordsBeforeSplit_;
    Names before_;
};
