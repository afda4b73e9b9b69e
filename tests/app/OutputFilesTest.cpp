// What becomes of the files that are written when a run is refused, fails, or is not alone.
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

class OutputFiles : public Workshop {
protected:
    /// Runs a command beside a run that waits for telemetry and has its files.
    std::string beside(const std::string& live, const std::string& command) const
    {
        return shell("mkfifo input; " + live +
                     " <input & exec 9>input; echo '{\"t\": 0}' >&9; "
                     "until [ -s answer ]; do sleep 0.01; done; " +
                     command + "; exec 9>&-; wait; rm input");
    }
};

} // namespace

TEST_F(OutputFiles, StayWhenTheModelIsRefused)
{
    write("answer", "precious\n");
    write("bad.itms", "system X { }\n");
    EXPECT_THAT(shell("itms run bad.itms day.jsonl -o answer"), EndsWith("1 error\n[2]\n"));
    EXPECT_EQ(read("answer"), "precious\n");
}

TEST_F(OutputFiles, StayWhenTheFirstStepIsRefused)
{
    write("answer", "precious\n");
    write("bad.jsonl", "{\"t\": oh}\n");
    for (const std::string format : {"table", "jsonl", "json"}) {
        EXPECT_THAT(shell("itms run pipe.itms bad.jsonl -o answer --format " + format),
                    StartsWith("bad.jsonl:1:7: "));
        EXPECT_EQ(read("answer"), "precious\n") << format;
    }
}

TEST_F(OutputFiles, StayWhenTheTelemetryIsNotThere)
{
    write("answer", "precious\n");
    EXPECT_EQ(shell("itms run pipe.itms none.jsonl -o answer"),
              "none.jsonl: cannot be read: No such file or directory\n[2]\n");
    EXPECT_EQ(read("answer"), "precious\n");
}

TEST_F(OutputFiles, StayWhenTheCheckpointIsRefused)
{
    write("answer", "precious\n");
    write("memory", "mine\n");
    EXPECT_THAT(shell("itms run pipe.itms day.jsonl -o answer --checkpoint memory --resume"),
                StartsWith("memory: is no checkpoint\n"));
    EXPECT_EQ(read("answer"), "precious\n");
    EXPECT_EQ(read("memory"), "mine\n");
    EXPECT_THAT(names(), ElementsAre("answer", "day.jsonl", "memory", "pipe.itms"));
}

TEST_F(OutputFiles, AreNotMadeForARunThatIsRefused)
{
    write("bad.jsonl", "{\"t\": oh}\n");
    ASSERT_EQ(shell("ln -s new link"), "");
    shell("itms run pipe.itms bad.jsonl -o answer --checkpoint memory");
    shell("itms run pipe.itms bad.jsonl -o link");
    EXPECT_THAT(names(), ElementsAre("bad.jsonl", "day.jsonl", "link", "pipe.itms"));
}

TEST_F(OutputFiles, StayWhenNoStepCameBeforeTheEnd)
{
    write("answer", "precious\n");
    ASSERT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint memory > /dev/null"), "");
    const std::string memory = read("memory");
    EXPECT_EQ(
        shell("mkfifo input; itms run pipe.itms - -o answer --checkpoint memory <input & exec "
              "9>input;"
              "until [ -e memory.lock ]; do sleep 0.01; done; "
              "while kill -HUP $! 2>/dev/null; do sleep 0.1; done; wait $!; echo $?; rm input"),
        "130\n");
    EXPECT_EQ(read("answer"), "precious\n");
    EXPECT_EQ(read("memory"), memory);
    EXPECT_THAT(names(), ElementsAre("answer", "day.jsonl", "memory", "pipe.itms"));
}

TEST_F(OutputFiles, AreEmptiedByARunWithoutAnAnswer)
{
    write("answer", "old\n");
    EXPECT_EQ(shell("itms run pipe.itms /dev/null -o answer"), "");
    EXPECT_EQ(read("answer"), "");
}

