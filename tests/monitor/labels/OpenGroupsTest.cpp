// Which variables are open, and which of them hang together.
#include "monitor/labels/OpenGroups.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using monitor::OpenGroups;
using monitor::OpenVariables;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Names = std::vector<std::string>;
/// Combinations by the identifiers of their values, whatever the order of the variables.
using Group = std::set<std::set<std::string>>;

// The two have the same value, of "0" and "1".
void equal(HandMade& model, const std::string& a, const std::string& b,
           const std::string& otherwise = "")
{
    model.law("!" + a + "=0 | " + b + "=0 " + otherwise);
    model.law("!" + a + "=1 | " + b + "=1 " + otherwise);
}

// An even number of the three is "1".
void parity(HandMade& model, const std::string& a, const std::string& b, const std::string& c)
{
    model.law(a + "=0 | " + b + "=0 | " + c + "=0");
    model.law(a + "=0 | " + b + "=1 | " + c + "=1");
    model.law(a + "=1 | " + b + "=0 | " + c + "=1");
    model.law(a + "=1 | " + b + "=1 | " + c + "=0");
}

Group even(const std::string& a, const std::string& b, const std::string& c)
{
    return {{a + "=0", b + "=0", c + "=0"},
            {a + "=0", b + "=1", c + "=1"},
            {a + "=1", b + "=0", c + "=1"},
            {a + "=1", b + "=1", c + "=0"}};
}

Group single(const std::string& variable)
{
    return {{variable + "=0"}, {variable + "=1"}};
}

