// Plants as graphs, for Graphviz and for programs.
#include "report/PlantGraph.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const char* const chain = R"(component Cell {
    cond left: no, yes
    cond right: no, yes
    mode state { ok initial broken fault }
    law state = ok -> left = right
    fault ok -> broken : 0.01
}
component Pair {
    first: Cell
    second: Cell
    law first.right = second.left
}
system S {
    a: Pair
    b: Cell
    c: Cell
    law a.second.right = b.left
    law c.left = yes <-> a.first.right = yes | b.right = yes
}
)";

report::PlantGraph graphOfText(const std::string& text)
{
    const language::ReadResult read = language::readModelText("plant.itms", text);
    if (!read.model) throw std::runtime_error(read.errors.front().format());
    return report::graphOf(read);
}

std::vector<std::string> shownNames(const report::PlantGraph& graph)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < graph.shown.size(); ++i) {
        if (graph.shown[i]) names.push_back(graph.outline.components[i]);
    }
    return names;
}

} // namespace

TEST(PlantGraph, HasABoxAroundThePartsOfAPartAndAPointForALawOfThree)
{
    EXPECT_EQ(report::graphDot(graphOfText(chain)), R"(graph "S" {
    rankdir=LR;
    node [shape=box, style="rounded,filled", fillcolor="#ffffff", fontname="sans-serif", fontsize=11];
    edge [color="#708090"];
    "b" [label="b"];
    "c" [label="c"];
    subgraph "cluster_a" {
        label="a";
        "a/first" [label="first"];
        "a/second" [label="second"];
    }
    "a/second" -- "b" [tooltip="law a.second.right = b.left"];
    "law:1" [shape=point, label="", tooltip="law c.left = yes <-> a.first.right = yes | b.right = yes"];
    "a/first" -- "law:1" [tooltip="law c.left = yes <-> a.first.right = yes | b.right = yes"];
    "b" -- "law:1" [tooltip="law c.left = yes <-> a.first.right = yes | b.right = yes"];
    "c" -- "law:1" [tooltip="law c.left = yes <-> a.first.right = yes | b.right = yes"];
    "a/first" -- "a/second" [tooltip="law first.right = second.left"];
}
)");
}

TEST(PlantGraph, ShowsModesAndHowProbablyAComponentDeviates)
{
    report::PlantGraph graph = graphOfText(chain);
    graph.step = report::GraphStep{3, 2.5, "faulty", {{"b", {{"state", "broken"}}}}, {{"b", 0.75}}};
    const std::string dot = report::graphDot(graph);
    EXPECT_THAT(dot, HasSubstr("    label=\"step 3, t = 2.5: faulty\";\n"));
    EXPECT_THAT(dot, HasSubstr(R"("b" [label="b\nstate = broken\n75.0 %", fillcolor="#f4af83"];)"));
    EXPECT_THAT(dot, HasSubstr("\"c\" [label=\"c\"];"));
}

TEST(PlantGraph, QuotesNamesSoThatTheyStayNames)
{
    report::PlantGraph graph;
    graph.name = "a\"b";
    graph.outline.components = {"x\\", "y\"]; evil [label=\"\\N"};
    graph.outline.laws = {{"", 0, 0, "\"law\"", {0, 1}}};
    graph.outline.connections = {{{0, 1}, {0}}};
    graph.shown = {true, true};
    const std::string dot = report::graphDot(graph);
    EXPECT_THAT(dot, HasSubstr("graph \"a\\\"b\" {\n"));
    EXPECT_THAT(dot, HasSubstr("\"x\\\\\" [label=\"x\\\\\"];\n"));
    EXPECT_THAT(dot, HasSubstr("\"y\\\"]; evil [label=\\\"\\\\N\" [label="));
    EXPECT_THAT(dot, HasSubstr("[tooltip=\"\\\"law\\\"\"];\n"));
}

TEST(PlantGraph, ShowsWhatIsAsFarAsSoManyLawsLead)
{
    const auto around = [](std::size_t hops) {
        report::PlantGraph graph = graphOfText(chain);
        EXPECT_TRUE(report::showAround(graph, "a/second", hops));
        return shownNames(graph);
    };
    EXPECT_THAT(around(0), ElementsAre("a/second"));
    EXPECT_THAT(around(1), ElementsAre("a/first", "a/second", "b"));
    EXPECT_THAT(around(2), ElementsAre("a/first", "a/second", "b", "c"));
}

TEST(PlantGraph, ShowsWhatIsAroundAllPartsOfAPart)
{
    report::PlantGraph graph = graphOfText(chain);
    ASSERT_TRUE(report::showAround(graph, "a", 0));
    EXPECT_THAT(shownNames(graph), ElementsAre("a/first", "a/second"));
}

TEST(PlantGraph, ShowsAllAsBeforeWhereThereIsNoSuchComponent)
{
    report::PlantGraph graph = graphOfText(chain);
    EXPECT_FALSE(report::showAround(graph, "a/fir", 1));
    EXPECT_THAT(shownNames(graph), testing::SizeIs(4));
}

TEST(PlantGraph, HasEachConnectionInJsonWithThePlacesOfItsLaws)
{
    report::PlantGraph graph = graphOfText(chain);
    report::showAround(graph, "b", 1);
    const auto graphData = nlohmann::json::parse(report::graphJson(graph));
    EXPECT_EQ(graphData["system"], "S");
    EXPECT_FALSE(graphData.contains("step"));
    ASSERT_EQ(graphData["connections"].size(), 3U);
    const auto& first = graphData["connections"][0];
    EXPECT_EQ(first["components"], nlohmann::json({"a/second", "b"}));
    EXPECT_EQ(first["laws"][0]["line"], 17);
    EXPECT_EQ(first["laws"][0]["text"], "law a.second.right = b.left");
}

TEST(PlantGraph, HasModesAndProbabilitiesInJsonAtAStep)
{
    report::PlantGraph graph = graphOfText(chain);
    graph.step = report::GraphStep{3, 2.5, "faulty", {{"b", {{"state", "broken"}}}}, {{"b", 0.75}}};
    const auto graphData = nlohmann::json::parse(report::graphJson(graph));
    EXPECT_EQ(graphData["step"], 3);
    EXPECT_EQ(graphData["components"][2],
              nlohmann::json({{"name", "b"}, {"modes", {{"state", "broken"}}}, {"p", 0.75}}));
}
