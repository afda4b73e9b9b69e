// The sentences are compared as wholes: people read them.
#include "report/Verdict.h"
#include "tests/report/Diagnoses.h"

#include <gtest/gtest.h>

using report::verdict;

TEST(Verdict, OfNoFault)
{
    EXPECT_EQ(verdict(answer(1, {faulty(1.0, {})})),
              "No fault: the circuit gives these outputs when every gate works.");
}

TEST(Verdict, OfTheOnlyFault)
{
    EXPECT_EQ(verdict(answer(1, {faulty(1.0, {"a"})})),
              "Only a fault of a explains the outputs. The search was complete: no other single "
              "fault explains them.");
}

TEST(Verdict, OfTheOnlyPair)
{
    EXPECT_EQ(verdict(answer(2, {faulty(1.0, {"a", "b"})})),
              "Only faults of a and b together explain the outputs. The search was complete: no "
              "single fault explains "
              "them, and no other two do.");
}

TEST(Verdict, OfEqualExplanations)
{
    EXPECT_EQ(verdict(answer(1, {faulty(0.5, {"a"}), faulty(0.5, {"b"})})),
              "2 explanations, all equally probable. The search was complete: no other single "
              "fault explains them.");
}

TEST(Verdict, OfUnequalExplanationsOfThreeFaults)
{
    EXPECT_EQ(verdict(answer(3, {faulty(0.75, {"a", "b", "c"}), faulty(0.25, {"a", "b", "d"})})),
              "2 explanations; the first has 75.0 % of the probability. The search was complete: "
              "no fewer than 3 faults "
              "explain them, and no other 3 do.");
}

TEST(Verdict, OfExplanationsOfDifferentSizes)
{
    EXPECT_EQ(verdict(answer(2, {faulty(0.9, {"a"}), faulty(0.1, {"b", "c"})})),
              "2 explanations; the first has 90.0 % of the probability. The search was complete: "
              "every other explanation "
              "with up to 2 faults contains one of these.");
}

TEST(Verdict, OfNothingFound)
{
    EXPECT_EQ(verdict(answer(0, {})), "Without a fault these outputs are not possible: the search "
                                      "was complete. --max-rank 1 searches further.");
    EXPECT_EQ(verdict(answer(1, {})), "No single fault explains the outputs: the search was "
                                      "complete. --max-rank 2 searches further.");
    EXPECT_EQ(verdict(answer(3, {})), "No 3 faults or fewer explain the outputs: the search was "
                                      "complete. --max-rank 4 searches further.");
}

TEST(Verdict, OfACutSearchNamesWhatCutIt)
{
    EXPECT_EQ(verdict(cutAnswer(SearchLimit::seconds, 2, {})),
              "The search for up to 2 faulty gates ran out of time (--max-seconds): nothing was "
              "found until then.");
    EXPECT_EQ(
        verdict(cutAnswer(SearchLimit::records, 1, {})),
        "The search for one faulty gate was cut by --max-records: nothing was found until then.");
    EXPECT_EQ(verdict(cutAnswer(SearchLimit::stopped, 2, {})),
              "The search for up to 2 faulty gates was interrupted: nothing was found until then.");
    EXPECT_EQ(
        verdict(cutAnswer(SearchLimit::none, 2, {})),
        "The search for up to 2 faulty gates was not complete: nothing was found until then.");
}

TEST(Verdict, OfACutSearchDoesNotSayOnly)
{
    EXPECT_EQ(verdict(cutAnswer(SearchLimit::seconds, 1, {faulty(1.0, {"a"})})),
              "A fault of a explains the outputs. The search for one faulty gate ran out of time "
              "(--max-seconds): there "
              "may be further explanations.");
    EXPECT_EQ(verdict(cutAnswer(SearchLimit::seconds, 2, {faulty(1.0, {"a", "b"})})),
              "Faults of a and b together explain the outputs. The search for up to 2 faulty gates "
              "ran out of time "
              "(--max-seconds): there may be further explanations.");
}
