// What is carried from step to step is compared with what is made afresh, and how much is looked at on the way is counted.
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include "monitor/labels/Completion.h"

#include <gtest/gtest.h>

namespace {

using monitor::Hypothesis;
using monitor::HypothesisPointer;
using monitor::KnownModeSteps;
using monitor::ModeSteps;
using monitor::Prediction;
using monitor::Tracker;
using plant::AtomIndex;
using plant::VariableIndex;

void expectSameLabels(const Prediction& kept, const Prediction& fresh, const plant::Plant& plant)
{
    for (AtomIndex atom = 0; atom < static_cast<AtomIndex>(plant.atomCount()); ++atom) {
        EXPECT_EQ(kept.label(atom), fresh.label(atom)) << plant.atom(atom)->id;
    }
    EXPECT_EQ(kept.mark(), fresh.mark());
}

void expectSameSteps(const ModeSteps& kept, const ModeSteps& fresh)
{
    EXPECT_TRUE(kept == fresh);
    EXPECT_EQ(kept.predicted(), fresh.predicted());
    EXPECT_EQ(kept.logPredicted().value(), fresh.logPredicted().value());
    EXPECT_EQ(kept.logCalm().value(), fresh.logCalm().value());
    EXPECT_EQ(kept.exact(), fresh.exact());
    EXPECT_EQ(kept.notable(), fresh.notable());
    EXPECT_EQ(kept.faulty(), fresh.faulty());
}

// Which modes are not as in the twin, or have a fault.
std::map<VariableIndex, AtomIndex> differing(const Hypothesis& hypothesis, const plant::Plant& plant)
{
    std::map<VariableIndex, AtomIndex> found;
    for (std::size_t i = 0; i < hypothesis.modes.size(); ++i) {
        const AtomIndex value = hypothesis.modes[i];
        if (value != hypothesis.twinModes()[i] || plant.atom(value)->fail) {
            found.emplace(plant.modes()[i], value);
        }
    }
    return found;
}

class CarriedState : public testing::Test {
protected:
    void follow(std::uint64_t seed, PlantKind kind)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        RandomTrack track(random, {.deviating = 20, .lossy = 20});
        Tracker tracker(active.engine, *active.plant, {.maxFaults = 2, .keep = 5});
        for (std::size_t number = 1; number <= 8; ++number) {
            const monitor::TrackInput input = trackInput(active, track.next(), number);
            for (const HypothesisPointer& hypothesis : tracker.advance(input).hypotheses) {
                compare(*hypothesis, *active.plant, input);
            }
        }
    }

    void compare(const Hypothesis& hypothesis, const plant::Plant& plant,
                 const monitor::TrackInput& input)
    {
        const monitor::StepLabels fresh = hypothesis.labels.afresh();
        expectSameLabels(hypothesis.labels.prediction(), fresh.prediction(), plant);
        EXPECT_EQ(hypothesis.labels.contradicted(), fresh.contradicted());
        ASSERT_TRUE(hypothesis.steps);
        if (hypothesis.labels.consistent()) { // otherwise they are not drawn from the commands
            expectSameSteps(hypothesis.steps->steps(),
                            modeSteps(plant, hypothesis.steps->before(),
                                      hypothesis.labels.assumptions().commands));
        }
        std::map<VariableIndex, AtomIndex> since;
        for (const auto& [variable, entry] : hypothesis.since) {
            since.emplace(variable, entry.value);
        }
        EXPECT_EQ(since, differing(hypothesis, plant));
        if (hypothesis.twin) {
            ++twins_;
            expectSameLabels(hypothesis.twin->labels.prediction(),
                             hypothesis.twin->labels.afresh().prediction(), plant);
            expectSameSteps(
                hypothesis.twin->steps->steps(),
                modeSteps(plant, hypothesis.twin->steps->before(), input.values.commands));
        }
        if (hypothesis.fillsInTurn) {
            ++filled_;
            EXPECT_EQ(completionOf(plant, hypothesis.labels.prediction(), 0),
                      monitor::Completion::possible);
        }
    }

    MutedTrace muted_;
    int twins_ = 0;
    int filled_ = 0;
};

TEST_F(CarriedState, IsThatOfALastStepTakenAfresh)
{
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        follow(seed, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed);
    }
    EXPECT_GT(twins_, 100);
    EXPECT_GT(filled_, 100);
}

