// The one place where a format becomes a writer.
#pragma once

#include "report/Advice.h"
#include "report/Calibration.h"
#include "report/Diagnosis.h"
#include "report/Evaluation.h"
#include "report/Events.h"
#include "report/Query.h"
#include "report/StepExplanation.h"
#include "report/StepWriter.h"
#include "report/Text.h"
#include "report/Tracking.h"

#include <memory>

namespace report {

enum class Format {
    people, ///< a table, or sentences
    lines,  ///< JSON Lines: a record a step
    array,  ///< one JSON array of the same records; of an answer about one step, its record alone
};

/// Makes the writers of a format. The colours are those of what is for people, in which control characters of names are shown and
/// not obeyed.
/// Ensures: a writer has a copy of the sink, and may outlive this.
class Writers {
public:
    Writers(Format format, Colours colours, Sink sink);

    Format format() const { return format_; }

    /// A plant followed along time. With `everyStep`, a table has a line for steps without a change, too.
    std::unique_ptr<StepWriter<StepReport>> tracking(Shown shown, bool everyStep) const;
    /// The same told by what begins and ends; `threshold` is that of EventDetector, and `clock` is asked for each event.
    std::unique_ptr<StepWriter<StepReport>> events(double threshold,
                                                   EventWriter::ClockOf clock) const;
    /// A formula asked at every step.
    std::unique_ptr<StepWriter<QueryReport>> query(bool everyStep) const;
    /// One advice, with up to `shown` measurements; 0: all.
    std::unique_ptr<StepWriter<AdviceReport>> advice(std::size_t shown) const;
    /// One evaluation.
    std::unique_ptr<StepWriter<EvaluationReport>> evaluation() const;
    /// One calibration.
    std::unique_ptr<StepWriter<CalibrationReport>> calibration() const;
    /// One explained step.
    std::unique_ptr<StepWriter<StepExplanation>> explanation() const;
    /// Problems of a circuit, each with up to `shown` explanations; 0: all. The circuit outlives the writer.
    std::unique_ptr<StepWriter<Diagnosis>> diagnoses(const netlist::Circuit& circuit, Layout layout,
                                                     std::size_t shown) const;

private:
    Format format_;
    Colours colours_;
    Sink sink_;
};

} // namespace report
