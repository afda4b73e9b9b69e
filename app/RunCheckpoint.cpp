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
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <unistd.h>

namespace app {

namespace {

using Json = nlohmann::json;

constexpr const char* beginAnew =
    "  hint: the file is left as it is; without --resume the run begins anew\n";

Json eventsJson(const report::WriterMemory::Events& events)
{
    Json open = Json::array();
    for (const report::WriterMemory::Events::Open& one : events.open) {
        open.push_back({{"number", one.number},
                        {"what", one.what},
                        {"most", one.most},
                        {"since", one.since},
                        {"t", one.t}});
    }
    return {{"threshold", events.threshold}, {"steps", events.steps}, {"records", events.records},
            {"events", events.events},       {"t", events.t},         {"seconds", events.seconds},
            {"open", std::move(open)}};
}

report::WriterMemory::Events eventsFromJson(const session::CheckpointField& field)
{
    report::WriterMemory::Events events;
    events.threshold = field["threshold"].number();
    events.steps = field["steps"].whole();
    events.records = field["records"].whole();
    events.events = field["events"].whole();
    events.t = field["t"].number();
    events.seconds = field["seconds"].number();
    for (const session::CheckpointField& one : field["open"].items()) {
        events.open.push_back({one["number"].whole(), one["what"].text(), one["most"].number(),
                               one["since"].whole(), one["t"].number()});
    }
    return events;
}

Json runJson(const RunState& state)
{
    const report::WriterMemory::Table& table = state.writer.table;
    Json run = {{"unexplained", state.memory.unexplained},
                {"faultFound", state.memory.faultFound},
                {"steps", state.memory.steps},
                {"linesLeftOut", state.memory.linesLeftOut},
                {"table",
                 {{"last", table.last},
                  {"date", table.date},
                  {"total", table.total},
                  {"incomplete", table.incomplete},
                  {"dropped", table.dropped},
                  {"counts", table.counts}}}};
    if (state.writer.events) run["events"] = eventsJson(*state.writer.events);
    return run;
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
    if (table.has("date")) state.writer.table.date = table["date"].text();
    state.writer.table.total = table["total"].whole();
    state.writer.table.incomplete = table["incomplete"].whole();
    state.writer.table.dropped = table["dropped"].whole();
    for (const auto& [status, count] : table["counts"].members()) {
        state.writer.table.counts[status] = count.whole();
    }
    if (field.has("events")) state.writer.events = eventsFromJson(field["events"]);
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
    if (access(path_.c_str(), F_OK) != 0) return;
    const text::FileText head = text::readFile(path_, longestHead);
    if (!head.text) {
        throw FileFailure(fmt::format("{}: cannot be read: {}\n  expected: a new file for "
                                      "--checkpoint, or one that can be seen to be a checkpoint\n",
                                      text::shownName(path_), head.failure));
    }
    if (head.text->empty() || isCheckpoint(*head.text)) return;
    throw FileFailure(
        fmt::format("{}: is no checkpoint, and is not replaced\n  expected: a new file "
                    "for --checkpoint, or one that itms run --checkpoint wrote\n",
                    text::shownName(path_)));
}

std::string RunCheckpoint::lockOf(const std::string& path)
{
    return text::linkTarget(path) + ".lock";
}

std::optional<RunState> RunCheckpoint::resume(bool adopts)
{
    if (access(path_.c_str(), F_OK) != 0) return {};
    const Json content = readCheckpoint(path_);
    const session::CheckpointField checkpoint(content);
    const auto damaged = [this](const std::exception& error) {
        return FileFailure(
            fmt::format("{}: is damaged: {}\n{}", text::shownName(path_), error.what(), beginAnew));
    };
    try {
        adopted_ = !session::checkSame(run_.session(), checkpoint,
                                       adopts ? session::Adopt::otherProbabilities
                                              : session::Adopt::sameModel);
        const bool skipBad = checkpoint["settings"]["skip-bad"].flag();
        if (skipBad != options_.skipBad)
            refuseSetting(path_, "skip-bad", Json(skipBad).dump(), Json(options_.skipBad).dump());
        for (const auto& [name, now] : run_.reading().texts) {
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
        const char* const hint =
            error.onlyProbabilities()
                ? "  hint: --adopt-model goes on with the probabilities of now\n"
                : beginAnew;
        throw FileFailure(fmt::format("{}: {}\n  expected: {}\n{}", text::shownName(path_),
                                      error.what(), options_.model.path, hint));
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
    for (const auto& [name, now] : run_.reading().texts) {
        content["settings"][name] = now;
    }
    content["reader"] = session::readerJson(run_.readerState());
    content["run"] = runJson(state);
    content["output"] = state.output.bytes;
    if (state.output.digest) content["outputDigest"] = *state.output.digest;
    writeCheckpoint(path_, content);
}

} // namespace app