// A row of pumps beside one another, each with a command and a reading.
class Pumps {
public:
    explicit Pumps(int pumps)
    {
        for (int i = 0; i < pumps; ++i) {
            const std::string name = "p" + std::to_string(i);
            model_.mode(name + ".state", {"off", "on", "broken!"});
            model_.command(name + ".request", {"none", "start", "stop"});
            model_.condition(name + ".flow", {"0", "1"});
            model_.law("!" + name + ".state=on | " + name + ".flow=1");
            model_.law(name + ".state=on | " + name + ".flow=0");
            model_.nominal(name + ".state=off", name + ".state=on", 0.9, name + ".request=start");
            model_.nominal(name + ".state=on", name + ".state=off", 0.9, name + ".request=stop");
            model_.fault(name + ".state=off", name + ".state=broken", 1.0 / 1024);
        }
        active_ = model_.activate();
        tracker_ =
            std::make_unique<Tracker>(active_->engine, *active_->plant, monitor::TrackSettings{});
        for (const plant::PlantVariable& variable : active_->plant->variables()) {
            if (variable.isCommand) {
                input_.values.commands.push_back(variable.values.front());
            }
        }
        step();
        step();
    }

    const Hypothesis& step()
    {
        ++input_.step;
        input_.t += 1.0;
        return *tracker_->advance(input_).hypotheses.front();
    }
    const monitor::TrackAnswer& answer() const { return tracker_->answer(); }
    void read(const std::string& id) { input_.values.observations = {active_->index(id)}; }
    void readNothing() { input_.values.observations = {}; }
    void command(const std::string& id)
    {
        const AtomIndex value = active_->index(id);
        for (std::size_t i = 0; i < input_.values.commands.size(); ++i) {
            if (active_->plant->variableOf(input_.values.commands[i]) ==
                active_->plant->variableOf(value)) {
                input_.values.commands.set(i, value);
            }
        }
    }
    static std::size_t changedLabels(const Hypothesis& hypothesis)
    {
        std::size_t changed = 0;
        forEachDifference(hypothesis.labels.prediction(), hypothesis.steps->before(),
                          [&](AtomIndex) { ++changed; });
        return changed;
    }

private:
    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<Tracker> tracker_;
    monitor::TrackInput input_;
};

class StepCost : public testing::Test, protected Pumps {
protected:
    StepCost() : Pumps(300) {}
};

TEST_F(StepCost, IsNothingForModesWhereNothingHappens)
{
    const Hypothesis& quiet = step();
    EXPECT_EQ(quiet.steps->lookedAt(), 0U);
    EXPECT_EQ(changedLabels(quiet), 0U);
}

TEST_F(StepCost, IsThatOfTheModeThatIsTold)
{
    command("p7.request=start");
    const Hypothesis& told = step();
    EXPECT_EQ(told.steps->lookedAt(), 1U);
    EXPECT_EQ(changedLabels(told), 6U); // of state, request and flow, two values each
    command("p7.request=none");
    EXPECT_EQ(step().steps->lookedAt(), 1U);
    EXPECT_LE(step().steps->lookedAt(), 1U); // the request before the step is another one
    EXPECT_EQ(step().steps->lookedAt(), 0U);
}

TEST_F(StepCost, IsNothingForTheTwinWhereNothingHappens)
{
    read("p3.flow=0");
    command("p3.request=start");
    const Hypothesis& failed = step();
    ASSERT_TRUE(failed.twin);
    readNothing();
    command("p3.request=none");
    step();
    step();
    const Hypothesis& quiet = step();
    ASSERT_TRUE(quiet.twin);
    EXPECT_EQ(quiet.twin->steps->lookedAt(), 0U);
    EXPECT_EQ(quiet.steps->lookedAt(), 0U);
}

// What it costs that pumps do not start, one after the other, at that step and the next two. The first steps of all are not gone back
// to any more: then everything was new.
std::vector<std::uint64_t> lookedAtWhereTheseFail(int count, const std::vector<std::string>& failing)
{
    Pumps pumps(count);
    for (int quiet = 0; quiet < 15; ++quiet) {
        pumps.step();
    }
    std::vector<std::uint64_t> looked;
    for (const std::string& name : failing) {
        pumps.command(name + ".request=start");
        pumps.read(name + ".flow=0");
        EXPECT_TRUE(pumps.step().isFaulty());
        EXPECT_TRUE(pumps.answer().wentBack);
        EXPECT_GT(pumps.answer().work.records, 0U);
        looked.push_back(pumps.answer().lookedAt);
        pumps.command(name + ".request=none");
        for (int after = 0; after < 2; ++after) {
            pumps.step();
            looked.push_back(pumps.answer().lookedAt);
        }
    }
    return looked;
}

