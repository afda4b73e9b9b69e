// An explained step as a person reads it:
//
//     Step 4, t = 3: faulty
//
//       100 %  valve.position = stuckClosed since step 4
//              instead of open: resolves conflict 1
//
//     Conflict 1, step 4, t = 3
//       observed  valve.outflow = zero (FT-101)
//       expected  valve.outflow = positive
//       assumed   valve.position = open, from closed by valve.request = open
//       read      valve.inflow = positive (FT-100)
//       law       examples/models/valve.itms:12:5
//                 law position = open -> outflow = inflow
//                 gives valve.outflow = positive
//       check     confirmed; nothing that is assumed or read can be left out
#include "report/StepExplanation.h"
#include "report/WallClock.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace report {

namespace {

constexpr std::size_t labelColumns = 12;

std::string equation(const std::string& variable, const std::string& value)
{
    return fmt::format("{}{}={}{}", variable, unbreakable, unbreakable, value);
}

// VARIABLE=VALUE with room to breathe.
std::string equation(const std::string& id)
{
    const std::size_t sign = id.rfind('=');
    return equation(id.substr(0, sign), id.substr(sign + 1));
}

std::string equations(const std::vector<std::string>& ids)
{
    std::vector<std::string> items;
    for (const std::string& id : ids) {
        items.push_back(equation(id));
    }
    return text::listed(items);
}

std::string sinceText(std::size_t step)
{
    return step == 0 ? "from the beginning" : fmt::format("since step {}", step);
}

std::string deviating(const DeviatingMode& mode)
{
    return equation(mode.variable, mode.value) + " " + sinceText(mode.since);
}

std::string conflictNumbers(const std::vector<std::size_t>& numbers)
{
    std::vector<std::string> items;
    for (const std::size_t number : numbers) {
        items.push_back(std::to_string(number));
    }
    return (items.size() == 1 ? "conflict " : "conflicts ") + text::listed(items);
}

constexpr const char* noConflict = "no listed conflict rests on it";

// The values that were assumed, each with the conflicts that it was assumed in.
std::string resolution(const std::vector<Resolution>& resolutions)
{
    std::vector<std::string> values;
    for (const Resolution& one : resolutions) {
        if (std::find(values.begin(), values.end(), one.instead) == values.end()) {
            values.push_back(one.instead);
        }
    }
    std::string text;
    for (const std::string& value : values) {
        std::vector<std::size_t> numbers;
        for (const Resolution& one : resolutions) {
            if (one.instead == value) numbers.push_back(one.conflict);
        }
        text += fmt::format("{}instead of {}: resolves {}", text.empty() ? "" : "; ", value,
                            conflictNumbers(numbers));
    }
    return text.empty() ? noConflict : text;
}

// What the candidate says, a line or more for each item.
std::vector<std::string> items(const CandidateReasons& reasons, bool explains)
{
    const TrackedExplanation& explanation = reasons.explanation;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < explanation.modes.size(); ++i) {
        lines.push_back(deviating(explanation.modes[i]));
        if (explanation.modes[i].since > 0 || !reasons.ofModes[i].empty()) {
            lines.push_back("  " + resolution(reasons.ofModes[i]));
        }
    }
    const auto add = [&lines](const std::string& item, const std::vector<std::size_t>& conflicts) {
        lines.push_back(item);
        lines.push_back(
            "  " + (conflicts.empty() ? noConflict : "resolves " + conflictNumbers(conflicts)));
    };
    for (std::size_t i = 0; i < explanation.lost.size(); ++i) {
        add(equation(explanation.lost[i]) + " did not arrive", reasons.ofLost[i]);
    }
    for (std::size_t i = 0; i < explanation.misread.size(); ++i) {
        add(equation(explanation.misread[i]) + " was misread", reasons.ofMisread[i]);
    }
    if (lines.empty() && explains) lines.push_back("nothing is wrong");
    for (const Avoided& one : reasons.avoided) {
        lines.push_back(fmt::format("without {}, which conflict {} rests on",
                                    equation(one.variable, one.value), one.conflict));
    }
    if (reasons.over > 0) {
        lines.push_back(
            reasons.over == 1
                ? "a fault or lost command of an earlier step shows no longer"
                : fmt::format("{} faults or lost commands of earlier steps show no longer",
                              reasons.over));
    }
    for (std::size_t i = 0; i < explanation.unexplained.size(); ++i) {
        lines.push_back("does not explain " + equation(explanation.unexplained[i]));
        if (!reasons.ofUnexplained[i].empty()) {
            lines.push_back("  " + conflictNumbers(reasons.ofUnexplained[i]) + " " +
                            (reasons.ofUnexplained[i].size() == 1 ? "stays" : "stay"));
        }
    }
    if (!explains && explanation.unexplained.empty()) lines.push_back("does not explain the step");
    return lines;
}

