// Where an answer goes: standard output, or a file that can be continued after a crash.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace app {

class AnswerFile {
public:
    /// Standard output without a path. A file is made, or emptied; with `keepBytes` it is continued after its first so many
    /// bytes, and what follows them is dropped. Throws Failure when that is not possible.
    explicit AnswerFile(const std::optional<std::string>& path,
                        std::optional<std::uint64_t> keepBytes = {});
    ~AnswerFile();
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    /// Writes at once. Throws Failure.
    void write(std::string_view text);
    /// Waits until all that was written is on the disk. Does nothing for standard output.
    void sync();
    /// How many were written to the file, with those of the run that is continued.
    std::uint64_t bytes() const { return bytes_; }

private:
    [[noreturn]] void fail(const char* what) const;

    std::string path_; ///< empty: standard output
    int file_ = -1;
    std::uint64_t bytes_ = 0;
};

} // namespace app
