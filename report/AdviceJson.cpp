// Advice for programs: one line of JSON.
#include "report/Advice.h"
#include "report/CandidateJson.h"
#include "report/Numbers.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json measurementJson(const MeasurementReport& measurement, double bitsNow)
{
    Json outcomes = Json::array();
    for (const OutcomeReport& outcome : measurement.outcomes) {
        Json remaining = Json::array();
        for (const RemainingExplanation& one : outcome.remaining) {
            remaining.push_back({{"id", one.number}, {"p", sixDigits(one.probability)}});
        }
        outcomes.push_back({{"value", outcome.value},
                            {"p", sixDigits(outcome.probability)},
                            {"entropy", sixDigits(outcome.bits)},
                            {"candidates", std::move(remaining)}});
    }
    return {{"variable", measurement.variable},
            {"channel", measurement.channel ? Json(*measurement.channel) : Json(nullptr)},
            {"entropy", sixDigits(measurement.bits)},
            {"gain", sixDigits(std::max(0.0, bitsNow - measurement.bits))},
            {"outcomes", std::move(outcomes)}};
}

} // namespace

std::string adviceJson(const AdviceReport& report, std::size_t shown)
{
    Json candidates = Json::array();
    for (const TrackedExplanation& explanation : report.step.explanations) {
        Json candidate{{"id", candidates.size() + 1}};
        candidate.update(candidateJson(explanation));
        candidates.push_back(std::move(candidate));
    }
    const std::size_t all = report.measurements.size();
    Json measurements = Json::array();
    for (std::size_t i = 0; i < (shown == 0 ? all : std::min(shown, all)); ++i) {
        measurements.push_back(measurementJson(report.measurements[i], report.bits));
    }
    Json record;
    record["v"] = 1;
    record["step"] = report.step.step;
    record["t"] = report.step.t;
    if (report.step.time) record["time"] = *report.step.time;
    record["status"] = monitor::name(report.step.status);
    record["complete"] = report.step.complete;
    const std::string limit = monitor::name(report.step.limit);
    record["limit"] = limit.empty() ? Json(nullptr) : Json(limit);
    record["kept"] = report.step.explanations.size();
    record["dropped"] = report.step.dropped;
    record["entropy"] = sixDigits(report.bits);
    record["candidates"] = std::move(candidates);
    record["measurements"] = std::move(measurements);
    record["telling"] = all;
    record["useless"] = report.useless;
    record["unmeasurable"] = report.unmeasurable;
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
