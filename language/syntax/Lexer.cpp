// Characters to tokens. Blanks and comments separate tokens and are no tokens; comments are kept for the formatter. What is
// no token is reported, once for a run of such bytes, and becomes one token `unreadable`, at which the parser is silent.
#include "language/syntax/Token.h"

#include <tao/pegtl/ascii.hpp>
#include <tao/pegtl/memory_input.hpp>
#include <tao/pegtl/parse.hpp>
#include <tao/pegtl/rules.hpp>

#include <algorithm>
#include <utility>

namespace language {

namespace {

namespace pegtl = tao::pegtl;

// What a model file is written with. A text and a comment end at their line end or at the end of the file, too: the
// actions below find out whether their closing sign is there.
namespace characters {

using namespace pegtl;

struct end_of_line : one<'\n', '\r'> {};
struct blanks : plus<one<' ', '\t', '\n', '\r', '\f', '\v'>> {};
struct line_comment : seq<two<'/'>, star<not_at<end_of_line>, any>> {};
struct block_comment : seq<string<'/', '*'>, sor<until<string<'*', '/'>>, until<eof>>> {};
struct word : identifier {};
struct exponent : seq<one<'e', 'E'>, opt<one<'+', '-'>>, plus<digit>> {};
struct number : seq<plus<digit>, opt<one<'.'>, plus<digit>>, opt<exponent>> {};
struct text_character
    : if_then_else<one<'\\'>, not_at<end_of_line>, not_at<sor<end_of_line, one<'"'>>>> {};
struct open_text : seq<one<'"'>, star<text_character, any>> {};
struct text : seq<open_text, one<'"'>> {};
struct text_end_missing : open_text {};
struct symbol
    : sor<string<'<', '-', '>'>, string<'-', '>'>, string<'!', '='>, string<'<', '='>, string<'.', '.'>,
          one<':', ',', '=', '!', '&', '|', '<', '{', '}', '(', ')', '[', ']', '.', '+', '-', '*', '/'>> {
};
struct unreadable : any {};
struct file : until<eof, sor<blanks, line_comment, block_comment, word, number, text,
                             text_end_missing, symbol, unreadable>> {};

} // namespace characters

class Cutter {
public:
    Cutter(const text::SourceText& source, std::size_t nameLength, std::size_t maximalErrors)
        : source_(source), nameLength_(nameLength), maximalErrors_(maximalErrors),
          start_(source.text().data())
    {
    }

    void token(TokenKind kind, const char* begin, const char* end)
    {
        list.tokens.push_back({kind, firstOnLine_, offset(begin), length(begin, end), line_,
                               offset(begin) - lineStart_ + 1});
        firstOnLine_ = false;
    }

    void comment(bool block, const char* begin, const char* end)
    {
        Comment made{firstOnLine_,
                     block,
                     offset(begin),
                     length(begin, end),
                     line_,
                     line_,
                     static_cast<std::uint32_t>(list.tokens.size())};
        const bool wasFirst = firstOnLine_;
        lines(begin, end);
        // What follows a comment is the first on its line when the comment was, or began on another line.
        firstOnLine_ = wasFirst || line_ != made.line;
        made.lastLine = line_;
        list.comments.push_back(made);
    }

    // Counts the line ends of blanks and comments.
    void lines(const char* begin, const char* end)
    {
        for (const char* at = begin; at != end; ++at) {
            const bool pair = *at == '\r' && offset(at) + 1 < source_.text().size() && at[1] == '\n';
            if ((*at == '\n' || *at == '\r') && !pair) {
                ++line_;
                lineStart_ = offset(at) + 1;
                firstOnLine_ = true;
            }
        }
    }

    void word(const char* begin, const char* end)
    {
        const std::string_view text(begin, length(begin, end));
        if (text.size() > nameLength_) {
            error(begin, end, "a name of " + std::to_string(text.size()) + " characters",
                  "at most " + std::to_string(nameLength_), "shorten the name");
            token(TokenKind::unreadable, begin, end);
        } else {
            token(wordKind(text), begin, end);
        }
    }

    void openText(const char* begin, const char* end)
    {
        error(begin, end, "a text without its closing '\"'", "'\"' on the same line", "");
        token(TokenKind::unreadable, begin, end);
    }

    void blockComment(const char* begin, const char* end)
    {
        if (length(begin, end) < 4 || end[-1] != '/' || end[-2] != '*') {
            error(begin, begin + 2, "a comment without its end", "'*/'", "");
            list.openComment = true;
        }
        comment(true, begin, end);
    }

    void symbol(const char* begin, const char* end)
    {
        const std::string_view text(begin, length(begin, end));
        auto kind = TokenKind::colon;
        while (spelling(kind) != text) {
            kind = static_cast<TokenKind>(static_cast<int>(kind) + 1);
        }
        token(kind, begin, end);
    }

    void unreadable(const char* begin, const char* end)
    {
        // The bytes of a character, and a run of them, are one mistake.
        if (!list.tokens.empty()) {
            Token& last = list.tokens.back();
            if (last.kind == TokenKind::unreadable && last.offset + last.length == offset(begin) &&
                !firstOnLine_) {
                last.length += length(begin, end);
                return;
            }
        }
        unreadable_.push_back(list.tokens.size());
        token(TokenKind::unreadable, begin, end);
    }

