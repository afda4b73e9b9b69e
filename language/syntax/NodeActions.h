// How rules of the grammar fill the syntax tree.
//
// A rule names its action: what the tree gets when the rule has matched. A rule that stands for a node makes it, lets the rules
// inside fill it, sets its range, and gives it to the node around it: `makes` by one of the overloads of give(), `makes_member` into
// a member. Rules that stand for a name, a number or a mark set a member of the node that is being made. A rule that inherits another
// one inherits its action, too, unless it names its own.
#pragma once

#include "language/syntax/Syntax.h"
#include "language/syntax/TokenInput.h"

#include <tao/pegtl/match.hpp>
#include <tao/pegtl/nothing.hpp>

#include <optional>
#include <utility>
#include <vector>

namespace language::grammar {

using syntax::Argument;
using syntax::Binding;
using syntax::Component;
using syntax::Constant;
using syntax::Declaration;
using syntax::Duration;
using syntax::Expression;
using syntax::Formula;
using syntax::Import;
using syntax::InitialValue;
using syntax::Law;
using syntax::Loop;
using syntax::Member;
using syntax::Noise;
using syntax::NumberRange;
using syntax::Order;
using syntax::Parameter;
using syntax::Part;
using syntax::Path;
using syntax::Probability;
using syntax::Reading;
using syntax::Readings;
using syntax::Segment;
using syntax::Settling;
using syntax::StepLength;
using syntax::System;
using syntax::Text;
using syntax::Thresholds;
using syntax::Transition;
using syntax::TransitionKind;
using syntax::Value;
using syntax::Variable;
using syntax::VariableKind;

/// What the parser does when a rule has matched: the rule's own action, or nothing.
template <typename Rule> struct Action : tao::pegtl::nothing<Rule> {
};
template <typename Rule>
requires requires
{
    typename Rule::action;
}
struct Action<Rule> : Rule::action {};

/// The text without its quotes and escapes; the number. Both throw a Mistake.
Text readText(const TokenInput::Span& span);
double readNumber(const TokenInput::Span& span);

// ---- which node gets which

template <typename Node> void give(Node&& node, std::vector<Member>& members)
{
    members.emplace_back(std::forward<Node>(node));
}
template <typename Node> void give(Node&& node, std::vector<Declaration>& declarations)
{
    declarations.emplace_back(std::forward<Node>(node));
}
inline void give(Formula&& formula, Formula& outer)
{
    outer.operands.push_back(std::move(formula));
}
inline void give(Formula&& formula, std::optional<Formula>& alone)
{
    alone = std::move(formula);
}
inline void give(Formula&& formula, Law& law)
{
    law.formula = std::move(formula);
}
inline void give(Formula&& formula, Transition& transition)
{
    transition.guard = std::move(formula);
}
inline void give(Value&& value, Variable& variable)
{
    variable.values.push_back(std::move(value));
}
inline void give(InitialValue&& initial, Part& part)
{
    part.initials.push_back(std::move(initial));
}
inline void give(Duration&& duration, StepLength& step)
{
    step.duration = std::move(duration);
}

// ---- how nodes and members are made

template <typename Type, typename Node> void store(Type& member, Node&& node)
{
    member = std::forward<Node>(node);
}
template <typename Type, typename Node> void store(std::vector<Type>& member, Node&& node)
{
    member.push_back(std::forward<Node>(node));
}

/// Sets a member, or adds to a list, the name that was read.
template <auto Member> struct sets_name {
    template <typename Node> static void apply(const TokenInput::Span& span, Node& node)
    {
        store(node.*Member, span.name());
    }
};

/// The text that was read.
template <auto Member> struct sets_text {
    template <typename Node> static void apply(const TokenInput::Span& span, Node& node)
    {
        store(node.*Member, readText(span));
    }
};

template <auto Member, auto Constant> struct sets {
    template <typename Node> static void apply0(Node& node) { node.*Member = Constant; }
};

/// What the actions below have in common: they match the rule with a new node, and then do with both what `Derived` says.
template <typename Derived, typename Node> struct with_node : tao::pegtl::maybe_nothing {
    template <typename Rule, tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
              template <typename...> class Actions, template <typename...> class Control, typename Outer>
    static bool match(TokenInput& in, Outer& outer)
    {
        const Token* begin = in.iterator();
        Node node = Derived::start(in);
        if (!tao::pegtl::match<Rule, A, M, Actions, Control>(in, node)) return false;
        Derived::finish(in, begin, node, outer);
        return true;
    }
};

/// A node that is handed on by give().
template <typename Node> struct makes : with_node<makes<Node>, Node> {
    static Node start(const TokenInput&) { return {}; }
    template <typename Outer>
    static void finish(const TokenInput& in, const Token* begin, Node& node, Outer& outer)
    {
        node.range = in.range(begin);
        give(std::move(node), outer);
    }
};

/// A node that becomes a member of the outer one, or is added to a list.
template <typename Node, auto Member>
struct makes_member : with_node<makes_member<Node, Member>, Node> {
    static Node start(const TokenInput&) { return {}; }
    template <typename Outer>
    static void finish(const TokenInput& in, const Token* begin, Node& node, Outer& outer)
    {
        node.range = in.range(begin);
        store(outer.*Member, std::move(node));
    }
};

/// The members of a block are given to the list of the node that has the block.
struct gives_members : tao::pegtl::maybe_nothing {
    template <typename Rule, tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
              template <typename...> class Actions, template <typename...> class Control, typename Outer>
    static bool match(TokenInput& in, Outer& outer)
    {
        return tao::pegtl::match<Rule, A, M, Actions, Control>(in, outer.members);
    }
};

} // namespace language::grammar
