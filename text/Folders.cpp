#include "text/Folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace text {

namespace {

namespace fs = std::filesystem;

// Empty where the system does not tell.
fs::path resolved(const fs::path& path)
{
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    if (error) return {};
    const fs::path real = fs::weakly_canonical(whole, error);
    return error ? fs::path() : real;
}

} // namespace

bool isBelow(const std::string& path, const std::string& folder)
{
    const fs::path file = resolved(path);
    const fs::path above = resolved(folder.empty() ? fs::path(".") : fs::path(folder) / "");
    if (file.empty() || above.empty()) return false;
    auto part = file.begin();
    for (const fs::path& wanted : above) {
        if (wanted.empty()) continue; // behind the last slash
        if (part == file.end() || *part != wanted) return false;
        ++part;
    }
    return part != file.end();
}

bool isBelowAny(const std::string& path, const std::vector<std::string>& folders)
{
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::string& folder) { return isBelow(path, folder); });
}

} // namespace text
