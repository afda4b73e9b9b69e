// Lines and steps from elsewhere than files: each source here is written as an embedder would write it.
#include "telemetry/LineSource.h"
#include "telemetry/SoundSteps.h"
#include "telemetry/StepReader.h"
#include "tests/telemetry/Telemetry.h"

#include <deque>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>

namespace {

using telemetry::SoundSteps;
using telemetry::StepReader;
using telemetry::StepSource;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Lines as a connection brings them: reading is interrupted where none is there yet.
class Feed : public telemetry::LineSource {
public:
    void push(std::string line) { waiting_.push_back(std::move(line)); }
    void close() { closed_ = true; }

    bool next(std::string_view& line) override
    {
        interrupted_ = waiting_.empty() && !closed_;
        if (waiting_.empty()) return false;
        current_ = std::move(waiting_.front());
        waiting_.pop_front();
        line = current_;
        ++count_;
        return true;
    }
    std::size_t lineNumber() const override { return count_; }
    bool interrupted() const override { return interrupted_; }
    const std::string& name() const override { return name_; }

private:
    std::string name_ = "feed";
    std::deque<std::string> waiting_;
    std::string current_;
    std::size_t count_ = 0;
    bool interrupted_ = false;
    bool closed_ = false;
};

// Steps of a program's own: a request now and then, and a sensor that fails at the third look.
class Polling : public StepSource {
public:
    Polling(const plant::Model& model, std::size_t polls, bool lastIsFatal = false)
        : request_(model.components().front()->commandVars->front()), polls_(polls),
          lastIsFatal_(lastIsFatal)
    {
    }

