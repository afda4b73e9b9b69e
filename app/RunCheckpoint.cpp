// One JSON object: the session's checkpoint, with "reader", "run", "output" and "outputDigest" added, and "skip-bad" among the
// settings.
#include "app/RunCheckpoint.h"

#include "app/Checkpoint.h"
#include "app/FileRoles.h"
#include "app/Output.h"
#include "session/CheckpointJson.h"
#include "session/MemoryJson.h"
#include "text/File.h"
#include "text/FileIdentity.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <unistd.h>

namespace app {

namespace {

using Json = nlohmann::json;

constexpr const char* beginAnew =
    "  hint: the file is left as it is; without --resume the run begins anew\n";

Json runJson(const RunState& state)
{
    const report::WriterMemory::Table& table = state.writer.table;
    return {{"unexplained", state.memory.unexplained},
            {"faultFound", state.memory.faultFound},
            {"steps", state.memory.steps},
            {"linesLeftOut", state.memory.linesLeftOut},
            {"table",
             {{"last", table.last},
              {"total", table.total},
              {"incomplete", table.incomplete},
              {"dropped", table.dropped},
              {"counts", table.counts}}}};
}

RunState runFromJson(const Json& json)
{
    RunState state;
    state.memory.unexplained = json.at("unexplained").get<bool>();
    state.memory.faultFound = json.at("faultFound").get<bool>();
    state.memory.steps = json.at("steps").get<std::size_t>();
    state.memory.linesLeftOut = json.at("linesLeftOut").get<std::size_t>();
    state.writer.steps = state.memory.steps;
    const Json& table = json.at("table");
    state.writer.table.last = table.at("last").get<std::string>();
    state.writer.table.total = table.at("total").get<std::size_t>();
    state.writer.table.incomplete = table.at("incomplete").get<std::size_t>();
    state.writer.table.dropped = table.at("dropped").get<std::size_t>();
    state.writer.table.counts = table.at("counts").get<std::map<std::string, std::size_t>>();
    return state;
}

[[noreturn]] void refuseSetting(const std::string& path, const std::string& name,
                                const std::string& then, const std::string& now)
{
    throw FileFailure(fmt::format("{}: was made with {}{} {}\n  expected: the options of the run "
                                  "that is resumed; here it is {}\n",
                                  path, name.size() == 1 ? "-" : "--", name, then, now));
}

text::LockFile lockedPlace(const std::string& path)
{
    try {
        text::checkPlace(path);
        return text::LockFile(RunCheckpoint::lockOf(path));
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(
            fmt::format("{}\n  expected: a place for the checkpoint\n", failure.what()));
    }
}

} // namespace

RunCheckpoint::RunCheckpoint(std::string path, const TrackOptions& options, TrackRun& run)
    : path_(std::move(path)), options_(options), run_(run), lock_(lockedPlace(path_))
{
    if (lock_.holder()) refuseFileInUse(path_, *lock_.holder(), "--checkpoint");
}

std::string RunCheckpoint::lockOf(const std::string& path)
{
    return text::linkTarget(path) + ".lock";
}

std::optional<RunState> RunCheckpoint::resume()
{
    if (access(path_.c_str(), F_OK) != 0) return {};
    const Json content = readCheckpoint(path_);
    const auto damaged = [this](const std::exception& error) {
        return FileFailure(fmt::format("{}: is damaged: {}\n{}", path_, error.what(), beginAnew));
    };
    try {
        session::checkSame(run_.session(), content);
        const Json& skipBad = content.at("settings").at("skip-bad");
        if (skipBad != options_.skipBad)
            refuseSetting(path_, "skip-bad", skipBad.dump(), Json(options_.skipBad).dump());
        run_.feed().reader().restore(session::readerFromJson(content.at("reader")),
                                     options_.telemetry == "-"
                                         ? telemetry::StepReader::Input::continuation
                                         : telemetry::StepReader::Input::same);
        session::restore(run_.session(), content);
        RunState state = runFromJson(content.at("run"));
        run_.feed().setLinesLeftOut(state.memory.linesLeftOut);
        state.output.bytes = content.at("output").get<std::uint64_t>();
        if (content.contains("outputDigest"))
            state.output.digest = content.at("outputDigest").get<std::string>();
        return state;
    } catch (const session::OtherModel& error) {
        throw FileFailure(fmt::format("{}: {}\n  expected: {}\n{}", path_, error.what(),
                                      options_.model.path, beginAnew));
    } catch (const session::OtherSetting& error) {
        refuseSetting(path_, error.name(), error.then(), error.now());
    } catch (const Json::exception& error) {
        throw damaged(error);
    } catch (const std::out_of_range& error) {
        throw damaged(error);
    } catch (const std::invalid_argument& error) {
        throw damaged(error);
    }
}

void RunCheckpoint::save(const RunState& state)
{
    Json content = session::checkpointJson(run_.session());
    content["settings"]["skip-bad"] = options_.skipBad;
    content["reader"] = session::readerJson(run_.feed().reader().state());
    content["run"] = runJson(state);
    content["output"] = state.output.bytes;
    if (state.output.digest) content["outputDigest"] = *state.output.digest;
    writeCheckpoint(path_, content);
}

} // namespace app