std::string given(const GivenValue& value)
{
    return equation(value.variable, value.value) +
           (value.channel.empty() ? "" : fmt::format(" ({})", value.channel));
}

std::string mode(const ExplainedMode& mode)
{
    std::string text = equation(mode.variable, mode.value);
    if (mode.since) {
        text += ", " + sinceText(*mode.since);
    } else if (mode.before == mode.value) {
        text += ", as before";
    } else {
        text += ", from " + mode.before;
    }
    return text + (mode.commands.empty()
                       ? ""
                       : fmt::format(" by{}", unbreakable) + equations(mode.commands));
}

std::string consequence(const AppliedLaw& law)
{
    if (law.variable.empty()) return "";
    return law.excluded ? fmt::format("gives {} is not {}", law.variable, law.value)
                        : "gives " + equation(law.variable, law.value);
}

std::string check(const ExplainedConflict& conflict)
{
    switch (conflict.check) {
    case monitor::ConflictCheck::refuted: return "NOT confirmed: please report this";
    case monitor::ConflictCheck::unsettled: return "not settled: too many laws";
    case monitor::ConflictCheck::confirmed: break;
    }
    if (!conflict.everyValueCounts) return "confirmed";
    return *conflict.everyValueCounts
               ? "confirmed; nothing of this can be left out"
               : "confirmed; part of what is assumed or read can be left out";
}

// Lines of one conflict, each group with its label before the first line.
class Block {
public:
    explicit Block(const Colours& colours) : colours_(colours) {}

    void add(const std::string& label, const std::string& text)
    {
        const std::string first = label == label_ ? "" : label;
        label_ = label;
        // Colours would count in the width of the line.
        const std::string lines = wrapped(std::string(labelColumns, ' '), text);
        text_ += "  " + colours_.faint(left(first, labelColumns - 2)) + lines.substr(labelColumns);
    }
    void end() { label_.clear(); }
    const std::string& text() const { return text_; }

private:
    const Colours& colours_;
    std::string label_;
    std::string text_;
};

void addLaws(Block& block, const ExplainedConflict& conflict)
{
    std::set<std::string> said;
    for (const AppliedLaw& law : conflict.laws) {
        const std::string place =
            law.file.empty() ? "" : fmt::format("{}:{}:{}", law.file, law.line, law.column);
        // In cases, nothing follows from a clause by itself: of a law with several of them it is enough to name it.
        if (law.variable.empty() && !said.insert(place + law.text).second) continue;
        block.end();
        if (!place.empty()) block.add("law", place);
        block.add("law", law.text);
        if (!law.variable.empty()) block.add("law", consequence(law));
    }
    if (conflict.byCases) {
        block.add("so", "no values are possible for the variables that stay open");
    } else if (!conflict.observed) {
        block.add("so", "no values are possible");
    }
}

