#include "monitor/labels/Prediction.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using monitor::Label;
using monitor::Prediction;
using plant::AtomIndex;
using plant::VariableIndex;

class PredictionTest : public testing::Test {
protected:
    // in -> a -> b
    void makeChain()
    {
        HandMade model;
        model.condition("in.v", {"0", "1"});
        model.follower("a", "in.v");
        model.follower("b", "a.out");
        active_ = model.activate();
        labels_ = std::make_unique<Prediction>(*active_->plant);
    }
    bool assume(const std::string& id) { return labels_->assume(active_->index(id)); }
    Label label(const std::string& id) const { return labels_->label(active_->index(id)); }
    std::vector<std::string> environment(const std::string& id) const
    {
        return names(labels_->environment({active_->index(id)}));
    }
    std::vector<std::string> names(const std::vector<VariableIndex>& modes) const
    {
        std::vector<std::string> result;
        for (const VariableIndex mode : modes) {
            result.push_back(active_->plant->variable(mode).variable->comp->name);
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    MutedTrace muted_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<Prediction> labels_;
};

using Names = std::vector<std::string>;

TEST_F(PredictionTest, KnowsNothingAtFirst)
{
    makeChain();
    EXPECT_EQ(label("a.mode=ok"), Label::unknown);
    EXPECT_FALSE(labels_->complete());
    EXPECT_EQ(labels_->mark(), 0u);
    EXPECT_EQ(labels_->violated(), -1);
}

TEST_F(PredictionTest, AnAssumedValueRulesOutTheOthers)
{
    makeChain();
    EXPECT_TRUE(assume("a.mode=ok"));
    EXPECT_EQ(label("a.mode=ok"), Label::isTrue);
    EXPECT_EQ(label("a.mode=broken"), Label::isFalse);
    EXPECT_EQ(label("a.out=1"), Label::unknown);
}

TEST_F(PredictionTest, ASecondValueOfAVariableIsRefusedAndChangesNothing)
{
    makeChain();
    assume("a.mode=ok");
    EXPECT_FALSE(assume("a.mode=broken"));
    EXPECT_EQ(label("a.mode=ok"), Label::isTrue);
    EXPECT_EQ(labels_->mark(), 2u);
    EXPECT_TRUE(assume("a.mode=ok"));
}

TEST_F(PredictionTest, ConclusionsRunThroughTheLaws)
{
    makeChain();
    assume("a.mode=ok");
    assume("b.mode=ok");
    assume("in.v=1");
    EXPECT_TRUE(labels_->propagate());
    EXPECT_EQ(label("b.out=1"), Label::isTrue);
    EXPECT_EQ(label("b.out=0"), Label::isFalse);
    EXPECT_TRUE(labels_->complete());
}

TEST_F(PredictionTest, ALawOfOneLiteralHoldsWithoutAnyAssumption)
{
    HandMade model;
    model.condition("a.x", {"0", "1", "2"});
    model.condition("a.y", {"0", "1"});
    model.law("!a.x=2");
    model.law("a.y=1");
    active_ = model.activate();
    Prediction labels(*active_->plant);
    EXPECT_TRUE(labels.propagate());
    EXPECT_EQ(labels.label(active_->index("a.x=2")), Label::isFalse);
    EXPECT_EQ(labels.label(active_->index("a.x=1")), Label::unknown);
    EXPECT_EQ(labels.label(active_->index("a.y=0")), Label::isFalse);
    labels.undo(0);
    EXPECT_FALSE(labels.isKnown(active_->index("a.y=1")));
    EXPECT_TRUE(labels.propagate());
    EXPECT_TRUE(labels.isTrue(active_->index("a.y=1")));
}

TEST_F(PredictionTest, AnEmptyLawIsViolatedByEverything)
{
    HandMade model;
    model.condition("a.x", {"0", "1"});
    model.law("");
    active_ = model.activate();
    Prediction labels(*active_->plant);
    EXPECT_FALSE(labels.propagate());
    EXPECT_GE(labels.violated(), 0);
}

TEST_F(PredictionTest, AViolationIsToldAgainUntilItIsTakenBack)
{
    makeChain();
    assume("a.mode=ok");
    assume("in.v=1");
    labels_->propagate();
    const std::size_t mark = labels_->mark();
    assume("b.out=1");
    assume("b.mode=broken");
    EXPECT_FALSE(labels_->propagate());
    const auto violated = labels_->violated();
    EXPECT_GE(violated, 0);
    EXPECT_FALSE(labels_->propagate());
    labels_->undo(mark);
    EXPECT_EQ(labels_->violated(), -1);
    EXPECT_TRUE(labels_->propagate());
}

TEST_F(PredictionTest, TheEnvironmentIsTheModesOnWhichALabelRests)
{
    makeChain();
    assume("a.mode=ok");
    assume("b.mode=ok");
    assume("in.v=1");
    labels_->propagate();
    EXPECT_EQ(environment("a.out=1"), (Names{"a"}));
    EXPECT_EQ(environment("b.out=0"), (Names{"a", "b"}));
    EXPECT_EQ(environment("in.v=1"), Names{});
    EXPECT_EQ(environment("b.mode=ok"), (Names{"b"}));
}

TEST_F(PredictionTest, UnknownAtomsHaveNoEnvironment)
{
    makeChain();
    assume("a.mode=ok");
    labels_->propagate();
    EXPECT_EQ(environment("a.out=1"), Names{});
}

TEST_F(PredictionTest, ASmallerEnvironmentIsPreferred)
{
    HandMade model;
    model.condition("in.v", {"0", "1"});
    model.follower("a", "in.v");
    model.follower("b", "a.out");
    model.mode("c.mode", {"ok", "broken!"});
    model.law("!c.mode=ok | b.out=1");
    model.law("!b.out=1 | a.out=1");
    active_ = model.activate();
    labels_ = std::make_unique<Prediction>(*active_->plant);
    assume("a.mode=ok");
    assume("b.mode=ok");
    assume("in.v=1");
    labels_->propagate();
    assume("c.mode=ok");
    labels_->propagate();
    EXPECT_EQ(environment("b.out=1"), (Names{"a", "b"}));
    labels_->preferSmallEnvironments();
    // c was labelled after it: a reason must come before what it gives.
    EXPECT_EQ(environment("b.out=1"), (Names{"a", "b"}));

    labels_->undo(0);
    assume("c.mode=ok");
    assume("a.mode=ok");
    assume("b.mode=ok");
    assume("in.v=1");
    labels_->propagate();
    labels_->preferSmallEnvironments();
    EXPECT_EQ(environment("b.out=1"), (Names{"c"}));
}

TEST_F(PredictionTest, TheValueOfAVariableIsTheTrueOne)
{
    makeChain();
    assume("a.mode=broken");
    const auto& variable =
        active_->plant->variable(active_->plant->variableOf(active_->index("a.mode=ok")));
    EXPECT_EQ(labels_->valueOf(variable), active_->index("a.mode=broken"));
    const auto& open =
        active_->plant->variable(active_->plant->variableOf(active_->index("a.out=0")));
    EXPECT_EQ(labels_->valueOf(open), std::nullopt);
}

// ---- Against the slow reference, on random models --------------------------------------------------

AtomLabels labelsOf(const ActivePlant& active, const Prediction& labels)
{
    AtomLabels result;
    for (std::size_t i = 0; i < active.plant->atomCount(); ++i) {
        const auto atom = static_cast<AtomIndex>(i);
        if (labels.isKnown(atom)) {
            result.emplace(active.plant->atom(atom), labels.isTrue(atom));
        }
    }
    return result;
}

// Labels under random modes, commands and some conditions, and what they were made from.
struct RandomPrediction {
    explicit RandomPrediction(std::uint64_t seed)
        : random(seed),
          active(randomModel(random, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed)),
          labels(*active.plant)
    {
        for (const StateVar* variable : allVariables()) {
            if (variable->type != "Cond" || random.chance(25)) {
                given.push_back(variable->type == "Mode" && random.chance(70)
                                    ? variable->atomLinks->front()
                                    : random.pick(*variable->atomLinks));
            }
        }
        for (std::size_t i = given.size(); i > 1; --i) {
            std::swap(given[i - 1], given[random.below(i)]);
        }
        for (const Atom* atom : given) {
            labels.assume(active.plant->indexOf(atom));
        }
        consistent = labels.propagate();
        if (random.chance(50)) {
            labels.preferSmallEnvironments();
        }
    }

    // The values that were given, without the modes that are not in the environment.
    std::vector<const Atom*> givenWithin(const std::vector<VariableIndex>& environment) const
    {
        std::vector<const Atom*> result;
        for (const Atom* atom : given) {
            const VariableIndex variable = active.plant->variableOf(active.plant->indexOf(atom));
            if (atom->stateVar->type != "Mode" ||
                std::binary_search(environment.begin(), environment.end(), variable)) {
                result.push_back(atom);
            }
        }
        return result;
    }

    Random random;
    ActivePlant active;
    Prediction labels;
    std::vector<const Atom*> given;
    bool consistent = false;
};

constexpr std::uint64_t seeds = 150;

TEST(RandomPredictions, DrawAllThatUnitPropagationDraws)
{
    const MutedTrace muted;
    int consistent = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomPrediction drawn(seed);
        const auto expected = BruteForceDiagnosis::consequences(drawn.given);
        ASSERT_EQ(drawn.consistent, expected.has_value());
        if (expected) {
            ++consistent;
            EXPECT_EQ(labelsOf(drawn.active, drawn.labels), *expected);
        }
    }
    EXPECT_GT(consistent, 20);
    EXPECT_LT(consistent, 140);
}

TEST(RandomPredictions, FollowFromTheModesOfTheirEnvironmentAlone)
{
    const MutedTrace muted;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomPrediction drawn(seed);
        if (!drawn.consistent) {
            continue;
        }
        for (const auto& [atom, value] : labelsOf(drawn.active, drawn.labels)) {
            const auto environment = drawn.labels.environment({drawn.active.plant->indexOf(atom)});
            const auto entailed = BruteForceDiagnosis::consequences(drawn.givenWithin(environment));
            ASSERT_TRUE(entailed);
            ASSERT_EQ(entailed->count(atom), 1u) << atom->id;
            EXPECT_EQ(entailed->at(atom), value) << atom->id;
        }
    }
}

