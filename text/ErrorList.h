// The errors of one file, gathered while it is read.
#pragma once

#include "text/Diagnostic.h"

#include <string>
#include <string_view>
#include <vector>

namespace text {

/// Makes errors with the lines that they are about, and puts them in the order of their places.
class ErrorList {
public:
    /// `lines` are those of the file, without their ends; they must outlive the list.
    ErrorList(std::string file, const std::vector<std::string_view>& lines)
        : file_(std::move(file)), lines_(lines)
    {
    }

    /// An error at a place, with the mark under `length` bytes.
    void add(Place place, std::size_t length, std::string message, std::string expected,
             std::string hint);
    /// An error of the file as a whole.
    void add(std::string message, std::string expected, std::string hint)
    {
        add({}, 0, std::move(message), std::move(expected), std::move(hint));
    }

    bool empty() const { return errors_.empty(); }
    /// The errors by line and column, those without a line last; of one place, in the order in which they were
    /// added. The list is empty then.
    std::vector<Diagnostic> take();

private:
    std::string file_;
    const std::vector<std::string_view>& lines_;
    std::vector<Diagnostic> errors_;
};

} // namespace text
