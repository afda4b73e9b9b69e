#include "text/File.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

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
    static struct stat status(const std::string& path)
    {
        struct stat status = {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status;
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

// While it lives, no file can have more than 1000 bytes.
class NoRoom {
public:
    NoRoom() : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{1000, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~NoRoom()
    {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }
    NoRoom(const NoRoom&) = delete;
    NoRoom& operator=(const NoRoom&) = delete;

private:
    void (*handler_)(int);
    rlimit before_ = {};
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
    for (const std::string& content : {every, std::string(), every}) {
        text::writeWhole(path("a"), content);
        EXPECT_EQ(contents(path("a")), content);
        text::writeFile(path("b"), content);
        EXPECT_EQ(contents(path("b")), content);
    }
    EXPECT_THAT(names(), ElementsAre("a", "b"));
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
    const std::string why = ": cannot be written: No such file or directory";
    EXPECT_EQ(failureOf([&] { text::writeFile(lost, "x"); }), lost + why);
    EXPECT_EQ(failureOf([&] { text::writeWhole(lost, "x"); }), lost + why);
    EXPECT_EQ(failureOf([&] { text::checkPlace(lost); }), lost + why);
    EXPECT_EQ(failureOf([&] { text::writeWhole("", "x"); }), "''" + why);
}

TEST_F(Files, AreNotPutInThePlaceOfAFolder)
{
    fs::create_directory(folder_ / "sub");
    text::writeFile(path("sub/inner"), "kept");
    for (const auto write : {text::writeFile, +[](const std::string&name, std::string_view content) {
                                 text::writeWhole(name, content);
                             }}) {
        EXPECT_EQ(failureOf([&] { write(path("sub"), "x"); }),
                  path("sub") + ": cannot be written: Is a directory");
    }
    EXPECT_EQ(contents(path("sub/inner")), "kept");
    EXPECT_THAT(names(), ElementsAre("sub"));
}

TEST_F(Files, AreNotPutInThePlaceOfAPipe)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(failureOf([&] { text::writeWhole(path("pipe"), "x"); }),
              path("pipe") + ": cannot be written: Not a regular file");
    EXPECT_EQ(failureOf([&] { text::checkPlace(path("pipe")); }),
              path("pipe") + ": cannot be written: Not a regular file");
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(Files, ThatArePipesAreWrittenInto)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const int pipe = ::open(path("pipe").c_str(), O_RDWR | O_CLOEXEC);
    text::writeFile(path("pipe"), "new");
    char got[4] = {};
    EXPECT_EQ(::read(pipe, got, 3), 3);
    EXPECT_STREQ(got, "new");
    ::close(pipe);
    EXPECT_THAT(names(), ElementsAre("pipe"));
}

TEST_F(Files, KeepTheirPermissionsWhenTheyAreReplaced)
{
    const auto wanted = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    text::writeFile(path("a"), "old");
    fs::permissions(path("a"), wanted);
    text::writeWhole(path("a"), "new");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(fs::status(path("a")).permissions(), wanted);
}

TEST_F(Files, KeepTheirOwnerWhenTheyAreReplaced)
{
    text::writeFile(path("a"), "old");
    const bool privileged = ::geteuid() == 0;
    if (privileged) {
        ASSERT_EQ(::chown(path("a").c_str(), 1, 2), 0);
    }
    const auto before = status(path("a"));
    text::writeWhole(path("a"), "new");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(status(path("a")).st_uid, before.st_uid);
    EXPECT_EQ(status(path("a")).st_gid, before.st_gid);
}

TEST_F(Files, OfAnotherOwnerMayStayHis)
{
    if (::geteuid() != 0) GTEST_SKIP() << "only root can act as two users";
    text::writeFile(path("a"), "old");
    fs::permissions(folder_, fs::perms::all);
    fs::permissions(path("a"), fs::perms::all);
    constexpr uid_t somebody = 65534;
    ASSERT_EQ(::seteuid(somebody), 0);
    const std::string kept =
        failureOf([&] { text::writeWhole(path("a"), "new", text::OtherNames::getNew); });
    const auto afterwards = status(path("a"));
    const std::string parted = failureOf([&] { text::writeWhole(path("a"), "newer"); });
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(kept, "no failure");
    EXPECT_EQ(afterwards.st_uid, 0U);
    EXPECT_EQ(parted, "no failure");
    EXPECT_EQ(status(path("a")).st_uid, somebody);
    EXPECT_EQ(contents(path("a")), "newer");
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(Files, ThatAreProtectedStayAsTheyAre)
{
    text::writeFile(path("a"), "old");
    fs::permissions(folder_, fs::perms::all);
    fs::permissions(path("a"), fs::perms::owner_read);
    const bool privileged = ::geteuid() == 0;
    if (privileged) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    const std::string failure = failureOf([&] { text::writeWhole(path("a"), "new"); });
    if (privileged) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    EXPECT_EQ(failure, path("a") + ": cannot be written: Permission denied");
    EXPECT_EQ(contents(path("a")), "old");
}

TEST_F(Files, AreNotReplacedInAFolderThatTakesNoOther)
{
    text::writeFile(path("a"), "old");
    fs::permissions(path("a"), fs::perms::all);
    fs::permissions(folder_, static_cast<fs::perms>(0555));
    const bool privileged = ::geteuid() == 0;
    if (privileged) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    std::vector<std::string> failures;
    for (const char* name : {"a", "b"}) {
        failures.push_back(failureOf([&] { text::writeWhole(path(name), "new"); }));
        failures.push_back(failureOf([&] { text::checkPlace(path(name)); }));
    }
    if (privileged) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    const std::string why = ": no file can be made beside it: Permission denied";
    EXPECT_THAT(failures,
                ElementsAre(path("a") + why, path("a") + why, path("b") + why, path("b") + why));
    EXPECT_EQ(contents(path("a")), "old");
}

TEST_F(Files, ThatAreNewHaveThePermissionsOfAnyNewFile)
{
    const mode_t before = ::umask(027);
    text::writeWhole(path("a"), "new");
    ::umask(before);
    EXPECT_EQ(status(path("a")).st_mode & 07777U, 0640U);
}

TEST_F(Files, AreReplacedBehindLinks)
{
    text::writeFile(path("a"), "old");
    fs::create_symlink("a", path("link"));
    fs::create_symlink("link", path("longer"));
    fs::create_symlink("b", path("dangling"));
    text::writeWhole(path("longer"), "new");
    text::writeWhole(path("dangling"), "newer");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(contents(path("b")), "newer");
    for (const char* link : {"link", "longer", "dangling"}) {
        EXPECT_TRUE(fs::is_symlink(path(link))) << link;
    }
    EXPECT_THAT(names(), ElementsAre("a", "b", "dangling", "link", "longer"));
}

TEST_F(Files, WithOtherNamesArePartedFromThem)
{
    text::writeFile(path("a"), "old");
    fs::create_hard_link(path("a"), path("kept"));
    text::writeWhole(path("a"), "new");
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(contents(path("kept")), "old");
    EXPECT_THAT(names(), ElementsAre("a", "kept"));
}

TEST_F(Files, WithOtherNamesMayStayOneFile)
{
    text::writeFile(path("a"), "something longer than the new content");
    fs::create_hard_link(path("a"), path("other"));
    text::writeWhole(path("a"), "new", text::OtherNames::getNew);
    EXPECT_EQ(contents(path("a")), "new");
    EXPECT_EQ(contents(path("other")), "new");
    EXPECT_TRUE(fs::equivalent(path("a"), path("other")));
    EXPECT_THAT(names(), ElementsAre("a", "other"));
}

TEST_F(Files, OfLikelyTemporaryNamesAreNotTouched)
{
    text::writeFile(path("a"), "old");
    text::writeFile(path("victim"), "kept");
    fs::create_symlink("victim", path("a.new"));
    fs::create_symlink("victim", path(".a.XXXXXX"));
    text::writeWhole(path("a"), "new");
    EXPECT_EQ(contents(path("victim")), "kept");
    EXPECT_THAT(names(), ElementsAre(".a.XXXXXX", "a", "a.new", "victim"));
}

TEST_F(Files, MayHaveTheLongestName)
{
    const std::string name(255, 'n');
    text::writeWhole(path(name), "old");
    text::writeWhole(path(name), "new");
    EXPECT_EQ(contents(path(name)), "new");
    EXPECT_THAT(names(), ElementsAre(name));
}

TEST_F(Files, StayAsTheyAreWhenThereIsNoRoom)
{
    text::writeFile(path("a"), "old");
    const NoRoom limit;
    EXPECT_EQ(failureOf([&] { text::writeWhole(path("a"), std::string(10000, 'x')); }),
              path("a") + ": cannot be written: File too large");
    EXPECT_EQ(contents(path("a")), "old");
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(Files, AreNotChangedByACheckOfTheirPlace)
{
    text::writeFile(path("a"), "old");
    text::checkPlace(path("a"));
    text::checkPlace(path("b"));
    EXPECT_EQ(contents(path("a")), "old");
    EXPECT_THAT(names(), ElementsAre("a"));
}

} // namespace