TEST(LocalFault, LooksAtAsMuchHoweverManyPumpsAreBesideIt)
{
    const std::vector<std::uint64_t> amongFew = lookedAtWhereTheseFail(30, {"p3"});
    EXPECT_EQ(lookedAtWhereTheseFail(2000, {"p3"}), amongFew);
}

TEST(LocalFault, LooksAtAsMuchWhereThereIsAnotherOne)
{
    EXPECT_EQ(lookedAtWhereTheseFail(2000, {"p3", "p5"}), lookedAtWhereTheseFail(30, {"p3", "p5"}));
}

// Pumps of which each feeds the next. Every tenth one is read, and the last one of the row.
class Chain {
public:
    explicit Chain(int pumps) : pumps_(pumps)
    {
        model_.condition("tank.flow", {"0", "1"});
        model_.mode("tank.state", {"full", "empty!"});
        model_.law("!tank.state=full | tank.flow=1");
        model_.law("!tank.state=empty | tank.flow=0");
        model_.fault("tank.state=full", "tank.state=empty", 1.0 / 1024);
        for (int i = 0; i < pumps; ++i) {
            addPump(name(i), i == 0 ? "tank.flow" : name(i - 1) + ".flow");
        }
        active_ = model_.activate();
        tracker_ =
            std::make_unique<Tracker>(active_->engine, *active_->plant, monitor::TrackSettings{});
        for (int quiet = 0; quiet < 15; ++quiet) {
            step(pumps);
        }
    }
    static std::string name(int pump) { return "p" + std::to_string(pump); }

    // Nothing comes from this one on.
    const monitor::TrackAnswer& step(int silentFrom)
    {
        ++input_.step;
        input_.t += 1.0;
        input_.values.observations = {};
        for (int i = 9; i < pumps_; i += 10) {
            input_.values.observations.push_back(
                active_->index(name(i) + (i >= silentFrom ? ".flow=0" : ".flow=1")));
        }
        return tracker_->advance(input_);
    }

private:
    void addPump(const std::string& pump, const std::string& from)
    {
        model_.mode(pump + ".state", {"on", "off", "broken!"});
        model_.condition(pump + ".flow", {"0", "1"});
        model_.law("!" + pump + ".state=on | !" + from + "=1 | " + pump + ".flow=1");
        model_.law("!" + pump + ".state=on | !" + from + "=0 | " + pump + ".flow=0");
        model_.law(pump + ".state=on | " + pump + ".flow=0");
        model_.fault(pump + ".state=on", pump + ".state=broken", 1.0 / 1024);
        model_.repair(pump + ".state=broken", pump + ".state=on", 1.0 / 64);
    }

    int pumps_;
    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<Tracker> tracker_;
    monitor::TrackInput input_;
};

struct ChainCost {
    std::uint64_t fault;
    std::uint64_t after;
    std::uint64_t repair;
};

// What it costs that one of the last pumps fails, and is mended.
ChainCost costInChainOf(int pumps)
{
    Chain chain(pumps);
    ChainCost cost{};
    const monitor::TrackAnswer& failed = chain.step(pumps - 5);
    EXPECT_EQ(failed.hypotheses.size(), 8U); // of ten
    EXPECT_EQ(failed.dropped, 2U);
    EXPECT_TRUE(failed.complete);
    cost.fault = failed.lookedAt;
    cost.after = chain.step(pumps - 5).lookedAt;
    const monitor::TrackAnswer& mended = chain.step(pumps);
    EXPECT_EQ(mended.status, monitor::TrackStatus::nominal);
    EXPECT_TRUE(mended.complete);
    cost.repair = mended.lookedAt;
    return cost;
}

TEST(FaultInAChain, LooksAtTheWholeAFewTimesAndAtItsStretch)
{
    const ChainCost ofShort = costInChainOf(100);
    const ChainCost ofLong = costInChainOf(800);
    EXPECT_LT(ofLong.fault, 9 * ofShort.fault);
    EXPECT_LT(ofLong.repair, 9 * ofShort.repair);
    EXPECT_LT(ofLong.after, 3 * ofShort.after);
}

} // namespace
