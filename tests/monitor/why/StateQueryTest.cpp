#include "monitor/why/StateQuery.h"

#include "language/Reader.h"
#include "tests/monitor/why/EngineQuery.h"
#include "tests/support/RandomPlant.h"
#include "tests/support/TestModel.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace {

using monitor::Truth;
using Names = std::vector<std::string>;

// Conditions without laws, so that a hypothesis knows just what it is told.
const char* const plant = R"(
component Part {
    cond a: x, y
    cond b: x, y, z
    mode m { x initial y z }
    fault x -> y : 0.1
    fault x -> z : 0.1
    law m in {x, y, z}
}
component Filter {
    cond c: x, y, z
    mode n { on initial off fault }
    law n = on -> c != x
    fault on -> off : 0.1
}
system S { p: Part  q: Part  f: Filter }
)";

class StateQueryTest : public testing::Test {
protected:
    StateQueryTest() : read_(language::readModelText("query.itms", plant))
    {
        model_ = read_.model.get();
        active_ = std::make_unique<ActivePlant>(std::move(read_.model));
    }

    // After assuming values.
    monitor::Hypothesis hypothesis(const Names& assumed) const
    {
        monitor::Prediction labels(*active_->plant);
        for (const std::string& id : assumed) {
            EXPECT_TRUE(labels.assume(active_->index(id))) << id;
        }
        EXPECT_TRUE(labels.propagate());
        return {monitor::StepLabels(*active_->plant, labels), {}, 0.0, 0.0, {}, {}, {}, {}, {}, {}};
    }
    language::FormulaClauses clauses(const std::string& text) const
    {
        const language::ReadFormula read = language::readFormula(text, *model_, read_.system);
        EXPECT_TRUE(read.errors.empty()) << text << "\n" << read.errors.front().format();
        return *read.formula;
    }
    monitor::StateQuery query(const std::string& text) const
    {
        return {*active_->plant, clauses(text)};
    }
    Truth ask(const std::string& text, const Names& assumed)
    {
        return query(text).evaluate(hypothesis(assumed));
    }

