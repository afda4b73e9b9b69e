#include "text/FileText.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace text {

FileText readFileText(const std::string& path, std::size_t mostBytes)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {std::nullopt, "Is a directory"};
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) return {std::nullopt, errno != 0 ? std::strerror(errno) : "cannot be opened"};
    std::string text;
    std::string block(std::size_t{1} << 16U, '\0');
    while (file && text.size() <= mostBytes) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        text.append(block, 0, static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad()) return {std::nullopt, "cannot be read to its end"};
    return {std::move(text), {}};
}

} // namespace text