class OpenGroupsTest : public testing::Test {
protected:
    void binary(const Names& conditions)
    {
        for (const std::string& condition : conditions) {
            model_.condition(condition, {"0", "1"});
        }
    }
    OpenVariables& variables(const Names& given = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        monitor::Prediction labels(*active_->plant);
        for (const std::string& value : given) {
            EXPECT_TRUE(labels.assume(active_->index(value)));
        }
        EXPECT_TRUE(labels.propagate());
        variables_ = std::make_unique<OpenVariables>(*active_->plant, labels);
        return *variables_;
    }
    // Requires: variables() was called. A variable is named without a value, and has the value "0".
    plant::VariableIndex number(const std::string& variable) const
    {
        return active_->plant->variableOf(active_->index(variable + "=0"));
    }
    OpenGroups found(const Names& read, const Names& given = {})
    {
        OpenVariables& open = variables(given);
        std::vector<plant::VariableIndex> numbers;
        for (const std::string& variable : read) {
            numbers.push_back(number(variable));
        }
        return open.groups(numbers);
    }
    std::vector<Group> groups(const Names& read, const Names& given = {})
    {
        const OpenGroups all = found(read, given);
        EXPECT_THAT(all.undecided, IsEmpty());
        std::vector<Group> result;
        for (const monitor::OpenGroup& group : all.groups) {
            Group named;
            for (const monitor::Combination& combination : group.combinations) {
                const Names ids = active_->ids(combination);
                EXPECT_EQ(ids.size(), group.variables.size());
                named.insert({ids.begin(), ids.end()});
            }
            result.push_back(std::move(named));
        }
        return result;
    }
    Names bearing(const std::string& variable)
    {
        Names modes;
        for (const plant::VariableIndex mode : variables_->bearing(number(variable))) {
            const std::string id =
                active_->plant->atom(active_->plant->variable(mode).values[0])->id;
            modes.push_back(id.substr(0, id.find('=')));
        }
        return modes;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<OpenVariables> variables_;
};

TEST_F(OpenGroupsTest, AreOfOneVariableEachWhereNothingConnectsThem)
{
    binary({"a.v"});
    model_.condition("b.v", {"0", "1", "2"});
    EXPECT_THAT(groups({"a.v", "b.v"}),
                UnorderedElementsAre(single("a.v"), Group{{"b.v=0"}, {"b.v=1"}, {"b.v=2"}}));
}

TEST_F(OpenGroupsTest, HaveOnlyTheVariablesThatWereAskedFor)
{
    binary({"a.v", "b.v", "c.v"});
    equal(model_, "a.v", "b.v");
    EXPECT_THAT(groups({"b.v"}), UnorderedElementsAre(single("b.v")));
    EXPECT_THAT(groups({}), IsEmpty());
}

TEST_F(OpenGroupsTest, AreOneWhereALawTiesTwoVariables)
{
    binary({"a.v", "b.v"});
    model_.law("!a.v=1 | b.v=1");
    EXPECT_THAT(
        groups({"a.v", "b.v"}),
        UnorderedElementsAre(Group{{"a.v=0", "b.v=0"}, {"a.v=0", "b.v=1"}, {"a.v=1", "b.v=1"}}));
}

TEST_F(OpenGroupsTest, AreOneWhereTwoVariablesAreTiedThroughAThirdOne)
{
    binary({"a.v", "b.v", "between.v"});
    equal(model_, "a.v", "between.v");
    equal(model_, "between.v", "b.v");
    EXPECT_THAT(groups({"a.v", "b.v"}),
                UnorderedElementsAre(Group{{"a.v=0", "b.v=0"}, {"a.v=1", "b.v=1"}}));
}

TEST_F(OpenGroupsTest, AreApartWhereWhatTiesThemIsSettled)
{
    binary({"a.v", "b.v"});
    model_.mode("wire.mode", {"ok", "broken!"});
    equal(model_, "a.v", "b.v", "| !wire.mode=ok");
    EXPECT_EQ(groups({"a.v", "b.v"}, {"wire.mode=ok"}).size(), 1u);
    EXPECT_THAT(groups({"a.v", "b.v"}, {"wire.mode=broken"}),
                UnorderedElementsAre(single("a.v"), single("b.v")));
    EXPECT_THAT(groups({"a.v", "b.v"}, {"wire.mode=ok", "a.v=1"}), IsEmpty());
}

// With the third one at 1 they are free, and nobody reads it.
TEST_F(OpenGroupsTest, AreTakenApartWhereALawThatConnectsThemExcludesNothing)
{
    binary({"a.v", "b.v", "free.v"});
    model_.law("a.v=0 | b.v=0 | free.v=1");
    EXPECT_THAT(groups({"a.v", "b.v"}), UnorderedElementsAre(single("a.v"), single("b.v")));
}

// The laws mention both, and together only say that the first is not 2.
TEST_F(OpenGroupsTest, AreTakenApartWhereLawsTogetherConcernOneOfThem)
{
    model_.condition("a.v", {"0", "1", "2"});
    binary({"b.v"});
    model_.law("!a.v=2 | b.v=0");
    model_.law("!a.v=2 | b.v=1");
    EXPECT_THAT(groups({"a.v", "b.v"}), UnorderedElementsAre(single("a.v"), single("b.v")));
}

TEST_F(OpenGroupsTest, AreTakenApartIntoPairsThatAreTied)
{
    binary({"a.v", "b.v", "c.v", "d.v", "free.v"});
    equal(model_, "a.v", "d.v");
    equal(model_, "b.v", "c.v");
    model_.law("a.v=0 | b.v=0 | free.v=1");
    EXPECT_THAT(groups({"a.v", "b.v", "c.v", "d.v"}),
                UnorderedElementsAre(Group{{"a.v=0", "d.v=0"}, {"a.v=1", "d.v=1"}},
                                     Group{{"b.v=0", "c.v=0"}, {"b.v=1", "c.v=1"}}));
}

// Any two of them are independent.
TEST_F(OpenGroupsTest, AreOneWhereOnlyThreeTogetherAreTied)
{
    binary({"a.v", "b.v", "c.v"});
    parity(model_, "a.v", "b.v", "c.v");
    EXPECT_THAT(groups({"a.v", "b.v", "c.v"}), UnorderedElementsAre(even("a.v", "b.v", "c.v")));
    EXPECT_THAT(groups({"a.v", "c.v"}), UnorderedElementsAre(single("a.v"), single("c.v")));
}

TEST_F(OpenGroupsTest, AreTakenApartIntoTheSmallestWhereThreeAreTied)
{
    binary({"a.v", "b.v", "c.v", "d.v", "e.v", "f.v", "g.v", "free.v"});
    parity(model_, "a.v", "c.v", "e.v");
    parity(model_, "b.v", "d.v", "f.v");
    model_.law("a.v=0 | b.v=0 | g.v=0 | free.v=1");
    EXPECT_THAT(
        groups({"a.v", "b.v", "c.v", "d.v", "e.v", "f.v", "g.v"}),
        UnorderedElementsAre(even("a.v", "c.v", "e.v"), even("b.v", "d.v", "f.v"), single("g.v")));
}

// Propagation alone finds no value: whatever the other one is, it is 1.
TEST_F(OpenGroupsTest, LeaveOutAVariableThatFollowsByCases)
{
    binary({"a.v", "b.v"});
    model_.law("a.v=1 | b.v=0");
    model_.law("a.v=1 | b.v=1");
    EXPECT_THAT(groups({"a.v", "b.v"}), UnorderedElementsAre(single("b.v")));
    EXPECT_FALSE(variables_->isOpen(number("a.v")));
    EXPECT_TRUE(variables_->isOpen(number("b.v")));
}

TEST_F(OpenGroupsTest, AreNotNeededToFindOutWhatIsOpen)
{
    binary({"a.v", "b.v", "c.v"});
    model_.law("a.v=1 | b.v=0");
    model_.law("a.v=1 | b.v=1");
    OpenVariables& open = variables({"c.v=0"});
    EXPECT_FALSE(open.isOpen(number("a.v")));
    EXPECT_TRUE(open.isOpen(number("b.v")));
    EXPECT_FALSE(open.isOpen(number("c.v")));
}

// A law for each value of a variable that has nothing to do with it, in place of one.
TEST_F(OpenGroupsTest, AreTheSameWhereLawsAreSpelledOut)
{
    const Group tied{{"a.v=0", "b.v=0"}, {"a.v=1", "b.v=1"}};
    for (const bool spelledOut : {false, true}) {
        HandMade model;
        for (const std::string condition : {"a.v", "b.v", "x.v"}) {
            model.condition(condition, {"0", "1"});
        }
        if (spelledOut) {
            equal(model, "a.v", "b.v", "| x.v=0");
            equal(model, "a.v", "b.v", "| x.v=1");
        } else {
            equal(model, "a.v", "b.v");
        }
        active_.reset();
        active_ = model.activate();
        EXPECT_THAT(groups({"a.v", "b.v", "x.v"}), UnorderedElementsAre(tied, single("x.v")))
            << spelledOut;
    }
}

class ManyCombinations : public OpenGroupsTest {
protected:
    // At least one of the variables is 1.
    Names addConnected(const std::string& prefix, int count)
    {
        Names names;
        std::string law;
        for (int i = 0; i < count; ++i) {
            names.push_back(prefix + std::to_string(i) + ".v");
            law += (i == 0 ? "" : " | ") + names.back() + "=1";
        }
        binary(names);
        model_.law(law);
        return names;
    }
};

TEST_F(ManyCombinations, AreNotDecided)
{
    const Names names = addConnected("a", 11);
    const OpenGroups all = found(names);
    EXPECT_THAT(all.groups, IsEmpty());
    ASSERT_EQ(all.undecided.size(), 1u);
    EXPECT_EQ(all.undecided.front().size(), names.size());
    EXPECT_TRUE(variables_->isOpen(number("a0.v")));
}

TEST_F(ManyCombinations, DoNotKeepAnotherPartFromBeingDecided)
{
    Names names = addConnected("a", 11);
    for (const std::string other : {"0", "b", "z"}) {
        binary({other + ".v"});
        names.push_back(other + ".v");
    }
    const OpenGroups all = found(names);
    EXPECT_EQ(all.groups.size(), 3u);
    EXPECT_EQ(all.undecided.size(), 1u);
}

TEST_F(ManyCombinations, AreNoneOfManyVariablesThatNothingConnects)
{
    Names names;
    for (int i = 0; i < 400; ++i) {
        names.push_back("a" + std::to_string(i) + ".v");
    }
    binary(names);
    const OpenGroups all = found(names);
    EXPECT_EQ(all.groups.size(), names.size());
    EXPECT_THAT(all.undecided, IsEmpty());
}

class Bearing : public OpenGroupsTest {
protected:
    // A mode for each of two conditions, which a law connects, and one for neither.
    Bearing()
    {
        binary({"a.v", "b.v", "c.v"});
        for (const std::string mode : {"m.mode", "n.mode", "o.mode"}) {
            model_.mode(mode, {"0", "broken!"});
        }
        model_.law("!m.mode=0 | a.v=1");
        model_.law("!n.mode=0 | b.v=1");
        model_.law("!o.mode=0 | c.v=1");
        model_.law("a.v=1 | b.v=1");
    }
};

TEST_F(Bearing, IsOfAModeThatALawMentionsWithTheVariable)
{
    variables({"m.mode=broken", "n.mode=broken", "o.mode=broken"});
    EXPECT_THAT(bearing("c.v"), UnorderedElementsAre("o.mode"));
}

TEST_F(Bearing, GoesThroughOpenVariables)
{
    variables({"m.mode=broken", "n.mode=broken", "o.mode=broken"});
    EXPECT_THAT(bearing("a.v"), UnorderedElementsAre("m.mode", "n.mode"));
    EXPECT_THAT(bearing("b.v"), UnorderedElementsAre("m.mode", "n.mode"));
}

TEST_F(Bearing, EndsAtAVariableThatIsNotOpen)
{
    variables({"m.mode=broken", "n.mode=0", "o.mode=broken"});
    EXPECT_THAT(bearing("a.v"), UnorderedElementsAre("m.mode"));
}

} // namespace
