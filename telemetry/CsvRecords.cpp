#include "telemetry/CsvRecords.h"

#include <algorithm>
#include <fmt/format.h>

namespace telemetry {

namespace {

// Around cells, of which a tab may be the separator.
bool isBlankSign(char sign, char separator)
{
    return (sign == ' ' || sign == '\t') && sign != separator;
}

std::string_view separatorName(char separator)
{
    return separator == ',' ? "a comma" : separator == ';' ? "a semicolon" : "a tab";
}

} // namespace

void CsvRecords::takeBack(std::string_view line)
{
    window_.assign(line);
    window_ += '\n';
    next_ = 0;
    linesDone_ = lines_.lineNumber() - 1;
}

bool CsvRecords::skipTo(std::size_t count)
{
    while (linesDone_ < count) {
        beginRecord();
        if (!takeLine()) return false;
    }
    return true;
}

void CsvRecords::beginRecord()
{
    if (next_ == window_.size()) {
        window_.clear();
        next_ = 0;
        tooLong_ = std::string::npos;
    }
    recordBegin_ = next_;
}

// Makes the next line the current one. It comes from the window, or else from the source.
bool CsvRecords::takeLine()
{
    if (next_ == window_.size()) {
        std::string_view line;
        if (!lines_.next(line)) return false;
        if (lines_.tooLong() || line.size() > mostBytes_) tooLong_ = next_;
        window_ += line;
        window_ += '\n';
    }
    at_ = next_;
    lineEnd_ = window_.find('\n', at_);
    next_ = lineEnd_ + 1;
    ++linesDone_;
    return true;
}

bool CsvRecords::isBlank() const
{
    return window_.find_first_not_of(" \t", at_) == lineEnd_;
}

std::size_t CsvRecords::pastBlanks(std::size_t offset) const
{
    while (offset < lineEnd_ && isBlankSign(window_[offset], separator_)) {
        ++offset;
    }
    return offset;
}

CsvRecords::Got CsvRecords::next()
{
    do {
        beginRecord();
        if (!takeLine()) return lines_.interrupted() ? Got::interrupted : Got::end;
        firstLine_ = linesDone_;
        if (lineIsCut()) return cut();
    } while (isBlank());
    return readCells();
}

CsvRecords::Got CsvRecords::readCells()
{
    std::size_t count = 0;
    if (at_ == tooLong_) return stop();
    while (true) {
        if (count == cells_.size()) cells_.emplace_back();
        Cell& cell = cells_[count++];
        if (window_[at_] == '"') {
            const Got got = readQuoted(cell);
            if (got != Got::record) return got;
        } else {
            const char ends[] = {separator_, '"', '\0'};
            const std::size_t end = std::min(lineEnd_, taken().find_first_of(ends, at_));
            if (end < lineEnd_ && window_[end] == '"') {
                return refuse({"a quote within a cell", "a cell that is in quotes as a whole",
                               "a quote in it is written twice: \"a \"\"b\"\"\""},
                              end, 1);
            }
            std::size_t begin = std::min(pastBlanks(at_), end);
            std::size_t last = end;
            while (last > begin && isBlankSign(window_[last - 1], separator_)) {
                --last;
            }
            cell.text.assign(window_, begin, last - begin);
            cell.offset = begin - recordBegin_;
            cell.length = last - begin;
            at_ = end;
        }
        if (at_ == lineEnd_) break;
        ++at_;
    }
    cells_.resize(count);
    return Got::record;
}

// Reads from the opening quote to the separator after the closing one, or to the end of the line.
CsvRecords::Got CsvRecords::readQuoted(Cell& cell)
{
    const std::size_t begin = at_;
    cell.text.clear();
    ++at_;
    while (true) {
        const std::size_t quote = std::min(taken().find('"', at_), lineEnd_);
        cell.text.append(window_, at_, quote - at_);
        if (quote < lineEnd_) {
            at_ = quote + 1;
            if (window_[at_] != '"') break;
            cell.text += '"';
            ++at_;
            continue;
        }
        cell.text += '\n';
        if (!takeLine()) {
            if (lines_.interrupted()) {
                rewind(0);
                return Got::interrupted;
            }
            return refuse(
                {"this quote is not closed", "a closing quote before the end of the input", ""},
                begin, 1);
        }
        if (lineIsCut()) return cut();
        const std::size_t most = std::min(mostBytes_, mostQuotedBytes);
        if (at_ == tooLong_ || next_ - recordBegin_ > most)
            return unclosed(fmt::format("{} bytes", most), begin);
        if (linesDone_ - firstLine_ >= mostLines)
            return unclosed(fmt::format("{} lines", mostLines), begin);
    }
    cell.offset = begin - recordBegin_;
    cell.length = at_ - begin;
    at_ = pastBlanks(at_);
    if (at_ < lineEnd_ && window_[at_] != separator_) {
        return refuse({"text after a closing quote",
                       fmt::format("{}, or the end of the line", separatorName(separator_)),
                       "a quote in a cell is written twice: \"a \"\"b\"\"\""},
                      at_, 1);
    }
    return Got::record;
}

CsvRecords::Got CsvRecords::unclosed(const std::string& within, std::size_t offset)
{
    return refuse({"this quote is not closed within " + within, "a closing quote", ""}, offset, 1);
}

// Gives the record up: reading goes on after its first line.
CsvRecords::Got CsvRecords::refuse(const text::Message& what, std::size_t offset, std::size_t length)
{
    mistake_ = errorIn(what, offset, length);
    rewind(1);
    return Got::mistake;
}

// Leaves the record for when there is more of it.
CsvRecords::Got CsvRecords::cut()
{
    rewind(0);
    isCut_ = true;
    return Got::end;
}

CsvRecords::Got CsvRecords::stop()
{
    return refuse({fmt::format("this line has more than {} bytes", mostBytes_), "shorter lines", ""},
                  recordBegin_, 1);
}

// Goes back to the end of the record's first line, or with 0, to its beginning.
void CsvRecords::rewind(std::size_t lines)
{
    next_ = lines == 0 ? recordBegin_ : window_.find('\n', recordBegin_) + 1;
    linesDone_ = firstLine_ - 1 + lines;
}

text::Diagnostic CsvRecords::errorIn(const text::Message& what, std::size_t offset,
                                     std::size_t length) const
{
    const std::string_view window = window_;
    const std::size_t newline = offset == 0 ? std::string::npos : window.rfind('\n', offset - 1);
    const std::size_t begin = newline == std::string::npos ? 0 : newline + 1;
    const std::size_t end = window.find('\n', offset);
    const auto before = std::count(window.begin() + static_cast<std::ptrdiff_t>(recordBegin_),
                                   window.begin() + static_cast<std::ptrdiff_t>(offset), '\n');
    return text::errorAt(what, {},
                         {firstLine_ + static_cast<std::size_t>(before), offset - begin + 1},
                         window.substr(begin, end - begin), length);
}

text::Diagnostic CsvRecords::errorAtCell(const text::Message& what, std::size_t cell) const
{
    if (cell >= cells_.size()) return errorIn(what, lineEnd_, 1);
    return errorIn(what, recordBegin_ + cells_[cell].offset,
                   std::max<std::size_t>(cells_[cell].length, 1));
}

} // namespace telemetry
