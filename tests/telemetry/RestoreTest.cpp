// The state of a reader in the middle is enough to read the rest.
#include "tests/reference/Random.h"
#include "tests/telemetry/Telemetry.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <stdexcept>

namespace {

using telemetry::ReaderState;
using telemetry::StepReader;
using testing::ElementsAre;
using testing::HasSubstr;

// Rows of time, name and reading; some of them wrong.
std::vector<std::vector<std::string>> randomRows(Random& random)
{
    const std::vector<std::string> names{
        "FT-1", "FT-2", "TS-1", "XV-1", "branch.valve.request", "branch.level"};
    const std::vector<std::vector<std::string>> readings{{"0.9", "1.1", "4.9", "5.1", "low", "x"},
                                                         {"0.5", "2", "7", "high"},
                                                         {"C", "1", "warm", "2"},
                                                         {"1", "0", "7", "open"},
                                                         {"open", "close", "5"},
                                                         {"empty", "full"}};
    std::vector<std::vector<std::string>> rows;
    int t = 0;
    for (int step = 0; step < 25; ++step) {
        t += random.chance(10) ? -1 : random.between(1, 4);
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (random.chance(40))
                rows.push_back({fmt::format("{}", t / 2.0), names[i], random.pick(readings[i])});
        }
    }
    return rows;
}

std::string longText(const std::vector<std::vector<std::string>>& rows)
{
    std::string text = "t,name,value\n";
    for (const auto& row : rows) {
        text += row[0] + "," + row[1] + "," + row[2] + "\n";
    }
    return text;
}

std::string wideText(const std::vector<std::vector<std::string>>& rows)
{
    const std::vector<std::string> names{
        "FT-1", "FT-2", "TS-1", "XV-1", "branch.valve.request", "branch.level"};
    std::string text = "t,FT-1,FT-2,TS-1,XV-1,branch.valve.request,branch.level\n\n";
    for (const auto& row : rows) {
        text += row[0];
        for (const std::string& name : names) {
            text += "," + (name == row[1] ? row[2] : "");
        }
        text += "\n";
    }
    return text;
}

std::string linesText(const std::vector<std::vector<std::string>>& rows)
{
    std::string text = "\n";
    for (const auto& row : rows) {
        const bool isCommand = row[1] == "XV-1" || row[1] == "branch.valve.request";
        const bool isNumber = row[2].find_first_not_of("0123456789.") == std::string::npos;
        const std::string quote = isNumber ? "" : "\"";
        text += fmt::format("{{\"t\": {}, \"{}\": {{\"{}\": {}{}{}}}}}\n", row[0],
                            isCommand ? "commands" : "observations", row[1], quote, row[2], quote);
    }
    return text;
}

// Reads all, and after each step the rest once more with a reader that is given what the first one remembers.
void expectSameRest(const std::string& text, const std::string& message)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file(text);
    StepReader whole(file.path(), *plant.model, plant.bindings, skipping);
    const auto onlySteps = [](std::vector<std::string> all) {
        std::erase_if(all, [](const std::string& each) { return each.starts_with(':'); });
        return all;
    };
    const std::vector<std::string> expected = onlySteps(readAll(whole));
    ASSERT_GT(expected.size(), 5U) << message;

    StepReader reader(file.path(), *plant.model, plant.bindings, skipping);
    std::size_t steps = 0;
    while (true) {
        StepReader second(file.path(), *plant.model, plant.bindings, skipping);
        second.restore(reader.state());
        EXPECT_EQ(second.state(), reader.state()) << message;
        EXPECT_EQ(onlySteps(readAll(second)),
                  std::vector<std::string>(expected.begin() + static_cast<std::ptrdiff_t>(steps),
                                           expected.end()))
            << message << ", after " << steps << " steps";
        const auto next = reader.next();
        if (std::holds_alternative<telemetry::End>(next)) break;
        if (std::holds_alternative<telemetry::Step>(next)) ++steps;
    }
    EXPECT_EQ(steps, expected.size());
}

TEST(Restoring, InTheMiddleGivesTheSameRest)
{
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        Random random(seed);
        const auto rows = randomRows(random);
        expectSameRest(linesText(rows), fmt::format("lines, seed {}", seed));
        expectSameRest(wideText(rows), fmt::format("wide, seed {}", seed));
        expectSameRest(longText(rows), fmt::format("long, seed {}", seed));
    }
}

TEST(Restoring, GoesOnWithAnInputThatBeginsWhereTheOtherOneEnded)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile first("{\"t\": 5, \"observations\": {\"FT-1\": 0.5, \"FT-2\": 2}}\n");
    const TemporaryFile second("t,FT-1\n6,1.1\n");
    StepReader reader(first.path(), *plant.model, plant.bindings);
    EXPECT_EQ(readAll(reader).size(), 1U);
    StepReader next(second.path(), *plant.model, plant.bindings);
    next.restore(reader.state(), StepReader::Input::continuation);
    EXPECT_THAT(readAll(next),
                ElementsAre("2 t=6 [main.request=none branch/valve.request=none] given [] "
                            "saw [main.flow=zero branch/valve.flow=low held]"));
}

TEST(Restoring, RemembersNamesAndNumbers)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file(
        "\n{\"t\": 5, \"observations\": {\"FT-1\": 0.5, \"branch.level\": \"full\"}, "
        "\"commands\": {\"XV-1\": 1}}\n{}\n");
    StepReader reader(file.path(), *plant.model, plant.bindings);
    reader.next();
    ReaderState expected;
    expected.lines = 2;
    expected.steps = 1;
    expected.t = 5;
    expected.last = {{"main.flow", "zero", 5}, {"main.request", "open", 5}};
    EXPECT_EQ(reader.state(), expected);
}

TEST(Restoring, RefusesWhatIsNotOfTheModel)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file("");
    StepReader reader(file.path(), *plant.model, plant.bindings);
    ReaderState state;
    state.last = {{"main.flwo", "zero", 5}};
    EXPECT_THROW(reader.restore(state), std::invalid_argument);
    state.last = {{"main.flow", "zeroo", 5}};
    EXPECT_THROW(reader.restore(state), std::invalid_argument);
    state.last = {{"branch.level", "full", 5}};
    EXPECT_THROW(reader.restore(state), std::invalid_argument);
    EXPECT_EQ(reader.state(), ReaderState());
}

TEST(Restoring, TellsOfAnInputThatIsTooShort)
{
    const language::ReadResult plant = readPlant();
    for (const std::string text : {"{}\n{}\n", "t,FT-1\n0,1\n", "t,name,value\n0,FT-1,1\n"}) {
        const TemporaryFile file(text);
        StepReader reader(file.path(), *plant.model, plant.bindings, skipping);
        ReaderState state;
        state.lines = 3;
        reader.restore(state);
        EXPECT_THAT(readAll(reader),
                    ElementsAre(": the input ends after 2 lines, and 3 of it were read before\n"));
    }
}

} // namespace
