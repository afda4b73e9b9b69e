#include "text/FileIdentity.h"

#include "text/File.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using text::identityOf;

class Identities : public testing::Test {
protected:
    Identities()
    {
        std::string pattern = testing::TempDir() + "itms-identities-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        text::writeWhole(path("a"), "a");
    }
    ~Identities() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    fs::path folder_;
};

TEST_F(Identities, AreTheSameThroughLinksAndOtherSpellings)
{
    fs::create_directory(folder_ / "sub");
    fs::create_symlink("a", path("soft"));
    fs::create_symlink("../soft", path("sub/softer"));
    fs::create_hard_link(path("a"), path("hard"));
    ASSERT_TRUE(identityOf(path("a")));
    for (const char* name : {"./a", "sub/../a", "soft", "sub/softer", "hard"}) {
        EXPECT_EQ(identityOf(path(name)), identityOf(path("a"))) << name;
    }
}

TEST_F(Identities, OfTwoFilesDiffer)
{
    text::writeWhole(path("b"), "a");
    EXPECT_NE(identityOf(path("a")), identityOf(path("b")));
    EXPECT_NE(identityOf(path("new")), identityOf(path("newer")));
    EXPECT_NE(identityOf(path("new")), identityOf(path("a")));
}

TEST_F(Identities, OfAFileThatIsNotThereAreThatOfItsPlace)
{
    fs::create_symlink("new", path("soft"));
    fs::create_directory_symlink(folder_, path("here"));
    ASSERT_TRUE(identityOf(path("new")));
    for (const char* name : {"./new", "soft", "here/new", "here/soft"}) {
        EXPECT_EQ(identityOf(path(name)), identityOf(path("new"))) << name;
    }
    EXPECT_FALSE(identityOf(path("no/new")));
    EXPECT_FALSE(identityOf(""));
}

TEST_F(Identities, OfADescriptorAreThoseOfItsFile)
{
    const int file = ::open(path("a").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(identityOf(file), identityOf(path("a")));
    ::close(file);
    EXPECT_FALSE(identityOf(file));
}

TEST_F(Identities, AreNotAskedOfWhatKeepsNothing)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(identityOf(path("pipe")));
    EXPECT_FALSE(identityOf("/dev/null"));
}

TEST_F(Identities, EndAtLinksThatLeadInACircle)
{
    fs::create_symlink("two", path("one"));
    fs::create_symlink("one", path("two"));
    EXPECT_EQ(text::linkTarget(path("one")), path("one"));
}

} // namespace
