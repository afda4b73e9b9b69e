// What happens to the active model over several steps, drawn at random.
#pragma once

#include "tests/reference/BruteForceTrajectories.h"
#include "tests/support/RandomPlant.h"

#include "monitor/track/Tracker.h"

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
