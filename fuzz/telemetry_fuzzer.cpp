// Feeds the reader of telemetry with any bytes. Steps must be in order and complete; mistakes must have places and can be shown; a
// reader that is given what another one remembered in the middle must read the same rest; and what is written of the steps must be read
// as the same.
#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "language/Reader.h"
#include "telemetry/StepReader.h"
#include "telemetry/Writer.h"

#include <cstdint>
#include <string>

namespace {

using telemetry::Step;
using telemetry::StepReader;

const telemetry::ReadSettings settings{.skipBad = true, .mostBytes = 300};

const language::ReadResult& model()
{
    static const language::ReadResult read = language::readModelText("plant.itms", R"(
component Valve {
    command request: none, open, close
    cond    flow: zero, low, high
    cond    heat: cold, warm
}
component Branch {
    valve: Valve
    cond level: empty, full
}
system Plant {
    v: Valve
    b: Branch
    observe v.flow from "F" : zero < 1 <= low < 5 <= high within 0.2
    observe b.valve.flow from "G" : zero < 1 <= low < 5 <= high hold 3 s
    observe v.heat from "H" : cold = "C", warm = 1
    observe b.valve.heat from "H" : cold = "C", warm otherwise
    observe b.level from mean("F" - "K") over 3 s : empty < "L" / 2 <= full
    command v.request from "X" : open = 1, close = 0, none otherwise
    command b.valve.request hold 2 s
})");
    require(read.model != nullptr, "the plant can be read");
    return read;
}

bool same(const Step& a, const Step& b)
{
    bool equal = a.number == b.number && a.t == b.t && a.commands == b.commands && a.gap == b.gap &&
                 a.givenCommands == b.givenCommands &&
                 a.observations.size() == b.observations.size();
    for (std::size_t i = 0; equal && i < a.observations.size(); ++i) {
        equal = a.observations[i].value == b.observations[i].value &&
                a.observations[i].held == b.observations[i].held;
    }
    return equal;
}

void checkError(const text::Diagnostic& error, std::size_t size)
{
    require(error.place.line >= 1 && error.place.line <= size + 1, "a mistake is in a line");
    require(error.place.column >= 1 && error.place.column <= size + 1, "and in a column");
    requireShown(error);
}

struct Taken {
    std::vector<Step> steps;
    std::vector<telemetry::ReaderState> states; // after each step
};

Taken readAll(StepReader& reader, std::size_t size)
{
    Taken taken;
    for (std::size_t count = 0;; ++count) {
        require(count <= size + 1, "there are no more steps and mistakes than bytes");
        auto next = reader.next();
        if (std::holds_alternative<telemetry::End>(next)) return taken;
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            checkError(mistake->error, size);
            continue;
        }
        taken.steps.push_back(std::move(std::get<Step>(next)));
        taken.states.push_back(reader.state());
        const Step& step = taken.steps.back();
        require(step.number == taken.steps.size(), "steps are numbered");
        require(taken.steps.size() == 1 || step.t > taken.steps[taken.steps.size() - 2].t,
                "time goes on");
        require(step.commands.size() == 2, "every command has a value");
    }
}

void checkWritten(const std::vector<Step>& steps)
{
    telemetry::StepWriter writer(model().bindings);
    std::string text;
    for (const Step& step : steps) {
        std::vector<Atom*> seen;
        for (const telemetry::Observation& observation : step.observations) {
            if (!observation.held) seen.push_back(observation.value);
        }
        text += writer.line(step.t, step.givenCommands, seen);
    }
    const MemoryFile file(text.data(), text.size());
    StepReader reader(file.path, *model().model, model().bindings);
    for (const Step& step : steps) {
        const auto next = reader.next();
        const Step* read = std::get_if<Step>(&next);
        require(read && same(*read, step), "what is written is read as the same");
    }
}

void check(const std::uint8_t* data, std::size_t size)
{
    const MemoryFile text(data, size);
    StepReader reader(text.path, *model().model, model().bindings, settings);
    // A few packed bytes may be many lines.
    const bool packed = size > 0 && (data[0] == 0x1f || data[0] == 0x28);
    const Taken taken = readAll(reader, packed ? std::size_t{1} << 30U : size);
    if (taken.steps.empty()) return;
    const std::size_t middle = taken.steps.size() / 2;
    StepReader second(text.path, *model().model, model().bindings, settings);
    second.restore(taken.states[middle]);
    for (std::size_t i = middle + 1; i < taken.steps.size();) {
        const auto next = second.next();
        require(!std::holds_alternative<telemetry::End>(next), "the rest has as many steps");
        const Step* step = std::get_if<Step>(&next);
        if (step) require(same(*step, taken.steps[i++]), "the rest is the same");
    }
    checkWritten(taken.steps);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        check(data, size);
    } catch (const telemetry::ReadFailure& failure) { // packed, and damaged
        require(failure.what()[0] != '\0', "what cannot be read has a reason");
    }
    return 0;
}
