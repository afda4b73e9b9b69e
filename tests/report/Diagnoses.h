// Diagnoses for the tests, made by hand.
#pragma once

#include "report/Diagnosis.h"

#include <initializer_list>

/// Gates at fault together.
inline report::Explanation faulty(double probability, std::initializer_list<std::string> gates)
{
    report::Explanation explanation{probability, static_cast<int>(gates.size()), {}};
    for (const std::string& gate : gates) {
        explanation.modes.push_back({gate, "mode", "faulty"});
    }
    return explanation;
}

/// A complete answer with one output that differs, within a number of faults.
inline report::Diagnosis answer(int faultBound, std::vector<report::Explanation> explanations)
{
    report::Diagnosis diagnosis;
    diagnosis.faultBound = faultBound;
    diagnosis.status =
        explanations.empty() ? monitor::StepStatus::inconsistent : monitor::StepStatus::faulty;
    diagnosis.explanations = std::move(explanations);
    diagnosis.outputs = {{"y", false, true}};
    diagnosis.outputCount = 1;
    return diagnosis;
}

/// The same, cut short.
inline report::Diagnosis cutAnswer(SearchLimit limit, int faultBound,
                                   std::vector<report::Explanation> explanations)
{
    report::Diagnosis diagnosis = answer(faultBound, std::move(explanations));
    diagnosis.complete = false;
    diagnosis.limit = limit;
    return diagnosis;
}
