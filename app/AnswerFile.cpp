#include "app/AnswerFile.h"

#include "app/FileRoles.h"
#include "app/Output.h"
#include "text/FileIdentity.h"
#include "text/FileLock.h"

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

void AnswerFile::open()
{
    constexpr int flags = O_WRONLY | O_CREAT | O_CLOEXEC;
    if (access(path_.c_str(), F_OK) != 0)
        file_ = ::open(text::linkTarget(path_).c_str(), flags | O_EXCL, 0666);
    wasMade_ = file_ >= 0;
    if (!wasMade_) file_ = ::open(path_.c_str(), flags, 0666);
    if (file_ < 0) fail("cannot be opened");
}

void AnswerFile::resume(std::uint64_t keepBytes)
{
    if (file_ < 0) return;
    struct stat status = {};
    if (fstat(file_, &status) != 0) fail("cannot be continued");
    if (static_cast<std::uint64_t>(status.st_size) < keepBytes) {
        throw FileFailure(
            fmt::format("{}: has {} bytes, but {} had been written when the checkpoint was made\n"
                        "  expected: the output of the run that is resumed\n",
                        path_, status.st_size, keepBytes));
    }
    bytes_ = keepBytes;
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
        if (written < 0) fail("cannot be written");
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

void AnswerFile::fail(const char* what) const
{
    throw FileFailure(
        fmt::format("{}: {}: {}\n", path_, what, std::generic_category().message(errno)));
}

} // namespace app
