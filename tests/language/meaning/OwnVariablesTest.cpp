// Laws and transitions that are taken over from the first instance of a type, compared with those of types that have one instance each.
#include "language/meaning/OwnVariables.h"

#include "language/Reader.h"
#include "language/json/ModelJson.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

namespace {

language::ReadResult soundModel(const std::string& text)
{
    language::ReadResult result = language::readModelText("plants/test.itms", text);
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.model) throw std::runtime_error("there is no model");
    return result;
}

// All of the model but the places of its laws.
std::string contentOf(const std::string& text)
{
    return std::regex_replace(language::modelJson(soundModel(text)),
                              std::regex(",\"place\":\\{[^}]*\\}"), "");
}

// A component with laws and guards of its own variables, of those of its part, and in loops.
std::string cellType(const std::string& name)
{
    return "component Inner" + name +
           " {\n cond v: low, mid, high\n mode m { a initial b }\n law m = a -> v != mid\n"
           " nominal a -> b when v = high\n nominal b -> a when v = low | v = mid\n}\n"
           "component Cell" +
           name + "(p = 0.25) {\n inner[2]: Inner" + name +
           "\n command request: none, go\n cond inlet: low, mid, high\n cond out: low, mid, high\n"
           " mode state { on initial off broken fault }\n"
           " law state = on -> out = inlet\n law state = broken <-> out = low\n"
           " law inner[0].v = inlet\n for i in 0..1: law state = off -> inner[i].v != high\n"
           " nominal on -> off when request = go & inlet != low : 0.125\n nominal off -> on when "
           "request = go : 0.5\n"
           " idle on : 0.125\n fault any -> broken when inlet = high : p\n repair broken -> off : "
           "p / 2\n}\n";
}

TEST(OwnVariablesTest, MakeTheSameOfEveryInstanceAsOfTypesWithOneInstance)
{
    const std::string own =
        "system S {\n a: CellA\n b: CellB(p = 0.5)\n c: CellC(p = 0.5)\n d: CellD\n}\n";
    std::string shared = own;
    for (const char* each : {"CellA", "CellB", "CellC", "CellD"}) {
        shared.replace(shared.find(each), 5, "CellX");
    }
    EXPECT_EQ(contentOf(cellType("X") + shared),
              contentOf(cellType("A") + cellType("B") + cellType("C") + cellType("D") + own));
}

TEST(OwnVariablesTest, CountForEveryInstance)
{
    const std::string type =
        "component C {\n cond v: a, b\n cond w: a, b\n law v = a -> v = a\n law v = w\n}\n";
    const language::ReadResult one = soundModel(type + "system S { c[1]: C }\n");
    const language::ReadResult three = soundModel(type + "system S { c[3]: C }\n");
    EXPECT_EQ(three.size.laws, 3 * one.size.laws);
    EXPECT_EQ(three.model->lawCount(), 3 * one.model->lawCount());
    EXPECT_EQ(three.lawPlaces.size(), three.model->lawCount());
}

} // namespace
