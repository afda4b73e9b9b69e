// A plant of a model text that is followed step by step, and explained.
#pragma once

#include "engine/itms.h"
#include "model/DataManager.h"
#include "report/StepExplanation.h"
#include "tests/support/TestModel.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class FollowedPlant {
public:
    using Names = std::vector<std::string>;

    explicit FollowedPlant(const std::string& text, monitor::TrackSettings settings = {},
                           std::size_t mostSteps = 10, const std::string& name = "plant.itms")
        : read_(language::readModelText(name, text)), history_(mostSteps)
    {
        if (!read_.model) throw std::runtime_error(read_.errors.front().format());
        read_.model->activate();
        engine_.rtInit();
        plant_ = std::make_unique<plant::Plant>(*read_.model);
        tracker_ = std::make_unique<monitor::Tracker>(engine_, *plant_, settings);
    }

    /// Commands and observations by identifier; a command variable that is not named has its first value. Of the given
    /// ones, those are lossy that the model says may be lost.
    void step(const Names& commands, const Names& observations)
    {
        monitor::TrackInput input;
        input.step = ++steps_;
        input.t = static_cast<double>(steps_ - 1);
        for (const plant::PlantVariable& variable : plant_->variables()) {
            if (variable.isCommand) input.values.commands.push_back(variable.values.front());
        }
        for (const std::string& id : commands) give(input, index(id));
        for (const std::string& id : observations) input.values.observations.push_back(index(id));
        history_.add(input, tracker_->advance(input));
    }

    report::StepExplanation explain(const report::Shown& shown = {}) const
    {
        return report::explainStep({*plant_, read_, history_, tracker_->answer()}, shown);
    }

private:
    plant::AtomIndex index(const std::string& id) const
    {
        Atom* atom = DataManager::findAtom(id.c_str());
        if (!atom) throw std::runtime_error("no atom " + id);
        return plant_->indexOf(atom);
    }
    void give(monitor::TrackInput& input, plant::AtomIndex given) const
    {
        const plant::VariableIndex variable = plant_->variableOf(given);
        const plant::AtomIndex fallback = plant_->variable(variable).values.front();
        for (std::size_t i = 0; i < input.values.commands.size(); ++i) {
            if (input.values.commands[i] == fallback) input.values.commands.set(i, given);
        }
        const auto lost = read_.bindings.lost.find(plant_->variable(variable).variable);
        if (lost != read_.bindings.lost.end()) {
            input.lossy.push_back({given, fallback, lost->second});
        }
    }

    MutedTrace muted_;
    language::ReadResult read_;
    itms engine_;
    std::unique_ptr<plant::Plant> plant_;
    std::unique_ptr<monitor::Tracker> tracker_;
    monitor::ConflictHistory history_;
    std::size_t steps_ = 0;
};

/// Two valves in a row.
inline const char* const twoValves = R"(component Valve {
    command request: none, open, close
    cond    inflow:  zero, positive
    cond    outflow: zero, positive
    mode    position {
        closed initial
        open
        stuckClosed fault
    }
    law position = open                   -> outflow = inflow
    law position in {closed, stuckClosed} -> outflow = zero
    nominal closed -> open   when request = open  : 0.98
    nominal open   -> closed when request = close : 0.98
    fault   any    -> stuckClosed : 0.01
    idle    any
}
system Station {
    valveA: Valve
    valveB: Valve { initially position = open }
    law valveA.outflow
        = valveB.inflow // a pipe
    observe valveA.inflow  from "FT-1" : zero < 0.1 <= positive
    observe valveB.outflow from "FT-2" : zero < 0.1 <= positive
    command valveA.request from "XV-1" : open = 1, close = 0, none otherwise
}
)";
