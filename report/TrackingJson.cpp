// A step of a tracked plant for programs: one line of JSON.
#include "report/CandidateJson.h"
#include "report/Numbers.h"
#include "report/Tracking.h"

#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json marginalsJson(const Marginals& marginals)
{
    Json variables = Json::object();
    for (const auto& [variable, values] : marginals) {
        for (const auto& [value, probability] : values) {
            variables[variable][value] = sixDigits(probability);
        }
    }
    return variables;
}

} // namespace

std::string stepJson(const StepReport& report, const Shown& shown)
{
    Json candidates = Json::array();
    for (std::size_t i = 0; i < shownCount(report, shown); ++i) {
        candidates.push_back(candidateJson(report.explanations[i]));
    }
    Json record;
    record["v"] = 2;
    record["step"] = report.step;
    record["t"] = report.t;
    if (report.time) record["time"] = *report.time;
    record["status"] = monitor::name(report.status);
    record["fault"] = sixDigits(report.fault);
    record["complete"] = report.complete;
    const std::string limit = monitor::name(report.limit);
    record["approximate"] = report.approximate;
    record["limit"] = limit.empty() ? Json(nullptr) : Json(limit);
    record["gap"] = report.gap ? Json(*report.gap) : Json(nullptr);
    record["held"] = report.held;
    record["kept"] = report.explanations.size();
    record["dropped"] = report.dropped;
    record["missing"] = sixDigits(report.missing);
    record["silent"] = sixDigits(report.silent);
    record["candidates"] = std::move(candidates);
    record["marginals"] = marginalsJson(report.marginals);
    record["components"] = Json::object();
    for (const auto& [component, probability] : report.components) {
        record["components"][component] = sixDigits(probability);
    }
    record["work"] = {{"records", report.work.records},
                      {"flips", report.work.flips},
                      {"components", report.work.components}};
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
