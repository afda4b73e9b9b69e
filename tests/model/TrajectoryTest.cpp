// The trajectory: elements of committed steps and its own, instantiation of components, predictions, ranks.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class TrajectoryTest : public testing::Test {
protected:
    TrajectoryTest()
    {
        valve_ = model_.comp("valve");
        pos_ = model_.variable(valve_, "pos", "Mode", {"open", "closed"});
        open_ = model_.atom("valve.pos=open");
        closed_ = model_.atom("valve.pos=closed");
    }

    State* commit(std::size_t step)
    {
        if (trajectory_.states.size() <= step) {
            trajectory_.states.resize(step + 1, nullptr);
        }
        trajectory_.states[step] = model_.state({valve_});
        return trajectory_.states[step];
    }
    TrajEl* el(State& state, Atom* atom) { return state.elements->find(atom->getId())->second; }

    TestModel model_;
    Comp* valve_;
    StateVar* pos_;
    Atom* open_;
    Atom* closed_;
    Trajectory trajectory_;
    State state_;
};

TEST_F(TrajectoryTest, GivesTheElementOfTheCommittedStep)
{
    State* first = commit(0);
    State* second = commit(1);
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 0, 0), el(*first, open_));
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 1, -1), el(*second, open_));
}

TEST_F(TrajectoryTest, GivesAnElementOfItsOwnForAStepThatIsNotCommitted)
{
    commit(1);
    for (const int step : {-1, 0, 2, 100}) {
        const TrajEl* own = trajectory_.getElt("valve.pos=open", step, -1);
        ASSERT_NE(own, nullptr) << step;
        EXPECT_EQ(own->atom, open_) << step;
        EXPECT_NE(own, el(*trajectory_.states[1], open_)) << step;
    }
}

TEST_F(TrajectoryTest, GivesAnElementOfItsOwnWhereTheCommittedStateHasNone)
{
    State* committed = commit(0);
    delete el(*committed, open_);
    (*committed->elements)[open_->getId()] = nullptr;
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 0, -1)->atom, open_);
    model_.variable(model_.comp("pump"), "on", "Mode", {"yes"});
    EXPECT_EQ(trajectory_.getElt("pump.on=yes", 0, -1)->atom, model_.atom("pump.on=yes"));
}

TEST_F(TrajectoryTest, GivesAnElementOfItsOwnWhereTheCommittedStateIsCleared)
{
    commit(0)->clear();
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 0, -1)->atom, open_);
}

TEST_F(TrajectoryTest, MakesNoEntryInTheCommittedState)
{
    State* committed = commit(0);
    model_.variable(model_.comp("pump"), "on", "Mode", {"yes"});
    trajectory_.getElt("pump.on=yes", 0, -1);
    EXPECT_EQ(committed->elements->size(), 2u);
}

TEST_F(TrajectoryTest, ItsOwnElementShowsTheAtomsCurrentLabel)
{
    const TrajEl* own = trajectory_.getElt("valve.pos=open", 0, 0);
    EXPECT_EQ(own->label, "unknown");
    open_->setLabel("true");
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 0, 0)->label, "true");
    open_->setLabel("false");
    EXPECT_EQ(trajectory_.getElt("valve.pos=open", 5, 0), own);
    EXPECT_EQ(own->label, "false");
}

TEST_F(TrajectoryTest, ItsOwnElementsAreOnePerAtom)
{
    EXPECT_NE(trajectory_.getElt("valve.pos=open", 0, 0),
              trajectory_.getElt("valve.pos=closed", 0, 0));
}

TEST_F(TrajectoryTest, GivesNullOnlyForAnIdentifierThatTheModelDoesNotHave)
{
    EXPECT_EQ(trajectory_.getElt("valve.pos=ajar", 0, 0), nullptr);
    DataManager::active_atoms->clear();
    EXPECT_NE(trajectory_.getElt("valve.pos=open", 0, 0), nullptr);
}

TEST_F(TrajectoryTest, InstantiatesEveryAtomOfAComponent)
{
    open_->setLabel("true");
    trajectory_.addComp(valve_, &state_, 0, false, false);
    ASSERT_EQ(state_.elements->size(), 2u);
    EXPECT_EQ(el(state_, open_)->atom, open_);
    EXPECT_EQ(el(state_, open_)->label, "true");
    EXPECT_EQ(el(state_, open_)->lock, 2);
    EXPECT_EQ(el(state_, open_)->support, nullptr);
    EXPECT_EQ(el(state_, open_)->propagationNumber, 0);
    EXPECT_EQ(el(state_, closed_)->label, "unknown");
}

TEST_F(TrajectoryTest, KeysElementsByTheAtomsOwnCharacters)
{
    trajectory_.addComp(valve_, &state_, 0, false, false);
    EXPECT_EQ(state_.elements->find("valve.pos=open")->first, open_->getId());
}

TEST_F(TrajectoryTest, FillsEntriesThatALookUpLeftNull)
{
    (*state_.elements)[open_->getId()] = nullptr;
    trajectory_.addComp(valve_, &state_, 0, false, false);
    ASSERT_NE(el(state_, open_), nullptr);
    EXPECT_EQ(el(state_, open_)->atom, open_);
    EXPECT_EQ(state_.elements->size(), 2u);
}

TEST_F(TrajectoryTest, LeavesElementsThatThereAre)
{
    auto* mine = new TrajEl;
    mine->atom = open_;
    mine->label = "false";
    (*state_.elements)[open_->getId()] = mine;
    trajectory_.predict(0, open_, "true", 3);
    trajectory_.addComp(valve_, &state_, 0, true, true);
    EXPECT_EQ(el(state_, open_), mine);
    EXPECT_EQ(mine->label, "false");
    EXPECT_EQ(mine->lock, 2);
}

