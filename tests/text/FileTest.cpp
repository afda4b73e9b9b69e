#include "text/File.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// A folder of the test's own.
class Files : public testing::Test {
protected:
    Files()
    {
        std::string pattern = testing::TempDir() + "itms-files-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
    }
    ~Files() override
    {
        fs::permissions(folder_, fs::perms::owner_all);
        fs::remove_all(folder_);
    }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder_)) {
            all.push_back(entry.path().filename().string());
        }
        std::sort(all.begin(), all.end());
        return all;
    }
    static std::string contents(const std::string& path)
    {
        return text::readFile(path).text.value_or("nothing");
    }
    template <typename Write> static std::string failureOf(Write write)
    {
        try {
            write();
        } catch (const text::WriteFailure& failure) {
            return failure.what();
        }
        return "no failure";
    }

    fs::path folder_;
};

const std::string every = [] {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    return all;
}();

TEST_F(Files, GiveBackEveryByte)
{
    for (const auto write : {text::writeFile, text::writeWhole}) {
        write(path("a"), every);
        EXPECT_EQ(contents(path("a")), every);
        write(path("a"), "");
        EXPECT_EQ(contents(path("a")), "");
    }
    text::replaceAtomically(path("a"), every);
    EXPECT_EQ(contents(path("a")), every);
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(Files, OfAnySizeAreReadAndWrittenWhole)
{
    std::string large;
    for (int i = 0; i < 300000; ++i) {
        large += std::to_string(i);
    }
    text::writeWhole(path("a"), large);
    EXPECT_EQ(contents(path("a")), large);
    text::writeFile(path("a"), "short");
    EXPECT_EQ(contents(path("a")), "short");
}

TEST_F(Files, AreReadSoFarThatALongerOneCanBeTold)
{
    text::writeFile(path("a"), std::string(1000000, 'x'));
    const text::FileText whole = text::readFile(path("a"), 1000000);
    EXPECT_EQ(whole.text.value_or("").size(), 1000000U);
    const text::FileText part = text::readFile(path("a"), 1000);
    EXPECT_GT(part.text.value_or("").size(), 1000U);
    EXPECT_LT(part.text.value_or("").size(), 1000000U);
}

TEST_F(Files, ThatCannotBeReadSayWhy)
{
    const text::FileText missing = text::readFile(path("none"));
    EXPECT_FALSE(missing.text);
    EXPECT_FALSE(missing.wasOpened);
    EXPECT_EQ(missing.failure, "No such file or directory");
    const text::FileText folder = text::readFile(folder_.string());
    EXPECT_FALSE(folder.text);
    EXPECT_TRUE(folder.wasOpened);
    EXPECT_EQ(folder.failure, "Is a directory");
}

TEST_F(Files, ThatCannotBeWrittenNameTheStepAndTheReason)
{
    const std::string lost = path("no/file");
    const std::string why = ": No such file or directory";
    EXPECT_EQ(failureOf([&] { text::writeFile(lost, "x"); }), lost + ": cannot be written" + why);
    EXPECT_EQ(failureOf([&] { text::writeWhole(lost, "x"); }),
              lost + ".new: cannot be opened" + why);
    EXPECT_EQ(failureOf([&] { text::replaceAtomically(lost, "x"); }),
              lost + ": cannot be written" + why);
    fs::create_directory(folder_ / "sub");
    text::writeFile(path("sub/inner"), "kept");
    EXPECT_EQ(failureOf([&] { text::writeWhole(path("sub"), "x"); }),
              path("sub") + ": cannot be replaced: Is a directory");
    EXPECT_EQ(contents(path("sub/inner")), "kept");
}

TEST_F(Files, ThatAreReplacedMustBeThere)
{
    EXPECT_EQ(failureOf([&] { text::replaceAtomically(path("a"), "x"); }),
              path("a") + ": cannot be written: No such file or directory");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Files, KeepTheirPermissionsWhenTheyAreReplaced)
{
    const auto wanted = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    text::writeFile(path("a"), "old");
    fs::permissions(path("a"), wanted);
    text::replaceAtomically(path("a"), "new");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(fs::status(path("a")).permissions(), wanted);
}

TEST_F(Files, AreReplacedBehindALink)
{
    text::writeFile(path("a"), "old");
    fs::create_symlink("a", path("link"));
    text::replaceAtomically(path("link"), "new");
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_THAT(names(), ElementsAre("a", "link"));
}

TEST_F(Files, LeftByAWriterThatWasStoppedAreWrittenOver)
{
    text::writeFile(path("a"), "old");
    text::writeFile(path("a.new"), "something longer than the new content");
    text::writeWhole(path("a"), "new");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_THAT(names(), ElementsAre("a"));
}

} // namespace
