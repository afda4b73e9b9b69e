#include "assess/Labels.h"

#include "tests/assess/Lamps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

class Labels : public testing::Test {
protected:
    assess::LabelsRead read(const std::string& text, const std::string& timeFormat = {})
    {
        const auto source = lines(text);
        return assess::readLabels(*source, session_.plant(), timeFormat);
    }
    std::string errorOf(const std::string& text)
    {
        const assess::LabelsRead result = read(text);
        return result.errors.empty() ? "" : result.errors.front().format();
    }

    session::Session session_ = lamps();
};

} // namespace

TEST_F(Labels, NameAComponentAModeAValueOrNothingInParticular)
{
    const auto labels =
        read("start,end,what\n1,2,hall.lamp\n2,3,yard.state\n3,4,yard.state = dim\n4,5,fault\n").labels;
    ASSERT_EQ(labels.size(), 4U);
    EXPECT_EQ(labels[0].modes.size(), 1U);
    EXPECT_TRUE(labels[0].values.empty());
    EXPECT_EQ(labels[1].modes.size(), 1U);
    EXPECT_NE(labels[0].modes, labels[1].modes);
    EXPECT_EQ(labels[2].values.size(), 1U);
    EXPECT_TRUE(labels[3].isFaultOnly());
    EXPECT_EQ(labels[3].line, 5U);
}

TEST_F(Labels, OfAComponentMeanItsPartsToo)
{
    const auto labels = read("start,end,what\n1,2,hall\n").labels;
    ASSERT_EQ(labels.size(), 1U);
    EXPECT_EQ(labels[0].modes.size(), 1U);
}

TEST_F(Labels, LastToTheEndWithoutAnEndAndNotUpToTheirEndWithOne)
{
    const auto labels = read("what,end,start,note\nfault,,10,a\nfault,20,10,b\n").labels;
    ASSERT_EQ(labels.size(), 2U);
    EXPECT_TRUE(labels[0].contains(1e9));
    EXPECT_TRUE(labels[1].contains(10));
    EXPECT_FALSE(labels[1].contains(20));
}

TEST_F(Labels, HaveTimesOfTheTelemetrysFormOrOfIso)
{
    const auto labels =
        read("start,end,what\n05/01/2024 12:00,2024-05-01T13:00:00Z,fault\n", "%m/%d/%Y %H:%M").labels;
    ASSERT_EQ(labels.size(), 1U);
    EXPECT_EQ(labels[0].end - labels[0].start, 3600);
}

TEST_F(Labels, ReportAnUnknownPartWithItsPlaceAndTheNearestName)
{
    EXPECT_EQ(errorOf("start,end,what\n1,2,hall.lmap\n"),
              R"(lines.csv:2:5: 'hall.lmap' is not known to the model
  1,2,hall.lmap
      ^~~~~~~~~
  expected: a component, COMPONENT.MODE, COMPONENT.MODE = VALUE, or the word fault
  hint: did you mean 'hall/lamp'?
)");
}

TEST_F(Labels, ReportAnUnknownValue)
{
    EXPECT_THAT(errorOf("start,end,what\n1,2,yard.state = burned\n"),
                testing::HasSubstr("hint: did you mean 'burnt'?"));
}

TEST_F(Labels, ReportAConditionInPlaceOfAMode)
{
    EXPECT_THAT(errorOf("start,end,what\n1,2,yard.light\n"),
                testing::HasSubstr("lines.csv:2:5: 'yard.light' is no mode"));
}

TEST_F(Labels, ReportTimesThatAreNoneOrDoNotRise)
{
    EXPECT_THAT(errorOf("start,end,what\nsoon,2,yard\n"), testing::HasSubstr("the time is 'soon'"));
    EXPECT_THAT(errorOf("start,end,what\n2,2,yard\n"),
                testing::HasSubstr("lines.csv:2:3: the end is not after the start"));
}

TEST_F(Labels, ReportAMissingColumnARowThatIsTooShortAndAnEmptyFile)
{
    EXPECT_THAT(errorOf("start,ende,what\n1,2,yard\n"),
                testing::HasSubstr("there is no column 'end'"));
    EXPECT_THAT(errorOf("start,end,what\n1,2\n"), testing::HasSubstr("this row has 2 cells"));
    EXPECT_THAT(errorOf(""), testing::HasSubstr("the file is empty"));
    EXPECT_THAT(errorOf("start,end,what\n"), testing::HasSubstr("there is no label"));
}

TEST_F(Labels, AreReportedInUtf8WhateverIsInThem)
{
    EXPECT_THAT(errorOf("start,en\xff,what\n1,2,yard\n"), testing::HasSubstr("hint: rename 'en?'"));
}

TEST_F(Labels, AreNoneWhereOneIsInError)
{
    const auto result = read("start,end,what\n1,2,yard\n1,2,garden\n2,1,yard\n");
    EXPECT_TRUE(result.labels.empty());
    EXPECT_EQ(result.errors.size(), 2U);
}
