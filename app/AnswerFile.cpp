#include "app/AnswerFile.h"

#include "app/Output.h"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace app {

AnswerFile::AnswerFile(const std::optional<std::string>& path,
                       std::optional<std::uint64_t> keepBytes)
{
    if (!path) return;
    path_ = *path;
    const int fresh = keepBytes ? 0 : O_TRUNC;
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | fresh, 0666);
    if (file_ < 0) fail("cannot be opened");
    if (!keepBytes) return;
    struct stat status = {};
    if (fstat(file_, &status) != 0) fail("cannot be continued");
    if (static_cast<std::uint64_t>(status.st_size) < *keepBytes) {
        close(file_);
        throw FileFailure(
            fmt::format("{}: has {} bytes, but {} had been written when the checkpoint was made\n"
                        "  expected: the output of the run that is resumed\n",
                        path_, status.st_size, *keepBytes));
    }
    const auto offset = static_cast<off_t>(*keepBytes);
    if (ftruncate(file_, offset) != 0 || lseek(file_, offset, SEEK_SET) != offset)
        fail("cannot be continued");
    bytes_ = *keepBytes;
}

AnswerFile::~AnswerFile()
{
    if (file_ >= 0) close(file_);
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
    const std::string why = std::generic_category().message(errno);
    if (file_ >= 0) close(file_);
    throw FileFailure(fmt::format("{}: {}: {}\n", path_, what, why));
}

} // namespace app
