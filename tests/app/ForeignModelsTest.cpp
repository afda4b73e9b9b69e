// Models that somebody else made: they read nothing outside their folder, and nothing waits for them.
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class ForeignModels : public Workshop {
protected:
    ForeignModels()
    {
        shell("mkdir model elsewhere");
        write("elsewhere/lamp.itms", lamp);
        write("model/main.itms", importing("../elsewhere/lamp.itms"));
    }

    static std::string importing(const std::string& file)
    {
        return "import \"" + file + "\"\nsystem S { a: Lamp }\n";
    }
    /// A model in JSON with this name, made from these files.
    void writeJson(const std::string& name, const std::string& files = "[]")
    {
        write("model/data.json",
              R"({"format": "itms-model", "v": 1, "name": )" + name + R"(, "files": )" + files +
                  R"(, "components": [{"name": "a", "variables": [{"name": "x", "kind": "mode",)"
                  R"( "values": [{"name": "on"}, {"name": "off"}], "initial": "on"}]}]})");
    }

    const std::string lamp = "component Lamp {\n cond light: off, on\n mode m { x initial, y }\n "
                             "law m = x -> light = on\n"
                             " nominal x -> y\n nominal y -> x\n}\n";
};

} // namespace

TEST_F(ForeignModels, DoNotImportFromAnotherFolder)
{
    EXPECT_EQ(shell("itms check model/main.itms"),
              "model/main.itms:1:8: the import leads to 'model/../elsewhere/lamp.itms'\n"
              "  import \"../elsewhere/lamp.itms\"\n"
              "         ^~~~~~~~~~~~~~~~~~~~~~~~\n"
              "  expected: a file below the folder of the model, or one that is named with -I\n"
              "  hint: --allow-imports-anywhere reads it, if you trust the model\n"
              "model/main.itms: 1 error\n[2]\n");
}

TEST_F(ForeignModels, DoNotImportByTheWholePath)
{
    write("model/main.itms", importing(path("elsewhere/lamp.itms")));
    EXPECT_THAT(shell("itms check model/main.itms"), HasSubstr("the import leads to"));
}

TEST_F(ForeignModels, DoNotImportThroughALink)
{
    shell("ln -s ../elsewhere/lamp.itms model/lamp.itms");
    write("model/main.itms", importing("lamp.itms"));
    EXPECT_THAT(shell("itms check model/main.itms"), HasSubstr("the import leads to"));
}

TEST_F(ForeignModels, ImportFromFoldersThatAreNamed)
{
    EXPECT_THAT(shell("itms check model/main.itms -I elsewhere"), EndsWith("transitions\n"));
}

TEST_F(ForeignModels, ImportFromAnywhereWhereThatIsAllowed)
{
    EXPECT_THAT(shell("itms check model/main.itms --allow-imports-anywhere"),
                EndsWith("transitions\n"));
}

TEST_F(ForeignModels, DoNotWaitForAPipe)
{
    shell("mkfifo model/lamp.itms");
    write("model/main.itms", importing("lamp.itms"));
    EXPECT_THAT(shell("timeout 20 itms check model/main.itms"),
                AllOf(HasSubstr("cannot be read: Not a regular file"), EndsWith("[2]\n")));
}

TEST_F(ForeignModels, DoNotWaitForImplicatesInAPipe)
{
    shell("mkfifo pipe.pi");
    EXPECT_THAT(shell("timeout 20 itms check pipe.itms"),
                AllOf(HasSubstr("pipe.pi: cannot be read: Not a regular file"), EndsWith("[2]\n")));
}

TEST_F(ForeignModels, AsDataDoNotReadImplicatesFromAnotherFolder)
{
    write("elsewhere/secret.pi", "not:for you\n");
    writeJson("\"elsewhere/secret\"");
    EXPECT_THAT(shell("itms check model/data.json"),
                AllOf(HasSubstr("the name leads to the implicates 'elsewhere/secret.pi'"),
                      testing::Not(HasSubstr("for you"))));
    EXPECT_THAT(shell("itms check model/data.json --allow-imports-anywhere"),
                HasSubstr("elsewhere/secret.pi:1"));
}

TEST_F(ForeignModels, AsDataHaveNoByteZeroInTheirName)
{
    write("model/data.pi", "not:for you\n");
    writeJson(R"("model/data.pi\u0000x")");
    EXPECT_THAT(shell("itms check model/data.json"),
                HasSubstr("a control character in the name 'model/data.pi?x'"));
}

TEST_F(ForeignModels, AsDataHaveNothingBehindAByteZero)
{
    writeJson("\"data\"");
    write("model/data.json", read("model/data.json") + std::string(1, '\0') + "}}}");
    EXPECT_THAT(shell("itms check model/data.json"),
                AllOf(HasSubstr("this is not JSON: it has a byte 0"), EndsWith("[2]\n")));
}

TEST_F(ForeignModels, AsDataAreNotExportedOverWhatTheyWereMadeFrom)
{
    writeJson("\"data\"", R"(["elsewhere/lamp.itms"])");
    EXPECT_EQ(shell("itms export model/data.json -o elsewhere/lamp.itms"),
              "elsewhere/lamp.itms: is both a file that the model names and what is exported\n"
              "  expected: another file for -o\n[2]\n");
    EXPECT_EQ(read("elsewhere/lamp.itms"), lamp);
}

TEST_F(ForeignModels, HaveTheLineEndsOfTheirNamesShown)
{
    const std::string told = shell("itms check $'model/none\\nmain.itms: all is well'");
    EXPECT_THAT(told, StartsWith("model/none\\x0amain.itms: all is well: cannot be read"));
    EXPECT_THAT(shell("itms run pipe.itms $'none\\nday: done'"),
                StartsWith("none\\x0aday: done: "));
}

TEST_F(ForeignModels, WithOtherImplicatesAreOtherModels)
{
    ASSERT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint memory -q > /dev/null"), "");
    write("pipe.pi", "");
    EXPECT_THAT(shell("itms run pipe.itms day.jsonl --checkpoint memory --resume -q"),
                HasSubstr("memory: was made with another model"));
}

TEST_F(ForeignModels, LeaveAFileThatIsNoCheckpoint)
{
    write("letter", "Dear reader,\n");
    EXPECT_EQ(shell("itms run pipe.itms day.jsonl --checkpoint letter -q"),
              "letter: is no checkpoint, and is not replaced\n"
              "  expected: a new file for --checkpoint, or one that itms run --checkpoint wrote\n"
              "[2]\n");
    EXPECT_EQ(read("letter"), "Dear reader,\n");
    write("empty", "");
    EXPECT_THAT(shell("itms run pipe.itms day.jsonl --checkpoint empty -q > /dev/null"), "");
}
