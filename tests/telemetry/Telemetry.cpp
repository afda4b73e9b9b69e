#include "tests/telemetry/Telemetry.h"

#include <atomic>
#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

const std::string plantText = R"(
component Valve {
    command request: none, open, close
    cond    flow: zero, low, high
    cond    heat: cold, warm
    mode    position { closed initial open stuck fault }
    law position = closed -> flow = zero
    nominal closed -> open   when request = open
    nominal open   -> closed when request = close
    fault   any    -> stuck : 0.01
    idle    any
}
component Branch {
    valve: Valve
    cond level: empty, full
    law level = empty -> valve.flow = zero
}
system Plant {
    main:   Valve
    branch: Branch
    law main.flow = zero -> branch.level = empty

    observe main.flow from "FT-1" : zero < 1 <= low < 5 <= high within 0.2
    observe branch.valve.flow from "FT-2" : zero < 1 <= low < 5 <= high hold 3 s
    observe main.heat from "TS-1" : cold = "C", warm = 1
    command main.request from "XV-1" : open = 1, close = 0, none otherwise
    command branch.valve.request hold 2 s
    step 1 s
}
)";

language::ReadResult readPlant(const std::string& text)
{
    language::ReadResult result = language::readModelText("plant.itms", text);
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.model) throw std::runtime_error("there is no model");
    return result;
}

TemporaryFile::TemporaryFile(const std::string& text)
{
    static std::atomic<int> count = 0;
    path_ = fmt::format("{}telemetry-{}-{}", testing::TempDir(), getpid(), ++count);
    std::ofstream(path_, std::ios::binary) << text;
}

TemporaryFile::~TemporaryFile()
{
    std::remove(path_.c_str());
}

std::string shown(const telemetry::Step& step)
{
    const auto list = [](const auto& items, auto text) {
        std::string all;
        for (const auto& item : items) {
            all += (all.empty() ? "" : " ") + text(item);
        }
        return "[" + all + "]";
    };
    const auto atom = [](const Atom* value) { return value->id; };
    const auto observation = [](const telemetry::Observation& seen) {
        return seen.value->id + (seen.held ? " held" : "");
    };
    return fmt::format("{} t={} {} given {} saw {}{}", step.number, step.t,
                       list(step.commands, atom), list(step.givenCommands, atom),
                       list(step.observations, observation),
                       step.gap ? fmt::format(" gap {}", *step.gap) : "");
}

std::vector<std::string> readAll(telemetry::StepReader& reader)
{
    std::vector<std::string> all;
    while (true) {
        auto next = reader.next();
        if (const auto* step = std::get_if<telemetry::Step>(&next)) {
            all.push_back(shown(*step));
        } else if (auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            EXPECT_EQ(mistake->error.file, reader.name());
            mistake->error.file.clear();
            all.push_back(mistake->error.format());
        } else {
            EXPECT_FALSE(std::get<telemetry::End>(next).interrupted);
            return all;
        }
    }
}

std::vector<std::string> readText(const std::string& text, const telemetry::ReadSettings& settings)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file(text);
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, settings);
    return readAll(reader);
}

std::vector<std::string> observed(const std::string& text)
{
    std::vector<std::string> all;
    for (const std::string& step : readText(text)) {
        const std::size_t begin = step.find("saw [");
        all.push_back(begin == std::string::npos
                          ? step
                          : step.substr(begin + 5, step.find(']', begin) - begin - 5));
    }
    return all;
}
