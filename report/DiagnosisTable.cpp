// Diagnoses as a person reads them. One by itself explains its columns; of many, each is a short block:
//
//     c17-01: faulty
//       G22gat is 1, predicted 0. G23gat is 1, predicted 0.
//             100 %  G16gat
//       Only a fault of G16gat explains the outputs. The search was complete: no other
//       single fault explains them.
#include "report/Diagnosis.h"
#include "report/Verdict.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

namespace {

constexpr std::string_view margin = "  ";
constexpr std::string_view tableMargin = "    ";
constexpr std::size_t percentColumns = 11;

std::vector<OutputReading> differing(const Diagnosis& diagnosis)
{
    std::vector<OutputReading> outputs;
    for (const OutputReading& output : diagnosis.outputs) {
        if (output.differs()) outputs.push_back(output);
    }
    return outputs;
}

// A sentence or two about the outputs that are not listed; empty when there are none.
std::string otherOutputs(const Diagnosis& diagnosis)
{
    const std::size_t differ = differing(diagnosis).size();
    const std::size_t same = diagnosis.outputs.size() - differ;
    const std::size_t unknown = diagnosis.outputCount - diagnosis.outputs.size();
    std::string text;
    if (same > 0) {
        text = fmt::format("{} {} as predicted.",
                           text::counted(same, differ > 0 ? "other output" : "output"),
                           same == 1 ? "is" : "are");
    }
    if (unknown > 0) {
        text += fmt::format("{}{} {} not observed.", text.empty() ? "" : " ",
                            text::counted(unknown, "output"), unknown == 1 ? "was" : "were");
    }
    return text;
}

bool nothingToList(const Diagnosis& diagnosis)
{
    return diagnosis.explanations.empty() || diagnosis.explanations.front().modes.empty();
}

// What the rows of explanations are.
std::string caption(const std::vector<Explanation>& explanations)
{
    const bool single = std::all_of(explanations.begin(), explanations.end(),
                                    [](const Explanation& one) { return one.modes.size() == 1; });
    if (explanations.size() == 1) {
        return single ? "The gate that explains the outputs if it is faulty:"
                      : "The gates that explain the outputs if all of them are faulty:";
    }
    return single ? "Gates that explain the outputs if one of them is faulty, most probable first:"
                  : "Sets of gates that explain the outputs if all of a set are faulty, most "
                    "probable first:";
}

std::string workText(const SearchWork& work)
{
    return fmt::format("Work: {}, {}, {}, {}.", text::counted(work.records, "record"),
                       text::counted(work.flips, "flip"),
                       text::counted(work.components, "component"),
                       text::counted(work.candidates, "candidate"));
}

} // namespace

DiagnosisTable::DiagnosisTable(const netlist::Circuit& circuit, Layout layout, Colours colours,
                               std::size_t shown)
    : circuit_(circuit), layout_(layout), colours_(colours), shown_(shown)
{
}

std::string DiagnosisTable::heading() const
{
    return fmt::format("{}: {}, {}, {}\n", colours_.bold(circuit_.name),
                       text::counted(circuit_.inputs.size(), "input"),
                       text::counted(circuit_.outputs.size(), "output"),
                       text::counted(circuit_.gates.size(), "gate"));
}

std::string DiagnosisTable::rows(const Diagnosis& diagnosis)
{
    ++total_;
    ++counts_[diagnosis.status];
    if (!diagnosis.complete) ++incomplete_;
    work_.records += diagnosis.work.records;
    work_.flips += diagnosis.work.flips;
    work_.components += diagnosis.work.components;
    work_.candidates += diagnosis.work.candidates;
    return "\n" + (layout_ == Layout::single ? singleBlock(diagnosis) : shortBlock(diagnosis));
}

std::string DiagnosisTable::status(monitor::StepStatus status) const
{
    const std::string text = monitor::name(status);
    switch (status) {
    case monitor::StepStatus::nominal: return colours_.green(text);
    case monitor::StepStatus::ambiguous: return colours_.yellow(text);
    case monitor::StepStatus::faulty:
    case monitor::StepStatus::inconsistent: break;
    }
    return colours_.red(text);
}

