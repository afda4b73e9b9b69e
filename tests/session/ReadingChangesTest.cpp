// How often readings change, learned from a stream, and what a tracker gets of it.
#include "session/ReadingChanges.h"

#include "language/Reader.h"
#include "session/Session.h"
#include "session/StepInput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using session::ReadingChanges;
using testing::ElementsAre;
using testing::IsEmpty;

// What feeds it is measured after what it does, so the channel of the input is not the first one.
const std::string pipeModel = R"(component Pipe {
    cond inflow:  low, high
    cond outflow: low, high
    cond noise:   low, high
    cond spare:   low, high
    mode state { tight initial, leaking fault }
    law state = tight -> outflow = inflow
    fault tight -> leaking : 0.01
}
system Line {
    p: Pipe
    observe p.outflow from "out"
    observe p.noise   from "noise" varies 0.125
    input   p.inflow  from "in"
}
)";

class ReadingChangesTest : public testing::Test {
protected:
    /// A reading of a variable of the pipe.
    struct Read {
        std::string id; ///< such as "noise=low"
        bool held = false;
    };

    telemetry::Step step(const std::vector<Read>& readings) const
    {
        telemetry::Step made;
        made.number = 7;
        made.t = 3.5;
        for (const Read& reading : readings) {
            made.observations.push_back({atom(reading.id), reading.held});
        }
        return made;
    }
    void add(const std::vector<Read>& readings) { changes_.add(session_.plant(), step(readings)); }
    double probability(const std::string& variable) const
    {
        const plant::Plant& plant = session_.plant();
        return changes_.probability(plant.variableOf(plant.indexOf(atom(variable + "=low"))));
    }
    monitor::TrackInput taken(const std::vector<Read>& readings) const
    {
        return session::StepInputs(session_.plant(), session_.bindings()).of(changes_, step(readings));
    }
    std::vector<std::string> names(const std::vector<plant::AtomIndex>& atoms) const
    {
        std::vector<std::string> names;
        for (const plant::AtomIndex atom : atoms) {
            names.push_back(session_.plant().atom(atom)->id);
        }
        return names;
    }

    session::Session session_ =
        session::Session::open(language::readModelText("pipe.itms", pipeModel));
    ReadingChanges changes_;

private:
    Atom* atom(const std::string& id) const
    {
        const plant::Plant& plant = session_.plant();
        for (std::size_t i = 0; i < plant.atomCount(); ++i) {
            Atom* atom = plant.atom(static_cast<plant::AtomIndex>(i));
            if (atom->id == "p." + id) return atom;
        }
        throw std::out_of_range(id);
    }
};

TEST_F(ReadingChangesTest, AreAsProbableAsNotBeforeTheFirstReading)
{
    EXPECT_EQ(probability("noise"), 0.5);
}

TEST_F(ReadingChangesTest, BecomeLessProbableWithEachReadingThatStays)
{
    add({{"noise=low"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 0.5 / 2);
    add({{"noise=low"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 0.5 / 3);
    add({{"noise=low"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 0.5 / 4);
}

TEST_F(ReadingChangesTest, AreCountedAgainstTheReadingBefore)
{
    add({{"noise=low"}});
    add({{"noise=high"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 3);
    add({{"noise=high"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 4);
    add({{"noise=low"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 2.5 / 5);
}

TEST_F(ReadingChangesTest, AreCountedAcrossStepsWithoutAReading)
{
    add({{"noise=low"}});
    add({});
    add({{"noise=high"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 3);
}

TEST_F(ReadingChangesTest, AreOfEachVariableByItself)
{
    add({{"noise=low"}, {"outflow=low"}});
    add({{"noise=high"}, {"outflow=low"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 3);
    EXPECT_DOUBLE_EQ(probability("outflow"), 0.5 / 3);
    EXPECT_DOUBLE_EQ(probability("spare"), 0.5);
}

TEST_F(ReadingChangesTest, DoNotCountReadingsThatAreHeld)
{
    add({{"noise=low"}});
    add({{"noise=low", true}});
    EXPECT_DOUBLE_EQ(probability("noise"), 0.5 / 2);
    add({{"noise=high"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 3);
}

TEST_F(ReadingChangesTest, GoOnFromCountsThatWereKept)
{
    add({{"noise=low"}});
    ReadingChanges other;
    other.restore(changes_.counts());
    changes_ = std::move(other);
    add({{"noise=high"}});
    EXPECT_DOUBLE_EQ(probability("noise"), 1.5 / 3);
}

TEST_F(ReadingChangesTest, AreLearnedByASession)
{
    for (const std::string value : {"low", "high"}) {
        telemetry::Step next = step({{"spare=" + value}});
        session_.advance(next);
        EXPECT_DOUBLE_EQ(session_.input().values.changing.front(), value == "low" ? 0.5 : 0.5 / 2);
    }
}

using StepInputTest = ReadingChangesTest;

TEST_F(StepInputTest, HasTheStepsNumberAndTime)
{
    const monitor::TrackInput input = taken({});
    EXPECT_EQ(input.step, 7u);
    EXPECT_EQ(input.t, 3.5);
    EXPECT_THAT(input.values.observations, IsEmpty());
    EXPECT_EQ(input.values.inputs, 0u);
}

TEST_F(StepInputTest, HasDeclaredInputsFirst)
{
    const monitor::TrackInput input =
        taken({{"outflow=low"}, {"noise=low"}, {"inflow=high"}, {"spare=low"}});
    EXPECT_EQ(input.values.inputs, 1u);
    EXPECT_THAT(names(input.values.observations),
                ElementsAre("p.inflow=high", "p.outflow=low", "p.noise=low", "p.spare=low"));
}

TEST_F(StepInputTest, HasNoInputsWhereNoneIsRead)
{
    EXPECT_EQ(taken({{"outflow=low"}}).values.inputs, 0u);
}

TEST_F(StepInputTest, HasWhatTheModelSaysOfHowAReadingVaries)
{
    add({{"noise=low"}});
    EXPECT_THAT(taken({{"noise=low"}}).values.changing, ElementsAre(0.125));
}

TEST_F(StepInputTest, HasTheEstimateWhereTheModelSaysNothing)
{
    add({{"outflow=low"}});
    EXPECT_THAT(taken({{"inflow=low"}, {"outflow=low"}, {"spare=low"}}).values.changing,
                ElementsAre(0.5, 0.25, 0.5));
}

TEST_F(StepInputTest, ExpectsNoChangeOfAReadingThatIsHeld)
{
    add({{"outflow=low"}});
    EXPECT_THAT(taken({{"outflow=low", true}, {"noise=low", true}}).values.changing,
                ElementsAre(0.0, 0.0));
}

} // namespace
