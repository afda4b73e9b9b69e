// Standard streams that are closed, or have no room: that is told, and no file is taken for one of them.
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

namespace {

class ClosedStreams : public Workshop {
protected:
    const std::string problem =
        "itms diagnose '" ITMS_ROOT "/examples/circuits/c17.bench'"
        " --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 --outputs G22gat=1";
    const std::string closed = "cannot write to standard output: Bad file descriptor\n[2]\n";
    const std::string full = "cannot write to standard output: No space left on device\n[2]\n";
};

} // namespace

TEST_F(ClosedStreams, AnAnswerThatGoesNowhereIsAnError)
{
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl >&-"), "itms run: " + closed);
    EXPECT_EQ(shell("itms export pipe.itms >&-"), "itms export: " + closed);
    EXPECT_EQ(shell("itms --version >&-"), "itms: " + closed);
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl >/dev/full"), "itms run: " + full);
}

TEST_F(ClosedStreams, ATraceThatGoesNowhereIsAnError)
{
    const std::string told = ": cannot write to standard output\n[2]\n";
    for (const std::string output : {"&-", "/dev/full"}) {
        EXPECT_EQ(shell(problem + " --trace >" + output), "itms diagnose" + told);
        EXPECT_EQ(shell("itms trace pipe.itms day.jsonl --step 3 >" + output), "itms trace" + told);
    }
}

TEST_F(ClosedStreams, NoFileTakesThePlaceOfStandardError)
{
    write("bad.jsonl", "{\"t\": oh}\n");
    EXPECT_EQ(shell("itms run pipe.itms - --skip-bad -o answer <bad.jsonl 2>&-; cat answer"), "");
}

TEST_F(ClosedStreams, NoFileTakesThePlaceOfStandardOutput)
{
    EXPECT_EQ(shell("itms simulate pipe.itms --steps 1 --truth truth >&-; cat truth"),
              "itms simulate: cannot write to standard output: Bad file descriptor\n");
}

TEST_F(ClosedStreams, AClosedStandardInputHasNothing)
{
    EXPECT_EQ(shell("itms run pipe.itms - <&-"),
              "standard input: cannot be read: Bad file descriptor\n[2]\n");
    EXPECT_EQ(shell("itms fmt - <&-"),
              "standard input: cannot be read: Bad file descriptor\n[2]\n");
    EXPECT_EQ(shell("itms fmt - <."), "standard input: cannot be read: Is a directory\n[2]\n");
}

TEST_F(ClosedStreams, AreNotNeededWhereThereIsAFile)
{
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl -o answer <&- >&- 2>&-;"
                    "itms run pipe.itms day.jsonl | cmp - answer"),
              "");
}
