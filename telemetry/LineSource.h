// Where lines come from: an interface, and lines that a program has in memory. LineReader.h reads files.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace telemetry {

/// The input cannot be opened or read, or not be read on. The message is whole: it begins with the input's name and ends
/// with a newline.
class ReadFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Gives lines one by one.
class LineSource {
public:
    LineSource() = default;
    virtual ~LineSource() = default;
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;

    /// The next line, without its end; false at the end of the input, or when waiting for a line was interrupted.
    /// Ensures: the text is valid until the next call. Throws ReadFailure when the input cannot be read.
    virtual bool next(std::string_view& line) = 0;
    /// Of the line read last, from 1; 0 before the first one.
    virtual std::size_t lineNumber() const = 0;
    /// The line read last was too long for the source; what was returned is its beginning.
    virtual bool tooLong() const { return false; }
    /// The line read last has no end, since the input ended first: more of it may come.
    virtual bool unended() const { return false; }
    /// The latest call of next() was interrupted. A further call goes on where it stopped.
    virtual bool interrupted() const { return false; }
    /// How much of the input was returned, 0 to 1; 0 where that is not known.
    virtual double doneShare() const { return 0.0; }
    /// The input's name for messages.
    virtual const std::string& name() const = 0;
};

/// Lines in memory.
class LineVector : public LineSource {
public:
    explicit LineVector(std::vector<std::string> lines, std::string name = "lines");

    bool next(std::string_view& line) override;
    std::size_t lineNumber() const override { return done_; }
    double doneShare() const override;
    const std::string& name() const override { return name_; }

private:
    std::vector<std::string> lines_;
    std::string name_;
    std::size_t done_ = 0;
};

} // namespace telemetry
