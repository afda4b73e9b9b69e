// A checkpoint of which somebody changed a field: refused in the program's own words, or one that a session can go on from.
#include "tests/session/ExampleRun.h"
#include "tests/support/Sanitized.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

/// Every place in a document, but of the items of a list the first and the last only.
void addPlaces(const json& value, const json::json_pointer& here,
               std::vector<json::json_pointer>& all)
{
    if (!here.empty()) all.push_back(here);
    if (value.is_object()) {
        for (const auto& [key, member] : value.items()) {
            addPlaces(member, here / key, all);
        }
    } else if (value.is_array() && !value.empty()) {
        addPlaces(value.front(), here / 0, all);
        if (value.size() > 1) addPlaces(value.back(), here / (value.size() - 1), all);
    }
}

/// "tracker.past[0].scale", as messages name a place.
std::string nameOf(const json::json_pointer& place)
{
    std::string name;
    json::json_pointer left = place;
    while (!left.empty()) {
        const std::string key = left.back();
        const bool index = key.find_first_not_of("0123456789") == std::string::npos;
        name = (index ? "[" + key + "]" : (left.parent_pointer().empty() ? "" : ".") + key) + name;
        left.pop_back();
    }
    return name;
}

json usualCheckpoint()
{
    ExampleRun run(waterModel, waterTelemetry);
    run.skip(14);
    return json::parse(run.session().checkpoint().text);
}

/// A logarithm that is minus infinity, and a time that there is not yet, stand as null.
bool mayBeNull(const json::json_pointer& place)
{
    return place.back() == "step" || place.back() == "calm";
}

// Of all fields, where the program is quick.
constexpr std::size_t everySoMany = underSanitizers ? 5 : 1;

TEST(CheckpointFields, OfAnotherKindAreRefusedWithTheirPlace)
{
    const json whole = usualCheckpoint();
    std::vector<json::json_pointer> places;
    addPlaces(whole, json::json_pointer(), places);
    ASSERT_GT(places.size(), 100U);
    ExampleRun run(waterModel, waterTelemetry);
    const std::vector<json> others{
        nullptr, true, 0.5, "text", json::array({json::array()}), json{{"key", "value"}}};
    for (std::size_t i = 0; i < places.size(); i += everySoMany) {
        const json::json_pointer& place = places[i];
        for (const json& other : others) {
            json changed = whole;
            json& field = changed[place];
            if (field.type() == other.type() || (field.is_number() && other.is_number())) continue;
            if (other.is_null() && mayBeNull(place)) continue;
            field = other;
            SCOPED_TRACE(nameOf(place) + " is " + other.dump());
            try {
                run.session().resume({changed.dump()});
                ADD_FAILURE();
            } catch (const session::DamagedCheckpoint& error) {
                EXPECT_THAT(error.what(), testing::StartsWith(nameOf(place)));
            }
        }
    }
}

TEST(CheckpointFields, WithExtremeNumbersAreRefusedOrGoneOnFrom)
{
    const json whole = usualCheckpoint();
    std::vector<json::json_pointer> places;
    addPlaces(whole, json::json_pointer(), places);
    const std::vector<json> extremes{-1,
                                     0,
                                     1e308,
                                     -1e308,
                                     1e-320,
                                     0.5,
                                     std::uint64_t{1} << 63U,
                                     std::numeric_limits<std::uint64_t>::max(),
                                     std::numeric_limits<std::int64_t>::min()};
    ExampleRun run(waterModel, waterTelemetry);
    telemetry::StepReader reader(waterTelemetry, run.session().model(), run.session().bindings());
    for (int i = 0; i < 14; ++i) {
        reader.next();
    }
    const auto next = std::get<telemetry::Step>(reader.next());
    std::size_t refused = 0;
    for (std::size_t i = 0; i < places.size(); i += everySoMany) {
        const json::json_pointer& place = places[i];
        if (!whole[place].is_number()) continue;
        for (const json& extreme : extremes) {
            json changed = whole;
            changed[place] = extreme;
            SCOPED_TRACE(nameOf(place) + " is " + extreme.dump());
            try {
                run.session().resume({changed.dump()});
                run.session().advance(next);
            } catch (const session::CheckpointError& error) {
                ++refused;
                EXPECT_THAT(error.what(), Not(AnyOf(HasSubstr("json"), HasSubstr("vector"),
                                                    HasSubstr("range_check"), HasSubstr("stod"))));
            }
        }
    }
    EXPECT_GT(refused, 200U / everySoMany);
}

TEST(CheckpointFields, ThatAreMissingAreNamed)
{
    const json whole = usualCheckpoint();
    ExampleRun run(waterModel, waterTelemetry);
    for (const auto& [key, value] : whole.items()) {
        if (key == "structure") continue; // those of earlier versions have none
        json changed = whole;
        changed.erase(key);
        try {
            run.session().resume({changed.dump()});
            ADD_FAILURE() << key;
        } catch (const session::DamagedCheckpoint& error) {
            EXPECT_EQ(std::string(error.what()), key + " is missing");
        }
    }
}

} // namespace
