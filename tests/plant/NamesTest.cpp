// Names of a plant's parts, found and not found.
#include "plant/Names.h"
#include "plant/ModelBuilder.h"

#include <gtest/gtest.h>

namespace {

using namespace plant;

TEST(Names, FindComponentsVariablesAndValues)
{
    ModelBuilder builder("plant");
    Comp* cell = builder.component("a/cell[3]");
    StateVar* level = builder.variable(cell, "level", VariableKind::condition, {{"low"}, {"high"}});
    const auto model = builder.build();
    const Names names(*model);
    EXPECT_EQ(names.component("a/cell[3]"), cell);
    EXPECT_EQ(names.variable("a/cell[3].level"), level);
    EXPECT_EQ(names.atom("a/cell[3].level=high"), value(level, "high"));
    for (const char* unknown :
         {"", "a", "a/cell[3]=", ".level", "a/cell[3].level=", "a/cell[3].x=low"}) {
        EXPECT_EQ(names.component(unknown), nullptr) << unknown;
        EXPECT_EQ(names.variable(unknown), nullptr) << unknown;
        EXPECT_EQ(names.atom(unknown), nullptr) << unknown;
    }
    EXPECT_EQ(nameOf(*level), "a/cell[3].level");
    EXPECT_EQ(variableNamed(cell, "level"), level);
    EXPECT_EQ(variableNamed(cell, "low"), nullptr);
    EXPECT_EQ(variableNamed(nullptr, "level"), nullptr);
}

TEST(Names, SayWhichValueIsMeant)
{
    EXPECT_EQ(unknownValue("hihg", "cell.level", {"low", "high"}).format(),
              "'hihg' is not a value of 'cell.level'\n"
              "  expected: low, high\n"
              "  hint: did you mean 'high'?\n");
    EXPECT_EQ(unknownOperand("levle", "rate", {"slow", "fast"}, {"level"}).format(),
              "'levle' is not a value of 'rate'\n"
              "  expected: slow, fast, or a variable with the same values\n"
              "  hint: did you mean 'level'?\n");
}

} // namespace
