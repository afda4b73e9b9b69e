// Rough probabilities of an element given a transition, and the likelihood of a step's observations.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

// A valve whose mode decides its flow; it imports the pump, which imports the tank.
class RoughProbabilityTest : public testing::Test {
protected:
    RoughProbabilityTest()
    {
        valve_ = model_.comp("valve");
        model_.variable(valve_, "mode", "Mode", {"ok", "stuck!"});
        model_.variable(valve_, "flow", "Cond", {"on", "off"});
        pump_ = model_.comp("pump");
        model_.variable(pump_, "pressure", "Cond", {"low", "mid", "high"});
        tank_ = model_.comp("tank");
        model_.variable(tank_, "level", "Cond", {"1", "2", "3", "4", "5"});
        valve_->importedComps->push_back(pump_);
        pump_->importedComps->push_back(tank_);
        toOk_ = model_.transition(atom("valve.mode=ok"), "Nominal", 0.75);
        toStuck_ = model_.transition(atom("valve.mode=stuck"), "Stick", 0.25);
    }

    Atom* atom(const std::string& id) { return model_.atom(id); }
    double rough(const std::string& id, Transition* transition)
    {
        TrajEl el;
        el.atom = atom(id);
        return engine_.computeCondProbRough(&el, transition, nullptr, nullptr);
    }
    // Makes an element of the atom in the state.
    void element(const std::string& id, const std::string& label, int lock)
    {
        auto* el = new TrajEl;
        el->atom = atom(id);
        el->label = label;
        el->lock = lock;
        (*state_.elements)[el->getId()] = el;
    }
    double likelihood()
    {
        engine_.computeObsCondRough(&state_);
        return state_.obsCondProba;
    }

    TestModel model_;
    itms engine_;
    Comp* valve_;
    Comp* pump_;
    Comp* tank_;
    Transition* toOk_;
    Transition* toStuck_;
    State state_;
};

TEST_F(RoughProbabilityTest, IsOneForAnOppositeWithinTheComponent)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    EXPECT_EQ(rough("valve.flow=on", toOk_), 1.0);
}

TEST_F(RoughProbabilityTest, IsZeroWithinTheComponentWithoutOpposition)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    EXPECT_EQ(rough("valve.flow=off", toOk_), 0.0);
    EXPECT_EQ(rough("valve.flow=on", toStuck_), 0.0);
}

TEST_F(RoughProbabilityTest, IsZeroForTheTargetItself)
{
    EXPECT_EQ(rough("valve.mode=ok", toOk_), 0.0);
}

TEST_F(RoughProbabilityTest, IsZeroForALiteralOfTheSameSign)
{
    model_.clause("valve.mode=ok | valve.flow=on");
    EXPECT_EQ(rough("valve.flow=on", toOk_), 0.0);
}

TEST_F(RoughProbabilityTest, ReachesAComponentThatIsImported)
{
    model_.clause("!valve.mode=ok | pump.pressure=low");
    EXPECT_EQ(rough("pump.pressure=low", toOk_), 1.0);
    EXPECT_EQ(rough("pump.pressure=mid", toOk_), 0.0);
}

TEST_F(RoughProbabilityTest, OutOfReachIsUniformOverTheVariablesValues)
{
    EXPECT_EQ(rough("tank.level=1", toOk_), 1.0 / 5);
    model_.variable(model_.comp("room"), "t", "Cond", {"a", "b", "c"});
    EXPECT_EQ(rough("room.t=c", toOk_), 1.0 / 3);
}

TEST_F(RoughProbabilityTest, OutOfReachIsUniformWhateverTheOppositesSay)
{
    model_.clause("!valve.mode=ok | tank.level=1");
    EXPECT_EQ(rough("tank.level=1", toOk_), 1.0 / 5);
    EXPECT_EQ(rough("tank.level=2", toOk_), 1.0 / 5);
}

TEST_F(RoughProbabilityTest, TheSignOfAFormulasAtomDoesNotMatter)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    toOk_->formula = model_.formula("and", {{false, atom("valve.mode=ok")}});
    EXPECT_EQ(rough("valve.flow=on", toOk_), 1.0);
}

TEST_F(RoughProbabilityTest, AnyAtomOfTheFormulaMayOppose)
{
    model_.clause("!valve.mode=stuck | valve.flow=off");
    toOk_->formula =
        model_.formula("and", {{true, atom("valve.mode=ok")}, {true, atom("valve.mode=stuck")}});
    EXPECT_EQ(rough("valve.flow=off", toOk_), 1.0);
}

TEST_F(RoughProbabilityTest, AnyAtomOfTheFormulaMayReach)
{
    toOk_->formula =
        model_.formula("and", {{true, atom("valve.mode=ok")}, {true, atom("tank.level=1")}});
    EXPECT_EQ(rough("tank.level=2", toOk_), 0.0);
}

TEST_F(RoughProbabilityTest, ReachAndOppositionMayComeFromDifferentAtoms)
{
    model_.clause("!valve.mode=ok | tank.level=2");
    toOk_->formula =
        model_.formula("and", {{true, atom("valve.mode=ok")}, {true, atom("tank.level=1")}});
    EXPECT_EQ(rough("tank.level=2", toOk_), 1.0);
}

