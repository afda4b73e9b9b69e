#include "report/CandidateJson.h"

#include "report/Numbers.h"

#include <nlohmann/json.hpp>

namespace report {

using Json = nlohmann::ordered_json;

Json deviatingJson(const std::vector<DeviatingMode>& modes)
{
    Json values = Json::object();
    Json since = Json::object();
    for (const DeviatingMode& mode : modes) {
        values[mode.variable] = mode.value;
        since[mode.variable] = mode.since;
    }
    return {{"modes", std::move(values)}, {"since", std::move(since)}};
}

Json candidateJson(const TrackedExplanation& explanation)
{
    Json candidate = {{"p", sixDigits(explanation.probability)}, {"rank", explanation.faults}};
    candidate.update(deviatingJson(explanation.modes));
    candidate["lost"] = explanation.lost;
    if (!explanation.misread.empty()) candidate["misread"] = explanation.misread;
    candidate["unexplained"] = explanation.unexplained;
    return candidate;
}

} // namespace report
