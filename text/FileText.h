// The text of a file that a person named.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace text {

/// The contents, or why there are none, in the words of the system.
struct FileText {
    std::optional<std::string> text;
    std::string failure;
};

/// Reads up to `mostBytes` bytes, and a few more of a longer file, so that it can be told from one that fits.
FileText readFileText(const std::string& path, std::size_t mostBytes);

} // namespace text
