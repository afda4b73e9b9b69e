// A file is replaced by a rename: the new content is written beside it and synced first, since a rename may reach the disk before
// the data do. Where the file may be new its folder is synced, too: only then is its name on the disk.
#include "text/File.h"

#include <cerrno>
#include <cstdio>
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

FileText readFile(const std::string& path, std::size_t mostBytes)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {std::nullopt, "Is a directory", true};
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
    : std::runtime_error(path + ": " + step + ": " + std::generic_category().message(systemError)),
      reason_(std::generic_category().message(systemError))
{
}

void writeFile(const std::string& path, std::string_view content)
{
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    file << content;
    file.close();
    if (file.fail()) throw WriteFailure(path, "cannot be written", errno);
}

namespace {

[[noreturn]] void fail(const std::string& path, const char* step)
{
    throw WriteFailure(path, step, errno);
}

// Writes, syncs, and closes the file in any case. When it fails, errno has the reason.
bool writeAll(int file, std::string_view text)
{
    bool good = true;
    while (good && !text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        good = written > 0;
        if (good) text.remove_prefix(static_cast<std::size_t>(written));
    }
    good = good && ::fsync(file) == 0;
    const int reason = errno;
    const bool closed = ::close(file) == 0;
    if (!good) errno = reason;
    return good && closed;
}

void syncFolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) fail(path, "the folder cannot be opened");
    // Some file systems cannot sync a folder, and need not.
    const bool synced = ::fsync(file) == 0 || errno == EINVAL;
    const int reason = errno;
    ::close(file);
    errno = reason;
    if (!synced) fail(path, "the folder cannot be written");
}

} // namespace

void writeWhole(const std::string& path, std::string_view content)
{
    const std::string beside = path + ".new";
    const int file = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) fail(beside, "cannot be opened");
    if (!writeAll(file, content)) fail(beside, "cannot be written");
    if (std::rename(beside.c_str(), path.c_str()) != 0) fail(path, "cannot be replaced");
    syncFolderOf(path);
}

void replaceAtomically(const std::string& path, std::string_view content)
{
    constexpr const char* step = "cannot be written";
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(path, error);
    if (error) throw WriteFailure(path, step, error.value());
    struct stat status = {};
    if (::stat(file.c_str(), &status) != 0) fail(path, step);
    std::string beside =
        (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
    const int handle = ::mkstemp(beside.data());
    if (handle < 0) fail(path, step);
    bool good = ::fchmod(handle, status.st_mode & 07777U) == 0;
    if (good) {
        good = writeAll(handle, content);
    } else {
        const int reason = errno;
        ::close(handle);
        errno = reason;
    }
    if (!good || ::rename(beside.c_str(), file.c_str()) != 0) {
        const int reason = errno;
        ::unlink(beside.c_str());
        throw WriteFailure(path, step, reason);
    }
}

} // namespace text
