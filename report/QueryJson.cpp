// What a step says of a formula, for programs: one line of JSON.
#include "report/Numbers.h"
#include "report/Query.h"

#include <nlohmann/json.hpp>

namespace report {

std::string queryJson(const QueryReport& report)
{
    nlohmann::ordered_json record;
    record["v"] = 1;
    record["step"] = report.step;
    record["t"] = report.t;
    if (report.time) record["time"] = *report.time;
    record["best"] = monitor::name(report.answer.best);
    record["p"] = sixDigits(report.answer.probability);
    record["unknown"] = sixDigits(report.answer.openProbability);
    record["status"] = monitor::name(report.status);
    record["complete"] = report.complete;
    const std::string limit = monitor::name(report.limit);
    record["limit"] =
        limit.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(limit);
    return record.dump() + "\n";
}

} // namespace report
