// Steps of telemetry as the verbs take them: until the end, a signal, or a line that is in error.
#pragma once

#include "telemetry/SoundSteps.h"
#include "telemetry/StepFiles.h"

#include <optional>
#include <string>
#include <vector>

namespace app {

class StepFeed {
public:
    /// What the reader finds out of the input, or passes over, is told on standard error where `tells`.
    /// Requires: model and bindings outlive this.
    /// Throws telemetry::ReadFailure when a file cannot be opened.
    StepFeed(const std::vector<std::string>& paths, const plant::Model& model,
             const plant::Bindings& bindings, const telemetry::ReadSettings& settings, bool tells);

    /// The next step; none at the end, and when a signal has come.
    /// Throws telemetry::BadInput for a line in error; with `settings.skipBad`, the line is reported on standard error, counted
    /// and left out, if reading can go on.
    std::optional<telemetry::Step> next();

    telemetry::StepFiles& reader() { return reader_; }
    const telemetry::StepFiles& reader() const { return reader_; }
    std::size_t linesLeftOut() const { return steps_.leftOut(); }
    /// For a run that goes on: those of the run before count, too.
    void setLinesLeftOut(std::size_t count) { steps_.setLeftOut(count); }
    /// Reports on standard error how many lines were left out, if any, with `verb` before the words, and what was passed over.
    void reportPassedOver(const std::string& verb) const;

private:
    telemetry::StepFiles reader_;
    telemetry::SoundSteps steps_;
    bool tells_;
};

} // namespace app
