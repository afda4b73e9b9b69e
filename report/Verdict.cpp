#include "report/Verdict.h"

#include "report/Text.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

namespace {

bool equallyProbable(const std::vector<Explanation>& explanations)
{
    const double most = explanations.front().probability;
    return most - explanations.back().probability < 1e-6 * most;
}

std::string faultyGates(int bound)
{
    return bound == 0   ? "no faulty gate"
           : bound == 1 ? "one faulty gate"
                        : fmt::format("up to {} faulty gates", bound);
}

std::string finding(const Diagnosis& diagnosis)
{
    const std::vector<Explanation>& found = diagnosis.explanations;
    if (found.empty()) return "";
    const Explanation& best = found.front();
    if (best.modes.empty())
        return "No fault: the circuit gives these outputs when every gate works.";
    if (found.size() == 1) {
        return fmt::format("{} of {}{} the outputs. ",
                           best.faults > 1      ? (diagnosis.complete ? "Only faults" : "Faults")
                           : diagnosis.complete ? "Only a fault"
                                                : "A fault",
                           partsAtFault(best), best.faults > 1 ? " together explain" : " explains");
    }
    if (equallyProbable(found)) {
        return fmt::format("{} explanations, all equally probable. ", text::grouped(found.size()));
    }
    return fmt::format("{} explanations; the first has {} of the probability. ",
                       text::grouped(found.size()), percent(best.probability));
}

std::string completeness(const Diagnosis& diagnosis)
{
    const int bound = diagnosis.faultBound;
    const std::vector<Explanation>& found = diagnosis.explanations;
    if (found.empty()) {
        const std::string nothing =
            bound == 0   ? "Without a fault these outputs are not possible"
            : bound == 1 ? "No single fault explains the outputs"
                         : fmt::format("No {} faults or fewer explain the outputs", bound);
        return fmt::format("{}: the search was complete. --max-rank {} searches further.", nothing,
                           bound + 1);
    }
    if (found.front().modes.empty()) return "";
    const std::string complete = "The search was complete: ";
    const bool fewerWillNotDo =
        std::all_of(found.begin(), found.end(),
                    [&](const Explanation& explanation) { return explanation.faults == bound; });
    if (bound == 1) return complete + "no other single fault explains them.";
    if (!fewerWillNotDo) {
        return complete +
               fmt::format("every other explanation with up to {} faults contains one of these.",
                           bound);
    }
    if (bound == 2) return complete + "no single fault explains them, and no other two do.";
    return complete +
           fmt::format("no fewer than {0} faults explain them, and no other {0} do.", bound);
}

std::string shortfall(const Diagnosis& diagnosis)
{
    const std::string searched = "The search for " + faultyGates(diagnosis.faultBound);
    const std::string open = diagnosis.explanations.empty() ? "nothing was found until then"
                                                            : "there may be further explanations";
    switch (diagnosis.limit) {
    case SearchLimit::seconds: return searched + " ran out of time (--max-seconds): " + open + ".";
    case SearchLimit::records: return searched + " was cut by --max-records: " + open + ".";
    case SearchLimit::stopped: return searched + " was interrupted: " + open + ".";
    case SearchLimit::memory: return searched + " ran out of memory (--max-memory): " + open + ".";
    case SearchLimit::work:
    case SearchLimit::candidates:
    case SearchLimit::none: break;
    }
    return searched + " was not complete: " + open + ".";
}

} // namespace

std::string verdict(const Diagnosis& diagnosis)
{
    return finding(diagnosis) +
           (diagnosis.complete ? completeness(diagnosis) : shortfall(diagnosis));
}

std::string partsAtFault(const Explanation& explanation)
{
    std::vector<std::string> names;
    for (const ModeValue& mode : explanation.modes) {
        names.push_back(mode.component);
    }
    return text::listed(names);
}

} // namespace report
