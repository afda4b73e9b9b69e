// The rules that the grammar is made of, beside PEGTL's own: those that read tokens, look ahead, name what is expected,
// bound the nesting and go on after a mistake.
#pragma once

#include "language/syntax/TokenInput.h"
#include "language/syntax/Words.h"

#include <tao/pegtl/rules.hpp>

#include <algorithm>

namespace language::grammar {

using tao::pegtl::eof;
using tao::pegtl::if_must;
using tao::pegtl::list_must;
using tao::pegtl::must;
using tao::pegtl::not_at;
using tao::pegtl::opt;
using tao::pegtl::plus;
using tao::pegtl::seq;
using tao::pegtl::sor;
using tao::pegtl::star;
using tao::pegtl::until;

using tao::pegtl::apply_mode;
using tao::pegtl::rewind_mode;

/// A text that can be an argument of a template.
template <std::size_t N> struct Literal {
    char characters[N] = {};
    consteval Literal(const char (&text)[N]) { std::copy_n(text, N, characters); }
    constexpr std::string_view view() const { return {characters, N - 1}; }
};

/// What every rule of one or no token has in common.
struct Leaf {
    using subs_t = tao::pegtl::empty_list;
};

/// One token of that kind.
template <TokenKind Kind> struct token : Leaf {
    using rule_t = token;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != Kind) {
            in.expect(Kind, spelling(Kind));
            return false;
        }
        in.bump();
        return true;
    }
};

/// The same, of which messages do not say that it could stand there.
template <TokenKind Kind> struct silent : Leaf {
    using rule_t = silent;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != Kind) return false;
        in.bump();
        return true;
    }
};

/// Whether the next two tokens are of these kinds. Reads nothing.
template <TokenKind First, TokenKind Second> struct followed_by : Leaf {
    using rule_t = followed_by;
    static bool match(TokenInput& in)
    {
        return in.front().kind == First && in.peek(1).kind == Second;
    }
};

/// A name, or a word that can be a value, among the values in braces.
struct block_value_token : Leaf {
    using rule_t = block_value_token;
    static bool match(TokenInput& in)
    {
        if (!canBeValue(in.front().kind)) {
            in.expect(TokenKind::name, "a value");
            return false;
        }
        in.bump();
        return true;
    }
};

/// The same elsewhere: there a word at the beginning of a line begins a statement, unless the line before cannot end so.
struct value_token : Leaf {
    using rule_t = value_token;
    static bool match(TokenInput& in)
    {
        if (in.front().firstOnLine && isWord(in.front().kind)) {
            const TokenKind last = in.iterator()[-1].kind;
            if (last != TokenKind::comma && last != TokenKind::less &&
                last != TokenKind::lessOrEqual) {
                in.expect(TokenKind::name, "a value");
                return false;
            }
        }
        return block_value_token::match(in);
    }
};

/// A value and `<` or `<=`. Reads nothing; where the second one is missing it was expected.
struct begins_thresholds : Leaf {
    using rule_t = begins_thresholds;
    static bool match(TokenInput& in)
    {
        if (!canBeValue(in.front().kind)) return false;
        in.bump();
        const TokenKind kind = in.front().kind;
        const bool both = kind == TokenKind::less || kind == TokenKind::lessOrEqual;
        if (!both) {
            in.expect(TokenKind::less, "<");
            in.expect(TokenKind::lessOrEqual, "<=");
        }
        --in.iterator();
        return both;
    }
};

/// `within` before a distance: no `..` follows the expression. Before a range the other way round.
template <bool Range> struct within_word : Leaf {
    using rule_t = within_word;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::withinWord) {
            if constexpr (!Range) in.expect(TokenKind::withinWord, spelling(TokenKind::withinWord));
            return false;
        }
        std::size_t next = 1;
        while (isOfAnExpression(in.peek(next).kind)) {
            ++next;
        }
        if ((in.peek(next).kind == TokenKind::dots) != Range) return false;
        in.bump();
        return true;
    }

private:
    static bool isOfAnExpression(TokenKind kind)
    {
        switch (kind) {
        case TokenKind::number:
        case TokenKind::name:
        case TokenKind::plus:
        case TokenKind::minus:
        case TokenKind::star:
        case TokenKind::slash:
        case TokenKind::openParenthesis:
        case TokenKind::closeParenthesis: return true;
        default: return false;
        }
    }
};

/// A value and `=`. Reads nothing.
struct begins_value_range : Leaf {
    using rule_t = begins_value_range;
    static bool match(TokenInput& in)
    {
        return canBeValue(in.front().kind) && in.peek(1).kind == TokenKind::equals;
    }
};

/// A name that is a unit of time.
struct time_unit : Leaf {
    using rule_t = time_unit;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::name || !secondsOf(in.text(in.front()))) {
            in.expect(TokenKind::end, "a unit of time");
            return false;
        }
        in.bump();
        return true;
    }
};

/// A name that is a word of the language where a statement begins or a binding may go on: `input`, `repair`, `varies`, `over`. Before `:`
/// and `[` it is the name of a part.
template <Literal Word> struct soft_word : Leaf {
    using rule_t = soft_word;
    static bool match(TokenInput& in)
    {
        const TokenKind next = in.peek(1).kind;
        if (in.front().kind != TokenKind::name || in.text(in.front()) != Word.view() ||
            next == TokenKind::colon || next == TokenKind::openBracket) {
            in.expect(TokenKind::end, Word.view());
            return false;
        }
        in.bump();
        return true;
    }
};

/// `for` that does not begin a loop: `for 2 min`, and not `for i in`.
struct persists : Leaf {
    using rule_t = persists;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::forWord ||
            (in.peek(1).kind == TokenKind::name && in.peek(2).kind == TokenKind::inWord))
            return false;
        in.bump();
        return true;
    }
};

