// Lines of a file or of standard input, each as soon as it is there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace telemetry {

/// A file cannot be opened or read. The message is whole: it begins with the file's name and ends with a newline.
class ReadFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads lines. What is left in the buffer when it is destroyed is lost to other readers of the same input.
class LineReader {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// `-` is standard input. A line may have `mostBytes` bytes. Throws ReadFailure when the file cannot be opened.
    explicit LineReader(const std::string& path, std::size_t mostBytes = unlimited);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line, without its end (LF, CR LF); false at the end of the file, or when a signal ended a read that waited.
    /// The last line needs no end. The text is valid until the next call. Throws ReadFailure when the file cannot be read.
    bool next(std::string_view& line);
    /// The line read last has more than `mostBytes` bytes; what was returned is its begin.
    bool tooLong() const { return tooLong_; }
    /// A signal ended the latest call of next(). A further call goes on where it stopped.
    bool interrupted() const { return interrupted_; }
    /// Of the line read last, from 1.
    std::size_t lineNumber() const { return lineNumber_; }
    /// How much of a file was returned, 0 to 1; 0 of what has no size, such as a pipe.
    double doneShare() const;
    /// For messages.
    const std::string& name() const { return name_; }

private:
    enum class Filled { some, end, interrupted };

    Filled fill();
    bool take(std::string_view& line, std::size_t length, std::size_t withEnd);

    std::string name_;
    int file_;
    std::size_t mostBytes_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0; // of the bytes in the buffer that were not returned
    std::size_t end_ = 0;
    std::size_t searched_ = 0; // of these, the first ones in which there is no line end
    bool cutting_ = false;     // the begin of a line that is too long is in `cut_`
    std::string cut_;
    bool atEnd_ = false;
    bool tooLong_ = false;
    bool interrupted_ = false;
    std::size_t lineNumber_ = 0;
    std::uint64_t bytesRead_ = 0;
    std::uint64_t fileBytes_ = 0; // 0: not known
};

} // namespace telemetry
