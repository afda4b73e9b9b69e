#include "report/ConflictJson.h"

#include "report/CandidateJson.h"

#include <nlohmann/json.hpp>

namespace report {

using Json = nlohmann::ordered_json;

namespace {

Json textOrNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

Json givenJson(const GivenValue& value)
{
    return {{"variable", value.variable},
            {"value", value.value},
            {"channel", textOrNull(value.channel)}};
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
    return {{"file", textOrNull(law.file)},
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

} // namespace

Json conflictJson(const ExplainedConflict& conflict)
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
        {"expected", textOrNull(conflict.expected)},
        {"modes", std::move(modes)},
        {"commands", givens(conflict.commands)},
        {"readings", givens(conflict.readings)},
        {"laws", std::move(laws)},
        {"cases", conflict.byCases},
        {"verified", verified(conflict.check)},
        {"minimal", conflict.everyValueCounts ? Json(*conflict.everyValueCounts) : Json(nullptr)}};
}

} // namespace report
