// Reads problems of a circuit from JSON Lines, one at a time, as they come.
//
//     {"id": "p1", "inputs": {"a": 0, "b": 1}, "observed": {"y": 1}}
//
// `id` is a text and may be missing; `inputs` has every input of the circuit and `observed` one output at least; further keys
// are passed over, and so are blank lines. Order of keys and signals does not matter.
#pragma once

#include "app/Problem.h"
#include "language/SourceError.h"

#include <cstdio>
#include <memory>
#include <variant>

namespace app {

/// Reads one line. `place.line` of the error is left to the caller; the error has the line's text and a column.
std::variant<Problem, language::SourceError> readProblem(std::string_view line,
                                                         const netlist::Circuit& circuit);

/// Reads lines from a file or standard input, each as soon as it is there.
class LineReader {
public:
    /// `-` is standard input. Throws FileFailure when the file cannot be opened.
    explicit LineReader(const std::string& path);

    /// The next line, without its end; false at the end of the file, or when a signal ended a read that waited. Throws FileFailure when the
    /// file cannot be read. The text is valid until the next call.
    bool next(std::string_view& line);
    /// Of the line read last, from 1.
    std::size_t lineNumber() const { return lineNumber_; }
    /// For messages.
    const std::string& name() const { return name_; }

private:
    struct Close {
        void operator()(std::FILE* file) const
        {
            if (file != stdin) static_cast<void>(std::fclose(file));
        }
    };
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };

    std::string name_;
    std::unique_ptr<std::FILE, Close> file_;
    std::unique_ptr<char, Free> buffer_;
    std::size_t capacity_ = 0;
    std::size_t lineNumber_ = 0;
};

} // namespace app