TEST_F(OutputFiles, OfTheTruthStayWhenTheFirstStepIsRefused)
{
    write("truth", "precious\n");
    write("bad.jsonl", "{\"t\": oh}\n");
    EXPECT_THAT(shell("itms simulate pipe.itms bad.jsonl --truth truth"),
                StartsWith("bad.jsonl:1:7: "));
    EXPECT_EQ(read("truth"), "precious\n");
}

TEST_F(OutputFiles, OfAnExportAreReplacedAsAWhole)
{
    write("old.json", "precious\n");
    EXPECT_EQ(shell("ulimit -f 1; itms export pipe.itms -o old.json"),
              "old.json: cannot be written: File too large\n[2]\n");
    EXPECT_EQ(read("old.json"), "precious\n");
    EXPECT_THAT(names(), ElementsAre("day.jsonl", "old.json", "pipe.itms"));
}

TEST_F(OutputFiles, OfARunSayWhenThereIsNoRoom)
{
    EXPECT_EQ(shell("ulimit -f 1; itms simulate pipe.itms | itms run pipe.itms - -o answer"),
              "answer: cannot be written: File too large\n[2]\n");
    EXPECT_EQ(shell("ulimit -f 1; itms run pipe.itms day.jsonl --checkpoint memory >/dev/null"),
              "memory: cannot be written: File too large\n[2]\n");
    EXPECT_THAT(names(), ElementsAre("answer", "day.jsonl", "pipe.itms"));
}

TEST_F(OutputFiles, MayBeAPipe)
{
    EXPECT_EQ(shell("itms export pipe.itms -o /dev/stdout | cmp - <(itms export pipe.itms)"), "");
    EXPECT_EQ(
        shell("itms export pipe.itms -o >(cat >copy); wait $!; itms export pipe.itms | cmp - copy"),
        "");
}

TEST_F(OutputFiles, BelongToOneRunAtATime)
{
    const std::string told =
        beside("itms run pipe.itms - -o answer", "itms run pipe.itms day.jsonl -o answer; echo $?");
    EXPECT_THAT(told, MatchesRegex("answer: another run is writing to it, process [0-9]+\n"
                                   "  expected: another file for -o, or the end of that run\n2\n"));
    EXPECT_THAT(read("answer"), StartsWith("{\"v\":2,\"step\":1,\"t\":0.0,"));
}

TEST_F(OutputFiles, CheckpointsBelongToOneRunAtATime)
{
    const std::string told = beside("itms run pipe.itms - -o answer --checkpoint memory",
                                    "ln -s memory link; ls;"
                                    "itms run pipe.itms day.jsonl --checkpoint link; echo $?");
    EXPECT_THAT(told,
                MatchesRegex("answer\nday.jsonl\ninput\nlink\nmemory.lock\npipe.itms\n"
                             "link: another run is writing to it, process [0-9]+\n  expected: "
                             "another file for --checkpoint, or the end of that run\n2\n"));
    EXPECT_THAT(names(), ElementsAre("answer", "day.jsonl", "link", "memory", "pipe.itms"));
}

TEST_F(OutputFiles, ALockThatWasLeftBlocksNobody)
{
    write("memory.lock", "");
    EXPECT_THAT(shell("itms run pipe.itms day.jsonl --checkpoint memory >answer"), "");
    EXPECT_THAT(names(), ElementsAre("answer", "day.jsonl", "memory", "pipe.itms"));
}

TEST_F(OutputFiles, AFileThatHasTheNameOfALockStays)
{
    write("memory.lock", "mine\n");
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint memory"),
              "memory.lock: cannot be locked: is there, and is no lock\n"
              "  expected: a place for the checkpoint\n[2]\n");
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint memory -o memory.lock"),
              "memory.lock: is both the answer and the lock of the checkpoint\n"
              "  expected: another file for --checkpoint\n[2]\n");
    EXPECT_EQ(read("memory.lock"), "mine\n");
}

TEST_F(OutputFiles, NoNameIsATemporaryOne)
{
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl -o memory.new --checkpoint memory"), "");
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl | cmp - memory.new"), "");
    EXPECT_THAT(read("memory"), HasSubstr("itms-checkpoint"));
}

