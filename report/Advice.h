// What to measure next, ready to be rendered.
#pragma once

#include "monitor/why/Measurement.h"
#include "plant/Bindings.h"
#include "report/Text.h"
#include "report/Tracking.h"

namespace report {

/// What is left of an explanation after an outcome.
struct RemainingExplanation {
    std::size_t number = 0;   ///< among the report's explanations, from 1
    double probability = 0.0; ///< after the outcome, above 0
};

struct OutcomeReport {
    std::string value;
    double probability = 0.0;
    double bits = 0.0;                           ///< the entropy of the explanations after it
    std::vector<RemainingExplanation> remaining; ///< most probable first
};

struct MeasurementReport {
    std::string variable;
    std::optional<std::string> channel;  ///< from which the model observes it
    double bits = 0.0;                   ///< the expected entropy of the explanations after it
    std::vector<OutcomeReport> outcomes; ///< most probable first
};

struct AdviceReport {
    StepReport step;                             ///< with all explanations
    double bits = 0.0;                           ///< the entropy of the explanations now
    std::vector<MeasurementReport> measurements; ///< that tell the explanations apart, best first
    std::size_t useless = 0;                     ///< variables whose measurement would not
    std::size_t unmeasurable = 0;                ///< conditions that cannot be measured
};

/// The report of an advice about an answer. Entropies become bits.
/// Requires: the advice was given about this answer. Linear in both.
AdviceReport adviceReport(const plant::Plant& plant, const plant::Bindings& bindings,
                          const monitor::TrackAnswer& answer, const monitor::Advice& advice);

/// One line of JSON with up to `shown` measurements, 0 for all; docs/output.md describes the fields.
std::string adviceJson(const AdviceReport& report, std::size_t shown);

/// The same for people, in lines ended by newlines. Measurements with the same outcomes are listed as one.
std::string adviceText(const AdviceReport& report, std::size_t shown, Colours colours);

} // namespace report
