// The page of a run, and the data in it.
#include "report/Page.h"
#include "report/Alike.h"
#include "report/PageTemplate.h"
#include "session/Session.h"
#include "telemetry/StepReader.h"
#include "tests/report/FollowedPlant.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Written {
    std::string page;
    json data;
};

Written written(language::ReadResult read, const std::vector<std::string>& lines,
                const report::PageFacts& facts = {"plant.itms", "log.jsonl", false, 0})
{
    session::Session session = session::Session::open(std::move(read));
    telemetry::StepReader reader(std::make_unique<telemetry::LineVector>(lines), session.model(),
                                 session.bindings());
    Written result;
    report::PageWriter writer([&](std::string_view piece) { result.page += piece; }, facts,
                              session.plant(), session.read(), {});
    writer.begin();
    std::vector<plant::VariableIndex> readSoFar;
    for (auto next = reader.next(); const auto* step = std::get_if<telemetry::Step>(&next);
         next = reader.next()) {
        const monitor::TrackAnswer& answer = session.advance(*step);
        report::StepReport report = report::stepReport(session.plant(), answer);
        for (const telemetry::Observation& one : step->observations) {
            const plant::Plant& plant = session.plant();
            readSoFar.push_back(plant.variableOf(plant.indexOf(one.value)));
        }
        report::noteAppearance(report, session.plant(), answer, readSoFar);
        writer.step({report, *step, session.input(), answer});
    }
    EXPECT_EQ(result.page, "");
    writer.end(0);
    const std::string_view page = report::pageTemplate();
    const std::size_t begin = page.find(report::pageDataMark);
    const std::size_t after = page.size() - begin - report::pageDataMark.size();
    result.data = json::parse(result.page.substr(begin, result.page.size() - begin - after));
    return result;
}

Written ofTwoValves(const std::vector<std::string>& lines)
{
    return written(language::readModelText("plant.itms", twoValves), lines);
}

const std::vector<std::string> stuckValve = {
    R"({"t": 0, "observations": {"FT-1": 0.5, "FT-2": 0.02}})",
    R"({"t": 1, "commands": {"XV-1": 1}, "observations": {"FT-1": 0.5, "FT-2": 0.75}})",
    R"({"t": 2, "observations": {"FT-1": 0.25}})",
    R"({"t": 3, "observations": {"FT-1": 0.5, "FT-2": 0.01}})",
};

std::size_t count(const std::string& text, std::string_view what)
{
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) ++found;
    return found;
}

/// Entry by entry what a column has as pairs of an entry and how often it comes.
std::vector<json> expanded(const json& runs)
{
    std::vector<json> entries;
    for (std::size_t i = 0; i < runs.size(); i += 2) {
        entries.insert(entries.end(), runs[i + 1].get<std::size_t>(), runs[i]);
    }
    return entries;
}

} // namespace

TEST(PageTemplate, HasThePlaceOfTheDataOnce)
{
    EXPECT_EQ(count(std::string(report::pageTemplate()), report::pageDataMark), 1U);
}

TEST(PageTemplate, LoadsNothingFromElsewhere)
{
    const std::string page(report::pageTemplate());
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    EXPECT_THAT(page, Not(testing::ContainsRegex("<(script|img|iframe|link)[^>]* (src|href)=")));
}

TEST(Page, HasOneEntryForEachStepInEveryColumn)
{
    const json run = ofTwoValves(stuckValve).data["run"];
    EXPECT_EQ(run["steps"], 4);
    EXPECT_EQ(run["step"], json({1, 2, 3, 4}));
    EXPECT_EQ(run["t"], json({0.0, 1.0, 2.0, 3.0}));
    EXPECT_EQ(run["candidates"].size(), 4U);
    for (const char* column : {"status", "complete", "fault", "missing", "silent", "kept", "gap"}) {
        EXPECT_EQ(expanded(run[column]).size(), 4U) << column;
    }
    for (const json& mode : run["modes"]) EXPECT_EQ(expanded(mode["values"]).size(), 4U);
    for (const json& channel : run["channels"]) EXPECT_EQ(expanded(channel["read"]).size(), 4U);
}

TEST(Page, HasTheNumbersThatWereReadAndNullWhereNoneWas)
{
    const json data = ofTwoValves(stuckValve).data;
    ASSERT_EQ(data["plant"]["channels"][1]["channel"], "FT-2");
    EXPECT_EQ(data["run"]["channels"][1]["low"], json({0.02, 0.75, nullptr, 0.01}));
    EXPECT_THAT(expanded(data["run"]["channels"][1]["read"]), ElementsAre(0, 1, -1, 0));
}

