// What a model file becomes: components, variables, clauses, transitions.
#include "language/Reader.h"

#include "model/StateFormula.h"
#include "model/Transition.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using language::ReadResult;
using testing::ElementsAre;

ReadResult read(const std::string& text)
{
    ReadResult result = language::readModelText("plants/test.itms", text);
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.model) throw std::runtime_error("there is no model");
    return result;
}

std::vector<std::string> componentNames(const ReadResult& result)
{
    std::vector<std::string> names;
    for (const auto& component : result.model->components()) {
        names.push_back(component->name);
    }
    return names;
}

StateVar* variable(const ReadResult& result, const std::string& component, const std::string& name)
{
    for (const auto& each : result.model->components()) {
        if (each->name != component) continue;
        for (StateVar* found : *each->stateVars) {
            if (found->name == name) return found;
        }
    }
    ADD_FAILURE() << "there is no " << component << "." << name;
    return nullptr;
}

std::vector<std::string> lawTexts(const ReadResult& result)
{
    std::vector<std::string> texts;
    for (const Clause* law : result.model->laws()) {
        std::vector<std::string> literals;
        for (const auto& [negated, atom] : *law->literals) {
            literals.push_back((negated ? "!" : "") + atom->id);
        }
        std::sort(literals.begin(), literals.end());
        std::string text;
        for (const std::string& literal : literals) {
            text += (text.empty() ? "" : " | ") + literal;
        }
        texts.push_back(text);
    }
    return texts;
}

// KIND FROM -> TO (GUARD): PROBABILITY
std::vector<std::string> transitionTexts(const ReadResult& result, const std::string& component)
{
    std::vector<std::string> texts;
    result.model->makeEngineObjects();
    for (const auto& each : result.model->components()) {
        if (each->name != component) continue;
        for (const Transition* transition : *each->transitions) {
            std::vector<std::string> guard;
            for (const auto& [holds, atom] : *transition->guard->atoms) {
                guard.push_back((holds ? "" : "!") + atom->stateVar->name + "=" + atom->value);
            }
            std::sort(guard.begin(), guard.end());
            std::string text = transition->type + " to " + transition->atom->value + " if";
            for (const std::string& literal : guard) {
                text += " " + literal;
            }
            texts.push_back(text);
        }
    }
    return texts;
}

const std::string cell = R"(
component Cell(p = 0.1) {
    mode state { on initial off broken fault }
    cond inlet: zero, positive
    cond out: zero, positive
    law state = on -> out = inlet
    fault any -> broken : p
}
)";

TEST(Elaboration, JoinsTheNamesOfPartsByASlash)
{
    const ReadResult result =
        read(cell + "component Pair { a: Cell\n b: Cell\n law a.out = b.inlet }\n"
                    "system S { pair: Pair\n c: Cell\n law pair.b.out = c.inlet }\n");
    EXPECT_THAT(componentNames(result), ElementsAre("pair", "pair/a", "pair/b", "c"));
    EXPECT_EQ(variable(result, "pair/b", "out")->atomLinks->at(0)->id, "pair/b.out=zero");
}

TEST(Elaboration, NumbersThePartsOfAnArrayFromZero)
{
    const ReadResult result = read(cell + "const n = 2\nsystem S { cell[n + 1]: Cell }\n");
    EXPECT_THAT(componentNames(result), ElementsAre("cell[0]", "cell[1]", "cell[2]"));
}

TEST(Elaboration, GivesTheSystemAComponentForVariablesOfItsOwn)
{
    const ReadResult result = read(cell + "system S { cond sun: up, down\n c: Cell }\n");
    EXPECT_THAT(componentNames(result), ElementsAre("S", "c"));
}

TEST(Elaboration, ImportsWhatTheLawsOfAComponentMention)
{
    const ReadResult result =
        read(cell + "component Pair { a: Cell\n b: Cell\n law a.out = b.inlet }\n"
                    "system S { pair: Pair\n c: Cell\n law pair.b.out = c.inlet }\n");
    const Comp* pair = result.model->components()[0].get();
    ASSERT_EQ(pair->importedComps->size(), 2U);
    EXPECT_EQ(pair->importedComps->at(0)->name, "pair/a");
    EXPECT_EQ(pair->importedComps->at(1)->name, "pair/b");
    EXPECT_TRUE(result.model->components()[3]->importedComps->empty());
}

