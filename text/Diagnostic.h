// A mistake in a text that a person wrote, with its place. Every reader of the toolkit reports mistakes in this form.
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

/// Where a mistake is. Lines and columns count from 1; a column counts bytes, as compilers do.
struct Place {
    std::size_t line = 0;   ///< 0: the file as a whole
    std::size_t column = 0; ///< 0: the line as a whole

    friend auto operator<=>(const Place&, const Place&) = default;
};

/// What is wrong, without the place.
struct Message {
    std::string message;  ///< what is wrong, and what was found; no full stop
    std::string expected; ///< what may stand there instead; may be empty
    std::string hint;     ///< what to do about it; may be empty

    /// The message on a line, and a line each for what is expected and for the hint, if they are there. Every line ends with a
    /// newline.
    std::string format() const;
};

/// One error in a file. An error about the file as a whole has no line, and shows none.
struct Diagnostic : Message {
    std::string file; ///< as the user named it
    Place place;
    std::string source;    ///< what is shown of the line: printable, and cut around a place far out
    std::size_t caret = 0; ///< characters of `source` before the mark
    std::size_t marked = 0; ///< characters under the mark; 0: no mark

    /// Takes what is shown from `line`, the whole line without its end: up to `shownCharacters` characters, with the mark under
    /// the `length` bytes from `place.column` on, as far as they are shown. Linear in what is shown, not in the line.
    /// Requires: `place` is set.
    void quote(std::string_view line, std::size_t length);

    /// The lines of the example above, each ended by a newline.
    std::string format() const;

    static constexpr std::size_t shownCharacters = 100;
};

/// The message as an error at a place. `line` is the whole line there, without its end, and the mark stands under `length`
/// bytes; both are ignored for an error of the file as a whole. Name and line number may be filled in later.
Diagnostic errorAt(Message message, std::string file, Place place, std::string_view line,
                   std::size_t length);

/// The text in single quotes, for a message. What is not printable becomes `?`; a long text is cut to 60 characters and `...`.
std::string quoted(std::string_view text);
/// The name of a file where a message has it: its line ends and other control characters are shown, so that a line of the message
/// stays one.
std::string shownName(std::string_view file);

/// Length in bytes of the character that `text` begins with; 0 when it is not UTF-8.
/// Requires: `text` is not empty.
std::size_t utf8Length(std::string_view text);

} // namespace text
