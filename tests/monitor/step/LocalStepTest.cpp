// What is found in a part of the plant is compared with what is found in the whole.
#include "monitor/step/LocalStep.h"

#include "monitor/step/FaultSearch.h"
#include "monitor/track/Tracker.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using monitor::Conflict;
using monitor::Deviations;
using monitor::FaultSearch;
using monitor::LocalStep;
using monitor::Scenario;
using monitor::StepFrame;
using plant::AtomIndex;

constexpr int pairs = 4;

// Pairs of pumps of which the second is fed by the first. What feeds a pair is open, or given by a tank.
class LocalSteps : public testing::Test {
protected:
    explicit LocalSteps(bool open = true)
    {
        for (int i = 0; i < pairs; ++i) {
            const std::string first = "p" + std::to_string(i);
            addPump(first);
            addPump(first + "fed");
            model_.law("!" + first + ".out=1 | " + first + "fed.in=1");
            model_.law("!" + first + ".out=0 | " + first + "fed.in=0");
            if (!open) {
                model_.mode(first + "tank.state", {"full", "empty!"});
                model_.law("!" + first + "tank.state=full | " + first + ".in=1");
                model_.law("!" + first + "tank.state=empty | " + first + ".in=0");
                model_.fault(first + "tank.state=full", first + "tank.state=empty", 1.0 / 512);
            }
        }
        active_ = model_.activate();
        tracker_ = std::make_unique<monitor::Tracker>(active_->engine, *active_->plant,
                                                      monitor::TrackSettings{.maxFaults = 2});
        for (const plant::PlantVariable& variable : active_->plant->variables()) {
            if (variable.isCommand) {
                input_.values.commands.push_back(variable.values.front());
            }
        }
    }

    void addPump(const std::string& name)
    {
        model_.mode(name + ".state", {"on", "off", "broken!", "blocked!"});
        model_.command(name + ".request", {"none", "start", "stop"});
        model_.condition(name + ".in", {"0", "1"});
        model_.condition(name + ".out", {"0", "1"});
        model_.law("!" + name + ".state=on | !" + name + ".in=1 | " + name + ".out=1");
        model_.law("!" + name + ".state=on | !" + name + ".in=0 | " + name + ".out=0");
        model_.law("!" + name + ".state=off | " + name + ".out=0");
        model_.law("!" + name + ".state=blocked | " + name + ".out=0");
        model_.nominal(name + ".state=off", name + ".state=on", 0.9, name + ".request=start");
        model_.nominal(name + ".state=on", name + ".state=off", 0.9, name + ".request=stop");
        model_.fault(name + ".state=on", name + ".state=broken", 1.0 / 256);
        model_.fault(name + ".state=on", name + ".state=blocked", 1.0 / 1024);
        model_.repair(name + ".state=broken", name + ".state=off", 1.0 / 16);
    }

    // Random readings of some variables, and now and then another command.
    void next(Random& random)
    {
        ++input_.step;
        input_.t += 1.0;
        input_.values.observations = {};
        for (const plant::PlantVariable& variable : active_->plant->variables()) {
            if (!variable.isMode && !variable.isCommand && random.below(100) < 25) {
                input_.values.observations.push_back(variable.values[random.below(100) < 80 ? 1 : 0]);
            }
        }
        for (std::size_t i = 0; i < input_.values.commands.size(); ++i) {
            if (random.below(100) < 5) {
                const auto& values =
                    active_->plant->variable(active_->plant->variableOf(input_.values.commands[i]))
                        .values;
                input_.values.commands.set(i, values[random.below(values.size())]);
            }
        }
    }

    void compare(const StepFrame& frame, const LocalStep& local)
    {
        const Scenario here(local.frame(), {});
        const Scenario whole(frame, {});
        EXPECT_EQ(local.inWhole(here.discrepancies()), whole.discrepancies());
        EXPECT_EQ(local.inWhole(here.conflicts()), whole.conflicts());
        EXPECT_EQ(here.complete(), whole.complete());
        for (int faults = 0; faults <= 3; ++faults) {
            FaultSearch ofPart(active_->engine, local.frame(), {});
            FaultSearch ofWhole(active_->engine, frame, {});
            ofPart.run(faults);
            ofWhole.run(faults);
            std::set<Deviations> found;
            for (const Deviations& deviations : ofPart.found()) {
                found.insert(local.inWhole(deviations));
            }
            EXPECT_EQ(found, ofWhole.found());
            EXPECT_EQ(ofPart.complete(), ofWhole.complete());
            EXPECT_EQ(ofPart.work().records, ofWhole.work().records);
            EXPECT_EQ(ofPart.work().flips, ofWhole.work().flips);
            engineSearches_ += ofPart.work().flips > 0 ? 1 : 0;
        }
        ++compared_;
    }

    void follow(std::uint64_t seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        for (int step = 0; step < 12; ++step) {
            next(random);
            for (const auto& hypothesis : tracker_->memory().hypotheses) {
                const StepFrame frame = frameAfter(*active_->plant, *hypothesis, input_, {});
                if (const auto local = LocalStep::of(frame)) {
                    compare(frame, *local);
                }
                expected_ += isExpected(frame) ? 1 : 0;
            }
            tracker_->advance(input_);
        }
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<monitor::Tracker> tracker_;
    monitor::TrackInput input_;
    int compared_ = 0;
    int expected_ = 0;
    int engineSearches_ = 0;
};

class FedSteps : public LocalSteps {
protected:
    FedSteps() : LocalSteps(false) {}
};

TEST_F(LocalSteps, FindWhatIsFoundInThePlant)
{
    for (std::uint64_t seed = 0; seed < 15; ++seed) {
        follow(seed);
    }
    EXPECT_GT(compared_, 50);
    EXPECT_GT(expected_, 20);
}

TEST_F(FedSteps, FindWhatTheEngineFindsInThePlant)
{
    for (std::uint64_t seed = 0; seed < 15; ++seed) {
        follow(seed);
    }
    EXPECT_GT(compared_, 50);
    EXPECT_GT(engineSearches_, 20);
}

TEST_F(LocalSteps, AreNoneWhereNothingContradictsThePrediction)
{
    const auto& start = *tracker_->memory().hypotheses.front();
    const StepFrame frame = frameAfter(*active_->plant, start, input_, {});
    EXPECT_FALSE(LocalStep::of(frame));
    EXPECT_TRUE(isExpected(frame));
}

TEST_F(LocalSteps, AreNoneWhereACommandIsNotGiven)
{
    const auto& start = *tracker_->memory().hypotheses.front();
    input_.values.observations = {active_->index("p0.in=1"), active_->index("p0.out=0")};
    EXPECT_TRUE(LocalStep::of(frameAfter(*active_->plant, start, input_, {})));
    input_.values.commands = {active_->index("p1.request=none")};
    EXPECT_FALSE(LocalStep::of(frameAfter(*active_->plant, start, input_, {})));
}

} // namespace