TEST(Elaboration, RepeatsALawForEachIndex)
{
    const ReadResult result =
        read("component C { cond v: a, b }\n"
             "system S { c[3]: C\n for i in 0..1: law c[i].v = a -> c[i+1].v = b }\n");
    EXPECT_THAT(lawTexts(result), ElementsAre("!c[0].v=a | c[1].v=b", "!c[1].v=a | c[2].v=b"));
}

TEST(Elaboration, MakesEqualVariablesEqualValueByValue)
{
    const ReadResult result = read("component C { cond v: a, b\n cond w: b, a\n law v = w }\n"
                                   "system S { c: C }\n");
    EXPECT_THAT(lawTexts(result),
                ElementsAre("!c.v=a | c.w=a", "!c.w=a | c.v=a", "!c.v=b | c.w=b", "!c.w=b | c.v=b"));
}

TEST(Elaboration, MakesDifferentVariablesDifferInEachValue)
{
    const ReadResult result = read("component C { cond v: a, b\n cond w: b, a\n law v != w }\n"
                                   "system S { c: C }\n");
    EXPECT_THAT(lawTexts(result), ElementsAre("!c.v=a | !c.w=a", "!c.v=b | !c.w=b"));
}

TEST(Elaboration, TellsWhereEachClauseWasWritten)
{
    const ReadResult result = read("component C { cond v: a, b\n cond w: b, a\n law v = w\n }\n"
                                   "system S { c: C\n law c.v = a }\n");
    ASSERT_EQ(result.lawPlaces.size(), result.model->laws().size());
    EXPECT_EQ(result.lawPlaces.front().line, 6U);
    EXPECT_EQ(result.lawPlaces.back().line, 3U);
}

TEST(Elaboration, KeepsTheTextOfALawOnceForAllItsClausesAndInstances)
{
    const ReadResult result = read(
        "component C { cond v: a, b\n cond w: b, a\n law v = a // if\n\t/* then\n*/ -> w = b\n }\n"
        "system S { c: C\n d: C\n law c.v = d.v }\n");
    ASSERT_EQ(result.lawPlaces.size(), result.model->laws().size());
    EXPECT_THAT(result.lawTexts, ElementsAre("law c.v = d.v", "law v = a -> w = b"));
    for (const language::LawPlace& place : result.lawPlaces) {
        EXPECT_EQ(place.text, place.line == 3 ? 1U : 0U);
    }
}

TEST(Elaboration, TakesTheFirstValueOfACommandAsItsDefault)
{
    const ReadResult result =
        read("component C { command go: none, left\n cond v: a, b }\nsystem S { c: C }\n");
    EXPECT_EQ(variable(result, "c", "go")->initial->value, "none");
    EXPECT_EQ(variable(result, "c", "v")->initial, nullptr);
}

TEST(Elaboration, LetsWhatIsFartherOutSayTheInitialValue)
{
    const ReadResult result = read(cell + "component Pair { a[2]: Cell { initially state = off }\n"
                                          " initially a[1].state = broken }\n"
                                          "system S { one: Pair\n two: Pair\n"
                                          " initially two.a[0].state = on }\n");
    EXPECT_EQ(variable(result, "one/a[0]", "state")->initial->value, "off");
    EXPECT_EQ(variable(result, "one/a[1]", "state")->initial->value, "broken");
    EXPECT_EQ(variable(result, "two/a[0]", "state")->initial->value, "on");
}

TEST(Elaboration, ComputesArgumentsWhereThePartIs)
{
    const ReadResult result = read(cell + "component Pair(p) { a: Cell(p = 2 * p) }\n"
                                          "system S { pair: Pair(p = 0.2) }\n");
    EXPECT_DOUBLE_EQ(result.model->transitions()[0]->proba, 0.4);
}

TEST(Elaboration, TakesAnyAsEveryValueThatIsNoFault)
{
    EXPECT_THAT(transitionTexts(read(cell + "system S { c: Cell }\n"), "c"),
                ElementsAre("Fail to broken if state=on", "Fail to broken if state=off"));
}

TEST(Elaboration, TakesAnyOfARepairAsEveryValueThatIsAFault)
{
    const ReadResult result =
        read("component C { mode m { a initial b c fault d fault }\n command k: none, fix\n"
             "repair any -> a when k = fix : 0.1\n repair b -> a : 0.2 }\nsystem S { c: C }\n");
    EXPECT_THAT(
        transitionTexts(result, "c"),
        ElementsAre("Repair to a if k=fix m=c", "Repair to a if k=fix m=d", "Repair to a if m=b"));
}