TEST(RandomPredictions, AreViolatedByTheModesOfTheViolatedClauseAlone)
{
    const MutedTrace muted;
    int violated = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomPrediction drawn(seed);
        if (drawn.consistent) {
            continue;
        }
        ++violated;
        std::vector<AtomIndex> atoms;
        for (const auto& literal : drawn.active.plant->clause(drawn.labels.violated())) {
            atoms.push_back(literal.atom);
        }
        EXPECT_FALSE(
            BruteForceDiagnosis::consequences(drawn.givenWithin(drawn.labels.environment(atoms))));
    }
    EXPECT_GT(violated, 20);
}

TEST(RandomPredictions, ThatDoNotDependOnMarkedModesFollowFromTheOthers)
{
    const MutedTrace muted;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomPrediction drawn(seed);
        if (!drawn.consistent) {
            continue;
        }
        const plant::Plant& plant = *drawn.active.plant;
        std::vector<bool> marked(plant.variables().size(), false);
        std::vector<VariableIndex> others;
        for (std::size_t i = 0; i < marked.size(); ++i) {
            marked[i] = plant.variables()[i].isMode && drawn.random.chance(50);
            if (!marked[i]) {
                others.push_back(static_cast<VariableIndex>(i));
            }
        }
        const std::vector<bool> dependent = drawn.labels.dependents(marked);
        const auto entailed = BruteForceDiagnosis::consequences(drawn.givenWithin(others));
        ASSERT_TRUE(entailed);
        for (const auto& [atom, value] : labelsOf(drawn.active, drawn.labels)) {
            const auto index = static_cast<std::size_t>(plant.indexOf(atom));
            const auto environment = drawn.labels.environment({plant.indexOf(atom)});
            const bool rests = std::any_of(environment.begin(), environment.end(), [&](auto v) {
                return marked[static_cast<std::size_t>(v)];
            });
            EXPECT_EQ(dependent[index], rests) << atom->id;
            if (!dependent[index]) {
                EXPECT_EQ(entailed->count(atom), 1u) << atom->id;
            }
        }
    }
}

