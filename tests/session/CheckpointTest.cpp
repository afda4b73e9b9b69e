// A session that ends, and another one that goes on from its checkpoint.
#include "tests/session/ExampleRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(SessionCheckpoint, GoesOnAsIfThereHadBeenNoEnd)
{
    const std::vector<std::string> all = ExampleRun(waterModel, waterTelemetry).rest();
    for (const std::size_t steps :
         {std::size_t{0}, std::size_t{5}, std::size_t{13}, all.size() - 1}) {
        SCOPED_TRACE("after step " + std::to_string(steps));
        session::Checkpoint checkpoint;
        {
            ExampleRun before(waterModel, waterTelemetry);
            before.skip(steps);
            checkpoint = before.session().checkpoint();
        }
        ExampleRun after(waterModel, waterTelemetry);
        after.skip(
            steps); // of the reader; the steps are not forgotten, so what is believed has to be taken back
        after.session().resume(checkpoint);
        EXPECT_EQ(after.session().checkpoint().text, checkpoint.text);
        EXPECT_EQ(after.rest(), std::vector<std::string>(
                                    all.begin() + static_cast<std::ptrdiff_t>(steps), all.end()));
    }
}

TEST(SessionCheckpoint, TakesThePlaceOfWhatIsBelieved)
{
    ExampleRun run(waterModel, waterTelemetry);
    const session::Checkpoint early = run.session().checkpoint();
    run.skip(15);
    EXPECT_NE(run.session().checkpoint().text, early.text);
    run.session().resume(early);
    EXPECT_EQ(run.session().checkpoint().text, early.text);
}

TEST(SessionCheckpoint, KeepsHowOftenReadingsChanged)
{
    ExampleRun before(waterModel, waterTelemetry);
    before.skip(13);
    ExampleRun after(waterModel, waterTelemetry);
    ASSERT_THAT(after.session().readingChanges().counts(), IsEmpty());
    after.session().resume(before.session().checkpoint());
    const auto& expected = before.session().readingChanges().counts();
    const auto& found = after.session().readingChanges().counts();
    ASSERT_THAT(expected, Not(IsEmpty()));
    ASSERT_EQ(found.size(), expected.size());
    std::size_t changes = 0;
    for (const auto& [variable, count] : expected) {
        ASSERT_TRUE(found.contains(variable));
        EXPECT_EQ(found.at(variable).readings, count.readings);
        EXPECT_EQ(found.at(variable).changes, count.changes);
        EXPECT_EQ(found.at(variable).last, count.last);
        changes += count.changes;
    }
    EXPECT_GT(changes, 0u);
}

TEST(SessionCheckpoint, IsRefusedByAnotherModel)
{
    ExampleRun water(waterModel, waterTelemetry);
    ExampleRun power(powerModel, powerTelemetry);
    EXPECT_THROW(power.session().resume(water.session().checkpoint()), session::OtherModel);
}

TEST(SessionCheckpoint, IsRefusedWithOtherSettings)
{
    ExampleRun usual(waterModel, waterTelemetry);
    session::Settings settings;
    settings.keep = 9;
    ExampleRun other(waterModel, waterTelemetry, settings);
    try {
        other.session().resume(usual.session().checkpoint());
        FAIL();
    } catch (const session::OtherSetting& error) {
        EXPECT_EQ(error.name(), "keep");
        EXPECT_EQ(error.then(), "8");
        EXPECT_EQ(error.now(), "9");
    }
}

TEST(SessionCheckpoint, DoesNotAskForAnEqualHistory)
{
    ExampleRun usual(waterModel, waterTelemetry);
    session::Settings settings;
    settings.history = 0;
    ExampleRun other(waterModel, waterTelemetry, settings);
    EXPECT_NO_THROW(other.session().resume(usual.session().checkpoint()));
}

TEST(SessionCheckpoint, IsRefusedWhenDamagedAndNothingChanges)
{
    ExampleRun run(waterModel, waterTelemetry);
    run.skip(13);
    const std::string whole = run.session().checkpoint().text;
    std::vector<std::string> damaged{"", "[]", "{}", "null", whole.substr(0, whole.size() / 2)};
    // A number that the plant does not have, and a hypothesis that is not there.
    for (const auto& [from, to] :
         {std::pair{"\"modes\":[", "\"modes\":[99999,"}, std::pair{"\"now\":[", "\"now\":[99,"},
          std::pair{"\"tracker\"", "\"trucker\""}}) {
        std::string text = whole;
        ASSERT_THAT(text, HasSubstr(from));
        text.replace(text.find(from), std::string_view(from).size(), to);
        damaged.push_back(text);
    }
    for (const std::string& text : damaged) {
        EXPECT_THROW(run.session().resume({text}), session::DamagedCheckpoint) << text.substr(0, 60);
        EXPECT_EQ(run.session().checkpoint().text, whole);
    }
}

TEST(SessionCheckpoint, HasLimitsThatAreNoneAsZero)
{
    session::Settings settings;
    settings.limits = {};
    settings.work = {};
    ExampleRun run(waterModel, waterTelemetry, settings);
    EXPECT_THAT(
        run.session().checkpoint().text,
        HasSubstr(R"("settings":{"follow":0.05,"keep":8,"look-back":10,"max-rank":3,"max-records":0,)"
                  R"("max-seconds":0.0,"max-work":0})"));
}

} // namespace