TEST(Elaboration, MakesATransitionForEachAlternativeOfAGuard)
{
    const ReadResult result =
        read("component C { mode m { a initial b }\n cond x: no, yes\n cond y: no, yes\n"
             "command go: none, left, right\n"
             "nominal a -> b when x = yes & (y = yes | go != left) }\nsystem S { c: C }\n");
    EXPECT_THAT(transitionTexts(result, "c"), ElementsAre("Nominal to b if m=a x=yes y=yes",
                                                          "Nominal to b if !go=left m=a x=yes"));
}

TEST(Elaboration, KeepsTheGuardOfAnIdleTransition)
{
    const ReadResult result =
        read("component C { mode m { a initial b fault }\n cond x: no, yes\n"
             "idle a when x = no\n fault a -> b : 0.1 }\nsystem S { c: C }\n");
    EXPECT_THAT(transitionTexts(result, "c"),
                ElementsAre("Idle to a if m=a x=no", "Fail to b if m=a"));
}

TEST(Elaboration, TakesARateAsTheProbabilityOfAnEventInAStep)
{
    const ReadResult result =
        read("component C { mode m { a initial b fault }\n fault a -> b : 36 per hour }\n"
             "system S { c: C\n step 5 s }\n");
    EXPECT_DOUBLE_EQ(result.model->transitions()[0]->proba, 1 - std::exp(-36.0 / 3600.0 * 5.0));
}

TEST(Elaboration, GivesTransitionsWithoutAProbabilityWhatTheFaultsLeave)
{
    const ReadResult result = read("component C { mode m { a initial b c fault }\n"
                                   "nominal a -> b\n idle a\n fault a -> c : 0.25 }\n"
                                   "system S { c: C }\n");
    const std::vector<Transition*>& transitions = result.model->transitions();
    EXPECT_DOUBLE_EQ(transitions[0]->proba, 0.75);
    EXPECT_DOUBLE_EQ(transitions[1]->proba, 0.75);
    EXPECT_TRUE(transitions[1]->idle);
}

TEST(Elaboration, GivesTransitionsWithoutAProbabilityWhatTheRepairsLeave)
{
    const ReadResult result = read("component C { mode m { a initial b fault }\n"
                                   "repair b -> a : 36 per hour\n idle b }\n"
                                   "system S { c: C\n step 5 s }\n");
    const std::vector<Transition*>& transitions = result.model->transitions();
    EXPECT_DOUBLE_EQ(transitions[0]->proba, 1 - std::exp(-0.05));
    EXPECT_DOUBLE_EQ(transitions[1]->proba, std::exp(-0.05));
}

TEST(Elaboration, NamesTheModelByItsPathWithoutTheSuffix)
{
    EXPECT_EQ(read(cell + "system S { c: Cell }\n").model->name(), "plants/test");
}

TEST(Elaboration, MeasuresTheModel)
{
    const ReadResult result = read(cell + "system S { c[2]: Cell }\n");
    EXPECT_EQ(result.size.components, 2U);
    EXPECT_EQ(result.size.variables, 6U);
    EXPECT_EQ(result.size.atoms, 14U);
    EXPECT_EQ(result.size.laws, 2U);
    EXPECT_EQ(result.size.clauses, 2U * (4 + 2 + 2 + 4));
    EXPECT_EQ(result.size.transitions, 4U);
}

TEST(Elaboration, OfAFileOfComponentsAloneHasNoModel)
{
    language::ReadOptions options;
    options.systemNeeded = false;
    const ReadResult result = language::readModelText("library.itms", cell, options);
    EXPECT_TRUE(result.errors.empty());
    EXPECT_FALSE(result.model);
    EXPECT_EQ(result.size.componentTypes, 1U);
}

TEST(Elaboration, RefusesAPlantForWhichThereIsNoMemory)
{
    language::ReadOptions options;
    options.expansion.bytes = 1'000'000;
    const std::string text = "component C { cond v: a, b }\nsystem S {\n    c[900]: C\n}\n";
    const ReadResult result = language::readModelText("test.itms", text, options);
    ASSERT_EQ(result.errors.size(), 1u);
    EXPECT_EQ(result.errors.front().message,
              "not enough memory: 900 parts need about 6 MiB, and 1 MiB are free");
    EXPECT_EQ(result.errors.front().place.line, 3u);
}

} // namespace
