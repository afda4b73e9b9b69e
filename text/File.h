// Files that a person named, read and written as a whole.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace text {

/// The contents of a file, or why there are none, in the words of the system.
struct FileText {
    std::optional<std::string> text;
    std::string failure;
    bool wasOpened = false; ///< the file was found and opened, whatever came then
};

constexpr std::size_t anySize = std::numeric_limits<std::size_t>::max();

/// Reads a file.
/// Ensures: of one with more than `mostBytes` bytes there are more than `mostBytes`, but not all need be there.
FileText readFile(const std::string& path, std::size_t mostBytes = anySize);

/// A file could not be written. The message is `PATH: cannot be written: REASON`, where PATH is the file at which it failed and
/// `cannot be written` the step; without a line end.
class WriteFailure : public std::runtime_error {
public:
    WriteFailure(const std::string& path, const std::string& step, int systemError);

    /// The system's reason alone.
    const std::string& reason() const { return reason_; }

private:
    std::string reason_;
};

/// Writes a file from its beginning. When that fails, what was there is lost.
/// Throws WriteFailure.
void writeFile(const std::string& path, std::string_view content);

/// Makes a file, or replaces it, so that at any moment the old content or the new one is there as a whole, even when the machine
/// stops. The new content is first written to PATH.new.
/// Throws WriteFailure; the old content is still there then.
void writeWhole(const std::string& path, std::string_view content);

/// Replaces the content of a file that exists, so that whoever reads it sees the old one or the new one. The permissions stay, and
/// a link still leads to its file.
/// Throws WriteFailure; the old content is still there then, and nothing beside it.
void replaceAtomically(const std::string& path, std::string_view content);

} // namespace text