TEST(RandomPredictions, AreTheSameAfterMoreWasAssumedAndTakenBack)
{
    const MutedTrace muted;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomPrediction drawn(seed);
        if (!drawn.consistent) {
            continue;
        }
        const AtomLabels before = labelsOf(drawn.active, drawn.labels);
        const std::size_t mark = drawn.labels.mark();
        for (int round = 0; round < 4; ++round) {
            std::vector<const Atom*> given = drawn.given;
            for (const StateVar* variable : allVariables("Cond")) {
                const Atom* value = drawn.random.pick(*variable->atomLinks);
                if (drawn.random.chance(30) &&
                    drawn.labels.assume(drawn.active.plant->indexOf(value))) {
                    given.push_back(value);
                }
            }
            const bool consistent = drawn.labels.propagate();
            const auto expected = BruteForceDiagnosis::consequences(given);
            ASSERT_EQ(consistent, expected.has_value());
            if (expected) {
                EXPECT_EQ(labelsOf(drawn.active, drawn.labels), *expected);
            }
            drawn.labels.undo(mark);
            EXPECT_EQ(labelsOf(drawn.active, drawn.labels), before);
        }
    }
}

TEST(RandomPredictions, HaveNoLargerEnvironmentsWhereSmallOnesArePreferred)
{
    const MutedTrace muted;
    std::size_t smaller = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomPrediction drawn(seed);
        if (!drawn.consistent) {
            continue;
        }
        Prediction plain(*drawn.active.plant);
        for (const Atom* atom : drawn.given) {
            plain.assume(drawn.active.plant->indexOf(atom));
        }
        plain.propagate();
        drawn.labels.preferSmallEnvironments();
        std::size_t preferredTotal = 0;
        std::size_t plainTotal = 0;
        for (const auto& [atom, value] : labelsOf(drawn.active, drawn.labels)) {
            preferredTotal += drawn.labels.environment({drawn.active.plant->indexOf(atom)}).size();
            plainTotal += plain.environment({drawn.active.plant->indexOf(atom)}).size();
        }
        EXPECT_LE(preferredTotal, plainTotal);
        smaller += preferredTotal < plainTotal ? 1 : 0;
    }
    EXPECT_GT(smaller, 0u);
}

TEST_F(PredictionTest, DerivesALabelInTheOrderInWhichTheReasonsNeedOneAnother)
{
    makeChain();
    assume("b.mode=ok");
    assume("a.mode=ok");
    assume("in.v=1");
    ASSERT_TRUE(labels_->propagate());
    const std::vector<AtomIndex> atoms = labels_->derivation({active_->index("b.out=1")});
    const auto place = [&](const std::string& id) {
        return std::find(atoms.begin(), atoms.end(), active_->index(id)) - atoms.begin();
    };
    EXPECT_LT(place("in.v=1"), place("a.out=1"));
    EXPECT_LT(place("a.mode=ok"), place("a.out=1"));
    EXPECT_LT(place("a.out=1"), place("b.out=1"));
    EXPECT_EQ(place("b.out=1") + 1, static_cast<std::ptrdiff_t>(atoms.size()));
    EXPECT_EQ(labels_->reason(active_->index("a.mode=ok")), Prediction::assumed);
    EXPECT_TRUE(active_->plant->isLaw(labels_->reason(active_->index("b.out=1"))));
}

} // namespace