/// `fault` that begins a transition, where it could be a mark of a value: before `any`, and before a name with `,`, `->` or `=`.
struct begins_fault : Leaf {
    using rule_t = begins_fault;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::faultWord) return false;
        const TokenKind third = in.peek(2).kind;
        return in.peek(1).kind == TokenKind::anyWord ||
               (canBeValue(in.peek(1).kind) &&
                (third == TokenKind::comma || third == TokenKind::arrow ||
                 third == TokenKind::equals));
    }
};

/// `command` that binds one to a channel, and does not declare one: before a path of several names or with an index, before
/// `NAME from`, and before `NAME : VALUE =` or `NAME : VALUE otherwise`.
struct command_is_bound : Leaf {
    using rule_t = command_is_bound;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::commandWord || in.peek(1).kind != TokenKind::name)
            return false;
        const TokenKind next = in.peek(2).kind;
        const TokenKind last = in.peek(4).kind;
        return next == TokenKind::dot || next == TokenKind::openBracket ||
               next == TokenKind::fromWord ||
               (next == TokenKind::colon && canBeValue(in.peek(3).kind) &&
                (last == TokenKind::equals || last == TokenKind::otherwiseWord));
    }
};

/// Makes of `a -> b -> c` a mistake.
struct no_second_arrow : Leaf {
    using rule_t = no_second_arrow;
    static bool match(TokenInput& in)
    {
        const TokenKind kind = in.front().kind;
        if (kind == TokenKind::arrow || kind == TokenKind::doubleArrow) {
            throw Mistake{&in.front(),
                          "a second arrow in one formula",
                          {},
                          "say with parentheses which one comes first"};
        }
        return true;
    }
};

/// A rule around others that counts as one of its kind.
template <typename... Rules> struct Around {
    using subs_t = tao::pegtl::type_list<Rules...>;

protected:
    template <apply_mode A, rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename... States>
    static bool inner(TokenInput& in, States&&... states)
    {
        return Control<seq<Rules...>>::template match<A, M, Action, Control>(in, states...);
    }
};

/// What was expected in vain at the first token of the rule goes by this name; the empty name keeps it out of messages.
template <Literal What, typename... Rules> struct named : Around<Rules...> {
    using rule_t = named;
    template <apply_mode A, rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename... States>
    static bool match(TokenInput& in, States&&... states)
    {
        const Token* begin = in.iterator();
        const std::size_t before = in.expectations();
        const bool matched = Around<Rules...>::template inner<A, M, Action, Control>(in, states...);
        in.summarize(begin, before, What.view());
        return matched;
    }
};

/// Messages about mistakes in these rules say: in What.
template <Literal What, typename... Rules> struct in_context : Around<Rules...> {
    using rule_t = in_context;
    template <apply_mode A, rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename... States>
    static bool match(TokenInput& in, States&&... states)
    {
        const std::string_view outer = in.context;
        in.context = What.view();
        // After a mistake the context stays, for the message.
        const bool matched = Around<Rules...>::template inner<A, M, Action, Control>(in, states...);
        in.context = outer;
        return matched;
    }
};

/// Rules that may stand in themselves.
template <typename... Rules> struct nested : Around<Rules...> {
    using rule_t = nested;
    template <apply_mode A, rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename... States>
    static bool match(TokenInput& in, States&&... states)
    {
        struct Deeper {
            std::size_t& depth;
            explicit Deeper(std::size_t& counter) : depth(counter) { ++depth; }
            ~Deeper() { --depth; }
            Deeper(const Deeper&) = delete;
            Deeper& operator=(const Deeper&) = delete;
        } const deeper(in.depth);
        if (in.depth > in.limits().depth) throw tooDeep(in);
        return Around<Rules...>::template inner<A, M, Action, Control>(in, states...);
    }
};

/// `{`, and which one it was.
struct open_block : Leaf {
    using rule_t = open_block;
    static bool match(TokenInput& in)
    {
        const Token* brace = in.iterator();
        if (!token<TokenKind::openBrace>::match(in)) return false;
        in.openBraces.push_back(brace);
        return true;
    }
};

/// The `}` of the last open block.
struct close_block : Leaf {
    using rule_t = close_block;
    static bool match(TokenInput& in)
    {
        if (!token<TokenKind::closeBrace>::match(in)) return false;
        in.openBraces.pop_back();
        return true;
    }
};

/// Where no statement of a block can follow: its `}`, the end of the file, the next component. Reads nothing.
struct end_of_block : Leaf {
    using rule_t = end_of_block;
    static bool match(TokenInput& in)
    {
        const TokenKind kind = in.front().kind;
        return kind == TokenKind::closeBrace || kind == TokenKind::end ||
               beginsDeclaration(in.front());
    }
};

/// A statement, or a mistake that is reported and passed over. Always matches.
template <typename Rule> struct recovering {
    using rule_t = recovering;
    using subs_t = tao::pegtl::type_list<Rule>;

    template <apply_mode A, rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename... States>
    static bool match(TokenInput& in, States&&... states)
    {
        const Token* begin = in.iterator();
        const std::string_view context = in.context;
        const std::size_t blocks = in.openBraces.size();
        try {
            if (Control<Rule>::template match<A, rewind_mode::required, Action, Control>(in,
                                                                                         states...))
                return true;
            in.recovery.recover(in, begin, blocks, {});
        } catch (const Mistake& mistake) {
            in.recovery.recover(in, begin, blocks, mistake);
        }
        in.context = context;
        in.openBraces.resize(blocks);
        return true;
    }
};

} // namespace language::grammar
