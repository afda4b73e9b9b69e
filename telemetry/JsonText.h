// Where things stand in a line of JSON that is read event by event. After a key, the parser has taken exactly the characters
// up to the closing quote, and the iterator that it reads through knows how many.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace telemetry {

/// An iterator over characters that writes down how many were passed.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    /// `*count` outlives the iterator and its copies.
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

/// A piece of a line, in bytes from 0.
struct Extent {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// The text in quotes whose closing quote is the one before `end`.
Extent textBefore(std::string_view line, std::size_t end);
/// The value that follows the key whose closing quote is the one before `end`; of an object or array its bracket.
Extent valueAfter(std::string_view line, std::size_t end);

/// What the parser has to say about text that is not JSON, taken from its message.
struct SyntaxMistake {
    std::string found;
    std::string expected; ///< may be empty
};
SyntaxMistake syntaxMistake(std::string_view parserMessage);

} // namespace telemetry
