// What happens to the active model over several steps, drawn at random.
#pragma once

#include "tests/reference/BruteForceTrajectories.h"
#include "tests/support/RandomPlant.h"

#include "monitor/track/Tracker.h"

#include <gtest/gtest.h>

/// How often something is the case, in percent.
struct TrackOdds {
    int deviating = 15; ///< a mode goes another way than expected
    int observed = 70;
    int noise = 3; ///< a reading is drawn at random
    int lossy = 0; ///< a command may be lost; then half of them are
};

class RandomTrack {
public:
    RandomTrack(Random& random, const TrackOdds& odds);

    TrajectoryStep next();

private:
    std::vector<const Atom*> drawModes(const std::vector<const Atom*>& commands);

    Random& random_;
    TrackOdds odds_;
    std::vector<const Atom*> world_; ///< modes, and conditions where they are known
};

/// The same for the monitor. Steps count from 1, each takes 10 seconds.
monitor::TrackInput trackInput(const ActivePlant& active, const TrajectoryStep& step,
                               std::size_t number);

/// Follows a random plant of either kind for some steps, and calls `visit(active, hypothesis, input)` for each hypothesis before each of them.
template <typename Visit> void followRandomPlant(std::uint64_t seed, Visit visit)
{
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    ActivePlant active(randomModel(random, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed));
    RandomTrack track(random, {.deviating = 20});
    monitor::Tracker tracker(active.engine, *active.plant, {.maxFaults = 2, .keep = 5});
    for (std::size_t number = 1; number <= 6; ++number) {
        const monitor::TrackInput input = trackInput(active, track.next(), number);
        for (const monitor::HypothesisPointer& hypothesis : tracker.memory().hypotheses) {
            visit(active, *hypothesis, input);
        }
        tracker.advance(input);
    }
}
