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

/// What may be read: what stands on a disk alone, or a pipe or a device as well, which may have the reader wait.
enum class Readable { file, anything };

/// Reads a file.
/// Ensures: of one with more than `mostBytes` bytes there are more than `mostBytes`, but not all need be there.
FileText readFile(const std::string& path, std::size_t mostBytes = anySize,
                  Readable what = Readable::anything);

/// A file could not be written. The message is `PATH: cannot be written: REASON`, where PATH is the file at which it failed and
/// `cannot be written` the step; without a line end.
class WriteFailure : public std::runtime_error {
public:
    WriteFailure(const std::string& path, const std::string& step, int systemError);
    /// With a reason that is not the system's.
    WriteFailure(const std::string& path, const std::string& step, const std::string& reason);

    /// The reason alone.
    const std::string& reason() const { return reason_; }

private:
    std::string reason_;
};

/// What becomes of the other names (hard links) of a file that is replaced.
enum class OtherNames {
    keepOld, ///< they keep the old content, and the name that is written gets a file of its own
    /// They get the new content: the file is written over, once the new content is on the disk beside it. So is one whose owner
    /// another file could not have.
    getNew
};

/// Makes a file, or replaces it, so that at any moment the old content or the new one is there as a whole, even when the machine
/// stops. A symbolic link stays, and what it leads to is replaced. Permissions stay, and so does the owner where the system allows
/// it. The new content is first written to a file of its own in the same folder, `.NAME.` and six characters. Where the old file
/// is written over, it is that one that is whole until the end.
/// Throws WriteFailure; the old content is still there then, and nothing beside it. When a file could not be written over to its
/// end, the message says where the new content is.
void writeWhole(const std::string& path, std::string_view content,
                OtherNames others = OtherNames::keepOld);

/// The same for a name that may also lead to a pipe or a device, which is written into.
/// Throws WriteFailure.
void writeFile(const std::string& path, std::string_view content);

/// Whether writeWhole() has a chance: a file may be made in the folder, and what is there is a file that may be written.
/// Throws WriteFailure when not. Ensures: nothing changed.
void checkPlace(const std::string& path);

} // namespace text