    std::variant<telemetry::Step, telemetry::Mistake, telemetry::End> next() override
    {
        if (++poll_ > polls_) return telemetry::End{};
        if (poll_ == 3 || (lastIsFatal_ && poll_ == polls_)) {
            const text::Message broken{fmt::format("poll {} failed", poll_), "", ""};
            return telemetry::Mistake{text::errorAt(broken, name_, {}, "", 0), poll_ != 3};
        }
        telemetry::Step step;
        step.number = ++steps_;
        step.t = static_cast<double>(poll_);
        step.commands = {request_->atomLinks->at(steps_ % 2)};
        return step;
    }
    const std::string& name() const override { return name_; }

private:
    std::string name_ = "polling";
    StateVar* request_;
    std::size_t polls_;
    bool lastIsFatal_;
    std::size_t poll_ = 0;
    std::size_t steps_ = 0;
};

std::vector<std::string> shownSteps(SoundSteps& steps)
{
    std::vector<std::string> all;
    while (const auto step = steps.next()) {
        all.push_back(shown(*step));
    }
    return all;
}

std::vector<std::string> shownOf(StepSource& source)
{
    SoundSteps steps(source);
    return shownSteps(steps);
}

std::string writtenAs(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

const std::vector<std::string> jsonLines{
    R"({"t": 1, "observations": {"FT-1": 2}})", "",
    R"({"t": 2, "commands": {"XV-1": 1}, "observations": {"FT-1": 0.5}})",
    R"({"t": 3, "observations": {"FT-2": "none"}})", R"({"t": 4, "observations": {"FT-2": 7}})"};
const std::vector<std::string> tableLines{"t,FT-1,TS-1", "1,2,C", "2,0.5,\"wa", "rm\"", "3,9,1"};

TEST(Seams, LinesInMemoryAreReadAsThoseOfAFile)
{
    const language::ReadResult plant = readPlant();
    for (const auto& lines : {jsonLines, tableLines}) {
        StepReader reader(std::make_unique<telemetry::LineVector>(lines), *plant.model,
                          plant.bindings, skipping);
        const std::vector<std::string> steps = readAll(reader);
        EXPECT_EQ(steps, readText(writtenAs(lines), skipping));
        EXPECT_GE(steps.size(), 3U);
        EXPECT_EQ(reader.doneShare(), 1.0);
        EXPECT_EQ(reader.name(), "lines");
    }
}

TEST(Seams, AReaderRefusesLinesThatItsSourceDidNotCut)
{
    const language::ReadResult plant = readPlant();
    const std::vector<std::string> json{jsonLines.front(), R"({"t": 2})" + std::string(100, ' ')};
    const std::vector<std::string> table{"t,FT-1", "1,2", "2,\"" + std::string(100, ' ') + "\""};
    for (const auto& lines : {json, table}) {
        StepReader reader(std::make_unique<telemetry::LineVector>(lines), *plant.model,
                          plant.bindings, {.mostBytes = 60});
        const std::vector<std::string> all = readAll(reader);
        ASSERT_EQ(all.size(), 2U);
        EXPECT_THAT(all[1], HasSubstr("this line has more than 60 bytes"));
    }
}

TEST(Seams, AReaderGoesOnWhereASourceOfLinesWasInterrupted)
{
    const language::ReadResult plant = readPlant();
    auto owned = std::make_unique<Feed>();
    Feed& feed = *owned;
    StepReader reader(std::move(owned), *plant.model, plant.bindings, skipping);
    std::vector<std::string> mistakes;
    SoundSteps steps(reader,
                     [&](const text::Diagnostic& error) { mistakes.push_back(error.format()); });
    std::vector<std::string> all;
    for (const std::string& line : jsonLines) {
        EXPECT_FALSE(steps.next());
        feed.push(line);
        if (const auto step = steps.next()) all.push_back(shown(*step));
    }
    feed.close();
    EXPECT_FALSE(steps.next());
    std::vector<std::string> expected = readText(writtenAs(jsonLines), skipping);
    expected.erase(expected.begin() + 2);
    EXPECT_EQ(all, expected);
    EXPECT_THAT(mistakes, ElementsAre(StartsWith("feed:4:")));
    EXPECT_EQ(steps.leftOut(), 1U);
    EXPECT_EQ(reader.state().lines, jsonLines.size());
}

TEST(SoundSteps, PassOverMistakesAndCountThem)
{
    const language::ReadResult plant = readPlant();
    Polling polling(*plant.model, 4);
    std::vector<std::string> mistakes;
    SoundSteps steps(polling,
                     [&](const text::Diagnostic& error) { mistakes.push_back(error.format()); });
    steps.setLeftOut(5);
    EXPECT_THAT(shownSteps(steps), ElementsAre("1 t=1 [main.request=open] given [] saw []",
                                               "2 t=2 [main.request=none] given [] saw []",
                                               "3 t=4 [main.request=open] given [] saw []"));
    EXPECT_THAT(mistakes, ElementsAre("polling: poll 3 failed\n"));
    EXPECT_EQ(steps.leftOut(), 6U);
}

TEST(SoundSteps, EndWithAMistakeThatNobodyPassesOver)
{
    const language::ReadResult plant = readPlant();
    Polling polling(*plant.model, 4);
    SoundSteps steps(polling);
    EXPECT_TRUE(steps.next());
    EXPECT_TRUE(steps.next());
    try {
        static_cast<void>(steps.next());
        FAIL() << "the mistake is lost";
    } catch (const telemetry::BadInput& bad) {
        EXPECT_STREQ(bad.what(), "polling: poll 3 failed\n");
        EXPECT_EQ(bad.error().message, "poll 3 failed");
    }
    EXPECT_EQ(steps.leftOut(), 0U);
}

TEST(SoundSteps, EndWithAMistakeThatEndsReading)
{
    const language::ReadResult plant = readPlant();
    Polling polling(*plant.model, 5, true);
    SoundSteps steps(polling, [](const text::Diagnostic&) {});
    for (int step = 0; step < 3; ++step) {
        EXPECT_TRUE(steps.next());
    }
    EXPECT_THROW(static_cast<void>(steps.next()), telemetry::BadInput);
    EXPECT_EQ(steps.leftOut(), 1U);
}

TEST(SoundSteps, LookAtNothingOnceTheyAreInterrupted)
{
    const language::ReadResult plant = readPlant();
    Polling polling(*plant.model, 100);
    bool interrupted = false;
    SoundSteps steps(
        polling, [&](const text::Diagnostic&) { interrupted = true; }, [&] { return interrupted; });
    EXPECT_EQ(shownSteps(steps).size(), 2U);
    interrupted = false;
    const auto next = steps.next();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->number, 3U);
}

std::vector<telemetry::Step> stepsOf(const language::ReadResult& plant,
                                     const std::vector<std::string>& lines)
{
    StepReader reader(std::make_unique<telemetry::LineVector>(lines), *plant.model, plant.bindings,
                      skipping);
    SoundSteps sound(reader, [](const text::Diagnostic&) {});
    std::vector<telemetry::Step> steps;
    while (auto step = sound.next()) {
        steps.push_back(std::move(*step));
    }
    return steps;
}

TEST(StepVector, GivesItsSteps)
{
    const language::ReadResult plant = readPlant();
    telemetry::StepVector source(stepsOf(plant, tableLines));
    StepReader reader(std::make_unique<telemetry::LineVector>(tableLines), *plant.model,
                      plant.bindings, skipping);
    EXPECT_EQ(source.doneShare(), 0.0);
    SoundSteps good(reader, [](const text::Diagnostic&) {});
    const std::vector<std::string> given = shownOf(source);
    EXPECT_EQ(given, shownSteps(good));
    EXPECT_GE(given.size(), 2U);
    EXPECT_EQ(source.doneShare(), 1.0);
    EXPECT_EQ(source.name(), "steps");
    telemetry::StepVector none({});
    EXPECT_THAT(shownOf(none), IsEmpty());
}

TEST(StepVector, GoesOnFromItsState)
{
    const language::ReadResult plant = readPlant();
    const std::vector<telemetry::Step> steps = stepsOf(plant, jsonLines);
    ASSERT_EQ(steps.size(), 3U);
    telemetry::StepVector first(steps);
    SoundSteps sound(first);
    EXPECT_EQ(first.state(), telemetry::ReaderState());
    ASSERT_TRUE(sound.next());
    ASSERT_TRUE(sound.next());
    const telemetry::ReaderState state = first.state();
    EXPECT_EQ(state.lines, 2U);
    EXPECT_EQ(state.steps, 2U);
    EXPECT_EQ(state.t, 2.0);

    telemetry::StepVector same(steps);
    same.restore(state);
    EXPECT_EQ(same.state(), state);
    EXPECT_THAT(shownOf(same), ElementsAre(shown(steps[2])));
    telemetry::StepVector rest({steps[2]});
    rest.restore(state, StepSource::Input::continuation);
    EXPECT_THAT(shownOf(rest), ElementsAre(shown(steps[2])));
    telemetry::StepVector tooShort({steps[0]});
    EXPECT_THROW(tooShort.restore(state), std::invalid_argument);
    Polling polling(*plant.model, 1);
    EXPECT_THROW(polling.restore(state), std::invalid_argument);
}

} // namespace
