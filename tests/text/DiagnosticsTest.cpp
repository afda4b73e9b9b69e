#include "text/Diagnostics.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using text::Diagnostic;
using text::Diagnostics;
using text::Place;

Diagnostic at(Place place, const std::string& message)
{
    return text::errorAt({message, "", ""}, "f", place, "a line", 1);
}

std::string messages(const std::vector<Diagnostic>& list)
{
    std::string text;
    for (const Diagnostic& each : list) {
        text += each.message + " ";
    }
    return text;
}

TEST(DiagnosticsTest, GivesErrorsByFileAndPlaceAndThoseOfOnePlaceAsTheyWereAdded)
{
    Diagnostics errors;
    errors.error(1, at({1, 1}, "other"));
    errors.error(0, at({2, 1}, "c"));
    errors.error(0, at({1, 3}, "b"));
    errors.error(0, at({}, "whole"));
    errors.error(0, at({1, 1}, "a"));
    errors.error(0, at({2, 1}, "Before"));
    EXPECT_EQ(messages(errors.takeErrors()), "whole a b c Before other ");
    EXPECT_EQ(messages(errors.takeErrors()), "");
    EXPECT_TRUE(errors.failed());
}

TEST(DiagnosticsTest, PutsErrorsOfAWholeFileLastWhenAskedTo)
{
    Diagnostics errors(Diagnostics::unlimited, Diagnostics::WholeFile::last);
    errors.error(0, at({}, "whole"));
    errors.error(1, at({1, 1}, "other"));
    errors.error(0, at({2, 1}, "a"));
    EXPECT_EQ(messages(errors.takeErrors()), "a whole other ");
}

TEST(DiagnosticsTest, DropsRepetitions)
{
    Diagnostics errors;
    for (int i = 0; i < 3; ++i) {
        errors.error(0, at({1, 1}, "a"));
        errors.error(0, at({1, 2}, "a"));
        errors.error(1, at({1, 1}, "a"));
        errors.error(0, at({1, 1}, "b"));
        errors.warning(0, at({1, 1}, "a"));
    }
    EXPECT_EQ(errors.errorCount(), 4U);
    EXPECT_EQ(messages(errors.takeErrors()), "a b a a ");
    EXPECT_EQ(messages(errors.takeWarnings()), "a ");
}

TEST(DiagnosticsTest, OnlyCountsFromTheLimitOn)
{
    Diagnostics errors(2);
    errors.error(0, at({9, 1}, "a"));
    EXPECT_FALSE(errors.full());
    errors.error(0, at({8, 1}, "b"));
    EXPECT_TRUE(errors.full());
    errors.error(0, at({1, 1}, "c"));
    errors.error(0, at({1, 1}, "c"));
    errors.error(0, at({2, 1}, "d"));
    EXPECT_EQ(errors.errorCount(), 4U);
    EXPECT_EQ(errors.notShown(), 2U);
    EXPECT_EQ(messages(errors.takeErrors()), "b a ");
    EXPECT_EQ(errors.notShown(), 2U);
}

TEST(DiagnosticsTest, KeepsWarningsApart)
{
    Diagnostics both(1);
    both.warning(0, at({2, 1}, "second"));
    both.warning(0, at({1, 1}, "first"));
    EXPECT_FALSE(both.failed());
    EXPECT_FALSE(both.full());
    both.error(0, at({3, 1}, "error"));
    EXPECT_TRUE(both.failed());
    EXPECT_EQ(messages(both.takeWarnings()), "first second ");
    EXPECT_EQ(messages(both.takeErrors()), "error ");
}

TEST(DiagnosticsTest, TellsTheFirstTimeOfAPlace)
{
    Diagnostics errors;
    EXPECT_TRUE(errors.isFirstAt(0, {1, 1}));
    EXPECT_FALSE(errors.isFirstAt(0, {1, 1}));
    EXPECT_TRUE(errors.isFirstAt(1, {1, 1}));
    EXPECT_TRUE(errors.isFirstAt(0, {1, 2}));
    EXPECT_FALSE(errors.failed());
}

TEST(ErrorAt, ShowsTheLineOfAnErrorThatHasOne)
{
    EXPECT_EQ(text::errorAt({"wrong", "right", ""}, "f", {2, 3}, "two", 1).format(),
              "f:2:3: wrong\n  two\n    ^\n  expected: right\n");
    EXPECT_EQ(text::errorAt({"wrong", "", "hint"}, "f", {}, "two", 1).format(),
              "f: wrong\n  hint: hint\n");
}

} // namespace