    MutedTrace muted_;
    language::ReadResult read_;
    plant::Model* model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(StateQueryTest, IsTrueWhereTheValueIsKnownToBeTheOne)
{
    EXPECT_EQ(ask("p.a = x", {"p.a=x"}), Truth::isTrue);
    EXPECT_EQ(ask("p.a = x", {"p.a=y"}), Truth::isFalse);
}

TEST_F(StateQueryTest, IsOpenWhereTheValueIsNotKnown)
{
    EXPECT_EQ(ask("p.a = x", {}), Truth::open);
    EXPECT_EQ(ask("p.a != x", {}), Truth::open);
}

TEST_F(StateQueryTest, IsSettledByAValueThatIsRuledOut)
{
    EXPECT_EQ(ask("f.c != x", {"f.n=on"}), Truth::isTrue);
    EXPECT_EQ(ask("f.c = x", {"f.n=on"}), Truth::isFalse);
    EXPECT_EQ(ask("f.c = y", {"f.n=on"}), Truth::open);
    EXPECT_EQ(ask("f.c != x", {"f.n=off"}), Truth::open);
}

TEST_F(StateQueryTest, IsSettledByOneSideOfAConnective)
{
    EXPECT_EQ(ask("p.a = x | q.a = x", {"p.a=x"}), Truth::isTrue);
    EXPECT_EQ(ask("p.a = x & q.a = x", {"p.a=y"}), Truth::isFalse);
    EXPECT_EQ(ask("p.a = x -> q.a = x", {"p.a=y"}), Truth::isTrue);
    EXPECT_EQ(ask("p.a = x & q.a = x", {"p.a=x"}), Truth::open);
}

TEST_F(StateQueryTest, ComparesVariables)
{
    EXPECT_EQ(ask("p.b = q.b", {"p.b=x", "q.b=x"}), Truth::isTrue);
    EXPECT_EQ(ask("p.b = q.b", {"p.b=x", "q.b=y"}), Truth::isFalse);
    EXPECT_EQ(ask("p.b != q.b", {"p.b=x", "q.b=y"}), Truth::isTrue);
    EXPECT_EQ(ask("p.b = q.b", {"p.b=x"}), Truth::open);
}

TEST_F(StateQueryTest, EvaluatesAFormulaByItsNegation)
{
    const std::string text = "(p.a = x & q.a = x) | (p.b = x & q.b = x)";
    EXPECT_EQ(ask(text, {"p.a=x", "q.a=x"}), Truth::isTrue);
    EXPECT_EQ(ask(text, {"p.a=y", "q.b=y"}), Truth::isFalse);
    EXPECT_EQ(ask(text, {"p.a=y", "q.b=x"}), Truth::open);
}

TEST_F(StateQueryTest, AnswersForTheBestHypothesisAndForAll)
{
    monitor::StateQuery formula = query("p.a = x");
    monitor::TrackAnswer answer;
    for (const auto& [probability, assumed] :
         std::vector<std::pair<double, Names>>{{0.5, {"p.a=y"}}, {0.25, {"p.a=x"}}, {0.25, {}}}) {
        answer.hypotheses.push_back(std::make_shared<const monitor::Hypothesis>(hypothesis(assumed)));
        answer.probabilities.push_back(probability);
    }
    const monitor::QueryAnswer found = formula.evaluate(answer);
    EXPECT_EQ(found.best, Truth::isFalse);
    EXPECT_EQ(found.probability, 0.25);
    EXPECT_EQ(found.openProbability, 0.25);
}

TEST_F(StateQueryTest, ChangesWithTheHypothesis)
{
    monitor::StateQuery formula = query("p.a = x");
    EXPECT_EQ(formula.evaluate(hypothesis({"p.a=x"})), Truth::isTrue);
    EXPECT_EQ(formula.evaluate(hypothesis({})), Truth::open);
    EXPECT_EQ(formula.evaluate(hypothesis({"p.a=y"})), Truth::isFalse);
}

TEST_F(StateQueryTest, LeavesTheModelsOwnLabelsAlone)
{
    const std::string before = active_->atom("p.a=x")->label;
    ask("p.a = x", {"p.a=x"});
    EXPECT_EQ(active_->atom("p.a=x")->label, before);
}

// ---- compared with a plain evaluation over every way to give the open variables values

const std::vector<std::string> names = {"p.a", "p.b", "p.m", "q.a", "q.b", "q.m"};

using Values = std::vector<int>; ///< of `names`, -1: open

int valueCount(std::size_t variable)
{
    return variable % 3 == 0 ? 2 : 3;
}

// A formula as text, and as it is meant: 1 where it holds, 0 where it does not, 0.5 where what it speaks of is open.
struct Meant {
    std::string text;
    std::function<double(const Values&)> value;
};

Meant comparison(Random& random)
{
    const std::size_t left = random.below(names.size());
    const bool equal = random.chance(60);
    const std::string sign = equal ? " = " : " != ";
    const auto known = [](bool holds) { return holds ? 1.0 : 0.0; };
    if (random.chance(30)) {
        std::size_t right = random.below(names.size());
        while (valueCount(right) != valueCount(left)) {
            right = random.below(names.size());
        }
        return {names[left] + sign + names[right], [=](const Values& values) {
                    const bool open = values[left] < 0 || values[right] < 0;
                    return open ? 0.5 : known((values[left] == values[right]) == equal);
                }};
    }
    const int value = random.between(0, valueCount(left) - 1);
    if (valueCount(left) == 3 && random.chance(20)) {
        return {names[left] + " in {x, z}", [=](const Values& values) {
                    return values[left] < 0 ? 0.5 : known(values[left] != 1);
                }};
    }
    return {names[left] + sign + "xyz"[value], [=](const Values& values) {
                return values[left] < 0 ? 0.5 : known((values[left] == value) == equal);
            }};
}

Meant randomFormula(Random& random, int depth)
{
    if (depth == 0 || random.chance(25)) return comparison(random);
    const Meant a = randomFormula(random, depth - 1);
    const Meant b = randomFormula(random, depth - 1);
    const auto joined = [&](const std::string& sign) {
        return "(" + a.text + ") " + sign + " (" + b.text + ")";
    };
    switch (random.below(5)) {
    case 0: return {joined("&"), [=](const Values& v) { return std::min(a.value(v), b.value(v)); }};
    case 1: return {joined("|"), [=](const Values& v) { return std::max(a.value(v), b.value(v)); }};
    case 2:
        return {joined("->"), [=](const Values& v) { return std::max(1 - a.value(v), b.value(v)); }};
    case 3:
        return {joined("<->"), [=](const Values& v) {
                    return std::min(std::max(1 - a.value(v), b.value(v)),
                                    std::max(1 - b.value(v), a.value(v)));
                }};
    default: return {"!(" + a.text + ")", [=](const Values& v) { return 1 - a.value(v); }};
    }
}

// Whether some way to complete the values makes the formula true, and whether some makes it false.
void complete(const Meant& formula, Values& values, std::size_t next, bool& some, bool& none)
{
    while (next < values.size() && values[next] >= 0) {
        ++next;
    }
    if (next == values.size()) {
        (formula.value(values) == 1.0 ? some : none) = true;
        return;
    }
    for (int value = 0; value < valueCount(next); ++value) {
        values[next] = value;
        complete(formula, values, next + 1, some, none);
    }
    values[next] = -1;
}

class StateQuerySeeds : public StateQueryTest, public testing::WithParamInterface<int> {};

TEST_P(StateQuerySeeds, AnswersWhatIsKnownAndNothingThatSomeCompletionDenies)
{
    Random random(static_cast<std::uint64_t>(GetParam()));
    const Meant formula = randomFormula(random, 3);
    const monitor::StateQuery asked = query(formula.text);
    EngineQuery engine(active_->engine, *active_->plant, clauses(formula.text));
    for (int round = 0; round < 10; ++round) {
        Values values;
        Names assumed;
        const int open = random.between(0, 60);
        for (std::size_t i = 0; i < names.size(); ++i) {
            values.push_back(random.chance(open) ? -1 : random.between(0, valueCount(i) - 1));
            if (values[i] >= 0)
                assumed.push_back(names[i] + "=" + "xyz"[static_cast<std::size_t>(values[i])]);
        }
        bool some = false;
        bool none = false;
        complete(formula, values, 0, some, none);
        const monitor::Hypothesis given = hypothesis(assumed);
        const Truth truth = asked.evaluate(given);
        const std::string context = formula.text + "\n" + testing::PrintToString(assumed);
        EXPECT_EQ(truth, engine.evaluate(given.labels.prediction())) << context;
        const double value = formula.value(values);
        if (value != 0.5) {
            EXPECT_EQ(truth, value == 1.0 ? Truth::isTrue : Truth::isFalse) << context;
        }
        EXPECT_FALSE(truth == Truth::isTrue && none) << context;
        EXPECT_FALSE(truth == Truth::isFalse && some) << context;
    }
}

INSTANTIATE_TEST_SUITE_P(Random, StateQuerySeeds, testing::Range(0, 300));

} // namespace
