// What a channel reads, and what is computed from channels: "FT-1", ("T-sup" - "T-set") / "DP", mean("FT-1") over 5 min,
// "LT-1" ago 10 min.
#pragma once

#include "language/syntax/StatementGrammar.h"

namespace language::grammar {

/// `mean("FT-1") over 5 min` as far as it was read.
struct Call {
    const ChannelFunction* function = nullptr;
    std::vector<Expression> arguments;
    std::size_t depth = 0; ///< of the deepest argument
    std::optional<Duration> over;

    void append(Expression&& argument, std::size_t argumentDepth, const TokenInput&)
    {
        arguments.push_back(std::move(argument));
        depth = std::max(depth, argumentDepth);
    }
};

inline void give(Duration&& duration, Call& call)
{
    call.over = std::move(duration);
}
/// `"LT-1" ago 10 min`: what was read so far becomes the operand.
void give(Duration&& duration, Operand& operand);
/// Throws a Mistake where the arguments are not those of the function. `at` is its name.
Expression expressionOf(Call&& call, const Token* at);

/// The name of a function and `(`.
struct function_name : Leaf {
    using rule_t = function_name;
    static bool match(TokenInput& in)
    {
        if (in.front().kind != TokenKind::name || in.peek(1).kind != TokenKind::openParenthesis)
            return false;
        if (!channelFunction(in.text(in.front()))) throw unknownFunction(in);
        in.bump();
        return true;
    }
    static Mistake unknownFunction(const TokenInput& in);

    struct action {
        static void apply(const TokenInput::Span& span, Call& call)
        {
            call.function = channelFunction(span.text());
        }
    };
};

struct unit : named<"a unit of time (ms, s, min, h, d, week, month, year)", time_unit> {
    using action = sets_name<&Duration::unit>;
};
struct duration : seq<amount, must<unit>> {
    using action = makes<Duration>;
};

struct channel_sum;
struct channel_name : text {
    struct action {
        static void apply(const TokenInput::Span& span, Operand& operand)
        {
            operand.expression.kind = Expression::Kind::channel;
            operand.expression.name = readText(span).text;
            operand.expression.range = span.range();
        }
    };
};
struct time_window : if_must<named<"'over'", soft_word<"over">>, duration> {};
struct function_call
    : seq<function_name,
          must<token<TokenKind::openParenthesis>, list_must<nested<channel_sum>, token<TokenKind::comma>>,
               token<TokenKind::closeParenthesis>>,
          opt<time_window>> {
    struct action : with_node<action, Call> {
        static Call start(const TokenInput&) { return {}; }
        static void finish(const TokenInput& in, const Token* begin, Call& call, Operand& operand)
        {
            operand.depth = call.depth + 1;
            if (operand.depth > in.limits().depth) throw tooDeep(in);
            operand.expression = expressionOf(std::move(call), begin);
        }
    };
};
struct time_ago : if_must<named<"", soft_word<"ago">>, duration> {};
struct channel_factor;
struct channel_operand : seq<sor<channel_name, number, function_call, constant_name,
                                 negative_of<channel_factor>, grouped_in_parentheses<channel_sum>>,
                             opt<time_ago>> {};
struct channel_factor : named<"a channel in double quotes or a number", channel_operand> {
    struct action : with_node<action, Operand> {
        static Operand start(const TokenInput&) { return {}; }
        static void finish(const TokenInput& in, const Token* begin, Operand& operand, Chain& chain)
        {
            operand.expression.range = in.range(begin);
            chain.append(std::move(operand.expression), operand.depth, in);
        }
    };
};
struct channel_product : product_of<channel_factor> {};
struct channel_sum : sum_of<channel_product> {};

} // namespace language::grammar
