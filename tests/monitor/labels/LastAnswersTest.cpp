#include "monitor/labels/LastAnswers.h"

#include <gtest/gtest.h>
#include <string>

namespace {

class LastAnswersTest : public testing::Test {
protected:
    // Each answer says the how many-th it is.
    std::string ask(const std::string& question)
    {
        return answers_.to(question, [this](const std::string& asked) {
            return asked + std::to_string(++found_);
        });
    }

    monitor::LastAnswers<std::string, std::string> answers_{2};
    int found_ = 0;
};

TEST_F(LastAnswersTest, FindsTheAnswerToAQuestionOnce)
{
    EXPECT_EQ(ask("a"), "a1");
    EXPECT_EQ(ask("b"), "b2");
    EXPECT_EQ(ask("a"), "a1");
    EXPECT_EQ(ask("b"), "b2");
}

TEST_F(LastAnswersTest, ForgetsTheOldestOne)
{
    ask("a");
    ask("b");
    EXPECT_EQ(ask("c"), "c3");
    EXPECT_EQ(ask("b"), "b2");
    EXPECT_EQ(ask("c"), "c3");
    EXPECT_EQ(ask("a"), "a4");
}

TEST_F(LastAnswersTest, KeepsNothingOfAQuestionWithoutAnswer)
{
    EXPECT_THROW(answers_.to("a", [](const std::string&) -> std::string { throw 1; }), int);
    EXPECT_EQ(ask("a"), "a1");
}

} // namespace
