// One JSON object: the session's checkpoint, with "reader", "run", "output" and "outputDigest" added, and "skip-bad" and
// the ReadOptions among the settings.
#include "app/RunCheckpoint.h"

#include "app/Checkpoint.h"
#include "app/FileRoles.h"
#include "app/Output.h"
#include "session/CheckpointJson.h"
#include "session/MemoryJson.h"
#include "text/Diagnostic.h"
#include "text/File.h"
#include "text/FileIdentity.h"

#include <fmt/format.h>
#include <fstream>
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

RunState runFromJson(const session::CheckpointField& field)
{
    RunState state;
    state.memory.unexplained = field["unexplained"].flag();
    state.memory.faultFound = field["faultFound"].flag();
    state.memory.steps = field["steps"].whole();
    state.memory.linesLeftOut = field["linesLeftOut"].whole();
    state.writer.steps = state.memory.steps;
    const session::CheckpointField table = field["table"];
    state.writer.table.last = table["last"].text();
    state.writer.table.total = table["total"].whole();
    state.writer.table.incomplete = table["incomplete"].whole();
    state.writer.table.dropped = table["dropped"].whole();
    for (const auto& [status, count] : table["counts"].members()) {
        state.writer.table.counts[status] = count.whole();
    }
    return state;
}

[[noreturn]] void refuseSetting(const std::string& path, const std::string& name,
                                const std::string& then, const std::string& now)
{
    throw FileFailure(fmt::format("{}: was made with {}{} {}\n  expected: the options of the run "
                                  "that is resumed; here it is {}\n",
                                  text::shownName(path), name.size() == 1 ? "-" : "--", name, then,
                                  now));
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

// An empty file keeps nothing.
void RunCheckpoint::refuseOtherFile() const
{
    constexpr std::size_t longestHead = 4096;
    std::ifstream file(path_, std::ios::binary);
    std::string head(longestHead, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(file.gcount()));
    if (head.empty() || isCheckpoint(head)) return;
    throw FileFailure(
        fmt::format("{}: is no checkpoint, and is not replaced\n  expected: a new file "
                    "for --checkpoint, or one that itms run --checkpoint wrote\n",
                    text::shownName(path_)));
}

std::string RunCheckpoint::lockOf(const std::string& path)
{
    return text::linkTarget(path) + ".lock";
}

std::optional<RunState> RunCheckpoint::resume()
{
    if (access(path_.c_str(), F_OK) != 0) return {};
    const Json content = readCheckpoint(path_);
    const session::CheckpointField checkpoint(content);
    const auto damaged = [this](const std::exception& error) {
        return FileFailure(
            fmt::format("{}: is damaged: {}\n{}", text::shownName(path_), error.what(), beginAnew));
    };
    try {
        session::checkSame(run_.session(), checkpoint);
        const bool skipBad = checkpoint["settings"]["skip-bad"].flag();
        if (skipBad != options_.skipBad)
            refuseSetting(path_, "skip-bad", Json(skipBad).dump(), Json(options_.skipBad).dump());
        for (const auto& [name, now] : textsOf(options_.reading)) {
            // One that the checkpoint does not have yet is as it is now.
            if (!checkpoint["settings"].has(name)) continue;
            const std::string then = checkpoint["settings"][name].text();
            if (then != now) refuseSetting(path_, name, Json(then).dump(), Json(now).dump());
        }
        RunState state = runFromJson(checkpoint["run"]);
        state.output.bytes = checkpoint["output"].whole();
        if (checkpoint.has("outputDigest")) state.output.digest = checkpoint["outputDigest"].text();
        run_.feed().reader().restore(session::readerFromJson(checkpoint["reader"]),
                                     options_.telemetry == "-"
                                         ? telemetry::StepReader::Input::continuation
                                         : telemetry::StepReader::Input::same);
        session::restore(run_.session(), checkpoint);
        run_.feed().setLinesLeftOut(state.memory.linesLeftOut);
        return state;
    } catch (const session::OtherModel& error) {
        throw FileFailure(fmt::format("{}: {}\n  expected: {}\n{}", text::shownName(path_),
                                      error.what(), options_.model.path, beginAnew));
    } catch (const session::OtherSetting& error) {
        refuseSetting(path_, error.name(), error.then(), error.now());
    } catch (const session::DamagedCheckpoint& error) {
        throw damaged(error);
    } catch (const std::invalid_argument& error) { // what the reader does not know
        throw damaged(error);
    }
}

void RunCheckpoint::save(const RunState& state)
{
    Json content = session::checkpointJson(run_.session());
    content["settings"]["skip-bad"] = options_.skipBad;
    for (const auto& [name, now] : textsOf(options_.reading)) {
        content["settings"][name] = now;
    }
    content["reader"] = session::readerJson(run_.readerState());
    content["run"] = runJson(state);
    content["output"] = state.output.bytes;
    if (state.output.digest) content["outputDigest"] = *state.output.digest;
    writeCheckpoint(path_, content);
}

} // namespace app
