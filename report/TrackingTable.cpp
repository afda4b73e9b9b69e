// The steps of a tracked plant as a person reads them, with what did not change left out.
#include "report/Alike.h"
#include "report/WallClock.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t statusColumns = 12;
constexpr std::size_t shareColumns = 8;

std::string time(double t)
{
    return fmt::format("{:.10g}", t);
}

// What must differ for a step to be worth its lines: of the explanations, the first ones, and which others there are.
std::string essence(const StepReport& report, const std::vector<ExplanationGroup>& groups)
{
    std::string text = monitor::name(report.status);
    text += report.complete ? "" : " incomplete";
    std::vector<std::string> explanations;
    for (const ExplanationGroup& group : groups) {
        explanations.push_back(inWords(group, report.explanations, false));
    }
    if (!explanations.empty()) {
        std::sort(explanations.begin() + 1, explanations.end());
    }
    return fmt::format("{}\n{}", text, fmt::join(explanations, "\n"));
}

} // namespace

std::string TrackingTable::heading() const
{
    return colours_.faint(right("step", stepColumns) + right("t", timeColumns) + "  " +
                          left("status", statusColumns) + right("p", shareColumns) +
                          "  explanation") +
           "\n";
}

std::string TrackingTable::rows(const StepReport& report)
{
    ++memory_.total;
    ++memory_.counts[monitor::name(report.status)];
    memory_.incomplete += report.complete ? 0 : 1;
    memory_.dropped += report.dropped > 0 ? 1 : 0;
    const std::vector<ExplanationGroup> groups = shownGroups(report, shown_);
    std::string now = essence(report, groups);
    const bool changed = now != memory_.last || report.gap;
    memory_.last = std::move(now);
    if (!changed && !everyStep_) {
        return "";
    }
    const std::string indent(stepColumns + timeColumns + 2, ' ');
    std::string text;
    if (report.time && dateOf(*report.time) != memory_.date) {
        memory_.date = dateOf(*report.time);
        text += right("", stepColumns) + right(memory_.date, timeColumns) + "\n";
    }
    if (report.gap) {
        text +=
            indent + colours_.faint(fmt::format("{} s without a step", time(*report.gap))) + "\n";
    }
    std::string head = right(std::to_string(report.step), stepColumns) +
                       right(report.time ? timeOfDay(*report.time) : time(report.t), timeColumns) +
                       "  " + status(report.status);
    std::size_t shown = 0;
    for (const ExplanationGroup& group : groups) {
        text += row(head, group.probability, inWords(group, report.explanations));
        head = indent + std::string(statusColumns, ' ');
        shown += group.members.size();
    }
    const std::string under = indent + std::string(statusColumns + shareColumns + 2, ' ');
    if (shown < report.explanations.size()) {
        text += under +
                colours_.faint(fmt::format("and {} more", report.explanations.size() - shown)) +
                "\n";
    }
    if (!report.complete) {
        const std::string limit = monitor::name(report.limit);
        text += under + colours_.yellow("not complete") +
                (limit.empty() ? "" : fmt::format(" (limit: {})", limit)) + "\n";
    }
    if (report.approximate) {
        text += under + colours_.yellow("approximate") + "\n";
    }
    return text;
}

std::string TrackingTable::status(monitor::TrackStatus status) const
{
    const std::string text = left(monitor::name(status), statusColumns);
    switch (status) {
    case monitor::TrackStatus::nominal: return colours_.green(text);
    case monitor::TrackStatus::stale: return colours_.faint(text);
    case monitor::TrackStatus::ambiguous: return colours_.yellow(text);
    case monitor::TrackStatus::faulty:
    case monitor::TrackStatus::inconsistent: break;
    }
    return colours_.red(text);
}

// The text goes on below itself where it is too long for the line; colours would count in its width, so the head is put in
// front afterwards.
std::string TrackingTable::row(const std::string& head, double probability,
                               const std::string& words) const
{
    constexpr std::size_t columns = stepColumns + timeColumns + 2 + statusColumns + shareColumns + 2;
    const std::string text = wrapped(std::string(columns, ' '), words);
    return head + right(percent(probability), shareColumns) + "  " + text.substr(columns);
}

std::string TrackingTable::summary(std::size_t linesLeftOut) const
{
    std::string text = text::counted(memory_.total, "step");
    std::string separator = ": ";
    for (const auto& [status, count] : memory_.counts) {
        text += fmt::format("{}{} {}", separator, text::grouped(count), status);
        separator = ", ";
    }
    text += ".";
    if (memory_.incomplete > 0) {
        text += fmt::format(" At {} the search was not complete.",
                            text::counted(memory_.incomplete, "step"));
    }
    if (memory_.dropped > 0) {
        text += fmt::format(" At {} there were more explanations than are kept.",
                            text::counted(memory_.dropped, "step"));
    }
    if (linesLeftOut > 0) {
        text += fmt::format(" {} in error {} left out.", text::counted(linesLeftOut, "line"),
                            linesLeftOut == 1 ? "was" : "were");
    }
    return "\n" + wrapped("", text);
}

} // namespace report
