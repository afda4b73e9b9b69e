#include "text/FileLock.h"

#include "text/File.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace text {

namespace {

// Opens the file, or makes it; whoever comes later may be another user. Nothing is followed, and nothing is waited for.
int openLock(const std::string& path)
{
    constexpr int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int file = ::open(path.c_str(), flags);
    if (file >= 0 || errno != ENOENT) return file;
    file = ::open(path.c_str(), flags | O_CREAT | O_EXCL, 0666);
    if (file >= 0) static_cast<void>(::fchmod(file, 0666));
    return file;
}

} // namespace

std::optional<LockHolder> tryLock(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    while (::fcntl(descriptor, F_SETLK, &lock) != 0) {
        if (errno == EINTR) continue;
        if (errno != EACCES && errno != EAGAIN) return std::nullopt;
        if (::fcntl(descriptor, F_GETLK, &lock) != 0) return LockHolder{};
        // It may have ended in between.
        if (lock.l_type != F_UNLCK) return LockHolder{lock.l_pid > 0 ? lock.l_pid : 0};
        lock.l_type = F_WRLCK;
    }
    return std::nullopt;
}

LockFile::LockFile(std::string path) : path_(std::move(path))
{
    // Between opening and locking, another process may have removed the file.
    while (!holder_ && !isAtItsPlace()) {
        if (file_ >= 0) ::close(file_);
        file_ = openLock(path_);
        if (file_ < 0 && (errno == EEXIST || errno == EINTR)) continue;
        if (file_ < 0) throw WriteFailure(path_, "cannot be locked", errno);
        struct stat status = {};
        if (::fstat(file_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > 0) {
            ::close(file_);
            throw WriteFailure(path_, "cannot be locked", "is there, and is no lock");
        }
        holder_ = tryLock(file_);
    }
}

LockFile::~LockFile()
{
    if (!holder_) ::unlink(path_.c_str());
    ::close(file_);
}

bool LockFile::isAtItsPlace() const
{
    struct stat locked = {};
    struct stat there = {};
    return file_ >= 0 && ::fstat(file_, &locked) == 0 && ::lstat(path_.c_str(), &there) == 0 &&
           locked.st_dev == there.st_dev && locked.st_ino == there.st_ino;
}

} // namespace text
