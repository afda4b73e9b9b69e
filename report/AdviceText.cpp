// Advice as a person reads it: the explanations with their numbers, then what to measure and what each outcome would leave.
#include "report/Advice.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t numberColumns = 4;
constexpr std::size_t probabilityColumns = 9;
constexpr std::size_t nameColumns = 40;
constexpr std::size_t bitsColumns = 10;
constexpr std::size_t mostRemaining = 3; ///< explanations shown of an outcome

std::string bitsText(double bits)
{
    return fmt::format("{:.3f}", bits);
}

std::string explanations(const AdviceReport& report, Colours colours)
{
    std::string text =
        colours.faint(right("#", numberColumns) + right("p", probabilityColumns) + "  explanation") +
        "\n";
    for (std::size_t i = 0; i < report.step.explanations.size(); ++i) {
        const TrackedExplanation& explanation = report.step.explanations[i];
        text += wrapped(right(std::to_string(i + 1), numberColumns) +
                            right(percent(explanation.probability), probabilityColumns) + "  ",
                        inWords(explanation));
    }
    return text;
}

std::string remaining(const OutcomeReport& outcome)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(mostRemaining, outcome.remaining.size()); ++i) {
        text += fmt::format("{}#{} {}", i == 0 ? "" : ", ", outcome.remaining[i].number,
                            percent(outcome.remaining[i].probability));
    }
    if (outcome.remaining.size() > mostRemaining) {
        text += fmt::format(", {} more", outcome.remaining.size() - mostRemaining);
    }
    return text;
}

std::string measurement(const MeasurementReport& report, double bitsNow, Colours colours)
{
    const std::string name =
        report.channel ? fmt::format("{} ({})", report.variable, *report.channel) : report.variable;
    std::string text = "  " + colours.bold(left(name, nameColumns)) +
                       right(bitsText(report.bits), bitsColumns) +
                       right(bitsText(std::max(0.0, bitsNow - report.bits)), bitsColumns) + "\n";
    for (const OutcomeReport& outcome : report.outcomes) {
        const std::string probability = percent(outcome.probability);
        const std::size_t columns = nameColumns - 4 - probabilityColumns;
        text += "      " + left(outcome.value, columns) + right(probability, probabilityColumns) +
                right(bitsText(outcome.bits), bitsColumns) + "    " + remaining(outcome) + "\n";
    }
    return text;
}

std::string heading(const AdviceReport& report)
{
    std::string text = fmt::format("Step {}, t = {:.10g}: {}.", report.step.step, report.step.t,
                                   monitor::name(report.step.status));
    if (!report.step.complete) {
        text += " The search was not complete: there may be other explanations.";
    }
    if (report.step.dropped > 0) {
        text += fmt::format(" {} {} kept; --keep N keeps more.",
                            counted(report.step.dropped, "explanation"),
                            report.step.dropped == 1 ? "was not" : "were not");
    }
    return wrapped("", text);
}

} // namespace

std::string adviceText(const AdviceReport& report, std::size_t shown, Colours colours)
{
    std::string text = heading(report) + "\n" + explanations(report, colours) + "\n";
    if (report.step.explanations.size() == 1) {
        return text + "There is one explanation: no measurement can tell it from others.\n";
    }
    if (report.measurements.empty()) {
        return text + wrapped("", fmt::format("Nothing that is not observed would tell the "
                                              "explanations apart; {} bits of doubt stay.",
                                              bitsText(report.bits)));
    }
    const std::size_t all = report.measurements.size();
    const std::size_t count = shown == 0 ? all : std::min(shown, all);
    text +=
        wrapped("", fmt::format("The explanations leave {} bits of doubt. Best to measure next:",
                                bitsText(report.bits))) +
        "\n" +
        colours.faint("  " + left("measure", nameColumns) + right("bits left", bitsColumns) +
                      right("gained", bitsColumns)) +
        "\n";
    for (std::size_t i = 0; i < count; ++i) {
        text += measurement(report.measurements[i], report.bits, colours);
    }
    if (count < all) {
        text += colours.faint(fmt::format("  and {} more", all - count)) + "\n";
    }
    if (report.useless > 0) {
        text += "\n" + wrapped("", fmt::format("{} would tell nothing.",
                                               counted(report.useless, "other variable")));
    }
    return text;
}

} // namespace report
