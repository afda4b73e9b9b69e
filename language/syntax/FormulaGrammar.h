// Paths and formulas: cell[i+1].in = high & !(valve.position in {stuck, broken}).
#pragma once

#include "language/syntax/ExpressionGrammar.h"

namespace language::grammar {

// ---- paths: outflow, branch1.valveA.outflow, cell[i+1].in

struct segment_index : sum {
    using action = makes_expression<&Segment::index>;
};
struct segment_name : token<TokenKind::name> {
    using action = sets_name<&Segment::name>;
};
struct segment
    : seq<segment_name,
          opt<if_must<silent<TokenKind::openBracket>, segment_index, token<TokenKind::closeBracket>>>> {
    struct action : with_node<action, Segment> {
        static Segment start(const TokenInput&) { return {}; }
        static void finish(const TokenInput&, const Token*, Segment& segment, Path& path)
        {
            path.segments.push_back(std::move(segment));
        }
    };
};
struct path
    : named<"a variable", seq<segment, star<silent<TokenKind::dot>, must<named<"a name", segment>>>>> {
};

// ---- formulas, from the loosest to the tightest: -> and <->, |, &, !

/// A connective of one operand is that operand.
template <Formula::Kind Kind> struct makes_connective : with_node<makes_connective<Kind>, Formula> {
    static Formula start(const TokenInput&)
    {
        Formula made;
        made.kind = Kind;
        return made;
    }
    template <typename Outer>
    static void finish(const TokenInput& in, const Token* begin, Formula& formula, Outer& outer)
    {
        if (Kind != Formula::Kind::negation && formula.operands.size() == 1) {
            Formula only = std::move(formula.operands.front());
            give(std::move(only), outer);
        } else {
            formula.range = in.range(begin);
            give(std::move(formula), outer);
        }
    }
};

struct formula;
struct left_path : path {
    using action = makes_member<Path, &Formula::left>;
};
struct value_word : value_token {
    struct action {
        static void apply(const TokenInput::Span& span, Path& path)
        {
            path.segments.push_back({span.name(), {}});
        }
    };
};
struct right_path : named<"a value or a variable", sor<path, value_word>> {
    using action = makes_member<Path, &Formula::right>;
};
struct equal_sign : token<TokenKind::equals> {
    using action = sets<&Formula::kind, Formula::Kind::equal>;
};
struct unequal_sign : token<TokenKind::notEquals> {
    using action = sets<&Formula::kind, Formula::Kind::notEqual>;
};
struct member_value : value_name {
    using action = sets_name<&Formula::values>;
};
struct member_sign : token<TokenKind::inWord> {
    using action = sets<&Formula::kind, Formula::Kind::member>;
};
struct comparison
    : seq<left_path, must<sor<if_must<equal_sign, right_path>, if_must<unequal_sign, right_path>,
                              if_must<member_sign, token<TokenKind::openBrace>,
                                      comma_list<member_value>, token<TokenKind::closeBrace>>>>> {
    using action = makes<Formula>;
};
struct not_sign : sor<token<TokenKind::exclamation>, token<TokenKind::notWord>> {};
struct and_sign : named<"an operator", sor<token<TokenKind::ampersand>, token<TokenKind::andWord>>> {
};
struct or_sign : named<"an operator", sor<token<TokenKind::bar>, token<TokenKind::orWord>>> {};
struct implies_sign : named<"an operator", token<TokenKind::arrow>> {
    using action = sets<&Formula::kind, Formula::Kind::implication>;
};
struct equivalent_sign : named<"an operator", token<TokenKind::doubleArrow>> {
    using action = sets<&Formula::kind, Formula::Kind::equivalence>;
};
struct operand;
struct negation : if_must<not_sign, nested<operand>> {
    using action = makes_connective<Formula::Kind::negation>;
};
struct grouped_formula
    : if_must<token<TokenKind::openParenthesis>, nested<formula>, token<TokenKind::closeParenthesis>> {
    struct action {
        static void apply(const TokenInput::Span& span, Formula& outer)
        {
            outer.operands.back().range = span.range();
        }
    };
};
struct operand : named<"a formula", sor<negation, grouped_formula, comparison>> {};
struct conjunction : list_must<operand, and_sign> {
    using action = makes_connective<Formula::Kind::conjunction>;
};
struct disjunction : list_must<conjunction, or_sign> {
    using action = makes_connective<Formula::Kind::disjunction>;
};
struct formula
    : seq<disjunction,
          opt<sor<if_must<implies_sign, disjunction>, if_must<equivalent_sign, disjunction>>>,
          no_second_arrow> {
    using action = makes_connective<Formula::Kind::implication>;
};

struct lone_formula : seq<formula, must<eof>> {};

} // namespace language::grammar
