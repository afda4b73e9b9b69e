// A file is replaced by a rename: the new content is written beside it and synced first, since a rename may reach the disk before
// the data do. Its folder is synced, too: only then is a new name on the disk.
#include "text/File.h"

#include "text/Diagnostic.h"
#include "text/FileIdentity.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace text {

FileText readFile(const std::string& path, std::size_t mostBytes, Readable what)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {std::nullopt, "Is a directory", true};
    if (what == Readable::file && std::filesystem::exists(path, error) &&
        !std::filesystem::is_regular_file(path, error)) {
        return {std::nullopt, "Not a regular file", true};
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) return {std::nullopt, errno != 0 ? std::strerror(errno) : "cannot be opened", false};
    std::string text;
    std::string block(std::size_t{1} << 16U, '\0');
    while (file && text.size() <= mostBytes) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        text.append(block, 0, static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad()) return {std::nullopt, "cannot be read to its end", true};
    return {std::move(text), {}, true};
}

WriteFailure::WriteFailure(const std::string& path, const std::string& step, int systemError)
    : WriteFailure(path, step, std::generic_category().message(systemError))
{
}

WriteFailure::WriteFailure(const std::string& path, const std::string& step,
                           const std::string& reason)
    : std::runtime_error(shownName(path) + ": " + step + ": " + reason), reason_(reason)
{
}

namespace {

constexpr const char* cannotBeWritten = "cannot be written";

// Calls the system's function and closes the descriptor; errno is that of what failed first.
template <typename Call> bool thenClosed(int file, Call call)
{
    const bool good = call(file);
    const int reason = errno;
    const bool closed = ::close(file) == 0;
    if (!good) errno = reason;
    return good && closed;
}

// Some file systems cannot sync a folder, nor can a pipe be synced, and need not.
bool synced(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL || errno == EROFS;
}

bool writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Writes over what is there, or into a pipe or a device.
bool writeOver(const std::string& path, std::string_view text)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return false;
    return thenClosed(file, [text](int open) {
        struct stat status = {};
        if (!writeAll(open, text) || ::fstat(open, &status) != 0) return false;
        const auto length = static_cast<off_t>(text.size());
        return !S_ISREG(status.st_mode) || (::ftruncate(open, length) == 0 && synced(open));
    });
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

void syncFolderOf(const std::string& path)
{
    const int folder = ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) throw WriteFailure(path, "the folder cannot be opened", errno);
    if (!thenClosed(folder, synced))
        throw WriteFailure(path, "the folder cannot be written", errno);
}

// What is at a name where a file is to be made or replaced.
struct Target {
    std::string path; // behind the links
    bool isNew = true;
    struct stat status = {}; // of what is there
};

// Throws WriteFailure when it is nothing that can be replaced.
Target targetAt(const std::string& path)
{
    Target target{linkTarget(path), true, {}};
    if (path.empty()) throw WriteFailure("''", cannotBeWritten, ENOENT);
    if (::stat(target.path.c_str(), &target.status) != 0) {
        if (errno != ENOENT) throw WriteFailure(path, cannotBeWritten, errno);
        return target;
    }
    target.isNew = false;
    if (S_ISDIR(target.status.st_mode)) throw WriteFailure(path, cannotBeWritten, EISDIR);
    if (!S_ISREG(target.status.st_mode))
        throw WriteFailure(path, cannotBeWritten, "Not a regular file");
    // A rename asks for the folder's permission only; a file that is protected stays as it is.
    if (::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0)
        throw WriteFailure(path, cannotBeWritten, errno);
    return target;
}

// A new file with a name that nothing has, in the folder of the target; removed again unless it got the target's name.
class Beside {
public:
    Beside(const std::string& path, const Target& target)
    {
        constexpr std::size_t longest = 200; // of the part that only says whose file it is
        const std::string own = target.path.substr(target.path.rfind('/') + 1, longest);
        name_ = folderOf(target.path) + "." + own + ".XXXXXX";
        file_ = ::mkostemp(name_.data(), O_CLOEXEC);
        if (file_ < 0) {
            const bool denied = errno == EACCES || errno == EROFS || errno == EPERM;
            throw WriteFailure(path, denied ? "no file can be made beside it" : cannotBeWritten,
                               errno);
        }
    }
    ~Beside()
    {
        if (file_ >= 0) ::close(file_);
        if (!kept_) ::unlink(name_.c_str());
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    const std::string& name() const { return name_; }
    // Whose it is: as before. False where the system does not allow that; the group may stay then.
    bool takeOwnerOf(const Target& target) const
    {
        const uid_t same = static_cast<uid_t>(-1);
        if (target.isNew) return true;
        if (::fchown(file_, target.status.st_uid, target.status.st_gid) == 0) return true;
        static_cast<void>(!::fchown(file_, same, target.status.st_gid));
        return false;
    }
    // Who may read and write it: as before, or as for any new file. No rights of an owner that it does not have.
    bool takeRightsOf(const Target& target, bool sameOwner) const
    {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        const mode_t mode = target.isNew ? 0666U & ~mask : target.status.st_mode & 07777U;
        return ::fchmod(file_, sameOwner ? mode : mode & 0777U) == 0;
    }
    bool write(std::string_view content)
    {
        return thenClosed(std::exchange(file_, -1),
                          [content](int open) { return writeAll(open, content) && synced(open); });
    }
    bool rename(const std::string& path)
    {
        kept_ = ::rename(name_.c_str(), path.c_str()) == 0;
        return kept_;
    }
    void keep() { kept_ = true; }

private:
    std::string name_;
    int file_ = -1;
    bool kept_ = false;
};

} // namespace

void writeWhole(const std::string& path, std::string_view content, OtherNames others)
{
    const Target target = targetAt(path);
    Beside beside(path, target);
    const bool sameOwner = beside.takeOwnerOf(target);
    if (!beside.takeRightsOf(target, sameOwner) || !beside.write(content))
        throw WriteFailure(path, cannotBeWritten, errno);
    const bool mayBeAnother = sameOwner && (target.isNew || target.status.st_nlink == 1);
    if (others == OtherNames::getNew && !mayBeAnother) {
        if (writeOver(target.path, content)) return;
        const int reason = errno;
        beside.keep();
        throw WriteFailure(path, "cannot be written to its end, and is whole in " + beside.name(),
                           reason);
    }
    if (!beside.rename(target.path)) throw WriteFailure(path, "cannot be replaced", errno);
    syncFolderOf(target.path);
}

void writeFile(const std::string& path, std::string_view content)
{
    struct stat status = {};
    const bool isThere = ::stat(path.c_str(), &status) == 0;
    if (!isThere || S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) {
        writeWhole(path, content);
    } else if (!writeOver(path, content)) {
        throw WriteFailure(path, cannotBeWritten, errno);
    }
}

void checkPlace(const std::string& path)
{
    const Target target = targetAt(path);
    const Beside beside(path, target);
}

} // namespace text
