// Events for programs: lines of JSON.
#include "report/Events.h"
#include "report/Numbers.h"

#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

const char* phaseName(EventReport::Phase phase)
{
    switch (phase) {
    case EventReport::Phase::begins: return "begins";
    case EventReport::Phase::ends: return "ends";
    case EventReport::Phase::summary: break;
    }
    return "summary";
}

const char* kindName(EventReport::Kind kind)
{
    switch (kind) {
    case EventReport::Kind::fault: return "fault";
    case EventReport::Kind::ambiguous: return "ambiguous";
    case EventReport::Kind::inconsistent: break;
    }
    return "inconsistent";
}

void addSummary(Json& record, const EventReport& event)
{
    const EventReport::All& all = *event.all;
    record["steps"] = all.steps;
    record["t"] = event.t;
    record["events"] = all.events;
    record["seconds"] = all.seconds;
    record["open"] = Json::array();
    for (const auto& [number, what] : all.open) {
        record["open"].push_back({{"number", number}, {"what", what}});
    }
    record["linesLeftOut"] = all.linesLeftOut;
}

} // namespace

std::string eventJson(const EventReport& event)
{
    Json record;
    record["v"] = 1;
    record["event"] = phaseName(event.phase);
    if (event.all) {
        addSummary(record, event);
        return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    }
    const bool isFault = event.kind == EventReport::Kind::fault;
    record["number"] = event.number;
    record["kind"] = kindName(event.kind);
    record["what"] = nameOf(event);
    record["component"] =
        isFault ? Json(event.variable.substr(0, event.variable.rfind('.'))) : Json(nullptr);
    record["variable"] = isFault ? Json(event.variable) : Json(nullptr);
    record["value"] = isFault ? Json(event.value) : Json(nullptr);
    record["among"] = Json::object();
    for (const auto& [what, p] : event.among) {
        record["among"][what] = sixDigits(p);
    }
    record["p"] = sixDigits(event.p);
    record["since"] = event.since;
    record["step"] = event.step;
    record["t"] = event.t;
    record["start"] = event.start;
    const bool ended = event.phase == EventReport::Phase::ends;
    record["end"] = ended ? Json(event.t) : Json(nullptr);
    record["duration"] = ended ? Json(event.t - event.start) : Json(nullptr);
    if (event.clock == Clock::wall) {
        record["startTime"] = moment(event.start, event.clock);
        record["endTime"] = ended ? Json(moment(event.t, event.clock)) : Json(nullptr);
    }
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
