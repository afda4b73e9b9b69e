// The steps at which a formula's truth changed, as a person reads them.
#include "report/Query.h"
#include "report/WallClock.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t truthColumns = 8;

} // namespace

std::string QueryTable::heading() const
{
    return colours_.faint(right("step", stepColumns) + right("t", timeColumns) + "  " +
                          left("best", truthColumns) + right("true", probabilityColumns) +
                          right("unknown", probabilityColumns) + "  status") +
           "\n";
}

std::string QueryTable::rows(const QueryReport& report)
{
    ++total_;
    ++counts_[report.answer.best];
    incomplete_ += report.complete ? 0 : 1;
    const std::string probabilities =
        right(percent(report.answer.probability), probabilityColumns) +
        right(percent(report.answer.openProbability), probabilityColumns);
    const std::string status = monitor::name(report.status);
    const std::string now = fmt::format("{} {} {} {}", monitor::name(report.answer.best),
                                        probabilities, status, report.complete);
    const bool changed = now != last_;
    last_ = now;
    if (!changed && !everyStep_) {
        return "";
    }
    std::string text;
    if (report.time && dateOf(*report.time) != date_) {
        date_ = dateOf(*report.time);
        text = right("", stepColumns) + right(date_, timeColumns) + "\n";
    }
    return text + right(std::to_string(report.step), stepColumns) +
           right(report.time ? timeOfDay(*report.time) : fmt::format("{:.10g}", report.t),
                 timeColumns) +
           "  " + truth(report.answer.best) + probabilities + "  " + status +
           (report.complete ? "" : colours_.yellow(", not complete")) + "\n";
}

std::string QueryTable::truth(monitor::Truth truth) const
{
    const std::string text = left(monitor::name(truth), truthColumns);
    switch (truth) {
    case monitor::Truth::isTrue: return colours_.bold(text);
    case monitor::Truth::isFalse: return text;
    case monitor::Truth::open: break;
    }
    return colours_.faint(text);
}

std::string QueryTable::summary(std::size_t linesLeftOut) const
{
    std::string text = text::counted(total_, "step");
    if (total_ > 0) {
        text += ": in the best explanation ";
    }
    const char* between = "";
    for (const auto& [truth, count] : counts_) {
        text += fmt::format("{}{} at {}", between, monitor::name(truth), text::grouped(count));
        between = ", ";
    }
    text += ".";
    if (incomplete_ > 0) {
        text +=
            fmt::format(" At {} the search was not complete.", text::counted(incomplete_, "step"));
    }
    if (linesLeftOut > 0) {
        text += fmt::format(" {} in error {} left out.", text::counted(linesLeftOut, "line"),
                            linesLeftOut == 1 ? "was" : "were");
    }
    return "\n" + wrapped("", text);
}

} // namespace report
