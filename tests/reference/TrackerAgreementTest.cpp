// The tracker's probabilities against the exact filter's, on random plants of a class in which the two agree.
#include "tests/reference/TrackerAgreement.h"

#include <gtest/gtest.h>

namespace {

void expectAgreement(const Agreement& agreement)
{
    EXPECT_EQ(agreement.differing, 0) << "by up to " << agreement.largest << ", among them\n"
                                      << agreement.example;
}

TEST(TrackerAgreement, IsExactWhereEveryChangeShowsAndEveryConditionFollows)
{
    const Agreement agreement = compareTracker({}, 0, 150, 6);
    expectAgreement(agreement);
    EXPECT_GT(agreement.steps, 600);
    EXPECT_GT(agreement.several, 200);
}

} // namespace
