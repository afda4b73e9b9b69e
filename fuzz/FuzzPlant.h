// A small plant that is followed, for fuzzers of what is asked of one.
#pragma once

#include "fuzz/Require.h"
#include "language/Reader.h"
#include "session/Session.h"
#include "telemetry/StepReader.h"

/// Two valves in a row, of which one may be stuck. Follows their steps one by one.
class FuzzPlant {
public:
    FuzzPlant() : FuzzPlant(language::readModelText("plant.itms", model)) {}
    /// Of the same model, which may have been read under another name.
    explicit FuzzPlant(language::ReadResult read)
        : session_(session::Session::open(std::move(read)))
    {
    }

    /// The model.
    static std::string text() { return model; }

    session::Session& session() { return session_; }
    /// Takes the next `count` of the plant's steps, from the first on.
    void advance(std::size_t count)
    {
        telemetry::StepReader reader(std::make_unique<telemetry::LineVector>(lines()),
                                     session_.model(), session_.bindings());
        for (std::size_t i = 0; i < taken_ + count; ++i) {
            const auto next = reader.next();
            const auto* step = std::get_if<telemetry::Step>(&next);
            require(step != nullptr, "the plant has as many steps");
            if (i >= taken_) session_.advance(*step);
        }
        taken_ += count;
    }
    /// Goes on behind so many steps, which another plant took.
    void skip(std::size_t count) { taken_ += count; }

private:
    static std::vector<std::string> lines()
    {
        return {R"({"t": 0, "observations": {"F1": 2, "F2": 2}})",
                R"({"t": 1, "commands": {"X": 1}, "observations": {"F1": 2, "F2": 0}})",
                R"({"t": 2, "observations": {"F1": 2}})",
                R"({"t": 3, "commands": {"X": 0}, "observations": {"F1": 0, "F2": 0}})"};
    }

    static constexpr const char* model = R"(
component Valve {
    command request: none, open, close lost 0.01
    cond    inflow:  zero, positive
    cond    outflow: zero, positive
    mode    position {
        open initial
        closed
        stuck fault
    }
    law position = open             -> outflow = inflow
    law position in {closed, stuck} -> outflow = zero
    nominal closed -> open   when request = open  : 0.98
    nominal open   -> closed when request = close : 0.98
    fault   any    -> stuck  : 0.01
    repair  stuck  -> closed : 0.001
    idle    any
}
system Plant {
    a: Valve
    b: Valve
    law a.outflow = b.inflow
    observe a.inflow  from "F1" : zero < 1 <= positive within 0.2
    observe b.outflow from "F2" : zero < 1 <= positive
    command a.request from "X" : open = 1, close = 0, none otherwise
})";

    session::Session session_;
    std::size_t taken_ = 0;
};
