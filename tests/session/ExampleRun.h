// An example and its telemetry, followed by a session.
#pragma once

#include "report/Tracking.h"
#include "session/Session.h"
#include "telemetry/StepReader.h"

#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

inline const std::string waterModel = ITMS_ROOT "/examples/water/station.itms";
inline const std::string waterTelemetry = ITMS_ROOT "/examples/water/stuck-valve.jsonl";
inline const std::string powerModel = ITMS_ROOT "/examples/power/grid.itms";
inline const std::string powerTelemetry = ITMS_ROOT "/examples/power/shorted-motor.jsonl";

class ExampleRun {
public:
    ExampleRun(const std::string& model, const std::string& telemetry,
               const session::Settings& settings = {})
        : session_(session::Session::open(model, {}, settings)),
          reader_(telemetry, session_.model(), session_.bindings())
    {
    }

    /// The record of the next step, empty after the last one.
    std::string next()
    {
        auto next = reader_.next();
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            throw std::runtime_error(mistake->error.format());
        }
        const auto* step = std::get_if<telemetry::Step>(&next);
        if (!step) return "";
        return report::stepJson(report::stepReport(session_.plant(), session_.advance(*step)), {});
    }
    /// The records of all further steps.
    std::vector<std::string> rest()
    {
        std::vector<std::string> records;
        for (std::string record = next(); !record.empty(); record = next()) {
            records.push_back(std::move(record));
        }
        return records;
    }
    /// Takes steps without looking at them.
    void skip(std::size_t steps)
    {
        while (steps-- > 0) next();
    }

    session::Session& session() { return session_; }

private:
    session::Session session_;
    telemetry::StepReader reader_;
};
