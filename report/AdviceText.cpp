// Advice as a person reads it: the explanations with their numbers, then what to measure and what each outcome would leave.
#include "report/Advice.h"
#include "report/WallClock.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace report {

namespace {

constexpr std::size_t numberColumns = 4;
constexpr std::size_t nameColumns = 34;
constexpr std::size_t bitsColumns = 10;
constexpr std::size_t mostRemaining = 2; ///< explanations shown of an outcome

std::string bitsText(double bits)
{
    constexpr double smallest = 0.0005;
    return bits > 0.0 && bits < smallest ? "<0.001" : fmt::format("{:.3f}", bits);
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

std::string nameOf(const MeasurementReport& report)
{
    return report.channel ? fmt::format("{} ({})", report.variable, *report.channel)
                          : report.variable;
}

// What the outcomes would leave of the explanations, whatever the values are called.
std::vector<std::string> meaning(const MeasurementReport& report)
{
    std::vector<std::string> outcomes;
    for (const OutcomeReport& outcome : report.outcomes) {
        std::string text = fmt::format("{:.9f}", outcome.probability);
        for (const RemainingExplanation& one : outcome.remaining) {
            text += fmt::format(" {}:{:.9f}", one.number, one.probability);
        }
        outcomes.push_back(std::move(text));
    }
    std::sort(outcomes.begin(), outcomes.end());
    return outcomes;
}

// Measurements with the same outcomes, in the order of the first of each.
using Group = std::vector<const MeasurementReport*>;
std::vector<Group> groups(const std::vector<MeasurementReport>& measurements)
{
    std::vector<Group> groups;
    std::map<std::vector<std::string>, std::size_t> known;
    for (const MeasurementReport& measurement : measurements) {
        const auto [entry, isNew] = known.emplace(meaning(measurement), groups.size());
        if (isNew) {
            groups.emplace_back();
        }
        groups[entry->second].push_back(&measurement);
    }
    return groups;
}

std::string measurement(const Group& group, double bitsNow, Colours colours)
{
    const MeasurementReport& report = *group.front();
    const std::string name = nameOf(report);
    std::string text = "  " + colours.bold(left(name, nameColumns)) +
                       right(bitsText(report.bits), bitsColumns) +
                       right(bitsText(std::max(0.0, bitsNow - report.bits)), bitsColumns) + "\n";
    for (const OutcomeReport& outcome : report.outcomes) {
        const std::string probability = percent(outcome.probability);
        const std::size_t columns = nameColumns - 4 - probabilityColumns;
        text += "      " + left(outcome.value, columns) + right(probability, probabilityColumns) +
                right(bitsText(outcome.bits), bitsColumns) + "    " + remaining(outcome) + "\n";
    }
    if (group.size() > 1) {
        std::vector<std::string> others;
        for (std::size_t i = 1; i < group.size(); ++i) {
            others.push_back(nameOf(*group[i]));
        }
        text += wrapped("      the same: ", fmt::format("{}", fmt::join(others, ", ")));
    }
    return text;
}

std::string heading(const AdviceReport& report)
{
    std::string text =
        fmt::format("Step {}, t = {}: {}.", report.step.step,
                    shownTime(report.step.t, report.step.time), monitor::name(report.step.status));
    if (!report.step.complete) {
        text += " The search was not complete: there may be other explanations.";
    }
    if (report.step.dropped > 0) {
        text += fmt::format(" {} {} kept; --keep N keeps more.",
                            text::counted(report.step.dropped, "explanation"),
                            report.step.dropped == 1 ? "was not" : "were not");
    }
    return wrapped("", text);
}

std::string unmeasurable(const AdviceReport& report)
{
    if (report.unmeasurable == 0) return "";
    const bool one = report.unmeasurable == 1;
    return "\n" +
           wrapped("", fmt::format("{} {} no channel, and {} not declared measurable; --all "
                                   "takes {} as well.",
                                   text::counted(report.unmeasurable, "variable"),
                                   one ? "has" : "have", one ? "is" : "are", one ? "it" : "them"));
}

} // namespace

std::string adviceText(const AdviceReport& report, std::size_t shown, Colours colours)
{
    std::string text = heading(report) + "\n" + explanations(report, colours) + "\n";
    if (report.step.explanations.size() == 1) {
        return text + "There is one explanation: no measurement can tell it from others.\n";
    }
    if (report.measurements.empty()) {
        return text +
               wrapped("",
                       fmt::format("Nothing that {} would tell the explanations apart; {} bits of "
                                   "doubt stay.",
                                   report.unmeasurable > 0 ? "can be measured" : "is not observed",
                                   bitsText(report.bits))) +
               unmeasurable(report);
    }
    const std::vector<Group> all = groups(report.measurements);
    const std::size_t count = shown == 0 ? all.size() : std::min(shown, all.size());
    text +=
        wrapped("", fmt::format("The explanations leave {} bits of doubt. Best to measure next:",
                                bitsText(report.bits))) +
        "\n" +
        colours.faint("  " + left("measure", nameColumns) + right("bits left", bitsColumns) +
                      right("gained", bitsColumns)) +
        "\n";
    for (std::size_t i = 0; i < count; ++i) {
        text += measurement(all[i], report.bits, colours);
    }
    if (count < all.size()) {
        text += colours.faint(fmt::format("  and {} more", all.size() - count)) + "\n";
    }
    if (report.useless > 0) {
        text += "\n" + wrapped("", fmt::format("{} would tell nothing.",
                                               text::counted(report.useless, "other variable")));
    }
    return text + unmeasurable(report);
}

} // namespace report
