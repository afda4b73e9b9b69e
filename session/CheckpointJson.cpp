#include "session/CheckpointJson.h"

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
    const std::uint64_t work = settings.work.maxWork;
    return {{"max-work", work != SearchLimits::unlimited ? work / 1'000'000 : 0},
            {"max-rank", settings.maxRank},
            {"keep", settings.keep},
            {"look-back", settings.lookBack},
            {"follow", settings.follow},
            {"max-records", records ? limits.maxRecords : 0},
            {"max-seconds", std::isfinite(limits.maxSeconds) ? limits.maxSeconds : 0.0}};
}

} // namespace

Json checkpointJson(const Session& session)
{
    return {{"model", session.fingerprint()},
            {"structure", session.structure()},
            {"settings", settingsJson(session.settings())},
            {"tracker", memoryJson(session.tracker().memory(), session.plant())},
            {"readings", readingsJson(session.readingChanges())}};
}

bool checkSame(const Session& session, const CheckpointField& checkpoint, Adopt adopt)
{
    const bool same = checkpoint["model"].text() == session.fingerprint();
    // Checkpoints of earlier versions have no structure.
    const std::string structure =
        checkpoint.has("structure") ? checkpoint["structure"].text() : std::string();
    if (!same) {
        const bool onlyProbabilities = structure == session.structure();
        if (!onlyProbabilities || adopt == Adopt::sameModel) throw OtherModel(onlyProbabilities);
    }
    const Json now = settingsJson(session.settings());
    const CheckpointField settings = checkpoint["settings"];
    static_cast<void>(settings.members());
    for (const auto& [name, value] : now.items()) {
        // One that the checkpoint does not have yet is as it is now.
        if (!settings.has(name)) continue;
        const double then = settings[name].number(0.0);
        if (then != value.get<double>())
            throw OtherSetting(name, settings[name].json().dump(), value.dump());
    }
    return same;
}

void restore(Session& session, const CheckpointField& checkpoint)
{
    auto counts = readingsFromJson(checkpoint["readings"], session.plant());
    session.tracker().restore(memoryFromJson(checkpoint["tracker"], session.plant()));
    session.readingChanges().restore(std::move(counts));
}

} // namespace session
