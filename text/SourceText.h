// A text that a person wrote, with its name and its lines. It counts places in the text, and shows them.
#pragma once

#include "text/Diagnostic.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// A piece of a text. Lines and columns count from 1, columns and the length count bytes. A piece may extend
/// over several lines; its length then includes the bytes of the line ends.
struct Range {
    std::uint32_t file = 0; ///< the number of the text
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t length = 0;
};

/// The text of a file. A byte order mark at its beginning is removed. A line ends with LF, CR LF or CR.
class SourceText {
public:
    /// `name` as the user gave it, for messages; `number` is the `file` of every range in it.
    SourceText(std::string name, std::string text, std::uint32_t number = 0);

    const std::string& name() const { return name_; }
    const std::string& text() const { return text_; }
    std::uint32_t number() const { return number_; }
    std::size_t lineCount() const { return starts_.size(); }

    /// The line without its end; empty for a number out of range.
    std::string_view line(std::size_t number) const;

    /// The line and the column of a byte of the text, or of its end. Logarithmic in the number of lines.
    /// Requires: `offset` is not beyond the end.
    Place place(std::size_t offset) const;
    /// The range of `length` bytes from `offset` on.
    /// Requires: `offset` is not beyond the end.
    Range range(std::size_t offset, std::size_t length) const;
    /// The bytes of a range.
    /// Requires: the range is one of this text.
    std::string_view at(const Range& range) const;

    /// An error with the line and the mark under the range; a range of line 0 is the file as a whole.
    Diagnostic error(const Range& range, std::string message, std::string expected = {},
                     std::string hint = {}) const;

private:
    std::string name_;
    std::string text_;
    std::uint32_t number_;
    std::vector<std::size_t> starts_; ///< offset of the first byte of each line
};

} // namespace text
