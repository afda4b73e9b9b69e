// Where an answer goes: standard output, or a file that can be continued after a crash.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace app {

/// What is in a file stays until begin(): a run that is refused before leaves it as it was. One that was not there is removed again
/// then. Until the end no other run can have the file for its answer.
class AnswerFile {
public:
    /// Standard output without a path; else a file, which is made when it is not there. `option` names it in messages.
    /// Throws FileFailure when it cannot be opened, and when another run has it.
    explicit AnswerFile(const std::optional<std::string>& path, std::string option = "-o");
    ~AnswerFile();
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    /// The file is continued after its first so many bytes.
    /// Throws FileFailure when it has less. Requires: begin() was not called.
    void resume(std::uint64_t keepBytes);
    /// Empties the file, or drops what comes after the bytes that are continued. Throws FileFailure.
    void begin();
    /// Writes at once. Throws FileFailure, or Failure for standard output.
    /// Requires: begin() was called.
    void write(std::string_view text);
    /// Waits until all that was written is on the disk. Does nothing for standard output.
    void sync();
    /// How many were written to the file, with those of the run that is continued.
    std::uint64_t bytes() const { return bytes_; }

private:
    void open();
    [[noreturn]] void fail(const char* what) const;

    std::string path_; ///< empty: standard output
    std::string option_;
    int file_ = -1;
    bool wasMade_ = false;
    bool begun_ = false;
    std::uint64_t bytes_ = 0;
};

} // namespace app
