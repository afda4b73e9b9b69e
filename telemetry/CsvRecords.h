// Records of comma-separated values (RFC 4180), or with another sign between them: cells in quotes may have commas, line ends, and
// quotes written twice. Blanks around cells do not count, unless in quotes; blank lines are passed over.
//
// After a mistake in the quotes reading goes on with the next line, not with the next record: a quote that is not closed would
// otherwise take with it all up to the next quote.
#pragma once

#include "telemetry/LineSource.h"
#include "text/Diagnostic.h"

#include <string>
#include <string_view>
#include <vector>

namespace telemetry {

class CsvRecords {
public:
    struct Cell {
        std::string text;       ///< without quotes
        std::size_t offset = 0; ///< of the cell in the record's text
        std::size_t length = 0; ///< with its quotes
    };
    enum class Got { record, mistake, end, interrupted };

    /// What a record in quotes that goes over several lines may have: an unclosed quote in a live stream is told of soon.
    static constexpr std::size_t mostLines = 64;
    static constexpr std::size_t mostQuotedBytes = std::size_t{1} << 20U;

    /// A record may have `mostBytes` bytes. Where the input may grow, a record whose last line has no end is not there yet.
    /// Requires: `lines` outlives this.
    CsvRecords(LineSource& lines, std::size_t mostBytes, bool mayGrow)
        : lines_(lines), mostBytes_(mostBytes), mayGrow_(mayGrow)
    {
    }

    /// The character between cells; a comma unless it is set.
    void setSeparator(char separator) { separator_ = separator; }
    /// Takes back a line.
    /// Requires: it is the line that the source gave last.
    void takeBack(std::string_view line);
    /// Passes over lines until `count` of them are done with; false when there are not so many (yet).
    bool skipTo(std::size_t count);

    /// Goes on to the next record. Linear in its length.
    Got next();
    const std::vector<Cell>& cells() const { return cells_; }
    /// What is wrong with the record. The name of the file is left to the caller.
    /// Requires: next() gave Got::mistake.
    const text::Diagnostic& mistake() const { return mistake_; }
    /// An error about a cell of the record; past the last one, about the end of the record.
    text::Diagnostic errorAtCell(const text::Message& what, std::size_t cell) const;

    /// After Got::end: lines are left that are no record yet.
    bool isCut() const { return isCut_; }
    std::size_t firstLine() const { return firstLine_; } ///< of the record
    std::size_t linesDone() const { return linesDone_; } ///< up to the end of the record

private:
    void beginRecord();
    bool takeLine();
    std::string_view taken() const { return std::string_view(window_).substr(0, lineEnd_); }
    bool lineIsCut() const { return mayGrow_ && next_ == window_.size() && lines_.unended(); }
    Got cut();
    bool isBlank() const;
    std::size_t pastBlanks(std::size_t offset) const;
    Got readCells();
    Got readQuoted(Cell& cell);
    Got refuse(const text::Message& what, std::size_t offset, std::size_t length);
    Got unclosed(const std::string& within, std::size_t offset);
    Got stop();
    void rewind(std::size_t lines);
    text::Diagnostic errorIn(const text::Message& what, std::size_t offset,
                             std::size_t length) const;

    LineSource& lines_;
    std::size_t mostBytes_;
    bool mayGrow_;
    char separator_ = ',';
    // Lines that were read, each with LF behind it: those of the record, and after a mistake those to be read again.
    std::string window_;
    std::size_t recordBegin_ = 0;             // offsets in the window
    std::size_t lineEnd_ = 0;                 // of the line taken last, without LF
    std::size_t at_ = 0;                      // the next character
    std::size_t next_ = 0;                    // the next line
    std::size_t tooLong_ = std::string::npos; // a line of which the rest is missing
    std::size_t firstLine_ = 0;
    std::size_t linesDone_ = 0;
    bool isCut_ = false;
    std::vector<Cell> cells_;
    text::Diagnostic mistake_;
};

} // namespace telemetry
