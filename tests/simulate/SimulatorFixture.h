// A simulated plant, by identifiers.
#pragma once

#include "tests/support/HandMade.h"
#include "tests/support/SimulatedRun.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

class SimulatorTest : public testing::Test {
protected:
    using Texts = std::vector<std::string>;

    /// What comes from outside, by identifiers.
    struct Given {
        Texts commands;
        Texts observations;
        Texts injections;
    };

    /// A valve between `v.in` and `v.out`, closed at first.
    void makeValve()
    {
        model_.mode("v.position", {"closed", "open", "stuckClosed!", "stuckOpen!", "unknown!"});
        model_.command("v.request", {"none", "open", "close"});
        model_.condition("v.in", {"zero", "positive"});
        model_.condition("v.out", {"zero", "positive"});
        for (const std::string open : {"open", "stuckOpen"}) {
            model_.law("!v.position=" + open + " | !v.in=zero | v.out=zero");
            model_.law("!v.position=" + open + " | !v.in=positive | v.out=positive");
        }
        model_.law("!v.position=closed | v.out=zero");
        model_.law("!v.position=stuckClosed | v.out=zero");
        model_.nominal("v.position=closed", "v.position=open", 7.0 / 8, "v.request=open");
        model_.nominal("v.position=open", "v.position=closed", 7.0 / 8, "v.request=close");
        model_.fault("v.position=closed", "v.position=stuckClosed", 1.0 / 64);
        model_.fault("v.position=open", "v.position=stuckOpen", 1.0 / 64);
        model_.fault("v.position=open", "v.position=unknown", 1.0 / 64);
        observe("v.out");
        observe("v.in");
    }
    void observe(const std::string& id)
    {
        plant::ChannelBinding binding;
        binding.channel = id;
        binding.variable = model_.atom(id + (id.ends_with("mode") ? "=ok" : "=zero"))->stateVar;
        bindings_.channels.push_back(binding);
    }
    /// Lets the valve break so that nothing tells what flows out.
    simulate::SimulatedStep breakValve()
    {
        step({{"v.request=open"}, {}, {"v.position=open"}});
        return step({{}, {}, {"v.position=unknown"}});
    }
    simulate::Simulator& simulator(std::optional<std::uint64_t> seed = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        if (!simulator_) {
            simulator_ = std::make_unique<simulate::Simulator>(
                *active_->plant, bindings_, simulate::SimulatorSettings{seed, {}});
        }
        return *simulator_;
    }
    simulate::SimulationInput input(const Given& given)
    {
        simulator();
        return {indices(given.commands), indices(given.observations), indices(given.injections)};
    }
    std::vector<plant::AtomIndex> indices(const Texts& ids)
    {
        std::vector<plant::AtomIndex> result;
        for (const std::string& id : ids) {
            result.push_back(active_->index(id));
        }
        return result;
    }
    simulate::SimulatedStep step(const Given& given = {})
    {
        const simulate::SimulationInput all = input(given);
        auto result = simulator_->step(all);
        if (const auto* problem = std::get_if<simulate::SimulationProblem>(&result)) {
            ADD_FAILURE() << "problem " << static_cast<int>(problem->kind);
            return {};
        }
        return std::get<simulate::SimulatedStep>(result);
    }
    simulate::SimulationProblem problem(const Given& given)
    {
        const simulate::SimulationInput all = input(given);
        auto result = simulator_->step(all);
        if (std::holds_alternative<simulate::SimulatedStep>(result)) {
            ADD_FAILURE() << "no problem";
            return {};
        }
        return std::get<simulate::SimulationProblem>(result);
    }
    Texts ids(const std::vector<plant::AtomIndex>& atoms) const { return active_->ids(atoms); }
    Texts faults()
    {
        std::vector<plant::AtomIndex> values;
        for (const monitor::ModeOption& fault :
             simulate::possibleFaults(*active_->plant, simulator(), {})) {
            values.push_back(fault.value);
        }
        return ids(values);
    }

    MutedTrace muted_;
    HandMade model_;
    plant::Bindings bindings_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<simulate::Simulator> simulator_;
};
