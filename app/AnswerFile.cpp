#include "app/AnswerFile.h"

#include "app/FileRoles.h"
#include "app/Output.h"
#include "text/Diagnostic.h"
#include "text/FileIdentity.h"
#include "text/FileLock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace app {

AnswerFile::AnswerFile(const std::optional<std::string>& path, std::string option)
    : option_(std::move(option))
{
    if (!path) return;
    path_ = *path;
    open();
    if (const auto holder = text::tryLock(file_)) {
        close(file_);
        refuseFileInUse(path_, *holder, option_);
    }
}

AnswerFile::~AnswerFile()
{
    if (file_ < 0) return;
    if (wasMade_ && !begun_) unlink(text::linkTarget(path_).c_str());
    close(file_);
}

// A file is opened for reading, too, for the case that it is continued; a second descriptor would end its lock.
void AnswerFile::open()
{
    constexpr int flags = O_CREAT | O_CLOEXEC;
    struct stat status = {};
    if (stat(path_.c_str(), &status) != 0)
        file_ = ::open(text::linkTarget(path_).c_str(), flags | O_RDWR | O_EXCL, 0666);
    wasMade_ = file_ >= 0;
    if (!wasMade_ && S_ISREG(status.st_mode)) file_ = ::open(path_.c_str(), flags | O_RDWR, 0666);
    if (file_ < 0) file_ = ::open(path_.c_str(), flags | O_WRONLY, 0666);
    if (file_ < 0) fail("cannot be opened");
}

void AnswerFile::resume(const Written& before)
{
    if (file_ < 0) return;
    struct stat status = {};
    if (fstat(file_, &status) != 0) fail("cannot be continued");
    if (before.bytes == 0 && status.st_size > 0) {
        refuse(
            fmt::format("has {} bytes, but the run that is resumed had written nothing to a file",
                        status.st_size));
    }
    if (static_cast<std::uint64_t>(status.st_size) < before.bytes) {
        refuse(fmt::format("has {} bytes, but {} had been written when the checkpoint was made",
                           status.st_size, before.bytes));
    }
    take(before.bytes);
    if (before.digest && *before.digest != digest_.hex()) {
        refuse(fmt::format("its first {} bytes are not those that had been written when the "
                           "checkpoint was made",
                           before.bytes));
    }
}

// Takes what is in the file for written.
void AnswerFile::take(std::uint64_t bytes)
{
    std::array<char, 65536> block{};
    while (bytes_ < bytes) {
        const auto wanted = std::min<std::uint64_t>(block.size(), bytes - bytes_);
        const ssize_t got = pread(file_, block.data(), wanted, static_cast<off_t>(bytes_));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) fail("cannot be read");
        digest_.add({block.data(), static_cast<std::size_t>(got)});
        bytes_ += static_cast<std::uint64_t>(got);
    }
}

void AnswerFile::refuse(const std::string& what) const
{
    throw FileFailure(fmt::format("{}: {}\n  expected: the output of the run that is resumed\n"
                                  "  hint: the file is left as it is\n",
                                  path_, what));
}

void AnswerFile::begin()
{
    begun_ = true;
    if (file_ < 0) return;
    struct stat status = {};
    if (fstat(file_, &status) != 0) fail("cannot be opened");
    if (!S_ISREG(status.st_mode)) return;
    const auto offset = static_cast<off_t>(bytes_);
    if (ftruncate(file_, offset) != 0 || lseek(file_, offset, SEEK_SET) != offset)
        fail(bytes_ > 0 ? "cannot be continued" : "cannot be written");
}

void AnswerFile::write(std::string_view text)
{
    if (file_ < 0) {
        print(text);
        return;
    }
    while (!text.empty()) {
        const ssize_t written = ::write(file_, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) fail("cannot be written");
        digest_.add(text.substr(0, static_cast<std::size_t>(written)));
        text.remove_prefix(static_cast<std::size_t>(written));
        bytes_ += static_cast<std::uint64_t>(written);
    }
}

void AnswerFile::sync()
{
    // A pipe or a device has nothing to sync.
    if (file_ >= 0 && fsync(file_) != 0 && errno != EINVAL && errno != EROFS)
        fail("cannot be written");
}

void AnswerFile::end()
{
    if (file_ >= 0 && close(std::exchange(file_, -1)) != 0 && errno != EINTR)
        fail("cannot be written");
}

void AnswerFile::fail(const char* what) const
{
    throw FileFailure(fmt::format("{}: {}: {}\n", text::shownName(path_), what,
                                  std::generic_category().message(errno)));
}

} // namespace app
