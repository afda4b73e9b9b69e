// The value of literals and clauses over three-valued labels.
//
// Literals of one sign are visited newest first: law("a | b") is scanned b, a. A literal of the other sign that
// comes second is scanned second: law("a | !b") is scanned a, !b.
#include "tests/engine/EngineTest.h"

namespace {

class ClauseEvaluationTest : public EngineTest {
protected:
    std::string value(const std::string& literal, const std::string& label)
    {
        Clause* clause = law(literal);
        begin();
        state->elements->begin()->second->setLabel(label);
        return engine.evalAtomOnLabels(clause->literals->begin(), state.get(), &trajectory, step);
    }
    bool test(Clause* clause) { return engine.testClause(clause, state.get(), &trajectory, step); }
    TrajEl* unit(Clause* clause)
    {
        return engine.unitClause(clause, state.get(), &trajectory, step);
    }
    TrajEl* unknown(Clause* clause)
    {
        return engine.getUnknown(clause, state.get(), &trajectory, step);
    }
    std::unique_ptr<SignedEls> notUnknown(Clause* clause)
    {
        return std::unique_ptr<SignedEls>(
            engine.getNotUnknown(clause, state.get(), &trajectory, step));
    }
};

TEST_F(ClauseEvaluationTest, APositiveLiteralHasItsLabel)
{
    props("a");
    EXPECT_EQ(value("a", "true"), "true");
    EXPECT_EQ(value("a", "false"), "false");
    EXPECT_EQ(value("a", "unknown"), "unknown");
}

TEST_F(ClauseEvaluationTest, ANegatedLiteralHasTheOppositeOfItsLabel)
{
    props("a");
    EXPECT_EQ(value("!a", "true"), "false");
    EXPECT_EQ(value("!a", "false"), "true");
}

TEST_F(ClauseEvaluationTest, ANegatedUnknownIsUnknown)
{
    props("a");
    EXPECT_EQ(value("!a", "unknown"), "unknown");
}

TEST_F(ClauseEvaluationTest, AnyOtherLabelHasTheEmptyValue)
{
    props("a");
    EXPECT_EQ(value("a", "none"), "");
    EXPECT_EQ(value("!a", "none"), "");
    EXPECT_EQ(value("a", ""), "");
}

TEST_F(ClauseEvaluationTest, TheEmptyClauseHasNothingTrueUnitOrUnknown)
{
    Clause* empty = law("");
    begin();
    EXPECT_FALSE(test(empty));
    EXPECT_EQ(unit(empty), nullptr);
    EXPECT_EQ(unknown(empty), nullptr);
    EXPECT_TRUE(notUnknown(empty)->empty());
}

TEST_F(ClauseEvaluationTest, AClauseIsSatisfiedByOneTrueLiteral)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"a", "true"}, {"b", "false"}});
    EXPECT_TRUE(test(clause));
}

TEST_F(ClauseEvaluationTest, AClauseIsSatisfiedByANegatedFalseLiteral)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "false"}, {"b", "false"}});
    EXPECT_TRUE(test(clause));
}

TEST_F(ClauseEvaluationTest, AViolatedAndAnOpenClauseBothTestFalse)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "false"}, {"b", "true"}});
    EXPECT_FALSE(test(clause));
    el("a")->setLabel("unknown");
    EXPECT_FALSE(test(clause));
}

TEST_F(ClauseEvaluationTest, ALabelOutsideTheThreeIsNeitherTrueNorUnknown)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "none"}, {"b", "none"}});
    EXPECT_FALSE(test(clause));
    EXPECT_EQ(unknown(clause), nullptr);
    EXPECT_EQ(unit(clause), nullptr);
}

TEST_F(ClauseEvaluationTest, TheTestStopsAtTheFirstTrueLiteral)
{
    props("a");
    remote("far");
    Clause* clause = law("far.x=1 | a");
    begin({{"a", "true"}});
    EXPECT_TRUE(test(clause));
    EXPECT_FALSE(hasElement("far.x=1"));
}

TEST_F(ClauseEvaluationTest, TheOnlyUnknownLiteralIsTheUnitElement)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "unknown"}, {"b", "true"}});
    EXPECT_EQ(unit(clause), el("a"));
}