TEST_F(OutputFiles, ThePlaceOfACheckpointIsLookedAtFirst)
{
    const std::string run = "itms run pipe.itms day.jsonl --checkpoint ";
    const std::string expected = "\n  expected: a place for the checkpoint\n[2]\n";
    EXPECT_EQ(shell(run + "''"),
              "itms run: --checkpoint: found ''; expected the name of a file\n[2]\n");
    EXPECT_EQ(shell(run + "-"),
              "itms run: --checkpoint: found '-'; expected the name of a file\n[2]\n");
    EXPECT_EQ(shell(run + "."), ".: cannot be written: Is a directory" + expected);
    EXPECT_EQ(shell(run + "none/memory"),
              "none/memory: cannot be written: No such file or directory" + expected);
    EXPECT_EQ(shell(run + "day.jsonl/memory"),
              "day.jsonl/memory: cannot be written: Not a directory" + expected);
    ASSERT_EQ(shell("mkfifo pipe"), ""); // a device of the machine is not put at risk
    EXPECT_EQ(shell(run + "pipe"), "pipe: cannot be written: Not a regular file" + expected);
}

TEST_F(OutputFiles, OfACheckpointKeepTheirRightsAndLinks)
{
    ASSERT_EQ(shell("mkdir far; ln -s far/memory link; touch far/memory; chmod 604 far/memory"), "");
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint link -o answer"), "");
    EXPECT_EQ(shell("stat -c '%N %a' link far/memory; ls far"),
              "'link' -> 'far/memory' 777\n'far/memory' 604\nmemory\n");
    EXPECT_THAT(read("far/memory"), HasSubstr("itms-checkpoint"));
}

TEST_F(OutputFiles, AreWholeWhenTheTerminalGoesAway)
{
    EXPECT_EQ(beside("itms run pipe.itms - -o answer --checkpoint memory",
                     "kill -HUP $!; kill -HUP $!; wait $!; echo $?"),
              "130\n");
    EXPECT_THAT(read("memory"), HasSubstr("\"steps\":1,"));
}

TEST_F(OutputFiles, AReaderThatWaitsDoesNotMakeASignalAnError)
{
    EXPECT_EQ(shell("mkfifo slow; (sleep 0.6; cat >/dev/null) <slow & itms simulate pipe.itms "
                    "--input pipe.inflow=high --steps 100000 >slow & sleep 0.3; kill -TERM $!; "
                    "wait $!; echo $?"),
              "130\n");
}

TEST_F(OutputFiles, AreWrittenOnUnderNohup)
{
    EXPECT_EQ(beside("trap '' HUP; itms run pipe.itms - -o answer",
                     "kill -HUP $!; echo '{\"t\": 1}' >&9; exec 9>&-; wait $!; echo $?"),
              "0\n");
    EXPECT_THAT(read("answer"), HasSubstr("\"step\":2,"));
}

TEST_F(OutputFiles, OfFmtKeepAllTheirNames)
{
    ASSERT_EQ(shell("echo ' ' >>pipe.itms; ln pipe.itms other; ln -s pipe.itms link"), "");
    EXPECT_EQ(
        shell("itms fmt link; itms fmt --check other pipe.itms; stat -c '%h %F' pipe.itms link"),
        "2 regular file\n1 symbolic link\n");
    EXPECT_THAT(names(), ElementsAre("day.jsonl", "link", "other", "pipe.itms"));
}

TEST_F(OutputFiles, OfFmtStayWhenThereIsNoRoom)
{
    ASSERT_EQ(shell("for i in {1..90}; do echo '// a comment that takes room' >>pipe.itms; done"
                    "; echo ' ' >>pipe.itms"),
              "");
    const std::string before = read("pipe.itms");
    EXPECT_EQ(shell("ulimit -f 1; itms fmt pipe.itms"),
              "pipe.itms: cannot be written: File too large\n[2]\n");
    EXPECT_EQ(read("pipe.itms"), before);
    EXPECT_THAT(names(), ElementsAre("day.jsonl", "pipe.itms"));
}
