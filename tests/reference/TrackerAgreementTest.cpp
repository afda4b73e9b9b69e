// The tracker's probabilities against the exact filter's, on random plants of many classes.
#include "tests/reference/TrackerAgreement.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// On 150 plants; at some steps at least several modes are possible.
void expectAgreement(const WatchedOptions& options, std::uint64_t firstSeed)
{
    const Agreement agreement = compareTracker(options, firstSeed, fewerUnderSanitizers(150), 6);
    EXPECT_EQ(agreement.differing, 0)
        << agreement.differing << " of " << agreement.steps << " steps differ, by up to "
        << agreement.largest << ", among them\n"
        << agreement.example;
    EXPECT_GT(agreement.steps, fewerUnderSanitizers(800));
    EXPECT_GT(agreement.several, underSanitizers ? 5 : 60);
}

TEST(TrackerAgreement, IsExactWhereEveryChangeShowsAndEveryConditionFollows)
{
    expectAgreement({}, 0);
}

TEST(TrackerAgreement, IsExactWhereAnOpenInputIsReadInAnyPlace)
{
    expectAgreement({.shuffled = true, .supply = true}, 1000);
}

TEST(TrackerAgreement, IsExactWhereGuardsReadConditions)
{
    expectAgreement({.conditionGuards = true}, 2000);
}

TEST(TrackerAgreement, IsExactWhereGuardsHaveAlternatives)
{
    expectAgreement({.conditionGuards = true, .disjunctiveGuards = true}, 3000);
}

TEST(TrackerAgreement, IsExactWhereFaultsLeaveGaugesOpen)
{
    expectAgreement({.gaugesPercent = 60, .shuffled = true, .openConditions = true}, 4000);
}

TEST(TrackerAgreement, IsExactWhereAConditionFollowsByCases)
{
    expectAgreement({.gaugesPercent = 60, .shuffled = true, .lawsByCases = true}, 5000);
}

TEST(TrackerAgreement, IsExactWhereItShowsWhichOfTwoCommandsWereLost)
{
    expectAgreement({.mostParts = 2, .lostPercent = 80, .echoes = true}, 6000);
}

TEST(TrackerAgreement, IsExactWhereReadingsAreExpectedAgain)
{
    expectAgreement({.gaugesPercent = 60,
                     .shuffled = true,
                     .openConditions = true,
                     .lawsByCases = true,
                     .readingsInTime = true},
                    8000);
}

TEST(TrackerAgreement, IsExactWhereCommandsAreNotGiven)
{
    expectAgreement({.givenPercent = 60, .conditionGuards = true, .disjunctiveGuards = true}, 9000);
}

TEST(TrackerAgreement, IsExactWhereChangesAreNotSeen)
{
    expectAgreement(
        {.mostParts = 2, .observedPercent = 60, .unreadPercent = 20, .unseenChanges = true}, 10000);
}

TEST(TrackerAgreement, IsExactWhereGuardsAreOpen)
{
    expectAgreement({.mostParts = 2,
                     .observedPercent = 60,
                     .gaugesPercent = 60,
                     .openConditions = true,
                     .conditionGuards = true,
                     .disjunctiveGuards = true,
                     .lawsByCases = true},
                    11000);
}

TEST(TrackerAgreement, IsExactWhereNothingTellsWhichCommandsWereLost)
{
    expectAgreement({.mostParts = 2, .observedPercent = 60, .lostPercent = 80}, 12000);
}

// Everything that there is, but for wrong readings.
WatchedOptions everything(bool readingsInTime)
{
    return {.mostParts = 2,
            .observedPercent = 60,
            .gaugesPercent = 60,
            .unreadPercent = 20,
            .givenPercent = 80,
            .lostPercent = 50,
            .echoes = true,
            .initialValues = true,
            .shuffled = true,
            .unseenChanges = true,
            .openConditions = true,
            .conditionGuards = true,
            .disjunctiveGuards = true,
            .lawsByCases = true,
            .readingsInTime = readingsInTime,
            .supply = true};
}

TEST(TrackerAgreement, IsExactWhereReadingsMayBeWrong)
{
    expectAgreement({.mostParts = 2, .observedPercent = 80, .misreadPercent = 50}, 15000);
}

TEST(TrackerAgreement, IsExactWhereReadingsOfEveryKindOfPlantMayBeWrong)
{
    WatchedOptions options = everything(true);
    options.mostParts = 1;
    options.misreadPercent = 30;
    expectAgreement(options, 16000);
}

TEST(TrackerAgreement, IsExactOnPlantsOfEveryKind)
{
    expectAgreement(everything(false), 13000);
}

TEST(TrackerAgreement, IsExactOnPlantsOfEveryKindWithReadingsInTime)
{
    expectAgreement(everything(true), 14000);
}

// Of the steps at which a tracker as it is when nothing is asked for believes in something else than what is most probable there is at
// most one in a thousand.
TEST(TrackerAgreement, TheMostProbableModesAreFirstUnderUsualSettings)
{
    const WatchedOptions plain{.rareFaults = true, .supply = true};
    WatchedOptions unseen = plain;
    unseen.mostParts = 2;
    unseen.observedPercent = 80;
    unseen.unreadPercent = 10;
    unseen.unseenChanges = true;
    WatchedOptions open = plain;
    open.mostParts = 2;
    open.observedPercent = 90;
    open.openConditions = open.conditionGuards = open.disjunctiveGuards = true;
    open.lawsByCases = open.readingsInTime = true;
    WatchedOptions lossy = plain;
    lossy.mostParts = 2;
    lossy.observedPercent = 90;
    lossy.lostPercent = 50;
    WatchedOptions misread = plain;
    misread.mostParts = 1;
    misread.observedPercent = 60;
    misread.misreadPercent = 30;
    int steps = 0;
    int faulty = 0;
    int differing = 0;
    std::string example;
    for (const WatchedOptions& options : {plain, unseen, open, lossy, misread}) {
        const BestAgreement best = compareBest(options, 60000, fewerUnderSanitizers(300), 10);
        steps += best.steps;
        faulty += best.faulty;
        differing += best.differing;
        example = best.example.empty() ? example : best.example;
    }
    // Where one plant differs it may do so for all of its ten steps.
    EXPECT_LE(differing, std::max(10, steps / 1000)) << example;
    EXPECT_GT(faulty, steps / 50);
}

TEST(TrackerAgreement, IsExactWhereAllOfThatComesTogether)
{
    expectAgreement({.mostParts = 2,
                     .lostPercent = 80,
                     .echoes = true,
                     .shuffled = true,
                     .openConditions = true,
                     .conditionGuards = true,
                     .disjunctiveGuards = true,
                     .supply = true},
                    7000);
}

} // namespace
