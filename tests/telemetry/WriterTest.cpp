// What is written is read back as the same.
#include "telemetry/Writer.h"

#include "tests/reference/Random.h"
#include "tests/telemetry/Telemetry.h"

#include <algorithm>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <numeric>
#include <set>

namespace {

using telemetry::Step;

Atom* atomOf(const plant::Model& model, const std::string& id)
{
    for (const auto& atom : model.atoms()) {
        if (atom->id == id) return atom.get();
    }
    throw std::runtime_error("no atom " + id);
}

std::string lineOf(const std::string& text, const std::vector<std::string>& commands,
                   const std::vector<std::string>& observations)
{
    const language::ReadResult plant = readPlant(text);
    std::vector<Atom*> given;
    for (const std::string& id : commands) {
        given.push_back(atomOf(*plant.model, id));
    }
    std::vector<Atom*> seen;
    for (const std::string& id : observations) {
        seen.push_back(atomOf(*plant.model, id));
    }
    return telemetry::stepLine(12.5, given, seen, plant.bindings);
}

TEST(Writer, WritesChannelsWithNumbersAndOthersWithNames)
{
    EXPECT_EQ(lineOf(plantText, {"main.request=open", "branch/valve.request=close"},
                     {"main.flow=low", "main.heat=cold", "main.position=stuck", "branch.level=full"}),
              "{\"t\": 12.5, \"commands\": {\"XV-1\": 1, \"branch/valve.request\": \"close\"}, "
              "\"observations\": {\"FT-1\": 3, \"TS-1\": \"C\", \"main.position\": \"stuck\", "
              "\"branch.level\": \"full\"}}\n");
    EXPECT_EQ(lineOf(plantText, {"main.request=none"}, {}),
              "{\"t\": 12.5, \"commands\": {\"XV-1\": \"none\"}, \"observations\": {}}\n");
}

TEST(Writer, StaysOffTheOutermostLimits)
{
    EXPECT_EQ(lineOf(plantText, {}, {"main.flow=zero"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"FT-1\": -1.2}}\n");
    EXPECT_EQ(lineOf(plantText, {}, {"main.flow=high"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"FT-1\": 7.2}}\n");
}

const std::string shared =
    "component C {\n cond v: a, b\n cond w: c, d\n}\nsystem S {\n c: C\n"
    " observe c.v from \"X\" : a < 1 <= b\n observe c.w from \"X\" : c < 2 <= d\n}\n";

TEST(Writer, WritesOneReadingForSeveralVariablesWhereThereIsOne)
{
    EXPECT_EQ(lineOf(shared, {}, {"c.v=a", "c.w=c"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"X\": 0.5}}\n");
    EXPECT_EQ(
        lineOf(shared, {}, {"c.v=a", "c.w=d"}),
        "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"c.v\": \"a\", \"c.w\": \"d\"}}\n");
    EXPECT_EQ(lineOf(shared, {}, {"c.w=d"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"c.w\": \"d\"}}\n");
}

TEST(Writer, FindsAReadingForWhatIsOtherwise)
{
    EXPECT_EQ(lineOf("component C {\n cond v: a, b\n}\nsystem S {\n c: C\n"
                     " observe c.v from \"X\" : a = 3, a = \"b\", b otherwise\n}\n",
                     {}, {"c.v=b"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"X\": 4}}\n");
}

const std::string noisy =
    "component C {\n cond v: low, ok, high\n cond w: no, yes\n}\nsystem S {\n c: C\n"
    " observe c.v from \"X\" : low < 1 <= ok < 5 <= high within 0.5 within 0..8 noise 0.5\n"
    " observe c.w from \"Y\" : no < 1 <= yes noise yes = 3..4\n}\n";

TEST(Writer, KeepsToWhatCanBeReadAtAll)
{
    EXPECT_EQ(lineOf(noisy, {}, {"c.v=low", "c.w=yes"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"X\": 0.25, \"Y\": 1.5}}\n");
    EXPECT_EQ(lineOf(noisy, {}, {"c.v=high"}),
              "{\"t\": 12.5, \"commands\": {}, \"observations\": {\"X\": 7.5}}\n");
}

TEST(Writer, ScattersReadingsWithinTheRangeOfTheirValue)
{
    const language::ReadResult plant = readPlant(noisy);
    Random random(7);
    telemetry::StepWriter writer(plant.bindings, [&random] {
        return static_cast<double>(random.below(1U << 20U)) / (1U << 20U);
    });
    std::set<double> middle;
    std::set<double> given;
    for (int i = 0; i < 500; ++i) {
        const auto line = nlohmann::json::parse(
            writer.line(i, {}, {atomOf(*plant.model, "c.v=ok"), atomOf(*plant.model, "c.w=yes")}));
        middle.insert(line["observations"]["X"].get<double>());
        given.insert(line["observations"]["Y"].get<double>());
    }
    EXPECT_GT(middle.size(), 400U);
    EXPECT_GE(*middle.begin(), 1.5);
    EXPECT_LE(*middle.rbegin(), 4.5);
    const double mean =
        std::accumulate(middle.begin(), middle.end(), 0.0) / static_cast<double>(middle.size());
    EXPECT_NEAR(mean, 3.0, 0.1);
    EXPECT_GE(*given.begin(), 3.0);
    EXPECT_LE(*given.rbegin(), 4.0);
    EXPECT_LT(*given.begin(), 3.05);
    EXPECT_GT(*given.rbegin(), 3.95);
}

// A plant with a threshold channel of any size and hysteresis for each of its variables.
std::string randomPlant(Random& random)
{
    std::string text = "component C {\n cond v: a, b, c, d\n cond w: e, f\n command x: g, h, i\n}\n"
                       "system S {\n c[6]: C\n";
    for (int i = 0; i < 6; ++i) {
        const double scale = random.pick(std::vector<double>{1e-6, 1, 1000, 1e12});
        const double first = random.between(-50, 50) * scale;
        const double second = first + random.between(1, 50) * scale;
        const double third = second + random.between(1, 50) * scale;
        const double within = std::min(second - first, third - second) * random.between(0, 49) / 100;
        if (random.chance(80)) {
            text += fmt::format(" observe c[{}].v from \"V-{}\" : a < {:f} <= b <= {:f} < c < {:f} "
                                "<= d within {:f}\n",
                                i, i, first, second, third, within);
        }
        if (random.chance(60))
            text += fmt::format(" observe c[{}].w from \"W-{}\" : f < {:f} <= e within {:f}\n", i,
                                i, first, random.between(0, 3) * scale);
        if (random.chance(60))
            text += fmt::format(" command c[{}].x from \"X-{}\" : h = 1, g = \"h\", i otherwise\n",
                                i, i);
    }
    return text + "}\n";
}

TEST(Writer, WritesWhatIsReadAsTheSame)
{
    for (std::uint64_t seed = 1; seed <= 30; ++seed) {
        Random random(seed);
        const language::ReadResult plant = readPlant(randomPlant(random));
        telemetry::StepWriter writer(plant.bindings);
        std::string text;
        std::vector<std::vector<Atom*>> given;
        std::vector<std::vector<Atom*>> seen;
        for (int t = 0; t < 40; ++t) {
            given.emplace_back();
            seen.emplace_back();
            for (const auto& component : plant.model->components()) {
                for (const StateVar* variable : *component->stateVars) {
                    if (random.chance(40)) continue;
                    (variable->type == "Command" ? given : seen)
                        .back()
                        .push_back(random.pick(*variable->atomLinks));
                }
            }
            text += writer.line(t, given.back(), seen.back());
        }
        const TemporaryFile file(text);
        telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
        for (std::size_t i = 0; i < given.size(); ++i) {
            const auto next = reader.next();
            ASSERT_TRUE(std::holds_alternative<Step>(next))
                << "seed " << seed << ": " << std::get<telemetry::Mistake>(next).error.format();
            const Step& step = std::get<Step>(next);
            EXPECT_EQ(step.givenCommands, given[i]) << "seed " << seed;
            std::vector<Atom*> read;
            for (const telemetry::Observation& observation : step.observations) {
                EXPECT_FALSE(observation.held);
                read.push_back(observation.value);
            }
            EXPECT_THAT(read, testing::UnorderedElementsAreArray(seen[i])) << "seed " << seed;
        }
        EXPECT_TRUE(std::holds_alternative<telemetry::End>(reader.next()));
    }
}

} // namespace
