#include "text/FileIdentity.h"

#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace text {

namespace {

namespace fs = std::filesystem;

std::optional<FileIdentity> identityOf(const struct stat& status)
{
    if (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))
        return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino, {}};
}

} // namespace

std::string linkTarget(const std::string& path)
{
    constexpr int mostLinks = 40; // as many as the system follows
    fs::path target = path;
    std::error_code error;
    for (int i = 0; i < mostLinks; ++i) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) return target.string();
        target = target.parent_path() / next; // `next` alone where it begins with a slash
    }
    return path;
}

std::optional<FileIdentity> identityOf(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0) return identityOf(status);
    const fs::path target = linkTarget(path);
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!target.has_filename() || ::stat(folder.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino, target.filename().string()};
}

std::optional<FileIdentity> identityOf(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    return identityOf(status);
}

} // namespace text
