// JSON as text: where things stand in it, what is wrong with what is not JSON, and texts in its quotes.
//
// The parser reports events without places. After a key it has taken exactly the characters up to the closing quote, and the
// iterator that it reads through knows how many these are.
#pragma once

#include "text/Diagnostic.h"

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace text {

/// An iterator over characters that counts how many were passed.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    /// Requires: `*count` outlives the iterator and its copies.
    CountingIterator(const char* at, std::size_t* count) : at_(at), count_(count) {}

    reference operator*() const { return *at_; }
    CountingIterator& operator++()
    {
        ++at_;
        ++*count_;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

private:
    const char* at_;
    std::size_t* count_;
};

/// A piece of a text, in bytes from 0.
struct Extent {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// The text in quotes, with these.
/// Requires: its closing quote is the byte before `end`.
Extent textBefore(std::string_view line, std::size_t end);
/// The value that follows a key; of an object or array its bracket only.
/// Requires: the closing quote of the key is the byte before `end`.
Extent valueAfter(std::string_view line, std::size_t end);

/// What is wrong with text that is not JSON, taken from the message of the parser.
struct JsonMistake {
    std::string found;    ///< empty: the message has another form
    std::string expected; ///< may be empty
    bool quotesText =
        false; ///< the message has bytes of the text, after which `expected` may be cut off
};
JsonMistake jsonMistake(std::string_view parserMessage);

/// Where the first byte 0 is, npos without one. The parser takes it for the end of the text, and looks at nothing behind it.
std::size_t zeroByte(std::string_view text);
/// What is wrong there.
Message zeroByteMistake();

/// The text in quotes, with escapes; bytes that are not UTF-8 become U+FFFD.
std::string jsonQuoted(std::string_view text);

} // namespace text
