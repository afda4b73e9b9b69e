// Search records: what they are made on, what they own, and who releases what.
#include "tests/engine/EngineTest.h"

namespace {

class RecordsTest : public EngineTest {
protected:
    RecordsTest()
    {
        props("a b");
        clause = law("!a | b");
        other = law("a");
        begin({{"a", "true"}, {"b", "false"}});
        queue.push(clause);
        queue.push(other);
    }

    Clause* clause;
    Clause* other;
    std::queue<Clause*> queue;
};

TEST_F(RecordsTest, ARecordOnAStateHoldsThatStateAndEmptyContainers)
{
    const ItmsRes record(state.get());
    EXPECT_EQ(record.state, state.get());
    EXPECT_TRUE(record.already_changed->empty());
    EXPECT_TRUE(record.focus->empty());
    EXPECT_TRUE(record.retracted->empty());
    EXPECT_TRUE(record.constraints->empty());
}

// A second release of the state, by the test, would end the program.
TEST_F(RecordsTest, ClearingReleasesTheVeryStateThatWasGiven)
{
    auto* record = new ItmsRes(state.get());
    (*record->already_changed)["k.a=1"] = el("a");
    record->clear();
    EXPECT_EQ(record->state, nullptr);
    delete record;
    state.release();
}

TEST_F(RecordsTest, DeletingARecordLeavesStateAndElements)
{
    auto* record = new ItmsRes(state.get());
    (*record->already_changed)["k.a=1"] = el("a");
    (*record->focus)["k.b=1"] = el("b");
    record->retracted->push_back(el("b"));
    record->constraints->push(clause);
    delete record;
    EXPECT_EQ(el("a")->label, "true");
    EXPECT_EQ(el("b")->label, "false");
    EXPECT_EQ(state->elements->size(), 2U);
    EXPECT_EQ(clause->literals->size(), 2U);
}

TEST_F(RecordsTest, ADeletedRecordToleratesContainersThatAreGone)
{
    auto* record = new ItmsRes(state.get());
    delete record->already_changed;
    record->already_changed = nullptr;
    delete record->constraints;
    record->constraints = nullptr;
    delete record;
    EXPECT_EQ(el("a")->label, "true");
}

TEST_F(RecordsTest, ARecordFromAParentHasACopyOfTheState)
{
    el("a")->support = clause;
    el("a")->propagationNumber = 3;
    el("a")->lock = 4;
    state->wkstRank = 2.0;
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    record->already_changed = new ElMap;
    ASSERT_NE(record->state, state.get());
    const TrajEl* copy = elementOf(record->state, "a");
    EXPECT_NE(copy, el("a"));
    EXPECT_EQ(copy->atom, atom("a"));
    EXPECT_EQ(copy->label, "true");
    EXPECT_EQ(copy->support, clause);
    EXPECT_EQ(copy->propagationNumber, 3);
    EXPECT_EQ(copy->lock, 4);
    EXPECT_EQ(record->state->wkstRank, 2.0);
}

TEST_F(RecordsTest, ARecordFromAParentSharesNoLabelWithIt)
{
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    elementOf(record->state, "a")->setLabel("unknown");
    EXPECT_EQ(el("a")->label, "true");
    el("b")->setLabel("true");
    EXPECT_EQ(elementOf(record->state, "b")->label, "false");
}

TEST_F(RecordsTest, ARecordFromAParentHasEmptyFocusAndRetractedAndLeavesTheChangedToItsMaker)
{
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    EXPECT_TRUE(record->focus->empty());
    EXPECT_TRUE(record->retracted->empty());
    EXPECT_EQ(record->already_changed, nullptr) << "so that deleting it is safe before it is set";
}

TEST_F(RecordsTest, TheQueueIsCopiedInItsOrder)
{
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    EXPECT_NE(record->constraints, &queue);
    EXPECT_EQ(listed(*record->constraints), (std::vector<Clause*>{clause, other}));
}

TEST_F(RecordsTest, PopsOnEitherQueueLeaveTheOtherAlone)
{
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    record->constraints->pop();
    EXPECT_EQ(queue.size(), 2U);
    queue.pop();
    queue.pop();
    EXPECT_EQ(listed(*record->constraints), std::vector<Clause*>{other});
}

TEST_F(RecordsTest, TheParentMayGoBeforeTheRecord)
{
    const OwnedRecord record(new ItmsRes(state.get(), &queue));
    state.reset();
    EXPECT_EQ(elementOf(record->state, "a")->label, "true");
}

TEST_F(RecordsTest, ClearingAStateSkipsNullElements)
{
    (*state->elements)["nothing"] = nullptr;
    state->clear();
    EXPECT_EQ(state->elements, nullptr);
}

TEST_F(RecordsTest, AClearedStateMayBeClearedAgain)
{
    state->clear();
    state->clear();
    EXPECT_EQ(state->elements, nullptr);
}

TEST_F(RecordsTest, ARecordIsNoMoreThanItsFiveFields)
{
    EXPECT_EQ(sizeof(ItmsRes), 5 * sizeof(void*));
    EXPECT_FALSE(std::is_polymorphic_v<ItmsRes>);
}

} // namespace
