// An explained step for programs: one JSON object.
#include "report/CandidateJson.h"
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
    return result;
}

Json givenJson(const GivenValue& value)
{
    return {{"variable", value.variable}, {"value", value.value}, {"channel", orNull(value.channel)}};
}

Json givens(const std::vector<GivenValue>& values)
{
    Json list = Json::array();
    for (const GivenValue& value : values) {
        list.push_back(givenJson(value));
    }
    return list;
}

Json modeJson(const ExplainedMode& mode)
{
    return {{"variable", mode.variable},
            {"value", mode.value},
            {"before", mode.before},
            {"commands", mode.commands},
            {"since", mode.since ? Json(*mode.since) : Json(nullptr)}};
}

Json law(const AppliedLaw& law)
{
    const bool placed = !law.file.empty();
    Json gives = nullptr;
    if (!law.variable.empty()) {
        gives = {{"variable", law.variable}, {"value", law.value}, {"holds", !law.excluded}};
    }
    return {{"file", orNull(law.file)},
            {"line", placed ? Json(law.line) : Json(nullptr)},
            {"column", placed ? Json(law.column) : Json(nullptr)},
            {"text", law.text != law.clause ? Json(law.text) : Json(nullptr)},
            {"clause", law.clause},
            {"gives", std::move(gives)}};
}

Json verified(monitor::ConflictCheck check)
{
    if (check == monitor::ConflictCheck::unsettled) return nullptr;
    return check == monitor::ConflictCheck::confirmed;
}

Json conflict(const ExplainedConflict& conflict)
{
    Json modes = Json::array();
    for (const ExplainedMode& one : conflict.modes) {
        modes.push_back(modeJson(one));
    }
    Json laws = Json::array();
    for (const AppliedLaw& one : conflict.laws) {
        laws.push_back(law(one));
    }
    Json believed = {{"rank", conflict.rank}};
    believed.update(deviatingJson(conflict.believed));
    return {
        {"conflict", conflict.number},
        {"step", conflict.step},
        {"t", conflict.t},
        {"believed", std::move(believed)},
        {"observed", conflict.observed ? givenJson(*conflict.observed) : Json(nullptr)},
        {"expected", orNull(conflict.expected)},
        {"modes", std::move(modes)},
        {"commands", givens(conflict.commands)},
        {"readings", givens(conflict.readings)},
        {"laws", std::move(laws)},
        {"cases", conflict.byCases},
        {"verified", verified(conflict.check)},
        {"minimal", conflict.everyValueCounts ? Json(*conflict.everyValueCounts) : Json(nullptr)}};
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
        conflicts.push_back(conflict(one));
    }
    const Json record = {{"v", 1},
                         {"step", report.step},
                         {"t", report.t},
                         {"status", monitor::name(report.status)},
                         {"complete", report.complete},
                         {"limit", orNull(monitor::name(report.limit))},
                         {"kept", report.explanations.size()},
                         {"dropped", report.dropped},
                         {"candidates", std::move(candidates)},
                         {"conflicts", std::move(conflicts)},
                         {"open", explanation.stepsOpen},
                         {"earlier", explanation.stepsLeftOut}};
    return record.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
