// The input of the grammar: tokens instead of characters, in the form that PEGTL's rules take. It also remembers what was
// tried in vain at the farthest token, which is what an error message says was expected there.
#pragma once

#include "language/syntax/Syntax.h"
#include "language/syntax/Token.h"

#include <tao/pegtl/internal/marker.hpp>
#include <tao/pegtl/rewind_mode.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace language {

/// Thrown at a mistake and caught where the statement began. Without a message, what was expected is reported.
struct Mistake {
    const Token* at = nullptr; ///< null: the farthest token that was looked at
    std::string message = {};
    std::string expected = {};
    std::string hint = {};
    std::uint32_t length = 0; ///< of the mark, 0: the token's
};

class TokenInput;

/// What is done about a mistake: it is reported, and reading goes on behind the statement that has it.
class Recovery {
public:
    virtual ~Recovery() = default;
    /// `begin` is the first token of the statement, `blocks` the number of braces that were open there.
    /// Ensures: the input has moved on by at least one token.
    virtual void recover(TokenInput& in, const Token* begin, std::size_t blocks,
                         const Mistake& mistake) = 0;
};

class TokenInput {
public:
    using iterator_t = const Token*;

    /// What an action gets: the tokens that its rule has read.
    class Span {
    public:
        Span(const iterator_t& begin, const TokenInput& in) : begin_(begin), in_(in) {}
        const Token& first() const { return *begin_; }
        std::string_view text() const { return in_.text(*begin_); }
        text::Range range() const { return in_.range(begin_); }
        syntax::Name name() const { return {std::string(text()), range()}; }
        const TokenInput& input() const { return in_; }

    private:
        const Token* begin_;
        const TokenInput& in_;
    };
    using action_t = Span;

    TokenInput(const text::SourceText& source, const std::vector<Token>& tokens,
               const syntax::Limits& limits, Recovery& onMistake)
        : recovery(onMistake), source_(source), limits_(limits), current_(tokens.data()),
          begin_(current_), farthest_(current_)
    {
    }

    const Token& front() const { return *current_; }
    /// The token `n` after the next one, at most the end.
    const Token& peek(std::size_t n) const
    {
        const Token* token = current_;
        while (n-- > 0 && token->kind != TokenKind::end) {
            ++token;
        }
        return *token;
    }
    bool empty() const { return current_->kind == TokenKind::end; }
    void bump() { ++current_; }
    iterator_t& iterator() { return current_; }
    const iterator_t& iterator() const { return current_; }

    template <tao::pegtl::rewind_mode M> tao::pegtl::internal::marker<iterator_t, M> mark()
    {
        return tao::pegtl::internal::marker<iterator_t, M>(current_);
    }

    std::string_view text(const Token& token) const
    {
        return std::string_view(source_.text()).substr(token.offset, token.length);
    }
    /// From the token to the one before the next.
    text::Range range(const Token* begin) const
    {
        const Token* last = current_ > begin ? current_ - 1 : begin;
        return {source_.number(), begin->line, begin->column,
                last->offset + last->length - begin->offset};
    }
    const text::SourceText& source() const { return source_; }
    const syntax::Limits& limits() const { return limits_; }

    /// Notes that `what` was looked for at the next token; `kind` if it is one token.
    void expect(TokenKind kind, std::string_view what)
    {
        if (current_ > farthest_) {
            expected_.clear();
            farthest_ = current_;
        }
        if (current_ == farthest_) expected_.push_back({kind, what});
    }

    struct Expectation {
        TokenKind kind;        ///< `name` if a name could stand there, `end` for more than a token
        std::string_view what; ///< how a message says it; empty: not at all
    };

    /// How many expectations there are at the next token, to go back to.
    std::size_t expectations() const { return current_ == farthest_ ? expected_.size() : 0; }
    /// Puts one expectation in place of those that came after the first `count` at `at`.
    void summarize(const Token* at, std::size_t count, std::string_view what)
    {
        if (farthest_ != at || expected_.size() <= count) return;
        bool name = false;
        for (std::size_t i = count; i < expected_.size(); ++i) {
            name = name || expected_[i].kind == TokenKind::name;
        }
        expected_.resize(count);
        expected_.push_back({name ? TokenKind::name : TokenKind::end, what});
    }
    /// Whether it is the first token of the file, with none before it.
    bool isFirst(const Token* token) const { return token == begin_; }
    const Token* farthest() const { return farthest_; }
    const std::vector<Expectation>& expected() const { return expected_; }
    /// Goes on at a token and forgets what was expected.
    void restart(const Token* at)
    {
        current_ = farthest_ = at;
        expected_.clear();
    }

    Recovery& recovery;
    std::string_view context;             ///< the construct that is being read: "a law"
    std::size_t depth = 0;                ///< of nesting
    std::vector<const Token*> openBraces; ///< of the blocks that are being read

private:
    const text::SourceText& source_;
    const syntax::Limits& limits_;
    const Token* current_;
    const Token* begin_;
    const Token* farthest_;
    std::vector<Expectation> expected_;
};

/// Whether the token begins a declaration, even where a block before it has no end: `import` and `const` only at the margin.
inline bool beginsDeclaration(const Token& token)
{
    return token.kind == TokenKind::componentWord || token.kind == TokenKind::systemWord ||
           ((token.kind == TokenKind::importWord || token.kind == TokenKind::constWord) &&
            token.column == 1);
}

/// The mistake of nesting beyond the limit.
inline Mistake tooDeep(const TokenInput& in)
{
    return {&in.front(),
            "nested deeper than " + std::to_string(in.limits().depth) + " levels",
            {},
            "divide it into several statements"};
}

} // namespace language
