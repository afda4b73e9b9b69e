// Which components laws tie together.
#include "report/PlantOutline.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The sets of components as texts, `a b`.
std::vector<std::string> connections(const std::string& text)
{
    const language::ReadResult read = language::readModelText("plant.itms", text);
    if (!read.model) throw std::runtime_error(read.errors.front().format());
    const report::PlantOutline outline = report::outlineOf(read);
    std::vector<std::string> sets;
    for (const report::Connection& connection : outline.connections) {
        std::string set;
        for (const std::uint32_t component : connection.components) {
            set += (set.empty() ? "" : " ") + outline.components[component];
        }
        sets.push_back(set);
    }
    return sets;
}

const std::string twoEnds = R"(component Pipe {
    cond left: no, yes
    cond right: no, yes
    law left = right
}
)";

} // namespace

TEST(PlantOutline, ConnectsTheComponentsOfALaw)
{
    EXPECT_THAT(connections(twoEnds + "system S { a: Pipe b: Pipe law a.right = b.left }"),
                ElementsAre("a b"));
}

TEST(PlantOutline, ConnectsNothingByALawWithinAComponent)
{
    EXPECT_THAT(connections(twoEnds + "system S { a: Pipe b: Pipe }"), IsEmpty());
}

TEST(PlantOutline, NamesComponentsThatSeveralLawsConnectOnce)
{
    EXPECT_THAT(
        connections(twoEnds +
                    "system S { a: Pipe b: Pipe law a.right = b.left law a.left = b.right }"),
        ElementsAre("a b"));
}

TEST(PlantOutline, LeavesOutASetThatIsPartOfAnotherOneOfTheSameLaw)
{
    EXPECT_THAT(connections(twoEnds + "system S { a: Pipe b: Pipe c: Pipe "
                                      "law c.left = yes <-> a.right = yes | b.right = yes }"),
                ElementsAre("a b c"));
}

TEST(PlantOutline, TellsTheTurnsOfALoopApart)
{
    EXPECT_THAT(connections(twoEnds +
                            "system S { a[3]: Pipe for i in 0..1: law a[i].right = a[i+1].left }"),
                ElementsAre("a[0] a[1]", "a[1] a[2]"));
}

TEST(PlantOutline, HasALawOfSeveralPartsOnceWithAllOfThem)
{
    const language::ReadResult read =
        language::readModelText("plant.itms", twoEnds + "system S { a: Pipe b: Pipe }");
    const report::PlantOutline outline = report::outlineOf(read);
    ASSERT_EQ(outline.laws.size(), 1U);
    EXPECT_EQ(outline.laws.front().line, 4U);
    EXPECT_EQ(outline.laws.front().text, "law left = right");
    EXPECT_THAT(outline.laws.front().components, ElementsAre(0, 1));
}
