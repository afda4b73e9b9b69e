// An evaluation as a person reads it.
#include "report/Evaluation.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t startColumns = 20;
constexpr std::size_t delayColumns = 11;
constexpr double secondsPerDay = 86400;

double ratio(std::size_t part, std::size_t all)
{
    return all == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(all);
}

std::string afterWords(const std::optional<double>& delay)
{
    return delay ? duration(*delay) : "no";
}

std::string eventLines(const assess::EventScore& event, Clock clock, const Colours& colours)
{
    const std::string start = left(moment(event.label.start, clock), startColumns);
    std::string detected =
        right(event.steps == 0 ? "no step" : afterWords(event.detectedAfter), delayColumns);
    std::string isolated =
        right(event.label.isFaultOnly() || event.steps == 0 ? "-" : afterWords(event.isolatedAfter),
              delayColumns);
    const std::string alarm = right(
        event.steps == 0 ? "-" : percent(ratio(event.alarmSteps, event.steps)), probabilityColumns);
    std::string words = event.label.what;
    if (event.wasOnBefore) words += "; the alarm was on before";
    if (event.detectedAfter && !event.isolatedAfter && !event.label.isFaultOnly())
        words += event.namedAfter ? "; shown beside " + event.mostProbable
                                  : "; taken for " + event.mostProbable;
    const std::size_t columns = startColumns + 2 * delayColumns + probabilityColumns + 2;
    const std::string text = wrapped(std::string(columns, ' '), words);
    if (event.steps > 0 && !event.detectedAfter) detected = colours.red(detected);
    if (event.steps > 0 && !event.isolatedAfter) isolated = colours.yellow(isolated);
    return start + detected + isolated + alarm + "  " + text.substr(columns);
}

std::string delayWords(const assess::Summary& summary)
{
    if (summary.count == 0) return "";
    return fmt::format(", after {} on average (median {}, at most {})", duration(summary.mean),
                       duration(summary.median), duration(summary.most));
}

std::string falseAlarms(const assess::Evaluation& all)
{
    if (all.freeSteps == 0) return "There is no fault-free time.";
    std::string text =
        fmt::format("{} in {} without a fault", text::counted(all.falseAlarms, "alarm"),
                    duration(all.freeSeconds));
    if (all.freeSeconds > 0)
        text += fmt::format(": {:.3g} a day",
                            static_cast<double>(all.falseAlarms) * secondsPerDay / all.freeSeconds);
    text += fmt::format("; at {} of the steps", percent(ratio(all.freeAlarms, all.freeSteps)));
    if (all.lingering > 0)
        text += fmt::format("; {} of them went on from a fault that was over", all.lingering);
    return text;
}

} // namespace

std::string evaluationTable(const EvaluationReport& report, const Colours& colours)
{
    const assess::Evaluation& all = report.evaluation;
    std::string text = colours.faint(left("start", startColumns) + right("detected", delayColumns) +
                                     right("isolated", delayColumns) +
                                     right("alarm", probabilityColumns) + "  fault") +
                       "\n";
    for (const assess::EventScore& event : all.events) {
        text += eventLines(event, report.clock, colours);
    }
    text += "\n" + wrapped("detection     ", fmt::format("{} of {}{}", all.detected,
                                                         text::counted(all.labelled, "fault"),
                                                         delayWords(all.detectionDelay)));
    if (all.isolable > 0) {
        text += wrapped("isolation     ", fmt::format("{} of {}{}; {} shown", all.isolated,
                                                      text::counted(all.isolable, "fault"),
                                                      delayWords(all.isolationDelay), all.named));
    }
    text += wrapped("false alarms  ", falseAlarms(all));
    if (all.inconsistent > 0)
        text += wrapped("inconsistent  ", fmt::format("{}, which nothing explains",
                                                      text::counted(all.inconsistent, "step")));
    if (all.incomplete > 0)
        text += wrapped("incomplete    ", text::counted(all.incomplete, "step"));
    return colours.printable(text);
}

} // namespace report
