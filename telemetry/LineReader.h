// Lines of a file or of standard input, each as soon as it is there.
#pragma once

#include "telemetry/LineSource.h"
#include "telemetry/PackedFile.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace telemetry {

/// Reads lines. A signal interrupts a read that waits. What is left in the buffer when it is destroyed is lost to other readers of
/// the same input.
class LineReader : public LineSource {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// `-` is standard input. A file that gzip or zstd packed is unpacked (PackedFile.h). A line may have `mostBytes` bytes; a
    /// longer one is cut. Throws ReadFailure when the file cannot be opened.
    explicit LineReader(const std::string& path, std::size_t mostBytes = unlimited);
    ~LineReader() override;

    /// A line ends with LF or CR LF; the last one needs no end.
    bool next(std::string_view& line) override;
    /// The line read last has more than `mostBytes` bytes; these were returned.
    bool tooLong() const override { return tooLong_; }
    bool unended() const override { return unended_; }
    bool interrupted() const override { return interrupted_; }
    std::size_t lineNumber() const override { return lineNumber_; }
    /// 0 for what has no size, such as a pipe.
    double doneShare() const override;
    const std::string& name() const override { return name_; }

private:
    enum class Filled { some, end, interrupted };

    Filled fill();
    bool take(std::string_view& line, std::size_t length, std::size_t withEnd);

    std::string name_;
    int file_;
    std::unique_ptr<PackedFile> packed_; // null: the file is read as it is
    std::size_t mostBytes_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0; // of the bytes in the buffer that were not returned
    std::size_t end_ = 0;
    std::size_t searched_ = 0; // of these, so many at the beginning have no line end
    bool cutting_ = false;     // the beginning of a line that is too long is in `cut_`
    std::string cut_;
    bool atEnd_ = false;
    bool tooLong_ = false;
    bool unended_ = false;
    bool interrupted_ = false;
    std::size_t lineNumber_ = 0;
    std::uint64_t bytesRead_ = 0;
    std::uint64_t fileBytes_ = 0; // 0: not known
};

} // namespace telemetry
