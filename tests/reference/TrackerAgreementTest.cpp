// The tracker's probabilities against the exact filter's, on random plants of classes in which the two agree.
#include "tests/reference/TrackerAgreement.h"

#include <gtest/gtest.h>

namespace {

// On 150 plants; at some steps at least several modes are possible.
void expectAgreement(const WatchedOptions& options, std::uint64_t firstSeed)
{
    const Agreement agreement = compareTracker(options, firstSeed, 150, 6);
    EXPECT_EQ(agreement.differing, 0)
        << agreement.differing << " of " << agreement.steps << " steps differ, by up to "
        << agreement.largest << ", among them\n"
        << agreement.example;
    EXPECT_GT(agreement.steps, 800);
    EXPECT_GT(agreement.several, 200);
}

TEST(TrackerAgreement, IsExactWhereEveryChangeShowsAndEveryConditionFollows)
{
    expectAgreement({}, 0);
}

TEST(TrackerAgreement, IsExactWhereAnOpenInputIsReadInAnyPlace)
{
    expectAgreement({.shuffled = true, .supply = true}, 1000);
}

TEST(TrackerAgreement, IsExactWhereGuardsReadConditionsThatBeginWithAValue)
{
    expectAgreement({.initialValues = true, .conditionGuards = true}, 2000);
}

TEST(TrackerAgreement, IsExactWhereItShowsWhichOfTwoCommandsWereLost)
{
    expectAgreement({.mostParts = 2, .lostPercent = 80, .echoes = true}, 3000);
}

TEST(TrackerAgreement, IsExactWhereAllOfThatComesTogether)
{
    expectAgreement({.mostParts = 2,
                     .lostPercent = 80,
                     .echoes = true,
                     .initialValues = true,
                     .shuffled = true,
                     .conditionGuards = true,
                     .supply = true},
                    4000);
}

} // namespace
