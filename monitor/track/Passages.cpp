#include "monitor/track/Passages.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

// What was believed after a past step.
std::vector<HypothesisPointer>& believedAfter(std::size_t step, std::deque<PastStep>& past,
                                              std::vector<HypothesisPointer>& now)
{
    return step + 1 < past.size() ? past[step + 1].before : now;
}

void addWeight(HypothesisPointer& hypothesis, double logWeight)
{
    auto heavier = std::make_shared<Hypothesis>(*hypothesis);
    heavier->logWeight = logOfSum(heavier->logWeight, logWeight);
    hypothesis = std::move(heavier);
}

} // namespace

double logOfSum(double a, double b)
{
    const double larger = std::max(a, b);
    if (std::isinf(larger)) {
        return larger;
    }
    return larger + std::log1p(std::exp(std::min(a, b) - larger));
}

std::vector<std::pair<SharedArray<AtomIndex>, std::vector<AtomIndex>>> Way::steps() const
{
    std::vector<std::pair<SharedArray<AtomIndex>, std::vector<AtomIndex>>> all;
    for (const Hypothesis& after : path) {
        all.emplace_back(after.modes, after.lost);
    }
    all.emplace_back(modes, lost);
    return all;
}

std::size_t placeOf(const Plant& plant, const std::vector<HypothesisPointer>& hypotheses,
                    const Hypothesis& wanted)
{
    const auto found = std::find_if(hypotheses.begin(), hypotheses.end(),
                                    [&](const HypothesisPointer& hypothesis) {
                                        return haveSameFuture(plant, *hypothesis, wanted);
                                    });
    return static_cast<std::size_t>(found - hypotheses.begin());
}

Way withoutKnownBeginning(const Plant& plant, Way way, const std::deque<PastStep>& past,
                          const std::vector<HypothesisPointer>& now)
{
    std::size_t known = 0;
    for (const Hypothesis& after : way.path) {
        const std::size_t step = way.begin + known;
        const std::vector<HypothesisPointer>& believed =
            step + 1 < past.size() ? past[step + 1].before : now;
        const std::size_t to = placeOf(plant, believed, after);
        if (!past[step].passages.contains({way.parent, to, after.lost})) {
            break;
        }
        way.parent = to;
        ++known;
    }
    way.begin += known;
    way.path.erase(way.path.begin(), way.path.begin() + static_cast<std::ptrdiff_t>(known));
    return way;
}

std::optional<std::size_t> enter(const Plant& plant, const Way& way, std::deque<PastStep>& past,
                                 std::vector<HypothesisPointer>& now, std::size_t most)
{
    std::size_t from = way.parent;
    for (std::size_t i = 0; i < way.path.size(); ++i) {
        const Hypothesis& after = way.path[i];
        std::vector<HypothesisPointer>& believed = believedAfter(way.begin + i, past, now);
        const std::size_t to = placeOf(plant, believed, after);
        Passage passage{from, to, after.lost};
        std::set<Passage>& passages = past[way.begin + i].passages;
        if (to == believed.size()) {
            if (believed.size() >= most) {
                return std::nullopt;
            }
            believed.push_back(std::make_shared<const Hypothesis>(after));
        } else if (!passages.contains(passage)) {
            addWeight(believed[to], after.logWeight);
        }
        passages.insert(std::move(passage));
        from = to;
    }
    return from;
}

} // namespace monitor
