// One file in two roles is refused before anything is printed or written.
#include "tests/app/Workshop.h"

namespace {

class FileRoles : public Workshop {
protected:
    /// Runs the command, which has to leave all files as they are.
    std::string refused(const std::string& command)
    {
        const std::vector<std::string> before = names();
        std::vector<std::string> texts;
        for (const std::string& name : before) {
            texts.push_back(read(name));
        }
        const std::string told = shell(command);
        EXPECT_EQ(names(), before);
        for (std::size_t i = 0; i < before.size(); ++i) {
            EXPECT_EQ(read(before[i]), texts[i]) << before[i];
        }
        return told;
    }
};

} // namespace

TEST_F(FileRoles, AnAnswerIsNotWrittenOverTheTelemetry)
{
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o day.jsonl"),
              "day.jsonl: is both the telemetry and the answer\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, AnAnswerIsNotWrittenOverTheModel)
{
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o ./pipe.itms"),
              "./pipe.itms: is both the model, pipe.itms, and the answer\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, ASymbolicLinkHidesNothing)
{
    ASSERT_EQ(shell("ln -s day.jsonl link"), "");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o link"),
              "link: is both the telemetry, day.jsonl, and the answer\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, AHardLinkHidesNothing)
{
    ASSERT_EQ(shell("ln day.jsonl link"), "");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o link"),
              "link: is both the telemetry, day.jsonl, and the answer\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, ACheckpointIsNotWrittenOverWhatIsRead)
{
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl --checkpoint day.jsonl"),
              "day.jsonl: is both the telemetry and the checkpoint\n"
              "  expected: another file for --checkpoint\n[2]\n");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl --checkpoint pipe.itms"),
              "pipe.itms: is both the model and the checkpoint\n"
              "  expected: another file for --checkpoint\n[2]\n");
}

TEST_F(FileRoles, AnAnswerAndACheckpointThatAreNotThereYetAreTold)
{
    ASSERT_EQ(shell("ln -s new link"), "");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o new --checkpoint ./new"),
              "./new: is both the answer, new, and the checkpoint\n"
              "  expected: another file for --checkpoint\n[2]\n");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl -o link --checkpoint new"),
              "new: is both the answer, link, and the checkpoint\n"
              "  expected: another file for --checkpoint\n[2]\n");
}

TEST_F(FileRoles, StandardStreamsThatAreFilesCount)
{
    EXPECT_EQ(refused("itms run pipe.itms - -o day.jsonl <day.jsonl"),
              "day.jsonl: is both the telemetry, standard input, and the answer\n"
              "  expected: another file for -o\n[2]\n");
    EXPECT_EQ(refused("itms run pipe.itms day.jsonl >>day.jsonl"),
              "standard output: is both the telemetry, day.jsonl, and what is printed\n"
              "  expected: another file for standard output\n[2]\n");
}

TEST_F(FileRoles, TheTruthIsNotWrittenOverTheCommands)
{
    EXPECT_EQ(refused("itms simulate pipe.itms day.jsonl --truth day.jsonl"),
              "day.jsonl: is both the telemetry and what really happens\n"
              "  expected: another file for --truth\n[2]\n");
}

TEST_F(FileRoles, WhatAModelImportsIsPartOfIt)
{
    ASSERT_EQ(
        shell("mkdir parts && sed '/^system/,$d' pipe.itms >parts/pipe.itms"
              " && (echo 'import \"parts/pipe.itms\"'; sed -n '/^system/,$p' pipe.itms) >line.itms"
              " && itms check line.itms | sed 's/:.*//'"),
        "line.itms\n");
    EXPECT_EQ(refused("itms export line.itms -o parts/pipe.itms"),
              "parts/pipe.itms: is both a file that the model imports and what is exported\n"
              "  expected: another file for -o\n[2]\n");
    EXPECT_EQ(refused("itms run line.itms day.jsonl -o parts/pipe.itms"),
              "parts/pipe.itms: is both a file that the model imports and the answer\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, TheImplicatesOfAModelArePartOfItEvenWhenTheyAreNotThereYet)
{
    EXPECT_EQ(refused("itms export pipe.itms -o pipe.pi"),
              "pipe.pi: is both the implicates of the model and what is exported\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, AModelIsNotExportedOverItself)
{
    EXPECT_EQ(refused("itms export pipe.itms -o pipe.itms"),
              "pipe.itms: is both the model and what is exported\n"
              "  expected: another file for -o\n[2]\n");
}

TEST_F(FileRoles, ADiagnosisIsNotPrintedIntoItsProblems)
{
    ASSERT_EQ(shell("cp '" ITMS_ROOT "'/examples/circuits/c17.* ."), "");
    EXPECT_EQ(refused("itms diagnose c17.bench --problems c17.jsonl >>c17.jsonl"),
              "standard output: is both the problems, c17.jsonl, and what is printed\n"
              "  expected: another file for standard output\n[2]\n");
}

TEST_F(FileRoles, APipeMayHaveSeveral)
{
    EXPECT_EQ(shell("itms simulate pipe.itms --steps 1 --truth /dev/stdout | wc -l"), "2\n");
}