TEST_F(RoughProbabilityTest, AFormulaWithoutAtomsReachesNothing)
{
    toOk_->formula = model_.formula("and", {});
    EXPECT_EQ(rough("valve.flow=on", toOk_), 1.0 / 2);
}

TEST_F(RoughProbabilityTest, DoesNotDependOnTheLabel)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    for (const char* label : {"true", "false", "unknown"}) {
        TrajEl el;
        el.atom = atom("valve.flow=on");
        el.label = label;
        EXPECT_EQ(engine_.computeCondProbRough(&el, toOk_, &state_, state_.elements), 1.0);
    }
    EXPECT_TRUE(state_.elements->empty());
}

TEST_F(RoughProbabilityTest, WithoutTableNothingIsPrinted)
{
    const FlushLog log;
    rough("valve.flow=on", toOk_);
    EXPECT_EQ(log.text(), "");
}

class WithTableTest : public RoughProbabilityTest {
protected:
    WithTableTest()
    {
        engine_.piTable = &table_;
        table_.addPIAtom(atom("valve.flow=on"),
                         new PiTable::Implicates{new std::vector<Atom*>{atom("tank.level=1")}});
        model_.clause("!valve.mode=ok | valve.flow=on");
    }

    const std::string message_ = "rough proba computation - strange end\n";
    PiTable table_;
};

TEST_F(WithTableTest, AnAtomWithImplicatesHasProbabilityZeroAndAMessageAtEveryCall)
{
    const FlushLog log;
    EXPECT_EQ(rough("valve.flow=on", toOk_), 0.0);
    EXPECT_EQ(log.text(), message_);
    EXPECT_EQ(rough("valve.flow=on", toStuck_), 0.0);
    EXPECT_EQ(log.text(), message_ + message_);
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(WithTableTest, AnAtomWithoutImplicatesIsRatedAsWithoutTable)
{
    model_.clause("!valve.mode=ok | !valve.flow=off");
    const FlushLog log;
    EXPECT_EQ(rough("valve.flow=off", toOk_), 0.0);
    EXPECT_EQ(rough("tank.level=1", toOk_), 1.0 / 5);
    EXPECT_EQ(log.text(), "");
}

TEST_F(WithTableTest, AnEntryWithoutSetsCountsToo)
{
    table_.addPIAtom(atom("tank.level=1"), new PiTable::Implicates);
    const FlushLog log;
    EXPECT_EQ(rough("tank.level=1", toOk_), 0.0);
    EXPECT_EQ(log.text(), message_);
}

TEST_F(WithTableTest, WithAMutedTraceTheProbabilityIsTheSame)
{
    const FlushLog log;
    {
        const MutedTrace muted;
        EXPECT_EQ(rough("valve.flow=on", toOk_), 0.0);
    }
    EXPECT_EQ(log.text(), "");
}

TEST_F(WithTableTest, LikelihoodPrintsTheMessageForEveryTransitionRated)
{
    model_.transition(atom("valve.mode=ok"), "Nominal", 0.5);
    element("valve.mode=ok", "true", 2);
    element("valve.flow=on", "true", 0);
    const FlushLog log;
    EXPECT_EQ(likelihood(), 0.0);
    EXPECT_EQ(log.text(), message_ + message_);
}

TEST_F(RoughProbabilityTest, OppositesAreFoundInTheClausesOfTheFormulasAtoms)
{
    model_.clause("valve.mode=stuck | valve.flow=off");
    model_.clause("!valve.mode=stuck | valve.flow=on");
    const StateFormula* stuck = model_.formula("and", {{true, atom("valve.mode=stuck")}});
    const StateFormula* ok = model_.formula("and", {{true, atom("valve.mode=ok")}});
    EXPECT_TRUE(engine_.checkInOpposites(atom("valve.flow=on"), stuck->atoms));
    EXPECT_FALSE(engine_.checkInOpposites(atom("valve.flow=off"), stuck->atoms));
    EXPECT_FALSE(engine_.checkInOpposites(atom("valve.flow=on"), ok->atoms));
}

TEST_F(RoughProbabilityTest, NothingOpposesAnEmptyFormula)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    SignedAtoms none;
    EXPECT_FALSE(engine_.checkInOpposites(atom("valve.flow=on"), &none));
    EXPECT_FALSE(engine_.checkInImportedComps(atom("valve.flow=on"), &none));
}

TEST_F(RoughProbabilityTest, OppositesAreThoseThatTheClauseGives)
{
    // Every clause of three literals over these atoms, every pair: as Clause::getOpposites has it.
    const std::vector<Atom*> atoms{atom("valve.mode=ok"), atom("valve.flow=on"),
                                   atom("valve.mode=stuck")};
    for (unsigned int code = 0; code < 6 * 6 * 6; ++code) {
        Clause clause;
        for (unsigned int rest = code, i = 0; i < 3; ++i, rest /= 6) {
            clause.literals->insert({rest % 6 >= 3, atoms[rest % 3]});
        }
        for (Atom* of : atoms) {
            of->clauses->assign({&clause});
            SignedAtoms formula;
            formula.insert({true, of});
            const std::unique_ptr<std::vector<Atom*>> opposites(clause.getOpposites(of));
            for (Atom* tested : atoms) {
                EXPECT_EQ(engine_.checkInOpposites(tested, &formula),
                          engine_.inVector(tested, opposites.get()))
                    << "clause " << code << ", " << tested->id << " against " << of->id;
            }
            of->clauses->clear();
        }
    }
}

