#include "monitor/track/ConflictGroups.h"

#include "monitor/step/Step.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using monitor::ConflictGroups;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

class ConflictGroupsTest : public testing::Test {
protected:
    void addFollower(const std::string& name)
    {
        model_.condition(name + ".in", {"0", "1"});
        model_.follower(name, name + ".in");
    }
    // NAME.x=1 cannot be while NAME.mode is on, but no clause with one open literal says so.
    void addRiddle(const std::string& name)
    {
        model_.mode(name + ".mode", {"on"});
        for (const char* variable : {".x", ".y", ".z"}) {
            model_.condition(name + variable, {"0", "1"});
        }
        for (const char* y : {"0", "1"}) {
            for (const char* z : {"0", "1"}) {
                model_.law("!" + name + ".mode=on | " + name + ".x=0 | " + name + ".y=" + y +
                           " | " + name + ".z=" + z);
            }
        }
    }
    ConflictGroups conflictGroups(const Names& observations)
    {
        active_ = model_.activate();
        const monitor::StepFrame frame =
            makeFrame(*active_->plant, monitor::initialLabels(*active_->plant),
                      input(*active_, {}, observations));
        return conflictGroupsOf(frame, monitor::ConnectedVariables(*active_->plant));
    }
    // The components of the modes on which they rest.
    std::set<std::string> components(const ConflictGroups& conflictGroups) const
    {
        std::set<std::string> names;
        for (const monitor::Conflict& conflict : conflictGroups.conflicts) {
            for (const auto variable : conflict) {
                names.insert(active_->plant->variable(variable).variable->comp->name);
            }
        }
        return names;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(ConflictGroupsTest, AreThoseOfEachGroup)
{
    addFollower("a");
    addFollower("b");
    addFollower("c");
    const ConflictGroups found =
        conflictGroups({"a.in=0", "a.out=1", "b.in=1", "b.out=1", "c.in=1", "c.out=0"});
    EXPECT_THAT(components(found), ElementsAre("a", "c"));
    EXPECT_TRUE(found.allSeen);
}

TEST_F(ConflictGroupsTest, AreSeenByTryingValuesBesideWhatShowsAtOnce)
{
    addFollower("a");
    addRiddle("r");
    addRiddle("s");
    const ConflictGroups found = conflictGroups({"a.in=0", "a.out=1", "r.x=1", "s.x=1"});
    EXPECT_THAT(components(found), ElementsAre("a", "r", "s"));
    EXPECT_TRUE(found.allSeen);
}

TEST_F(ConflictGroupsTest, AreInTheGroupOfWhatIsConnectedThroughLawsOnly)
{
    addFollower("a");
    addFollower("b");
    const ConflictGroups found = conflictGroups({"a.in=0", "a.out=1", "b.in=0", "b.out=0"});
    const monitor::ConnectedVariables connected(*active_->plant);
    const auto group = [&](const char* name) {
        return connected.groupOf(active_->plant->variableOf(active_->index(name)));
    };
    EXPECT_TRUE(found.isIn(group("a.in=0")));
    EXPECT_TRUE(found.isIn(group("a.out=0")));
    EXPECT_FALSE(found.isIn(group("b.out=0")));
}

TEST_F(ConflictGroupsTest, AreNotAllKnownWhereModesContradictTheLawsWhateverIsRead)
{
    addFollower("a");
    model_.mode("m.mode", {"on", "off"});
    model_.condition("m.x", {"0", "1"});
    model_.law("!m.mode=on | m.x=0");
    model_.law("!m.mode=on | m.x=1");
    const ConflictGroups found = conflictGroups({"a.in=0", "a.out=1"});
    EXPECT_THAT(components(found), ElementsAre("m"));
    EXPECT_FALSE(found.allSeen);
}

TEST_F(ConflictGroupsTest, AreNoneWhereNothingContradictsWhatIsExpected)
{
    addFollower("a");
    const ConflictGroups found = conflictGroups({"a.in=1", "a.out=1"});
    EXPECT_THAT(found.conflicts, IsEmpty());
    EXPECT_FALSE(found.allSeen);
}

} // namespace
