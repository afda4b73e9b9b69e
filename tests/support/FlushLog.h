// What goes to a stream, and where it is flushed.
#pragma once

#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

/// Takes what goes to a stream while it lives, cut at every flush.
class FlushLog {
public:
    explicit FlushLog(std::ostream& stream = std::cout)
        : stream_(stream), previous_(stream.rdbuf(&buffer_))
    {
    }
    ~FlushLog() { stream_.rdbuf(previous_); }
    FlushLog(const FlushLog&) = delete;
    FlushLog& operator=(const FlushLog&) = delete;

    /// The pieces of text, each up to and including what a flush sent; text after the last flush is the last
    /// piece, and a flush right after another makes an empty one.
    std::vector<std::string> pieces() const
    {
        std::vector<std::string> all = buffer_.flushed;
        if (!buffer_.open.empty()) {
            all.push_back(buffer_.open);
        }
        return all;
    }
    /// How often the stream was flushed.
    std::size_t flushes() const { return buffer_.flushed.size(); }
    /// All of the text.
    std::string text() const
    {
        std::string whole;
        for (const std::string& piece : pieces()) {
            whole += piece;
        }
        return whole;
    }

private:
    struct Buffer : std::streambuf {
        std::string open;
        std::vector<std::string> flushed;

        int_type overflow(int_type c) override
        {
            if (!traits_type::eq_int_type(c, traits_type::eof())) {
                open += traits_type::to_char_type(c);
            }
            return traits_type::not_eof(c);
        }
        std::streamsize xsputn(const char* text, std::streamsize count) override
        {
            open.append(text, static_cast<std::size_t>(count));
            return count;
        }
        int sync() override
        {
            flushed.push_back(std::move(open));
            open.clear();
            return 0;
        }
    };

    Buffer buffer_;
    std::ostream& stream_;
    std::streambuf* previous_;
};
