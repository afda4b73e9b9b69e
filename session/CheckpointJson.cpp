#include "session/CheckpointJson.h"

#include "plant/Fingerprint.h"
#include "session/MemoryJson.h"
#include "session/Session.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace session {

namespace {

using Json = nlohmann::json;

// What has to be the same for a session to go on as if it had never stopped. A limit that is none stands as 0.
Json settingsJson(const Settings& settings)
{
    const SearchLimits& limits = settings.limits;
    const bool records = limits.maxRecords != SearchLimits::unlimited;
    return {{"max-rank", settings.maxRank},
            {"keep", settings.keep},
            {"look-back", settings.lookBack},
            {"follow", settings.follow},
            {"max-records", records ? limits.maxRecords : 0},
            {"max-seconds", std::isfinite(limits.maxSeconds) ? limits.maxSeconds : 0.0}};
}

} // namespace

Json checkpointJson(const Session& session)
{
    return {{"model", plant::fingerprint(session.plant(), session.bindings())},
            {"settings", settingsJson(session.settings())},
            {"tracker", memoryJson(session.tracker().memory(), session.plant())},
            {"readings", readingsJson(session.readingChanges())}};
}

void checkSame(const Session& session, const Json& checkpoint)
{
    if (checkpoint.at("model") != plant::fingerprint(session.plant(), session.bindings())) {
        throw OtherModel();
    }
    const Json now = settingsJson(session.settings());
    for (const auto& [name, value] : now.items()) {
        // One that the checkpoint does not have yet is as it is now.
        const Json then = checkpoint.at("settings").value(name, value);
        if (then != value) throw OtherSetting(name, then.dump(), value.dump());
    }
}

void restore(Session& session, const Json& checkpoint)
{
    auto counts = readingsFromJson(checkpoint.at("readings"), session.plant());
    session.tracker().restore(memoryFromJson(checkpoint.at("tracker"), session.plant()));
    session.readingChanges().restore(std::move(counts));
}

} // namespace session
