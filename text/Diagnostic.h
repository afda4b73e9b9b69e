// A mistake in a text that a person wrote, with its place: what every reader of the toolkit reports.
//
//     c17.bench:12:23: signal 'G3gta' is not defined
//       G10gat = nand(G1gat, G3gta)
//                            ^~~~~
//       expected: an INPUT or the output of a gate
//       hint: did you mean 'G3gat'?
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace text {

/// Where an error is. Lines and columns count from 1; a column counts bytes, as compilers do.
struct Place {
    std::size_t line = 0;   ///< 0: the file as a whole
    std::size_t column = 0; ///< 0: the line as a whole

    friend auto operator<=>(const Place&, const Place&) = default;
};

/// What is wrong, before it is known where.
struct Message {
    std::string message;  ///< what is wrong, and what was found; no full stop
    std::string expected; ///< what may stand there instead; empty: nothing to say
    std::string hint;     ///< what to do; empty: nothing to say

    /// The message, and a line for each of the others that is there; every line ends with a newline.
    std::string format() const;
};

/// One error in a file. An error may be about the file as a whole: then it has no line, and shows none.
struct Diagnostic : Message {
    std::string file; ///< as the user named it
    Place place;
    std::string source;    ///< what is shown of the line: printable, and cut around a place far out
    std::size_t caret = 0; ///< characters of `source` before the mark
    std::size_t marked = 0; ///< characters under the mark, 0: no mark

    /// Takes from `line`, the whole line without its end, what is shown of it: up to `shownCharacters`
    /// characters, with the mark under the `length` bytes from `place.column` on, as far as they are shown.
    /// Linear in what is shown, not in the line.
    void quote(std::string_view line, std::size_t length);

    /// The lines shown at the head of this file, each ended by a newline.
    std::string format() const;

    static constexpr std::size_t shownCharacters = 100;
};

/// The message as an error at a place. `line` is the whole line there, without its end, and the mark stands under `length`
/// bytes; both are ignored for an error of the file as a whole. An empty `file` may be filled in later.
Diagnostic errorAt(Message message, std::string file, Place place, std::string_view line,
                   std::size_t length);

/// The text in single quotes for a message: what is not printable as `?`, and a long one cut to 60 characters
/// and `...`.
std::string quoted(std::string_view text);

/// Length in bytes of the character that `text`, which is not empty, begins with; 0 when it is not UTF-8.
std::size_t utf8Length(std::string_view text);

} // namespace text
