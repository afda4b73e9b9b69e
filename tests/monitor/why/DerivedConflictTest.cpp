#include "monitor/why/DerivedConflict.h"

#include "monitor/step/Step.h"
#include "monitor/why/ConflictHistory.h"
#include "tests/monitor/step/StepFixture.h"
#include "tests/support/Sanitized.h"

namespace {

using monitor::ConflictCheck;
using monitor::DerivedConflict;
using monitor::Inference;
using monitor::Scenario;
using monitor::StepFrame;
using plant::AtomIndex;

class DerivedConflictTest : public StepFixture {
protected:
    std::vector<DerivedConflict> derive(const Names& observations, const Names& commands = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        const StepFrame frame =
            makeFrame(*active_->plant, before(), input(*active_, commands, observations));
        return deriveConflicts(Scenario(frame, {}));
    }
    Names modesOf(const DerivedConflict& conflict) const
    {
        Names names;
        for (const monitor::AssumedMode& mode : conflict.modes) {
            names.push_back(active_->plant->atom(mode.value)->id);
        }
        return names;
    }
    /// What the laws gave, in order: `a.out=1`, `!a.out=1`, `violated`.
    Names given(const DerivedConflict& conflict) const
    {
        Names names;
        for (const Inference& inference : conflict.inferences) {
            if (!active_->plant->isLaw(inference.clause)) continue;
            names.push_back(inference.gives ? (inference.gives->negated ? "!" : "") +
                                                  active_->plant->atom(inference.gives->atom)->id
                                            : "violated");
        }
        return names;
    }
    std::string id(std::optional<AtomIndex> atom) const
    {
        return atom ? active_->plant->atom(*atom)->id : "none";
    }
    ConflictCheck check(const DerivedConflict& conflict) const
    {
        return checkConflict(claimOf(*active_->plant, conflict));
    }
};

TEST_F(DerivedConflictTest, GoesFromTheReadingsOverTheLawsToTheContradictedValue)
{
    makeRow(3);
    const auto conflicts = derive({"in.v=1", "f1.out=0"});
    ASSERT_EQ(conflicts.size(), 1U);
    const DerivedConflict& conflict = conflicts.front();
    EXPECT_EQ(id(conflict.observed), "f1.out=0");
    EXPECT_EQ(id(conflict.expected), "f1.out=1");
    EXPECT_EQ(modesOf(conflict), (Names{"f0.mode=ok", "f1.mode=ok"}));
    EXPECT_EQ(active_->ids(conflict.readings), Names{"in.v=1"});
    EXPECT_TRUE(conflict.commands.empty());
    EXPECT_EQ(given(conflict), (Names{"f0.out=1", "f1.out=1"}));
    EXPECT_FALSE(conflict.byCases);
    EXPECT_EQ(check(conflict), ConflictCheck::confirmed);
}

TEST_F(DerivedConflictTest, OfASecondReadingRestsOnTheOneThatWasAdopted)
{
    model_.condition("pipe.in", {"0", "1"});
    model_.condition("pipe.out", {"0", "1"});
    model_.law("!pipe.in=1 | pipe.out=1");
    const auto conflicts = derive({"pipe.in=1", "pipe.out=0"});
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_TRUE(conflicts.front().modes.empty());
    EXPECT_EQ(active_->ids(conflicts.front().readings), Names{"pipe.in=1"});
    EXPECT_EQ(check(conflicts.front()), ConflictCheck::confirmed);
}

// Nothing gives b.out, but 0 leaves a.out without a value.
TEST_F(DerivedConflictTest, OfAReadingThatNothingPredictsEndsInAViolatedLaw)
{
    model_.mode("a.mode", {"ok", "broken!"});
    model_.fault("a.mode=ok", "a.mode=broken", 0.25);
    model_.condition("a.out", {"0", "1", "2"});
    model_.condition("b.out", {"0", "1", "2"});
    model_.law("!a.mode=ok | !a.out=0 | !b.out=0");
    model_.law("!a.mode=ok | !a.out=1 | !b.out=0");
    model_.law("!a.mode=ok | !a.out=2 | !b.out=0");
    const auto conflicts = derive({"b.out=0"});
    ASSERT_EQ(conflicts.size(), 1U);
    const DerivedConflict& conflict = conflicts.front();
    EXPECT_EQ(id(conflict.observed), "b.out=0");
    EXPECT_EQ(id(conflict.expected), "none");
    EXPECT_EQ(modesOf(conflict), Names{"a.mode=ok"});
    EXPECT_TRUE(conflict.readings.empty());
    EXPECT_FALSE(conflict.inferences.back().gives);
    EXPECT_EQ(check(conflict), ConflictCheck::confirmed);
}

TEST_F(DerivedConflictTest, SaysWhereAModeComesFromAndByWhichCommand)
{
    model_.command("v.request", {"none", "open"});
    model_.mode("v.position", {"closed", "open", "stuck!"});
    model_.condition("v.out", {"0", "1"});
    model_.law("!v.position=open | v.out=1");
    model_.nominal("v.position=closed", "v.position=open", 0.9, "v.request=open");
    model_.fault("v.position=closed", "v.position=stuck", 0.05);
    const auto conflicts = derive({"v.out=0"}, {"v.request=open"});
    ASSERT_EQ(conflicts.size(), 1U);
    ASSERT_EQ(conflicts.front().modes.size(), 1U);
    const monitor::AssumedMode& mode = conflicts.front().modes.front();
    EXPECT_EQ(id(mode.value), "v.position=open");
    EXPECT_EQ(id(mode.before), "v.position=closed");
    ASSERT_TRUE(mode.followed);
    ASSERT_EQ(mode.followed->literals.size(), 1U);
    EXPECT_EQ(id(mode.followed->literals.front().atom), "v.request=open");
    EXPECT_TRUE(conflicts.front().commands.empty());
}

TEST_F(DerivedConflictTest, RestsOnCommandsThatLawsName)
{
    model_.command("p.power", {"off", "on"});
    model_.mode("p.state", {"ok", "broken!"});
    model_.fault("p.state=ok", "p.state=broken", 0.1);
    model_.condition("p.flow", {"0", "1"});
    model_.law("!p.state=ok | !p.power=on | p.flow=1");
    const auto conflicts = derive({"p.flow=0"}, {"p.power=on"});
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(active_->ids(conflicts.front().commands), Names{"p.power=on"});
    EXPECT_EQ(modesOf(conflicts.front()), Names{"p.state=ok"});
    EXPECT_EQ(check(conflicts.front()), ConflictCheck::confirmed);
}

TEST_F(DerivedConflictTest, OfModesThatContradictOneAnotherHasNoObservation)
{
    model_.mode("a.m", {"on", "off"});
    model_.mode("b.m", {"on", "off"});
    model_.mode("c.m", {"on", "off"});
    model_.law("!a.m=on | !b.m=on");
    const auto conflicts = derive({});
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(id(conflicts.front().observed), "none");
    EXPECT_EQ(modesOf(conflicts.front()), (Names{"a.m=on", "b.m=on"}));
    EXPECT_EQ(check(conflicts.front()), ConflictCheck::confirmed);
}

TEST_F(DerivedConflictTest, OfAModeThatIsReadOtherwiseNeedsNoLaw)
{
    model_.mode("a.m", {"on", "off"});
    const auto conflicts = derive({"a.m=off"});
    ASSERT_EQ(conflicts.size(), 1U);
    EXPECT_EQ(id(conflicts.front().expected), "a.m=on");
    EXPECT_EQ(modesOf(conflicts.front()), Names{"a.m=on"});
    EXPECT_TRUE(given(conflicts.front()).empty());
    EXPECT_EQ(check(conflicts.front()), ConflictCheck::confirmed);
}

TEST_F(DerivedConflictTest, IsFoundByCasesWhereNothingIsContradicted)
{
    model_.mode("a.m", {"on", "broken!"});
    model_.fault("a.m=on", "a.m=broken", 0.1);
    model_.condition("a.u", {"0", "1"});
    model_.condition("a.x", {"0", "1"});
    model_.condition("a.y", {"0", "1"});
    for (const std::string x : {"0", "1"}) {
        for (const std::string y : {"0", "1"}) {
            model_.law("!a.m=on | !a.u=1 | a.x=" + x + " | a.y=" + y);
        }
    }
    const auto conflicts = derive({"a.u=1"});
    ASSERT_EQ(conflicts.size(), 1U);
    const DerivedConflict& conflict = conflicts.front();
    EXPECT_TRUE(conflict.byCases);
    EXPECT_EQ(id(conflict.observed), "none");
    EXPECT_EQ(modesOf(conflict), Names{"a.m=on"});
    EXPECT_EQ(active_->ids(conflict.readings), Names{"a.u=1"});
    EXPECT_EQ(given(conflict).size(), 4U);
    EXPECT_EQ(check(conflict), ConflictCheck::confirmed);
    EXPECT_TRUE(derive({"a.u=0"}).empty());
}

TEST_F(DerivedConflictTest, WithoutOneOfItsLawsIsRefused)
{
    makeRow(4);
    const auto conflicts = derive({"in.v=1", "f3.out=0"});
    ASSERT_EQ(conflicts.size(), 1U);
    const DerivedConflict& conflict = conflicts.front();
    int laws = 0;
    for (std::size_t i = 0; i < conflict.inferences.size(); ++i) {
        if (!active_->plant->isLaw(conflict.inferences[i].clause)) continue;
        DerivedConflict less = conflict;
        less.inferences.erase(less.inferences.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_EQ(check(less), ConflictCheck::refuted) << i;
        ++laws;
    }
    EXPECT_EQ(laws, 4);
}

// A derivation is replayed: each clause gives what it says from what is assumed and what was given before.
void replay(const plant::Plant& plant, const DerivedConflict& conflict)
{
    std::map<AtomIndex, bool> known;
    const auto assume = [&](AtomIndex value) {
        for (const AtomIndex atom : plant.variable(plant.variableOf(value)).values) {
            known[atom] = atom == value;
        }
    };
    for (const monitor::AssumedMode& mode : conflict.modes) assume(mode.value);
    std::for_each(conflict.commands.begin(), conflict.commands.end(), assume);
    std::for_each(conflict.readings.begin(), conflict.readings.end(), assume);
    const bool endsInViolation = !conflict.inferences.empty() && !conflict.inferences.back().gives;
    if (endsInViolation && conflict.observed) assume(*conflict.observed);
    for (const Inference& inference : conflict.inferences) {
        const auto& literals = plant.clause(inference.clause);
        const bool others =
            std::all_of(literals.begin(), literals.end(), [&](const plant::PlantLiteral& literal) {
                if (inference.gives && literal.atom == inference.gives->atom) {
                    return literal.negated == inference.gives->negated;
                }
                return known.count(literal.atom) != 0 && known.at(literal.atom) == literal.negated;
            });
        ASSERT_TRUE(others);
        if (inference.gives) known[inference.gives->atom] = !inference.gives->negated;
    }
    if (conflict.expected) {
        EXPECT_TRUE(known.count(*conflict.expected) != 0 && known.at(*conflict.expected));
        EXPECT_NE(conflict.expected, conflict.observed);
    } else if (!endsInViolation) {
        EXPECT_TRUE(known.count(*conflict.observed) != 0 && !known.at(*conflict.observed));
    }
}

struct ConflictTally {
    int derived = 0;
    int violated = 0;
    int byCases = 0;
    int onReadings = 0;
};

void examine(const ActivePlant& active, const Scenario& scenario, ConflictTally& tally)
{
    const StepFrame& frame = scenario.frame();
    const auto conflicts = deriveConflicts(scenario);
    if (!scenario.discrepancies().empty()) {
        ASSERT_EQ(conflicts.size(), scenario.discrepancies().size());
    }
    for (const DerivedConflict& conflict : conflicts) {
        ++tally.derived;
        for (const monitor::AssumedMode& mode : conflict.modes) {
            EXPECT_TRUE(scenario.prediction().isTrue(mode.value));
            EXPECT_EQ(mode.before, frame.stepOf(active.plant->variableOf(mode.value)).before);
        }
        for (const AtomIndex command : conflict.commands) {
            EXPECT_EQ(std::count(frame.commands.begin(), frame.commands.end(), command), 1);
        }
        for (const AtomIndex reading : conflict.readings) {
            EXPECT_EQ(std::count(frame.observations.begin(), frame.observations.end(), reading), 1);
            EXPECT_NE(reading, conflict.observed);
        }
        const monitor::ConflictClaim claim = claimOf(*active.plant, conflict);
        EXPECT_EQ(checkConflict(claim), ConflictCheck::confirmed);
        EXPECT_FALSE(BruteForceDiagnosis::world(claim.values));
        tally.byCases += conflict.byCases ? 1 : 0;
        tally.onReadings += conflict.readings.empty() ? 0 : 1;
        if (!conflict.byCases) {
            tally.violated +=
                conflict.inferences.empty() || conflict.inferences.back().gives ? 0 : 1;
            replay(*active.plant, conflict);
        }
    }
}

TEST_F(DerivedConflictTest, OfRandomStepsAreReplayedAndConfirmed)
{
    ConflictTally tally;
    for (std::uint64_t seed = 20000; seed < 20000 + fewerUnderSanitizers(3000U) && !HasFailure();
         ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const PlantKind kind = seed % 2 == 0 ? PlantKind::mixed : PlantKind::circuit;
        const ActivePlant active(randomModel(random, kind));
        const DiagnosisProblem problem = randomProblem(random, kind);
        const StepFrame frame =
            makeFrame(*active.plant, active.before(problem), active.input(problem));
        examine(active, Scenario(frame, {}), tally);
        for (const monitor::ModeStep& step : frame.modes) {
            for (const monitor::ModeOption& option : step.options) {
                if (option.value != step.predicted && random.chance(30)) {
                    examine(active, Scenario(frame, {option.value}), tally);
                }
            }
        }
    }
    EXPECT_GT(tally.derived, fewerUnderSanitizers(1500));
    EXPECT_GT(tally.onReadings, fewerUnderSanitizers(500));
    EXPECT_GT(tally.violated, fewerUnderSanitizers(50));
    EXPECT_GE(tally.byCases, fewerUnderSanitizers(1));
}

} // namespace