TEST_F(TrajectoryTest, AddsTheComponentOnlyWhenAsked)
{
    model_.transition(open_, "Nominal", 0.5);
    trajectory_.addComp(valve_, &state_, 0, false, true);
    EXPECT_TRUE(state_.comps->empty());
    EXPECT_TRUE(state_.postProbs->empty());
    trajectory_.addComp(valve_, &state_, 0, true, false);
    ASSERT_EQ(state_.comps->size(), 1u);
    EXPECT_EQ(state_.comps->begin()->first, valve_->name.c_str());
    EXPECT_EQ(state_.comps->begin()->second, valve_);
}

TEST_F(TrajectoryTest, EntersTheProbabilitiesOfTransitionsThatHaveNone)
{
    Transition* first = model_.transition(open_, "Nominal", 0.75);
    Transition* second = model_.transition(closed_, "Nominal", 0.25);
    first->id = 4;
    second->id = 9;
    (*state_.postProbs)[9] = 0.5;
    trajectory_.addComp(valve_, &state_, 0, true, false);
    EXPECT_EQ(state_.postProbs->size(), 2u);
    EXPECT_EQ((*state_.postProbs)[4], 0.75);
    EXPECT_EQ((*state_.postProbs)[9], 0.5);
}

TEST_F(TrajectoryTest, KeepsAProbabilityOfZero)
{
    model_.transition(open_, "Nominal", 0.75)->id = 4;
    (*state_.postProbs)[4] = 0.0;
    trajectory_.addComp(valve_, &state_, 0, true, false);
    EXPECT_EQ((*state_.postProbs)[4], 0.0);
}

TEST_F(TrajectoryTest, InstantiatesTheSameWhetherPropositionsAreBeingAddedOrNot)
{
    trajectory_.predict(0, open_, "true", 3);
    State other;
    trajectory_.addComp(valve_, &state_, 0, true, false);
    trajectory_.addComp(valve_, &other, 0, true, true);
    for (Atom* atom : {open_, closed_}) {
        EXPECT_EQ(el(state_, atom)->label, el(other, atom)->label);
        EXPECT_EQ(el(state_, atom)->lock, el(other, atom)->lock);
    }
    EXPECT_EQ(state_.comps->size(), other.comps->size());
}

TEST_F(TrajectoryTest, StartsAnElementWithWhatItsStepPredicts)
{
    trajectory_.predict(3, open_, "false", 4);
    trajectory_.addComp(valve_, &state_, 3, false, false);
    EXPECT_EQ(el(state_, open_)->label, "false");
    EXPECT_EQ(el(state_, open_)->lock, 4);
    EXPECT_EQ(el(state_, closed_)->label, "unknown");
    EXPECT_EQ(el(state_, closed_)->lock, 2);
    EXPECT_EQ(open_->label, "unknown");
}

TEST_F(TrajectoryTest, APredictionCountsForItsStepAlone)
{
    trajectory_.predict(3, open_, "false", 4);
    trajectory_.addComp(valve_, &state_, 2, false, false);
    EXPECT_EQ(el(state_, open_)->label, "unknown");
    EXPECT_EQ(el(state_, open_)->lock, 2);
}

TEST_F(TrajectoryTest, ALaterPredictionReplacesAnEarlierOne)
{
    trajectory_.predict(3, open_, "false", 4);
    trajectory_.predict(3, open_, "true", 3);
    trajectory_.addComp(valve_, &state_, 3, false, false);
    EXPECT_EQ(el(state_, open_)->label, "true");
    EXPECT_EQ(el(state_, open_)->lock, 3);
}

TEST_F(TrajectoryTest, ForgetsThePredictionsOfAStep)
{
    trajectory_.predict(3, open_, "false", 4);
    trajectory_.predict(4, open_, "false", 4);
    trajectory_.forgetPredictions(3);
    trajectory_.addComp(valve_, &state_, 3, false, false);
    EXPECT_EQ(el(state_, open_)->label, "unknown");
    State next;
    trajectory_.addComp(valve_, &next, 4, false, false);
    EXPECT_EQ(el(next, open_)->label, "false");
}

TEST_F(TrajectoryTest, APredictionSaysNothingAboutTheTrajectorysOwnElement)
{
    trajectory_.predict(3, open_, "false", 4);
    const TrajEl* own = trajectory_.getElt("valve.pos=open", 3, -1);
    EXPECT_EQ(own->label, "unknown");
    EXPECT_EQ(own->lock, 2);
}

TEST_F(TrajectoryTest, TheRankOfAStateIsTheOneCommittedForItsStep)
{
    state_.rank = 2.0;
    state_.wkstRank = 1.0;
    EXPECT_EQ(trajectory_.getStateRank(&state_), 2.0);
    State copy(&state_, true);
    EXPECT_EQ(trajectory_.getStateRank(&copy), 2.0);
}

TEST_F(TrajectoryTest, ReleasesItsCommittedStatesAndToleratesNullOnes)
{
    auto* trajectory = new Trajectory; // the leak check sees to it that the states go with it
    trajectory->states = {model_.state({valve_}), nullptr, model_.state({valve_})};
    trajectory->getElt("valve.pos=open", 1, 0);
    delete trajectory;
    EXPECT_EQ(open_->getStateVar(), pos_);
}

} // namespace
