// Where an answer goes: standard output, or a file that can be continued after a crash.
#pragma once

#include "text/Digest.h"

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

    /// What a run had written when it stopped.
    struct Written {
        std::uint64_t bytes = 0;           ///< 0: to standard output, or nothing
        std::optional<std::string> digest; ///< of these bytes (text::Digest); none: not known
    };
    /// The file is continued after what was written to it; one to which nothing was written has to be empty. Linear in the bytes.
    /// Throws FileFailure, and leaves the file as it is, when that is not what the file begins with. Requires: begin() was not
    /// called.
    void resume(const Written& before);
    /// Empties the file, or drops what comes after the bytes that are continued. Throws FileFailure.
    void begin();
    /// Writes at once. Throws FileFailure, or Failure for standard output.
    /// Requires: begin() was called.
    void write(std::string_view text);
    /// Waits until all that was written is on the disk. Does nothing for standard output.
    void sync();
    /// Closes the file, which may be when the system says that something could not be written. Throws FileFailure.
    /// Ensures: nothing more can be written.
    void end();
    /// To the file, with what the run that is continued had written.
    Written written() const { return {bytes_, digest_.hex()}; }

private:
    void open();
    void take(std::uint64_t bytes);
    [[noreturn]] void refuse(const std::string& what) const;
    [[noreturn]] void fail(const char* what) const;

    std::string path_; ///< empty: standard output
    std::string option_;
    int file_ = -1;
    bool wasMade_ = false;
    bool begun_ = false;
    std::uint64_t bytes_ = 0;
    text::Digest digest_; // of these
};

} // namespace app