    void finish()
    {
        const char* end = start_ + source_.text().size();
        token(TokenKind::end, end, end);
        for (const std::size_t index : unreadable_) {
            if (list.errors.size() < maximalErrors_) reportUnreadable(list.tokens[index]);
        }
    }

    TokenList list;

private:
    std::uint32_t offset(const char* at) const { return static_cast<std::uint32_t>(at - start_); }
    static std::uint32_t length(const char* begin, const char* end)
    {
        return static_cast<std::uint32_t>(end - begin);
    }

    void error(const char* begin, const char* end, std::string message, std::string expected,
               std::string hint)
    {
        if (list.errors.size() >= maximalErrors_) return;
        list.errors.push_back(source_.error(
            {source_.number(), line_, offset(begin) - lineStart_ + 1, length(begin, end)},
            std::move(message), std::move(expected), std::move(hint)));
    }

    void reportUnreadable(const Token& token);

    const text::SourceText& source_;
    std::size_t nameLength_;
    std::size_t maximalErrors_;
    const char* start_;
    std::uint32_t line_ = 1;
    std::uint32_t lineStart_ = 0;
    bool firstOnLine_ = true;
    std::vector<std::size_t> unreadable_;
};

// What a writer most likely meant by a character that the language does not have.
std::string meant(std::string_view text)
{
    static const std::vector<std::pair<std::string_view, std::string_view>> known{
        {"\xE2\x86\x92", "write '->'"},
        {"\xE2\x86\x94", "write '<->'"},
        {"\xE2\x89\xA0", "write '!='"},
        {"\xE2\x89\xA4", "write '<='"},
        {"\xE2\x88\xA7", "write '&'"},
        {"\xE2\x88\xA8", "write '|'"},
        {"\xC2\xAC", "write '!'"},
        {"\xE2\x88\x88", "write 'in'"},
        {"\xE2\x80\x9C", "write '\"'"},
        {"\xE2\x80\x9D", "write '\"'"},
        {"\xE2\x80\x93", "write '-'"},
        {"\xE2\x80\xA6", "write '..'"},
        {"\xC2\xA0", "this is a blank of another kind: write a plain one"},
        {";", "a statement needs no ';': it ends where the next one begins"},
        {"'", "texts stand in double quotes"},
        {">", "thresholds rise from left to right, with '<' and '<='"},
        {"#", "comments begin with '//'"},
        {"%", "write a probability as a number from 0 to 1"},
        {"~", "write '!'"}};
    for (const auto& [sign, advice] : known) {
        if (text.starts_with(sign)) return std::string(advice);
    }
    return {};
}

void Cutter::reportUnreadable(const Token& token)
{
    const std::string_view text =
        std::string_view(source_.text()).substr(token.offset, token.length);
    std::string message;
    std::string hint = meant(text);
    const bool afterEquals = token.offset > 0 && source_.text()[token.offset - 1] == '=';
    if (text.front() == '>' && afterEquals) hint = "write '->'";
    if (text.front() == '\0') {
        message = "a byte of value 0";
        hint = "a model file is a text in UTF-8";
    } else if (text::utf8Length(text) == 0) {
        message = "bytes that are not UTF-8";
        hint = "save the file in UTF-8";
    } else {
        message = text::quoted(text) + " has no meaning in a model";
        if (hint.empty() && text::utf8Length(text) > 1) {
            hint = "names are made of the letters a to z, digits and underscores";
        }
    }
    list.errors.push_back(source_.error({source_.number(), token.line, token.column, token.length},
                                        std::move(message), {}, std::move(hint)));
}

template <typename Rule> struct Action : pegtl::nothing<Rule> {
};

template <> struct Action<characters::blanks> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.lines(in.begin(), in.end());
    }
};
template <> struct Action<characters::line_comment> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.comment(false, in.begin(), in.end());
    }
};
template <> struct Action<characters::block_comment> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.blockComment(in.begin(), in.end());
    }
};
template <> struct Action<characters::word> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.word(in.begin(), in.end());
    }
};
template <> struct Action<characters::number> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.token(TokenKind::number, in.begin(), in.end());
    }
};
template <> struct Action<characters::text> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.token(TokenKind::text, in.begin(), in.end());
    }
};
template <> struct Action<characters::text_end_missing> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.openText(in.begin(), in.end());
    }
};
template <> struct Action<characters::symbol> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.symbol(in.begin(), in.end());
    }
};
template <> struct Action<characters::unreadable> {
    template <typename Input> static void apply(const Input& in, Cutter& cutter)
    {
        cutter.unreadable(in.begin(), in.end());
    }
};

} // namespace

TokenList tokenize(const text::SourceText& source, std::size_t nameLength, std::size_t maximalErrors)
{
    Cutter cutter(source, nameLength, maximalErrors);
    const std::string& text = source.text();
    pegtl::memory_input<pegtl::tracking_mode::lazy> in(text.data(), text.data() + text.size(), "");
    pegtl::parse<characters::file, Action>(in, cutter);
    cutter.finish();
    return std::move(cutter.list);
}

} // namespace language