std::string DiagnosisTable::singleBlock(const Diagnosis& diagnosis) const
{
    std::string text = fmt::format("Diagnosis: {}{}\n\n", status(diagnosis.status),
                                   diagnosis.complete ? "" : " (not complete)");
    const std::vector<OutputReading> outputs = differing(diagnosis);
    if (!outputs.empty()) {
        std::size_t columns = width("output");
        for (const OutputReading& output : outputs) {
            columns = std::max(columns, width(output.signal));
        }
        text +=
            wrapped(margin, "Outputs that are not what the circuit gives when every gate works:");
        text += fmt::format("\n{}{}  predicted  observed\n", tableMargin, left("output", columns));
        for (const OutputReading& output : outputs) {
            text += fmt::format("{}{}  {:>9}  {}\n", tableMargin, left(output.signal, columns),
                                output.predicted ? 1 : 0,
                                colours_.bold(right(output.observed ? "1" : "0", 8)));
        }
        text += "\n";
    }
    const std::string others = otherOutputs(diagnosis);
    if (!others.empty()) text += wrapped(margin, others) + "\n";
    if (!nothingToList(diagnosis)) {
        text += wrapped(margin, caption(diagnosis.explanations));
        text += fmt::format("\n{}probability  gates\n{}\n", tableMargin,
                            explanations(diagnosis, tableMargin));
    }
    return text + wrapped(margin, verdict(diagnosis)) + std::string(margin) +
           colours_.faint(workText(diagnosis.work)) + "\n";
}

std::string DiagnosisTable::shortBlock(const Diagnosis& diagnosis) const
{
    std::string outputs;
    for (const OutputReading& output : differing(diagnosis)) {
        outputs +=
            fmt::format("{}{} is {}, predicted{}{}.", outputs.empty() ? "" : " ", output.signal,
                        output.observed ? 1 : 0, unbreakable, output.predicted ? 1 : 0);
    }
    const std::string others = otherOutputs(diagnosis);
    if (!outputs.empty() && !others.empty()) outputs += " ";
    const std::string id = diagnosis.id.value_or(fmt::format("problem {}", total_));
    return fmt::format("{}: {}{}\n{}{}{}", colours_.bold(id), status(diagnosis.status),
                       diagnosis.complete ? "" : " (not complete)",
                       wrapped(margin, outputs + others), explanations(diagnosis, ""),
                       wrapped(margin, verdict(diagnosis)));
}

// The rows of explanations; none where nothing is wrong or nothing was found.
std::string DiagnosisTable::explanations(const Diagnosis& diagnosis, std::string_view before) const
{
    if (nothingToList(diagnosis)) return "";
    const std::vector<Explanation>& all = diagnosis.explanations;
    const std::size_t shown = shown_ == 0 ? all.size() : std::min(shown_, all.size());
    std::string text;
    for (std::size_t i = 0; i < shown; ++i) {
        std::string names;
        for (const ModeValue& mode : all[i].modes) {
            names += (names.empty() ? "" : ", ") + mode.component;
        }
        const std::string probability = right(percent(all[i].probability), percentColumns);
        text += wrapped(fmt::format("{}{}  ", before, probability), names);
    }
    if (shown < all.size()) {
        text += fmt::format("{}{}  and {} more (-n 0 shows all)\n", before,
                            right("...", percentColumns), text::grouped(all.size() - shown));
    }
    return text;
}

std::string DiagnosisTable::summary(std::size_t linesLeftOut) const
{
    if (layout_ == Layout::single) return "";
    std::string text = text::counted(total_, "problem");
    std::string separator = ": ";
    for (const auto& [status, count] : counts_) {
        text += fmt::format("{}{} {}", separator, text::grouped(count), monitor::name(status));
        separator = ", ";
    }
    text += ".";
    if (total_ > 0 && incomplete_ == 0) {
        text += total_ == 1 ? " The search was complete." : " All searches were complete.";
    } else if (total_ > 0) {
        text += incomplete_ == 1
                    ? " 1 search was not complete."
                    : fmt::format(" {} searches were not complete.", text::grouped(incomplete_));
    }
    if (linesLeftOut > 0) {
        text += fmt::format(" {} in error {} left out.", text::counted(linesLeftOut, "line"),
                            linesLeftOut == 1 ? "was" : "were");
    }
    return "\n" + wrapped("", text) + colours_.faint(workText(work_)) + "\n";
}

} // namespace report