TEST_F(RoughProbabilityTest, ReachIsTheComponentAndItsDirectImports)
{
    const SignedAtoms& formula = *toOk_->formula->atoms;
    SignedAtoms copy(formula);
    EXPECT_TRUE(engine_.checkInImportedComps(atom("valve.mode=stuck"), &copy));
    EXPECT_TRUE(engine_.checkInImportedComps(atom("valve.flow=off"), &copy));
    EXPECT_TRUE(engine_.checkInImportedComps(atom("pump.pressure=mid"), &copy));
    EXPECT_FALSE(engine_.checkInImportedComps(atom("tank.level=1"), &copy));
}

TEST_F(RoughProbabilityTest, ReachGoesFromImporterToImportedOnly)
{
    const StateFormula* formula = model_.formula("and", {{true, atom("pump.pressure=low")}});
    EXPECT_FALSE(engine_.checkInImportedComps(atom("valve.mode=ok"), formula->atoms));
    EXPECT_TRUE(engine_.checkInImportedComps(atom("tank.level=1"), formula->atoms));
}

TEST_F(RoughProbabilityTest, LikelihoodOfAStepWithoutObservationsIsOne)
{
    element("valve.mode=ok", "true", 2);
    element("valve.flow=on", "true", 1);
    element("valve.flow=off", "true", 4);
    state_.obsCondProba = 0.25;
    EXPECT_EQ(likelihood(), 1.0);
}

TEST_F(RoughProbabilityTest, LikelihoodSumsOverTheTransitionsOfTheModesThatHold)
{
    model_.transition(atom("valve.mode=ok"), "Nominal", 0.5);
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    EXPECT_DOUBLE_EQ(likelihood(), 2.0 / 5);
}

TEST_F(RoughProbabilityTest, LikelihoodMultipliesOverTheObservations)
{
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    element("tank.level=2", "false", 3);
    element("tank.level=3", "false", 1);
    EXPECT_DOUBLE_EQ(likelihood(), 1.0 / 25);
}

TEST_F(RoughProbabilityTest, LikelihoodCountsModesThatHoldOnly)
{
    element("valve.mode=ok", "true", 2);
    element("valve.mode=stuck", "false", 2);
    element("valve.flow=on", "true", 0);
    model_.clause("!valve.mode=ok | valve.flow=on");
    model_.clause("!valve.mode=stuck | valve.flow=on");
    EXPECT_EQ(likelihood(), 1.0);
}

TEST_F(RoughProbabilityTest, LikelihoodCountsModesOnly)
{
    model_.transition(atom("valve.flow=off"), "Nominal", 0.5); // not a mode
    element("valve.flow=off", "true", 2);
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    EXPECT_DOUBLE_EQ(likelihood(), 1.0 / 5);
}

TEST_F(RoughProbabilityTest, LikelihoodIsZeroWithoutAModeThatHolds)
{
    element("valve.mode=ok", "false", 2);
    element("tank.level=1", "true", 0);
    EXPECT_EQ(likelihood(), 0.0);
}

TEST_F(RoughProbabilityTest, LikelihoodIsZeroWhenTheObservationIsReachedAndNotOpposed)
{
    element("valve.mode=ok", "true", 2);
    element("valve.mode=stuck", "true", 2);
    element("valve.flow=on", "true", 3);
    EXPECT_EQ(likelihood(), 0.0);
}

TEST_F(RoughProbabilityTest, LikelihoodCountsAnObservedModeThatHolds)
{
    // The observed element is a mode that holds: it takes part in its own sum.
    model_.clause("!valve.mode=stuck | valve.mode=ok");
    toOk_->formula = model_.formula("and", {{true, atom("valve.mode=stuck")}});
    element("valve.mode=ok", "true", 0);
    EXPECT_EQ(likelihood(), 1.0);
}

TEST_F(RoughProbabilityTest, LikelihoodLeavesNullEntriesOut)
{
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    (*state_.elements)["room.t=a"] = nullptr;
    EXPECT_DOUBLE_EQ(likelihood(), 1.0 / 5);
}

TEST_F(RoughProbabilityTest, LikelihoodIsComputedFromScratch)
{
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    likelihood();
    EXPECT_DOUBLE_EQ(likelihood(), 1.0 / 5);
}

TEST_F(RoughProbabilityTest, LikelihoodReadsNoProbabilities)
{
    element("valve.mode=ok", "true", 2);
    element("tank.level=1", "true", 0);
    (*state_.postProbs)[toOk_->id] = 0.0;
    const FlushLog log;
    EXPECT_DOUBLE_EQ(likelihood(), 1.0 / 5);
    EXPECT_EQ(log.text(), "");
}

} // namespace
