#include "report/Events.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

namespace {

constexpr const char* ambiguous = "ambiguous";
constexpr const char* inconsistent = "inconsistent";
constexpr double roundingOfP = 1e-9;

EventReport eventOf(const std::string& what)
{
    EventReport event;
    if (what == ambiguous) {
        event.kind = EventReport::Kind::ambiguous;
    } else if (what == inconsistent) {
        event.kind = EventReport::Kind::inconsistent;
    } else {
        event.variable = what.substr(0, what.find('='));
        event.value = what.substr(what.find('=') + 1);
    }
    return event;
}

// Of the most probable explanation that has it.
std::size_t sinceOf(const StepReport& report, const EventReport& event)
{
    for (const TrackedExplanation& explanation : report.explanations) {
        for (const DeviatingMode& mode : explanation.modes) {
            if (mode.variable == event.variable && mode.value == event.value) return mode.since;
        }
    }
    return report.step;
}

std::vector<std::pair<std::string, double>> probableFirst(const Marginals& marginals)
{
    std::vector<std::pair<std::string, double>> all;
    for (const auto& [variable, values] : marginals) {
        for (const auto& [value, p] : values) {
            all.emplace_back(fmt::format("{}={}", variable, value), p);
        }
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second + roundingOfP; });
    return all;
}

} // namespace

bool EventDetector::isOpen(const std::string& what) const
{
    return std::any_of(memory_.open.begin(), memory_.open.end(),
                       [&](const WriterMemory::Events::Open& one) { return one.what == what; });
}

void EventDetector::end(const StepReport& report, const Found& found,
                        std::vector<EventReport>& reports)
{
    const double least = memory_.threshold / 2;
    std::vector<WriterMemory::Events::Open> still;
    for (WriterMemory::Events::Open& open : memory_.open) {
        const auto known = std::find_if(found.begin(), found.end(),
                                        [&](const auto& entry) { return entry.first == open.what; });
        const double p = known == found.end() ? 0.0 : known->second;
        open.most = std::max(open.most, p);
        if (p >= least - roundingOfP) {
            still.push_back(std::move(open));
            continue;
        }
        EventReport event = eventOf(open.what);
        event.phase = EventReport::Phase::ends;
        event.number = open.number;
        event.p = open.most;
        event.since = open.since;
        event.step = report.step;
        event.t = report.t;
        event.start = open.t;
        reports.push_back(std::move(event));
    }
    memory_.open = std::move(still);
}

void EventDetector::begin(const StepReport& report, const Found& found,
                          std::vector<EventReport>& reports)
{
    for (const auto& [what, p] : found) {
        if (p < memory_.threshold - roundingOfP || isOpen(what)) continue;
        EventReport event = eventOf(what);
        event.number = ++memory_.events;
        event.p = p;
        event.since = event.kind == EventReport::Kind::fault ? sinceOf(report, event) : report.step;
        event.step = report.step;
        event.t = report.t;
        event.start = report.t;
        if (event.kind == EventReport::Kind::ambiguous) {
            constexpr std::size_t most = 5;
            event.among = probableFirst(report.marginals);
            if (event.among.size() > most) event.among.resize(most);
        }
        memory_.open.push_back({event.number, what, p, event.since, report.t});
        reports.push_back(std::move(event));
    }
}

std::vector<EventReport> EventDetector::take(const StepReport& report)
{
    if (!memory_.open.empty()) memory_.seconds += report.t - memory_.t;
    ++memory_.steps;
    memory_.t = report.t;
    Found found = probableFirst(report.marginals);
    const bool isFound = std::any_of(found.begin(), found.end(), [&](const auto& entry) {
        const double least = isOpen(entry.first) ? memory_.threshold / 2 : memory_.threshold;
        return entry.second >= least - roundingOfP;
    });
    if (!isFound) found.emplace_back(ambiguous, report.fault);
    if (report.status == monitor::TrackStatus::inconsistent) found.emplace_back(inconsistent, 1.0);
    std::vector<EventReport> reports;
    end(report, found, reports);
    begin(report, found, reports);
    return reports;
}

EventReport EventDetector::summary() const
{
    EventReport report;
    report.phase = EventReport::Phase::summary;
    report.t = memory_.t;
    report.all = EventReport::All();
    EventReport::All& all = *report.all;
    all.steps = memory_.steps;
    all.events = memory_.events;
    all.seconds = memory_.seconds;
    for (const WriterMemory::Events::Open& open : memory_.open) {
        all.open.emplace_back(open.number, nameOf(eventOf(open.what)));
    }
    return report;
}

std::string nameOf(const EventReport& event)
{
    switch (event.kind) {
    case EventReport::Kind::fault: break;
    case EventReport::Kind::inconsistent: return "nothing explains what is observed";
    case EventReport::Kind::ambiguous: {
        std::string text = "something is wrong";
        const char* before = ": one of ";
        for (const auto& [what, p] : event.among) {
            const EventReport one = eventOf(what);
            text += fmt::format("{}{} = {} ({})", before, one.variable, one.value, percent(p));
            before = ", ";
        }
        return text;
    }
    }
    return event.variable + " = " + event.value;
}

void EventWriter::step(const StepReport& report)
{
    for (EventReport& event : detector_.take(report)) {
        event.clock = clock_();
        writer_->step(event);
        detector_.countRecord();
    }
}

void EventWriter::end(std::size_t linesLeftOut)
{
    EventReport summary = detector_.summary();
    summary.clock = clock_();
    summary.all->linesLeftOut = linesLeftOut;
    writer_->step(summary);
    writer_->end(linesLeftOut);
}

WriterMemory EventWriter::memory() const
{
    WriterMemory memory;
    memory.events = detector_.memory();
    return memory;
}

void EventWriter::resume(const WriterMemory& memory)
{
    detector_.restore(memory.events.value());
    WriterMemory written;
    written.steps = memory.events->records;
    writer_->resume(written);
}

} // namespace report