std::string conflictText(const ExplainedConflict& conflict, const Colours& colours)
{
    Block block(colours);
    std::vector<std::string> believed;
    for (const DeviatingMode& mode : conflict.believed) {
        believed.push_back(deviating(mode));
    }
    if (!believed.empty() || conflict.rank > 1) {
        block.add("believed",
                  (believed.empty() ? "nothing wrong" : text::listed(believed)) +
                      (conflict.rank > 1
                           ? fmt::format(" (hypothesis {} before the step)", conflict.rank)
                           : ""));
    }
    if (conflict.observed) {
        block.add("observed", given(*conflict.observed));
        block.add("expected", conflict.expected.empty()
                                  ? fmt::format("{} is not {}", conflict.observed->variable,
                                                conflict.observed->value)
                                  : equation(conflict.observed->variable, conflict.expected));
    }
    for (const ExplainedMode& one : conflict.modes) block.add("assumed", mode(one));
    for (const GivenValue& one : conflict.commands) block.add("commanded", given(one));
    for (const GivenValue& one : conflict.readings) block.add("read", given(one));
    addLaws(block, conflict);
    block.add("check", check(conflict));
    return "\n" +
           colours.bold(fmt::format("Conflict {}, step {}, t = {:.10g}", conflict.number,
                                    conflict.step, conflict.t)) +
           "\n" + block.text();
}

std::string candidateText(const CandidateReasons& reasons, bool explains, const Colours& colours)
{
    std::string head = right(percent(reasons.explanation.probability), probabilityColumns) + "  ";
    const std::size_t columns = width(head);
    std::string text;
    for (const std::string& item : items(reasons, explains)) {
        const bool isReason = item.starts_with("  ");
        const std::string indent(columns + (isReason ? 2 : 0), ' ');
        const std::string lines = wrapped(indent, isReason ? item.substr(2) : item);
        const std::string own = lines.substr(columns);
        text += head + (isReason ? colours.faint(own.substr(0, own.size() - 1)) + "\n" : own);
        head.assign(columns, ' ');
    }
    return text;
}

std::string status(monitor::TrackStatus status, const Colours& colours)
{
    const std::string text = monitor::name(status);
    switch (status) {
    case monitor::TrackStatus::nominal: return colours.green(text);
    case monitor::TrackStatus::stale: return colours.faint(text);
    case monitor::TrackStatus::ambiguous: return colours.yellow(text);
    case monitor::TrackStatus::faulty:
    case monitor::TrackStatus::inconsistent: break;
    }
    return colours.red(text);
}

} // namespace

std::string explanationText(const StepExplanation& explanation, const Colours& colours)
{
    const StepReport& report = explanation.report;
    const std::string limit = monitor::name(report.limit);
    std::string text = colours.bold(fmt::format("Step {}, t = {}: ", report.step,
                                                shownTime(report.t, report.time))) +
                       status(report.status, colours) + "\n\n";
    for (const CandidateReasons& one : explanation.candidates) {
        text += candidateText(one, one.explanation.unexplained.empty(), colours);
    }
    const std::string indent(probabilityColumns + 2, ' ');
    const std::size_t more = report.explanations.size() - explanation.candidates.size();
    if (more > 0) text += indent + colours.faint(fmt::format("and {} more", more)) + "\n";
    if (!report.complete) {
        text += indent + colours.yellow("not complete") +
                (limit.empty() ? "" : fmt::format(" (limit: {})", limit)) + "\n";
    }
    if (explanation.stepsLeftOut > 0) {
        text +=
            "\n" +
            wrapped("",
                    fmt::format("{} with conflicts before these {} left out; --all shows them too.",
                                text::counted(explanation.stepsLeftOut, "step"),
                                explanation.stepsLeftOut == 1 ? "is" : "are"));
    }
    for (const std::size_t step : explanation.stepsOpen) {
        text +=
            "\n" +
            wrapped("", fmt::format("Step {} contradicts what was believed before it; why was not "
                                    "found within the bound on cases.",
                                    step));
    }
    if (explanation.conflicts.empty() && explanation.stepsOpen.empty() &&
        explanation.stepsLeftOut == 0) {
        text += "\nNo step so far contradicted what was believed before it.\n";
    }
    for (const ExplainedConflict& one : explanation.conflicts) {
        text += conflictText(one, colours);
    }
    return text;
}

} // namespace report
