// Two lamps whose light is read, and a table of what was read.
#pragma once

#include "assess/Labels.h"
#include "language/Reader.h"
#include "session/Session.h"
#include "telemetry/SoundSteps.h"
#include "telemetry/StepReader.h"

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

inline session::Session lamps()
{
    return session::Session::open(language::readModelText("lamps.itms", R"(
component Lamp {
    cond light: dark, bright
    mode state { good initial, burnt fault, dim fault }
    law state = good  -> light = bright
    law state = burnt -> light = dark
    fault good -> burnt : 0.01
    fault good -> dim   : 0.001
    repair any -> good  : 0.01
}
component Room { lamp: Lamp }
system House {
    hall: Room
    yard: Lamp
    observe hall.lamp.light from "L-1" : dark < 10 <= bright
    observe yard.light      from "L-2" : dark < 10 <= bright for 2 s
    step 1 s
}
)"));
}

inline std::unique_ptr<telemetry::LineVector> lines(const std::string& text)
{
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        all.push_back(line);
    }
    return std::make_unique<telemetry::LineVector>(std::move(all), "lines.csv");
}

/// Advances the session through a table.
inline void follow(session::Session& session, const std::string& table,
                   const std::function<void(const telemetry::Step&, const monitor::TrackAnswer&)>& take)
{
    telemetry::StepReader reader(lines(table), session.model(), session.bindings());
    telemetry::SoundSteps steps(reader);
    while (const auto step = steps.next()) {
        take(*step, session.advance(*step));
    }
}
