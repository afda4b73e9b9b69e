#include "report/Diagnosis.h"

#include "report/Numbers.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json explanationJson(const Explanation& explanation)
{
    Json modes = Json::object();
    for (const ModeValue& mode : explanation.modes) {
        modes[mode.component + "." + mode.variable] = mode.value;
    }
    return {{"p", sixDigits(explanation.probability)},
            {"rank", explanation.faults},
            {"modes", std::move(modes)}};
}

Json workJson(const SearchWork& work)
{
    return {{"records", work.records},
            {"flips", work.flips},
            {"components", work.components},
            {"candidates", work.candidates}};
}

} // namespace

std::string diagnosisJson(const Diagnosis& diagnosis, std::size_t shown)
{
    const std::size_t found = diagnosis.explanations.size();
    Json candidates = Json::array();
    for (std::size_t i = 0; i < (shown == 0 ? found : std::min(shown, found)); ++i) {
        candidates.push_back(explanationJson(diagnosis.explanations[i]));
    }
    Json record;
    record["v"] = 1;
    record["id"] = diagnosis.id ? Json(*diagnosis.id) : Json(nullptr);
    record["status"] = monitor::name(diagnosis.status);
    record["complete"] = diagnosis.complete;
    const std::string limit = monitor::name(diagnosis.limit);
    record["limit"] = limit.empty() ? Json(nullptr) : Json(limit);
    record["rank"] = diagnosis.faultBound;
    record["found"] = found;
    record["candidates"] = std::move(candidates);
    record["work"] = workJson(diagnosis.work);
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
