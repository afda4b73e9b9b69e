// The telemetry beside the models: followed along time, it shows the fault that its page tells of, from the step on at
// which it happens.
#include "monitor/track/Tracker.h"
#include "tests/examples/ExamplePlant.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <map>

namespace {

using monitor::TrackAnswer;
using monitor::TrackStatus;
using plant::AtomIndex;
using plant::ChannelBinding;

// Readings to values of the plant, in the order of the bindings.
class Channels {
public:
    explicit Channels(const ExamplePlant& plant) : plant_(plant) {}

    monitor::TrackInput read(const nlohmann::json& line)
    {
        monitor::TrackInput input;
        input.step = ++step_;
        input.t = line.at("t").get<double>();
        std::size_t used = 0;
        Names commands;
        std::vector<AtomIndex> given;
        for (const ChannelBinding& binding : plant_.bindings().channels) {
            const bool isCommand = binding.kind == ChannelBinding::Kind::command;
            const auto& group = line.at(isCommand ? "commands" : "observations");
            const auto found = group.find(binding.channel);
            if (found == group.end()) continue;
            ++used;
            Atom*& last = last_[binding.variable];
            last = found->is_number() ? binding.read(found->get<double>(), last)
                                      : binding.read(found->get<std::string>());
            EXPECT_TRUE(last) << binding.channel << " " << *found;
            if (!last) continue;
            if (!isCommand) {
                input.values.observations.push_back(plant_.active().plant->indexOf(last));
                continue;
            }
            commands.push_back(last->id);
            given.push_back(plant_.active().plant->indexOf(last));
        }
        EXPECT_EQ(used, line.at("commands").size() + line.at("observations").size())
            << "a channel is not known";
        input.values.commands = plant_.commands(commands);
        input.lossy = monitor::lossyCommands(*plant_.active().plant, plant_.bindings(), given);
        return input;
    }

private:
    const ExamplePlant& plant_;
    std::size_t step_ = 0;
    std::map<const StateVar*, Atom*> last_;
};

// What is kept of a step: its status, and what is wrong in the best hypothesis, with the step since when.
struct Seen {
    TrackStatus status;
    bool complete;
    double probability;
    int faults;
    std::map<std::string, std::size_t> since;
};

std::vector<Seen> follow(const std::string& model, const std::string& telemetry)
{
    const MutedTrace muted;
    ExamplePlant plant(model);
    Channels channels(plant);
    monitor::Tracker tracker(plant.engine(), *plant.active().plant, {});
    std::vector<Seen> result;
    std::ifstream lines(examplePath(telemetry));
    for (std::string line; std::getline(lines, line);) {
        const TrackAnswer& answer = tracker.advance(channels.read(nlohmann::json::parse(line)));
        Seen& seen = result.emplace_back(Seen{answer.status, answer.complete, 0.0, 0, {}});
        if (answer.hypotheses.empty()) continue;
        seen.probability = answer.probabilities.front();
        seen.faults = answer.hypotheses.front()->faultCount();
        for (const auto& [variable, since] : answer.hypotheses.front()->since) {
            seen.since[plant.active().plant->atom(since.value)->id] = since.step;
        }
    }
    return result;
}

// Nothing is wrong before the step, counted from 1, and from `sure` on the fault is, first of all.
void expectFault(const std::vector<Seen>& seen, const std::string& fault, std::size_t since,
                 std::size_t sure)
{
    ASSERT_GT(seen.size(), sure);
    for (std::size_t step = 1; step <= seen.size(); ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const Seen& at = seen[step - 1];
        EXPECT_TRUE(at.complete);
        if (step < since) {
            EXPECT_EQ(at.status, TrackStatus::nominal);
            EXPECT_TRUE(at.since.empty()) << testing::PrintToString(at.since);
        }
        if (step >= sure) {
            EXPECT_EQ(at.status, TrackStatus::faulty);
            EXPECT_THAT(at.since, testing::Contains(testing::Pair(fault, since))) << at.probability;
            EXPECT_EQ(at.faults, 1);
        }
    }
    EXPECT_GT(seen.back().probability, 0.8);
}

TEST(Telemetry, OfTheStationShowsTheStuckValve)
{
    expectFault(follow("water/station.itms", "water/stuck-valve.jsonl"),
                "branchB/valve.position=stuckClosed", 11, 12);
}

TEST(Telemetry, OfTheGridShowsTheShortedMotor)
{
    expectFault(follow("power/grid.itms", "power/shorted-motor.jsonl"),
                "motor[1]/load.state=shorted", 13, 13);
}

TEST(Telemetry, OfTheAdderShowsTheGate)
{
    expectFault(follow("circuits/full-adder.itms", "circuits/full-adder-run.jsonl"),
                "carried.state=faulty", 14, 22);
}

} // namespace
