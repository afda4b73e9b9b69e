// The text of a .bench file with its name and its lines.
#pragma once

#include "text/Diagnostic.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace netlist {

/// A text cut into lines. A byte order mark at its beginning and a Ctrl-Z at its end are left out; a line ends with LF or CR LF.
class BenchText {
public:
    /// `name` is for errors. Linear in the text.
    /// Requires: `text` outlives this.
    BenchText(std::string name, std::string_view text);

    std::size_t lineCount() const { return lines_.size(); }
    /// A line without its end.
    /// Requires: 1 <= number <= lineCount().
    std::string_view line(std::size_t number) const { return lines_[number - 1]; }

    /// An error at a place, with the mark under `length` bytes; at line 0, one of the file as a whole.
    text::Diagnostic error(text::Place place, std::size_t length, text::Message message) const;

private:
    std::string name_;
    std::vector<std::string_view> lines_;
};

} // namespace netlist