TEST_F(ClauseEvaluationTest, ANegatedUnknownLiteralIsAUnitElementToo)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "false"}, {"b", "unknown"}});
    EXPECT_EQ(unit(clause), el("b"));
}

TEST_F(ClauseEvaluationTest, AClauseSatisfiedByANegatedLiteralIsStillUnit)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "unknown"}, {"b", "false"}});
    EXPECT_TRUE(test(clause));
    EXPECT_EQ(unit(clause), el("a"));
}

TEST_F(ClauseEvaluationTest, ATruePositiveLiteralEndsTheScanForAUnit)
{
    props("a");
    remote("far");
    Clause* clause = law("far.x=1 | a");
    begin({{"a", "true"}});
    EXPECT_EQ(unit(clause), nullptr);
    EXPECT_FALSE(hasElement("far.x=1")) << "the scan went on after the literal that holds";
}

TEST_F(ClauseEvaluationTest, ATruePositiveLiteralAfterAnUnknownOneLeavesNoUnit)
{
    props("a b");
    Clause* clause = law("a | b");
    ASSERT_EQ(clause->literals->begin()->second, atom("b"));
    begin({{"a", "true"}, {"b", "unknown"}});
    EXPECT_EQ(unit(clause), nullptr);
}

TEST_F(ClauseEvaluationTest, OfTwoUnknownLiteralsTheLaterIsTheUnitElement)
{
    props("a b c");
    Clause* clause = law("a | b | c");
    begin({{"a", "unknown"}, {"b", "unknown"}, {"c", "false"}});
    EXPECT_EQ(unit(clause), el("a"));
    EXPECT_EQ(unknown(clause), el("b"));
}

TEST_F(ClauseEvaluationTest, AClauseWithoutUnknownLiteralsIsNotUnit)
{
    props("a b");
    Clause* clause = law("a | !b");
    begin({{"a", "false"}, {"b", "true"}});
    EXPECT_EQ(unit(clause), nullptr);
    EXPECT_EQ(unknown(clause), nullptr);
}

TEST_F(ClauseEvaluationTest, TheFirstUnknownIsFoundWhateverItsSign)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "unknown"}, {"b", "unknown"}});
    EXPECT_EQ(unknown(clause), el("a"));
}

TEST_F(ClauseEvaluationTest, TheFirstUnknownIsFoundInASatisfiedClause)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"a", "unknown"}, {"b", "true"}});
    EXPECT_EQ(unknown(clause), el("a"));
}

TEST_F(ClauseEvaluationTest, UnknownLiteralsAreCollectedWithTheirSigns)
{
    props("a b c d");
    Clause* clause = law("a | !b | c | !d");
    begin({{"a", "unknown"}, {"b", "unknown"}, {"c", "true"}, {"d", "false"}});
    const auto found = notUnknown(clause);
    std::map<std::string, bool> signs;
    for (const auto& [sign, element] : *found) {
        signs[element->getId()] = sign;
    }
    EXPECT_EQ(signs, (std::map<std::string, bool>{{"k.a=1", false}, {"k.b=1", true}}));
}

TEST_F(ClauseEvaluationTest, CollectedLiteralsOfOneSignComeNewestFirst)
{
    props("a b c");
    Clause* clause = law("a | b | c");
    begin();
    std::vector<TrajEl*> order;
    const auto found = notUnknown(clause);
    for (const auto& [sign, element] : *found) {
        order.push_back(element);
    }
    EXPECT_EQ(names(order), (std::vector<std::string>{"a", "b", "c"}))
        << "scanned c, b, a and inserted in that order";
}

TEST_F(ClauseEvaluationTest, AnElementThatCannotBeMadeIsSkippedAmongTheUnknown)
{
    props("a");
    Atom* far = remote("far");
    far->getVarComp()->atoms->clear();
    Clause* clause = law("a | far.x=1");
    begin();
    const auto found = notUnknown(clause);
    ASSERT_EQ(found->size(), 1U);
    EXPECT_EQ(found->begin()->second, el("a"));
}

} // namespace
