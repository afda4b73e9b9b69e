// Models of several files, and what is said of one in which some lines cannot be read.
#include "language/Reader.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class ImportsTest : public testing::Test {
protected:
    ImportsTest()
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        folder = fs::path(testing::TempDir()) / ("itms-imports-" + std::string(test->name()));
        fs::remove_all(folder);
        fs::create_directories(folder / "library");
    }
    ~ImportsTest() override { fs::remove_all(folder); }

    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder / name) << text;
        return (folder / name).string();
    }

    static std::vector<std::string> messages(const language::ReadResult& result)
    {
        std::vector<std::string> found;
        for (const text::Diagnostic& error : result.errors) {
            found.push_back(fs::path(error.file).filename().string() + ":" +
                            std::to_string(error.place.line) + ": " + error.message);
        }
        return found;
    }

    fs::path folder;
    const std::string lamp = "component Lamp {\n cond light: off, on\n}\n";
};

TEST_F(ImportsTest, AreLookedForBesideTheFile)
{
    write("lamp.itms", lamp);
    const language::ReadResult result =
        language::readModel(write("main.itms", "import \"lamp.itms\"\nsystem S { a: Lamp }\n"));
    EXPECT_THAT(messages(result), ElementsAre());
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->name(), (folder / "main").string());
    EXPECT_EQ(result.files.size(), 2U);
}

TEST_F(ImportsTest, AreLookedForInTheSearchPath)
{
    write("library/lamp.itms", "import \"base.itms\"\n");
    write("library/base.itms", lamp);
    language::ReadOptions options;
    options.searchPath = {(folder / "library").string()};
    const std::string main = write("main.itms", "import \"lamp.itms\"\nsystem S { a: Lamp }\n");
    EXPECT_TRUE(language::readModel(main, options).model);
    EXPECT_FALSE(language::readModel(main).model);
}

TEST_F(ImportsTest, OfOneFileFromTwoPlacesReadItOnce)
{
    write("lamp.itms", lamp);
    write("a.itms", "import \"lamp.itms\"\ncomponent A { x: Lamp }\n");
    write("b.itms", "import \"library/../lamp.itms\"\ncomponent B { x: Lamp }\n");
    const language::ReadResult result = language::readModel(
        write("main.itms", "import \"a.itms\"\nimport \"b.itms\"\nsystem S { a: A\n b: B }\n"));
    EXPECT_THAT(messages(result), ElementsAre());
    EXPECT_EQ(result.files.size(), 4U);
}

TEST_F(ImportsTest, InACircleAreAnError)
{
    write("a.itms", "import \"b.itms\"\n");
    write("b.itms", "import \"a.itms\"\n");
    const language::ReadResult result =
        language::readModel(write("main.itms", "import \"a.itms\"\nsystem S { }\n"));
    EXPECT_FALSE(result.model);
    ASSERT_FALSE(result.errors.empty());
    EXPECT_THAT(messages(result),
                testing::Contains(HasSubstr("b.itms:1: files import each other in a circle")));
}

TEST_F(ImportsTest, HaveTheirErrorsInTheirOwnFiles)
{
    write("lamp.itms", "component Lamp {\n cond light: off\n}\n");
    const language::ReadResult result = language::readModel(
        write("main.itms", "import \"lamp.itms\"\nsystem S {\n a: Lamp\n b: Lump\n}\n"));
    EXPECT_THAT(messages(result), ElementsAre("main.itms:4: no component is called 'Lump'",
                                              "lamp.itms:2: 'light' has only one value"));
}

TEST_F(ImportsTest, ThatCannotBeReadMakeNoUnknownNames)
{
    const language::ReadResult result = language::readModel(
        write("main.itms", "import \"lamp.itms\"\nsystem S {\n a: Lamp\n law a.light = on\n}\n"));
    EXPECT_THAT(messages(result),
                ElementsAre("main.itms:1: file 'lamp.itms' cannot be read: No such file or "
                            "directory"));
}

TEST_F(ImportsTest, UseConstantsOfImportedFiles)
{
    write("numbers.itms", "const p = 0.25\n");
    const language::ReadResult result = language::readModel(write(
        "main.itms", "import \"numbers.itms\"\nconst q = 2 * p\ncomponent C {\n"
                     " mode m { a initial b fault }\n fault a -> b : q\n}\nsystem S { c: C }\n"));
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->transitions()[0]->proba, 0.5);
}

TEST_F(ImportsTest, LeaveOutWhatFollowsFromALineThatCannotBeRead)
{
    const language::ReadResult result = language::readModel(
        write("main.itms", "component C {\n cond light off, on\n cond door: open, closed\n"
                           " law light = on -> door = opn\n mode m { a initial b fault }\n"
                           " fault a -> b : 3\n}\nsystem S {\n c: C\n}\n"));
    ASSERT_EQ(result.errors.size(), 3U);
    EXPECT_EQ(result.errors[0].place.line, 2U);
    EXPECT_EQ(result.errors[1].message, "'opn' is not a value of 'door'");
    EXPECT_EQ(result.errors[2].message, "the probability is 3");
}

} // namespace