TEST(Page, HasTheThresholdsOfAChannelWithTheValuesBetween)
{
    const json channel = ofTwoValves(stuckValve).data["plant"]["channels"][0];
    EXPECT_EQ(channel["thresholds"]["limits"], json({0.1}));
    EXPECT_EQ(channel["thresholds"]["values"], json({0, 1}));
}

TEST(Page, HasTheConflictsOfEveryStepThatContradictedWhatWasBelieved)
{
    const json run = ofTwoValves(stuckValve).data["run"];
    ASSERT_EQ(run["conflicts"].size(), 1U);
    EXPECT_EQ(run["conflicts"][0]["step"], 4);
    EXPECT_EQ(run["conflicts"][0]["observed"]["channel"], "FT-2");
    EXPECT_EQ(run["conflicts"][0]["expected"], "positive");
    EXPECT_EQ(run["conflicts"][0]["verified"], true);
}

TEST(Page, HasAnEventWhereStatusOrFirstExplanationChanged)
{
    const json events = ofTwoValves(stuckValve).data["run"]["events"];
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0][0], 1);
    EXPECT_EQ(events[1][0], 4);
}

TEST(Page, NumbersTheExplanationsOfItsCandidates)
{
    const json run = ofTwoValves(stuckValve).data["run"];
    const json last = run["candidates"][3];
    const json first = run["explanations"][last[0].get<std::size_t>()];
    EXPECT_EQ(first["modes"].size(), 1U);
    EXPECT_GT(last[1].get<double>(), 0.4);
}

TEST(Page, HasThoseTogetherThatCannotBeToldApart)
{
    const json run = ofTwoValves(stuckValve).data["run"];
    EXPECT_EQ(expanded(run["groups"]), (std::vector<json>{{1}, {1}, {1}, {2}}));
    const json last = run["candidates"][3];
    ASSERT_EQ(last.size(), 4U);
    EXPECT_EQ(run["events"][1],
              json({4, 3.0, run["status"][2], last[0], last[1], last[2], last[3]}));
}

TEST(Page, CanHaveNoSteps)
{
    const json run = ofTwoValves({}).data["run"];
    EXPECT_EQ(run["steps"], 0);
    EXPECT_EQ(run["step"], json::array());
}

TEST(Page, CannotBeLeftByANameInTheModelOrTheTelemetry)
{
    const std::string name = "</script><script>alert(1)</script><img'&\\u0022>";
    const std::string channel = name + "<!-- \"'";
    const json model = {
        {"format", "itms-model"},
        {"v", 1},
        {"components",
         {{{"name", name},
           {"variables",
            {{{"name", name}, {"kind", "cond"}, {"values", {{{"name", name}}, {{"name", "b"}}}}}}}}}},
        {"laws", json::array()},
        {"transitions", json::array()},
        {"channels", {{{"kind", "observe"}, {"channel", channel}, {"variable", name + "." + name}}}}};
    const Written result = written(language::readModelText("plant.json", model.dump()),
                                   {json({{"t", 0}, {"observations", {{channel, "b"}}}}).dump()},
                                   {channel, channel, false, 0});
    EXPECT_EQ(count(result.page, "</script"),
              count(std::string(report::pageTemplate()), "</script"));
    EXPECT_EQ(count(result.page, "<!--"), count(std::string(report::pageTemplate()), "<!--"));
    EXPECT_EQ(result.data["plant"]["components"][0], name);
    EXPECT_EQ(result.data["plant"]["channels"][0]["channel"], channel);
    EXPECT_EQ(result.data["model"], channel);
}

TEST(Page, DoesNotOpenTheFilesThatAModelInJsonNames)
{
    const json model = {
        {"format", "itms-model"},
        {"v", 1},
        {"files", {ITMS_ROOT "/README.md"}},
        {"components",
         {{{"name", "a"},
           {"variables",
            {{{"name", "v"}, {"kind", "cond"}, {"values", {{{"name", "no"}}, {{"name", "yes"}}}}}}}}}},
        {"laws", {{{"literals", {"a.v=yes"}}, {"place", {{"file", 0}, {"line", 1}, {"column", 1}}}}}},
        {"transitions", json::array()},
        {"channels", json::array()}};
    const json data = written(language::readModelText("plant.json", model.dump()), {}).data;
    EXPECT_EQ(data["plant"]["sources"][0]["file"], ITMS_ROOT "/README.md");
    EXPECT_EQ(data["plant"]["sources"][0]["text"], nullptr);
    EXPECT_EQ(data["plant"]["laws"][0]["line"], 1);
}
