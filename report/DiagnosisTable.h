// Diagnoses as a person reads them. One by itself explains its columns; of many, each is a short block:
//
//     c17-01: faulty
//       G22gat is 1, predicted 0. G23gat is 1, predicted 0.
//             100 %  G16gat
//       Only a fault of G16gat explains the outputs. The search was complete: no other
//       single fault explains them.
#pragma once

#include "netlist/Circuit.h"
#include "report/Diagnosis.h"
#include "report/Text.h"

#include <map>

namespace report {

enum class Layout { single, many };

/// Renders diagnoses of one circuit, and counts them for the summary.
class DiagnosisTable {
public:
    /// Of each diagnosis, up to `shown` explanations are listed; 0 lists all.
    DiagnosisTable(const netlist::Circuit& circuit, Layout layout, Colours colours,
                   std::size_t shown);

    /// The circuit, before its diagnoses.
    std::string heading() const;
    /// One diagnosis, a block of lines that begins with an empty one.
    std::string block(const Diagnosis& diagnosis);
    /// How many diagnoses there were of which kind, and how many lines of the file were left out. Of a single problem, nothing.
    std::string summary(std::size_t linesLeftOut) const;

private:
    std::string status(monitor::StepStatus status) const;
    std::string singleBlock(const Diagnosis& diagnosis) const;
    std::string shortBlock(const Diagnosis& diagnosis) const;
    std::string explanations(const Diagnosis& diagnosis, std::string_view margin) const;

    const netlist::Circuit& circuit_;
    Layout layout_;
    Colours colours_;
    std::size_t shown_;
    std::map<monitor::StepStatus, std::size_t> counts_;
    SearchWork work_;
    std::size_t total_ = 0;
    std::size_t incomplete_ = 0;
};

} // namespace report
