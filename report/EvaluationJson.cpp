// An evaluation for programs: one line of JSON.
#include "report/Evaluation.h"
#include "report/Numbers.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json delayOrNull(const std::optional<double>& value)
{
    return value ? Json(*value) : Json(nullptr);
}

Json share(std::size_t part, std::size_t all)
{
    if (all == 0) return nullptr;
    return sixDigits(static_cast<double>(part) / static_cast<double>(all));
}

Json delays(const assess::Summary& summary)
{
    if (summary.count == 0) return nullptr;
    return {{"mean", sixDigits(summary.mean)},
            {"median", sixDigits(summary.median)},
            {"max", sixDigits(summary.most)}};
}

Json scoreJson(const assess::EventScore& event, Clock clock)
{
    const assess::Label& label = event.label;
    const bool lasts = std::isinf(label.end);
    const bool isolable = !label.isFaultOnly() && event.steps > 0;
    Json record;
    record["what"] = label.what;
    record["line"] = label.line;
    record["start"] = label.start;
    record["end"] = lasts ? Json(nullptr) : Json(label.end);
    if (clock == Clock::wall) {
        record["startTime"] = moment(label.start, clock);
        record["endTime"] = lasts ? Json(nullptr) : Json(moment(label.end, clock));
    }
    record["steps"] = event.steps;
    record["alarmSteps"] = event.alarmSteps;
    record["detected"] = event.steps > 0 ? Json(event.detectedAfter.has_value()) : Json(nullptr);
    record["detectionDelay"] = delayOrNull(event.detectedAfter);
    record["before"] = event.wasOnBefore;
    record["isolated"] = isolable ? Json(event.isolatedAfter.has_value()) : Json(nullptr);
    record["isolationDelay"] = delayOrNull(event.isolatedAfter);
    record["isolatedSteps"] = event.isolatedSteps;
    record["named"] = isolable ? Json(event.namedAfter.has_value()) : Json(nullptr);
    record["mostProbable"] = event.mostProbable.empty() ? Json(nullptr) : Json(event.mostProbable);
    return record;
}

} // namespace

std::string evaluationJson(const EvaluationReport& report)
{
    const assess::Evaluation& all = report.evaluation;
    constexpr double secondsOfDay = 86400;
    Json record;
    record["v"] = 1;
    record["alarm"] = all.threshold;
    record["grace"] = all.grace;
    record["steps"] = all.steps;
    record["detection"] = {{"events", all.labelled},
                           {"detected", all.detected},
                           {"rate", share(all.detected, all.labelled)},
                           {"delay", delays(all.detectionDelay)},
                           {"steps", all.faultySteps},
                           {"alarmSteps", all.faultyAlarms}};
    record["isolation"] = {{"events", all.isolable},
                           {"isolated", all.isolated},
                           {"rate", share(all.isolated, all.isolable)},
                           {"named", all.named},
                           {"delay", delays(all.isolationDelay)}};
    record["falseAlarms"] = {{"alarms", all.falseAlarms},
                             {"lingering", all.lingering},
                             {"seconds", all.freeSeconds},
                             {"perDay", all.freeSeconds > 0
                                            ? Json(sixDigits(static_cast<double>(all.falseAlarms) *
                                                             secondsOfDay / all.freeSeconds))
                                            : Json(nullptr)},
                             {"steps", all.freeSteps},
                             {"alarmSteps", all.freeAlarms},
                             {"share", share(all.freeAlarms, all.freeSteps)}};
    record["inconsistent"] = all.inconsistent;
    record["incomplete"] = all.incomplete;
    record["events"] = Json::array();
    for (const assess::EventScore& event : all.events) {
        record["events"].push_back(scoreJson(event, report.clock));
    }
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
