#include "text/FileLock.h"

#include "text/File.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Locks : public testing::Test {
protected:
    Locks()
    {
        std::string pattern = testing::TempDir() + "itms-locks-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        lock_ = (folder_ / "lock").string();
    }
    ~Locks() override { fs::remove_all(folder_); }

    fs::path folder_;
    std::string lock_;
};

// Another process that has a lock from now on, until it is killed.
class Holder {
public:
    explicit Holder(const std::string& lock)
    {
        int ready[2] = {-1, -1};
        if (::pipe(ready) != 0) throw std::runtime_error("no pipe");
        process_ = ::fork();
        if (process_ == 0) {
            const text::LockFile held(lock);
            static_cast<void>(!::write(ready[1], "x", 1));
            while (true) {
                ::pause();
            }
        }
        char byte = 0;
        static_cast<void>(!::read(ready[0], &byte, 1));
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~Holder() { kill(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    pid_t process() const { return process_; }
    void kill()
    {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = -1;
    }

private:
    pid_t process_ = -1;
};

TEST_F(Locks, AreMadeAndRemoved)
{
    {
        const text::LockFile lock(lock_);
        EXPECT_FALSE(lock.holder());
        EXPECT_TRUE(fs::exists(lock_));
    }
    EXPECT_FALSE(fs::exists(lock_));
}

TEST_F(Locks, OfAnotherProcessSayWhichOne)
{
    const Holder holder(lock_);
    {
        const text::LockFile lock(lock_);
        ASSERT_TRUE(lock.holder());
        EXPECT_EQ(lock.holder()->process, holder.process());
    }
    EXPECT_TRUE(fs::exists(lock_));
}

TEST_F(Locks, LeftByAKilledProcessKeepNobodyOut)
{
    Holder(lock_).kill();
    EXPECT_TRUE(fs::exists(lock_));
    EXPECT_FALSE(text::LockFile(lock_).holder());
    EXPECT_FALSE(fs::exists(lock_));
}

TEST_F(Locks, AreNeverAFileWithContent)
{
    text::writeWhole(lock_, "mine");
    EXPECT_THROW(text::LockFile{lock_}, text::WriteFailure);
    EXPECT_EQ(text::readFile(lock_).text, "mine");
}

TEST_F(Locks, FollowNoLink)
{
    fs::create_symlink("elsewhere", lock_);
    EXPECT_THROW(text::LockFile{lock_}, text::WriteFailure);
    EXPECT_FALSE(fs::exists(folder_ / "elsewhere"));
}

TEST_F(Locks, AreNotAskedOfADevice)
{
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    EXPECT_FALSE(text::tryLock(nothing));
    ::close(nothing);
}

} // namespace
