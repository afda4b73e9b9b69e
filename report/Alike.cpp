// An explanation of k modes has k keys, each of them what is left when one of its modes is taken away, and when that began.
// Explanations with a key in common may be a group; the largest one that an explanation can be in is taken, from the most probable
// explanation on.
#include "report/Alike.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t mostNamed = 8;

/// A member of a group: its place, and which of its modes the others do not have.
struct Member {
    std::size_t explanation;
    std::size_t mode;
};
using Candidates = std::map<std::string, std::vector<Member>>;

std::string keyWithout(const TrackedExplanation& explanation, std::size_t left)
{
    std::string key =
        fmt::format("{} {} {}\n{}\n{}\n{}", *explanation.appearance, explanation.faults,
                    explanation.modes[left].since, fmt::join(explanation.lost, " "),
                    fmt::join(explanation.misread, " "), fmt::join(explanation.unexplained, " "));
    for (std::size_t i = 0; i < explanation.modes.size(); ++i) {
        if (i != left) {
            const DeviatingMode& mode = explanation.modes[i];
            key += fmt::format("\n{}={} {}", mode.variable, mode.value, mode.since);
        }
    }
    return key;
}

Candidates candidates(const std::vector<TrackedExplanation>& explanations)
{
    Candidates found;
    for (std::size_t i = 0; i < explanations.size(); ++i) {
        const std::size_t modes = explanations[i].appearance ? explanations[i].modes.size() : 0;
        for (std::size_t mode = 0; mode < modes; ++mode) {
            found[keyWithout(explanations[i], mode)].push_back({i, mode});
        }
    }
    return found;
}

// The largest group that the explanation can be in with others that are in none yet.
std::vector<Member> largest(const Candidates& candidates, const TrackedExplanation& explanation,
                            const std::vector<bool>& done)
{
    std::vector<Member> best;
    const std::size_t modes = explanation.appearance ? explanation.modes.size() : 0;
    for (std::size_t mode = 0; mode < modes; ++mode) {
        std::vector<Member> members = candidates.at(keyWithout(explanation, mode));
        std::erase_if(members, [&](const Member& member) { return done[member.explanation]; });
        if (members.size() > best.size()) {
            best = std::move(members);
        }
    }
    return best;
}

std::string inWords(const DeviatingMode& mode)
{
    return fmt::format("{}{}={}{}", mode.variable, unbreakable, unbreakable, mode.value);
}

} // namespace

void noteAppearance(StepReport& report, const plant::Plant& plant,
                    const monitor::TrackAnswer& answer,
                    const std::vector<plant::VariableIndex>& read)
{
    if (report.explanations.size() < 2) {
        return;
    }
    std::map<std::vector<monitor::Label>, std::size_t> numbers;
    for (std::size_t i = 0; i < report.explanations.size(); ++i) {
        std::vector<monitor::Label> labels;
        for (const plant::VariableIndex variable : read) {
            for (const plant::AtomIndex value : plant.variable(variable).values) {
                labels.push_back(answer.hypotheses[i]->labels.prediction().label(value));
            }
        }
        report.explanations[i].appearance =
            numbers.emplace(std::move(labels), numbers.size()).first->second;
    }
}

std::vector<ExplanationGroup> grouped(const std::vector<TrackedExplanation>& explanations)
{
    const Candidates all = candidates(explanations);
    std::vector<bool> done(explanations.size(), false);
    std::vector<ExplanationGroup> groups;
    for (std::size_t i = 0; i < explanations.size(); ++i) {
        if (done[i]) {
            continue;
        }
        const std::vector<Member> members = largest(all, explanations[i], done);
        ExplanationGroup& group = groups.emplace_back();
        if (members.size() < 2) {
            group.members.push_back(i);
        }
        for (const Member& member : members.size() < 2 ? std::vector<Member>() : members) {
            group.members.push_back(member.explanation);
            group.either.push_back(explanations[member.explanation].modes[member.mode]);
        }
        for (const std::size_t member : group.members) {
            group.probability += explanations[member].probability;
            done[member] = true;
        }
    }
    std::stable_sort(groups.begin(), groups.end(), [](const auto& a, const auto& b) {
        constexpr double lastDigits = 1e9;
        return std::round(a.probability * lastDigits) > std::round(b.probability * lastDigits);
    });
    return groups;
}

std::vector<ExplanationGroup> shownGroups(const StepReport& report, const Shown& shown)
{
    std::vector<TrackedExplanation> probable = report.explanations;
    probable.resize(shownCount(report, {.most = 0, .mass = shown.mass}));
    std::vector<ExplanationGroup> groups = grouped(probable);
    if (shown.most > 0 && groups.size() > shown.most) {
        groups.resize(shown.most);
    }
    return groups;
}

std::string inWords(const ExplanationGroup& group,
                    const std::vector<TrackedExplanation>& explanations, bool withProbabilities)
{
    const TrackedExplanation& first = explanations[group.members.front()];
    if (group.either.empty()) {
        return inWords(first);
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < group.members.size(); ++i) {
        const std::string name = inWords(group.either[i]);
        std::string share = percent(explanations[group.members[i]].probability);
        std::replace(share.begin(), share.end(), ' ', unbreakable);
        names.push_back(withProbabilities ? fmt::format("{} ({})", name, share) : name);
    }
    if (!withProbabilities) {
        std::sort(names.begin(), names.end());
    } else if (names.size() > mostNamed) {
        const std::size_t more = names.size() - mostNamed;
        names.resize(mostNamed);
        names.push_back(fmt::format("{} more", more));
    }
    TrackedExplanation rest = first;
    std::erase_if(rest.modes, [&](const DeviatingMode& mode) {
        return mode.variable == group.either.front().variable;
    });
    return inWords(rest, fmt::format("one of {} {}", fmt::join(names, ", "),
                                     sinceInWords(group.either.front().since)));
}

} // namespace report
