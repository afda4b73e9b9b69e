// Names, numbers, texts, and expressions of them: 0.004, -1.5, 2 * (pStuck + 0.1), i + 1.
#pragma once

#include "language/syntax/GrammarRules.h"
#include "language/syntax/NodeActions.h"

#include <algorithm>

namespace language::grammar {

// ---- what is read of an expression until it is whole

/// `a - b + c` as far as it was read, as a tree of the operators from left to right; also `a * b / c`.
struct Chain {
    const Token* begin = nullptr;
    Expression left;
    std::optional<Expression::Kind> operation; ///< that waits for its right operand
    std::size_t depth = 0;                     ///< of `left`

    void append(Expression&& right, std::size_t rightDepth, const TokenInput& in)
    {
        if (operation) {
            Expression both;
            both.kind = *operation;
            both.operands.push_back(std::move(left));
            both.operands.push_back(std::move(right));
            both.range = in.range(begin);
            left = std::move(both);
            depth = std::max(depth, rightDepth) + 1;
            operation.reset();
        } else {
            left = std::move(right);
            depth = rightDepth;
        }
        if (depth > in.limits().depth) throw tooDeep(in);
    }
};

/// A factor of a product: a number, a name, or what stands in parentheses.
struct Operand {
    Expression expression;
    std::size_t depth = 0;

    void append(Expression&& grouped, std::size_t groupedDepth, const TokenInput&)
    {
        expression = std::move(grouped);
        depth = groupedDepth;
    }
};

struct makes_chain : with_node<makes_chain, Chain> {
    static Chain start(const TokenInput& in) { return {in.iterator(), {}, {}, 0}; }
    template <typename Outer>
    static void finish(const TokenInput& in, const Token*, Chain& chain, Outer& outer)
    {
        outer.append(std::move(chain.left), chain.depth, in);
    }
};

/// An expression that becomes a member.
template <auto Member> struct makes_expression : with_node<makes_expression<Member>, Chain> {
    static Chain start(const TokenInput& in) { return {in.iterator(), {}, {}, 0}; }
    template <typename Outer>
    static void finish(const TokenInput&, const Token*, Chain& chain, Outer& outer)
    {
        store(outer.*Member, std::move(chain.left));
    }
};

struct sets_operand_range {
    static void apply(const TokenInput::Span& span, Operand& operand)
    {
        operand.expression.range = span.range();
    }
};

template <Expression::Kind Kind> struct sets_operation {
    static void apply0(Chain& chain) { chain.operation = Kind; }
};

// ---- names, numbers, texts

struct new_name : named<"a name", token<TokenKind::name>> {
    struct action {
        template <typename Node> static void apply(const TokenInput::Span& span, Node& node)
        {
            node.name = span.name();
        }
    };
};
struct value_name : value_token {};
struct number : token<TokenKind::number> {
    struct action {
        static void apply(const TokenInput::Span& span, Operand& operand)
        {
            operand.expression.number = readNumber(span);
            operand.expression.range = span.range();
        }
    };
};
struct text : named<"a text in double quotes", token<TokenKind::text>> {};

template <typename Rule> struct comma_list : list_must<Rule, token<TokenKind::comma>> {
};

// ---- expressions

struct constant_name : token<TokenKind::name> {
    struct action {
        static void apply(const TokenInput::Span& span, Operand& operand)
        {
            operand.expression.kind = Expression::Kind::name;
            operand.expression.name = span.text();
            operand.expression.range = span.range();
        }
    };
};
struct times : token<TokenKind::star> {
    using action = sets_operation<Expression::Kind::product>;
};
struct over : token<TokenKind::slash> {
    using action = sets_operation<Expression::Kind::quotient>;
};
struct add : token<TokenKind::plus> {
    using action = sets_operation<Expression::Kind::sum>;
};
struct subtract : token<TokenKind::minus> {
    using action = sets_operation<Expression::Kind::difference>;
};

/// The action of a factor, in a product.
struct gives_operand : with_node<gives_operand, Operand> {
    static Operand start(const TokenInput&) { return {}; }
    static void finish(const TokenInput& in, const Token*, Operand& operand, Chain& chain)
    {
        chain.append(std::move(operand.expression), operand.depth, in);
    }
};

// What numbers and what is computed from channels (ChannelGrammar.h) have in common, over their own factors.

template <typename Factor> struct negated : Factor {
    struct action : with_node<action, Operand> {
        static Operand start(const TokenInput&) { return {}; }
        static void finish(const TokenInput& in, const Token*, Operand& operand, Operand& outer)
        {
            if (operand.depth + 1 > in.limits().depth) throw tooDeep(in);
            outer.depth = operand.depth + 1;
            outer.expression.kind = Expression::Kind::negation;
            outer.expression.operands.push_back(std::move(operand.expression));
        }
    };
};
template <typename Factor>
struct negative_of : if_must<token<TokenKind::minus>, nested<negated<Factor>>> {
    using action = sets_operand_range;
};
template <typename Sum>
struct grouped_in_parentheses
    : if_must<token<TokenKind::openParenthesis>, nested<Sum>, token<TokenKind::closeParenthesis>> {
    using action = sets_operand_range;
};
template <typename Factor>
struct product_of : seq<Factor, star<named<"", sor<times, over>>, must<Factor>>> {
    using action = makes_chain;
};
template <typename Product>
struct sum_of : seq<Product, star<named<"", sor<add, subtract>>, must<Product>>> {
    using action = makes_chain;
};

struct sum;
struct factor;
struct any_factor : sor<number, constant_name, negative_of<factor>, grouped_in_parentheses<sum>> {};
struct factor : named<"a number", any_factor> {
    using action = gives_operand;
};
struct product : product_of<factor> {};
struct sum : sum_of<product> {};

} // namespace language::grammar
