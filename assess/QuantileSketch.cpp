#include "assess/QuantileSketch.h"

#include <algorithm>

namespace assess {

void QuantileSketch::add(double value)
{
    least_ = count_ == 0 ? value : std::min(least_, value);
    most_ = count_ == 0 ? value : std::max(most_, value);
    ++count_;
    if (levels_.empty()) levels_.emplace_back();
    levels_.front().values.push_back(value);
    for (std::size_t level = 0; levels_[level].values.size() >= buffer_; ++level) {
        promote(level);
    }
}

// A full buffer is emptied when it is full, so those of all levels have fewer values than that.
void QuantileSketch::promote(std::size_t level)
{
    if (level + 1 == levels_.size()) levels_.emplace_back();
    Level& from = levels_[level];
    std::sort(from.values.begin(), from.values.end());
    for (std::size_t i = from.takesOdd ? 1 : 0; i < from.values.size(); i += 2) {
        levels_[level + 1].values.push_back(from.values[i]);
    }
    from.values.clear();
    from.takesOdd = !from.takesOdd;
    ++from.promotions;
}

std::vector<std::pair<double, double>> QuantileSketch::weighted() const
{
    std::vector<std::pair<double, double>> all;
    double weight = 1;
    for (const Level& level : levels_) {
        for (const double value : level.values) {
            all.emplace_back(value, weight);
        }
        weight *= 2;
    }
    std::sort(all.begin(), all.end());
    return all;
}

std::vector<double> QuantileSketch::quantiles(const std::vector<double>& shares) const
{
    const auto all = weighted();
    std::vector<double> found;
    double below = 0;
    std::size_t at = 0;
    for (const double share : shares) {
        const double wanted = share * static_cast<double>(count_);
        while (at + 1 < all.size() && below + all[at].second < wanted) {
            below += all[at++].second;
        }
        found.push_back(share <= 0 ? least_ : share >= 1 ? most_ : all[at].first);
    }
    return found;
}

double QuantileSketch::shareBelow(double limit) const
{
    double below = 0;
    for (const auto& [value, weight] : weighted()) {
        if (value < limit) below += weight;
    }
    return count_ == 0 ? 0 : below / static_cast<double>(count_);
}

// Leaving out every other value of a sorted buffer moves a rank by the weight of one value at most.
double QuantileSketch::rankError() const
{
    double off = 0;
    double weight = 1;
    for (const Level& level : levels_) {
        off += level.promotions == 0 ? 0 : weight * static_cast<double>(level.promotions);
        weight *= 2;
    }
    return count_ == 0 ? 0 : off / static_cast<double>(count_);
}

} // namespace assess
