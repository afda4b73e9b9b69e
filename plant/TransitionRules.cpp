// The probabilities of what can happen at once must not exceed 1. Which changes can happen at once is a question about their
// guards: the search tries, change by change, each alternative of its guard and, where the guard may fail, leaving it out, and
// keeps the heaviest set whose literals can hold together. Its work is bounded; a plant that would need more passes.
#include "plant/TransitionRules.h"

#include "text/Wording.h"

#include <algorithm>
#include <tuple>

namespace plant {

namespace {

class LikeliestSet {
public:
    explicit LikeliestSet(const std::vector<const Change*>& changes) : changes_(changes) {}

    std::vector<const Change*> find()
    {
        choose(0, 0);
        return best_;
    }

private:
    static constexpr std::size_t mostWork = 20000;

    void choose(std::size_t next, double sum)
    {
        if (sum > bestSum_ + probabilityTolerance) {
            bestSum_ = sum;
            best_ = chosen_;
        }
        work_ += 1 + guard_.size() / 32;
        if (next == changes_.size() || work_ > mostWork) return;
        const Change* change = changes_[next];
        for (const Conjunction& alternative : change->alternatives) {
            const std::size_t size = guard_.size();
            guard_.insert(guard_.end(), alternative.begin(), alternative.end());
            if (canHold(guard_)) {
                chosen_.push_back(change);
                choose(next + 1, sum + *change->probability);
                chosen_.pop_back();
            }
            guard_.resize(size);
        }
        if (!change->always()) choose(next + 1, sum);
    }

    const std::vector<const Change*>& changes_;
    std::vector<const Change*> chosen_;
    std::vector<const Change*> best_;
    Conjunction guard_;
    double bestSum_ = 0;
    std::size_t work_ = 0;
};

void reportSum(const std::vector<const Change*>& together, double sum)
{
    std::string list;
    for (const Change* change : together) {
        list += (list.empty() ? "" : ", ") + std::string(word(change->kind)) + " -> " +
                change->to->value + " " + text::shown(*change->probability) + " (" +
                change->at.seenFrom(change->at) + ")";
    }
    const Change& last = *together.back();
    last.at.report("the transitions from " +
                       text::quoted(last.at.words().fullNames ? last.from->id : last.from->value) +
                       " that are possible at once add up to " + text::shownAbove(sum, 1),
                   "at most 1", list);
}

} // namespace

const char* word(ChangeKind kind)
{
    switch (kind) {
    case ChangeKind::nominal: return "nominal";
    case ChangeKind::fault: return "fault";
    case ChangeKind::repair: return "repair";
    case ChangeKind::idle: return "idle";
    }
    return "";
}

bool canHold(Conjunction guard)
{
    // Those of one variable together, and of these the atoms that must hold first.
    const auto key = [](const GuardLiteral& literal) {
        return std::tuple(literal.second->stateVar, !literal.first, literal.second);
    };
    std::sort(guard.begin(), guard.end(),
              [&](const GuardLiteral& a, const GuardLiteral& b) { return key(a) < key(b); });
    guard.erase(std::unique(guard.begin(), guard.end()), guard.end());
    for (std::size_t begin = 0, end = 0; begin < guard.size(); begin = end) {
        const StateVar* variable = guard[begin].second->stateVar;
        while (end < guard.size() && guard[end].second->stateVar == variable) {
            ++end;
        }
        if (!guard[begin].first) {
            if (end - begin == variable->atomLinks->size()) return false;
            continue;
        }
        for (std::size_t i = begin + 1; i < end; ++i) {
            if (guard[i].first || guard[i].second == guard[begin].second) return false;
        }
    }
    return true;
}

std::vector<const Change*> likeliestSet(const std::vector<const Change*>& changes)
{
    return LikeliestSet(changes).find();
}

void checkSum(const std::vector<const Change*>& leaving)
{
    for (const ChangeKind kind : {ChangeKind::nominal, ChangeKind::idle}) {
        std::vector<const Change*> together;
        for (const Change* change : leaving) {
            const bool counts = isUnbidden(change->kind) || change->kind == kind;
            if (counts && *change->probability > 0) together.push_back(change);
        }
        const std::vector<const Change*> likeliest = likeliestSet(together);
        double sum = 0;
        for (const Change* change : likeliest) {
            sum += *change->probability;
        }
        if (sum <= 1 + probabilityTolerance) continue;
        reportSum(likeliest, sum);
        return;
    }
}

void completeProbabilities(const std::vector<Change*>& leaving)
{
    double unbidden = 0;
    for (const Change* change : leaving) {
        if (isUnbidden(change->kind) && change->always()) unbidden += *change->probability;
    }
    for (Change* change : leaving) {
        if (!change->probability) change->probability = std::max(0.0, 1 - unbidden);
    }
}

bool checkLeaves(ChangeKind kind, const std::string& from, const std::string& to,
                 const std::string& elsewhere, const PlaceHandle& target)
{
    if (!isUnbidden(kind) || from != to) return true;
    target.report("a " + std::string(word(kind)) + " that leads from " + text::quoted(from) +
                      " to itself",
                  elsewhere);
    return false;
}

bool checkMends(ChangeKind kind, const std::string& to, bool isFault, const PlaceHandle& target)
{
    if (kind != ChangeKind::repair || !isFault) return true;
    target.report("a repair that leads to " + text::quoted(to) + ", which is a fault",
                  "a value that is not a fault");
    return false;
}

bool checkGuard(const std::vector<Conjunction>& alternatives, const PlaceHandle& at)
{
    if (std::any_of(alternatives.begin(), alternatives.end(), canHold)) return true;
    at.report("this guard can never hold", std::string(at.words().guardThatHolds));
    return false;
}

} // namespace plant
