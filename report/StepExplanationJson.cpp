// An explained step for programs: one JSON object.
#include "report/CandidateJson.h"
#include "report/ConflictJson.h"
#include "report/StepExplanation.h"

#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json orNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

Json candidate(const CandidateReasons& reasons)
{
    const TrackedExplanation& explanation = reasons.explanation;
    Json modes = Json::object();
    for (std::size_t i = 0; i < explanation.modes.size(); ++i) {
        Json resolved = Json::array();
        for (const Resolution& one : reasons.ofModes[i]) {
            resolved.push_back({{"conflict", one.conflict}, {"instead", one.instead}});
        }
        modes[explanation.modes[i].variable] = std::move(resolved);
    }
    Json lost = Json::object();
    for (std::size_t i = 0; i < explanation.lost.size(); ++i) {
        lost[explanation.lost[i]] = reasons.ofLost[i];
    }
    Json misread = Json::object();
    for (std::size_t i = 0; i < explanation.misread.size(); ++i) {
        misread[explanation.misread[i]] = reasons.ofMisread[i];
    }
    Json unexplained = Json::object();
    for (std::size_t i = 0; i < explanation.unexplained.size(); ++i) {
        unexplained[explanation.unexplained[i]] = reasons.ofUnexplained[i];
    }
    Json avoided = Json::array();
    for (const Avoided& one : reasons.avoided) {
        avoided.push_back(
            {{"conflict", one.conflict}, {"variable", one.variable}, {"value", one.value}});
    }
    Json result = candidateJson(explanation);
    result["over"] = reasons.over;
    result["because"] = {{"modes", std::move(modes)},
                         {"lost", std::move(lost)},
                         {"without", std::move(avoided)},
                         {"unexplained", std::move(unexplained)}};
    if (!misread.empty()) result["because"]["misread"] = std::move(misread);
    return result;
}

} // namespace

std::string explanationJson(const StepExplanation& explanation)
{
    const StepReport& report = explanation.report;
    Json candidates = Json::array();
    for (const CandidateReasons& one : explanation.candidates) {
        candidates.push_back(candidate(one));
    }
    Json conflicts = Json::array();
    for (const ExplainedConflict& one : explanation.conflicts) {
        conflicts.push_back(conflictJson(one));
    }
    Json record = {{"v", 1}, {"step", report.step}, {"t", report.t}};
    if (report.time) record["time"] = *report.time;
    record.update(Json{{"status", monitor::name(report.status)},
                       {"complete", report.complete},
                       {"limit", orNull(monitor::name(report.limit))},
                       {"kept", report.explanations.size()},
                       {"dropped", report.dropped},
                       {"candidates", std::move(candidates)},
                       {"conflicts", std::move(conflicts)},
                       {"open", explanation.stepsOpen},
                       {"earlier", explanation.stepsLeftOut}});
    return record.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
