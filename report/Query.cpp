#include "report/Query.h"

#include "report/Numbers.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace report {

namespace {

constexpr std::size_t stepColumns = 8;
constexpr std::size_t timeColumns = 12;
constexpr std::size_t truthColumns = 8;
constexpr std::size_t probabilityColumns = 9;

} // namespace

QueryReport queryReport(const monitor::TrackAnswer& step, const monitor::QueryAnswer& answer)
{
    return {step.step, step.t, answer, step.status, step.complete, step.limit};
}

std::string queryJson(const QueryReport& report)
{
    nlohmann::ordered_json record;
    record["v"] = 1;
    record["step"] = report.step;
    record["t"] = report.t;
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

std::string QueryTable::heading() const
{
    return colours_.faint(right("step", stepColumns) + right("t", timeColumns) + "  " +
                          left("best", truthColumns) + right("true", probabilityColumns) +
                          right("unknown", probabilityColumns) + "  status") +
           "\n";
}

std::string QueryTable::row(const QueryReport& report)
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
    return right(std::to_string(report.step), stepColumns) +
           right(fmt::format("{:.10g}", report.t), timeColumns) + "  " + truth(report.answer.best) +
           probabilities + "  " + status +
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
    std::string text = counted(total_, "step");
    if (total_ > 0) {
        text += ": in the best explanation ";
    }
    const char* between = "";
    for (const auto& [truth, count] : counts_) {
        text += fmt::format("{}{} at {}", between, monitor::name(truth), grouped(count));
        between = ", ";
    }
    text += ".";
    if (incomplete_ > 0) {
        text += fmt::format(" At {} the search was not complete.", counted(incomplete_, "step"));
    }
    if (linesLeftOut > 0) {
        text += fmt::format(" {} in error {} left out.", counted(linesLeftOut, "line"),
                            linesLeftOut == 1 ? "was" : "were");
    }
    return "\n" + wrapped("", text);
}

} // namespace report
