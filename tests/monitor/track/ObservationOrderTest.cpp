// The observations of a step are given in one order and in another: what is believed is the same.
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/Sanitized.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace {

using monitor::TrackAnswer;
using monitor::Tracker;
using monitor::TrackStatus;

std::map<std::vector<plant::AtomIndex>, double> probabilities(const TrackAnswer& answer)
{
    std::map<std::vector<plant::AtomIndex>, double> result;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        result[answer.hypotheses[i]->modes.toVector()] = answer.probabilities[i];
    }
    return result;
}

void shuffle(Random& random, std::vector<plant::AtomIndex>& values)
{
    for (std::size_t i = values.size(); i > 1; --i) {
        std::swap(values[i - 1], values[random.below(i)]);
    }
}

class ObservationOrder : public testing::Test {
protected:
    // Steps until one is not searched to its end in either order, or nothing explains it: what contradicts a prediction may then be
    // one reading or another.
    void compare(std::uint64_t seed, PlantKind kind)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        RandomTrack track(random, {.observed = 80});
        const monitor::TrackSettings settings{.maxFaults = 2, .keep = 1000, .lookBack = 0};
        Tracker one(active.engine, *active.plant, settings);
        Tracker other(active.engine, *active.plant, settings);
        for (std::size_t number = 1; number <= 5; ++number) {
            monitor::TrackInput input = trackInput(active, track.next(), number);
            const TrackAnswer answer = one.advance(input);
            shuffle(random, input.values.observations);
            other.advance(input);
            if (!answer.complete || !other.answer().complete) {
                return;
            }
            ASSERT_EQ(answer.status, other.answer().status);
            if (answer.status == TrackStatus::inconsistent) {
                return;
            }
            const auto expected = probabilities(answer);
            const auto found = probabilities(other.answer());
            ASSERT_EQ(expected.size(), found.size());
            for (const auto& [modes, probability] : expected) {
                ASSERT_TRUE(found.contains(modes));
                EXPECT_NEAR(found.at(modes), probability, 1e-9);
            }
            ++steps_;
            several_ += expected.size() > 1 ? 1 : 0;
        }
    }

    MutedTrace muted_;
    int steps_ = 0;
    int several_ = 0;
};

TEST_F(ObservationOrder, MakesNoDifference)
{
    for (std::uint64_t seed = 1; seed <= fewerUnderSanitizers(1000U); ++seed) {
        compare(seed, seed % 2 == 0 ? PlantKind::mixed : PlantKind::circuit);
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(2000));
    EXPECT_GT(several_, fewerUnderSanitizers(200));
}

} // namespace
