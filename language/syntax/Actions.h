// What the tree gets from each rule of the grammar.
//
// A rule that stands for a node makes it, lets the rules inside fill it, sets its range, and gives it to the node around it:
// `makes` by one of the overloads of give(), `makes_member` into a member. Rules that stand for a name, a number or a mark set
// a member of the node that is being made.
#pragma once

#include "language/syntax/Grammar.h"

#include <tao/pegtl/match.hpp>
#include <tao/pegtl/nothing.hpp>

#include <charconv>
#include <cmath>
#include <utility>

namespace language {

using namespace syntax;

template <typename Rule> struct Action : tao::pegtl::nothing<Rule> {
};

/// The text without its quotes and escapes; the number.
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
inline void give(Duration&& duration, Binding& binding)
{
    binding.hold = std::move(duration);
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

template <> struct Action<grammar::new_name> {
    template <typename Node> static void apply(const TokenInput::Span& span, Node& node)
    {
        node.name = span.name();
    }
};

// ---- expressions

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
template <> struct Action<grammar::sum> : makes_chain {
};
template <> struct Action<grammar::product> : makes_chain {
};

struct makes_operand : with_node<makes_operand, Operand> {
    static Operand start(const TokenInput&) { return {}; }
    static void finish(const TokenInput& in, const Token*, Operand& operand, Chain& chain)
    {
        chain.append(std::move(operand.expression), operand.depth, in);
    }
};
template <> struct Action<grammar::factor> : makes_operand {
};

struct makes_negation : with_node<makes_negation, Operand> {
    static Operand start(const TokenInput&) { return {}; }
    static void finish(const TokenInput& in, const Token*, Operand& operand, Operand& outer)
    {
        if (operand.depth + 1 > in.limits().depth) throw tooDeep(in);
        outer.depth = operand.depth + 1;
        outer.expression.kind = Expression::Kind::negation;
        outer.expression.operands.push_back(std::move(operand.expression));
    }
};
template <> struct Action<grammar::negated_factor> : makes_negation {
};

struct sets_operand_range {
    static void apply(const TokenInput::Span& span, Operand& operand)
    {
        operand.expression.range = span.range();
    }
};
template <> struct Action<grammar::negative> : sets_operand_range {
};
template <> struct Action<grammar::grouped> : sets_operand_range {
};

template <> struct Action<grammar::number> {
    static void apply(const TokenInput::Span& span, Operand& operand)
    {
        operand.expression.number = readNumber(span);
        operand.expression.range = span.range();
    }
};
template <> struct Action<grammar::constant_name> {
    static void apply(const TokenInput::Span& span, Operand& operand)
    {
        operand.expression.kind = Expression::Kind::name;
        operand.expression.name = span.text();
        operand.expression.range = span.range();
    }
};

template <Expression::Kind Kind> struct sets_operation {
    static void apply0(Chain& chain) { chain.operation = Kind; }
};
template <> struct Action<grammar::add> : sets_operation<Expression::Kind::sum> {
};
template <> struct Action<grammar::subtract> : sets_operation<Expression::Kind::difference> {
};
template <> struct Action<grammar::times> : sets_operation<Expression::Kind::product> {
};
template <> struct Action<grammar::over> : sets_operation<Expression::Kind::quotient> {
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
struct makes_amount : with_node<makes_amount, Chain> {
    static Chain start(const TokenInput& in) { return {in.iterator(), {}, {}, 0}; }
    template <typename Outer>
    static void finish(const TokenInput&, const Token*, Chain& chain, Outer& outer)
    {
        outer.amount = std::move(chain.left);
    }
};
template <> struct Action<grammar::amount> : makes_amount {
};

// ---- paths

struct makes_segment : with_node<makes_segment, Segment> {
    static Segment start(const TokenInput&) { return {}; }
    static void finish(const TokenInput&, const Token*, Segment& segment, Path& path)
    {
        path.segments.push_back(std::move(segment));
    }
};
template <> struct Action<grammar::segment> : makes_segment {
};
template <> struct Action<grammar::value_word> {
    static void apply(const TokenInput::Span& span, Path& path)
    {
        path.segments.push_back({span.name(), {}});
    }
};
template <> struct Action<grammar::segment_name> : sets_name<&Segment::name> {
};
template <> struct Action<grammar::segment_index> : makes_expression<&Segment::index> {
};

// ---- formulas

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
template <> struct Action<grammar::negation> : makes_connective<Formula::Kind::negation> {
};
template <> struct Action<grammar::conjunction> : makes_connective<Formula::Kind::conjunction> {
};
template <> struct Action<grammar::disjunction> : makes_connective<Formula::Kind::disjunction> {
};
template <> struct Action<grammar::formula> : makes_connective<Formula::Kind::implication> {
};
template <>
struct Action<grammar::implies_sign> : sets<&Formula::kind, Formula::Kind::implication> {
};
template <>
struct Action<grammar::equivalent_sign> : sets<&Formula::kind, Formula::Kind::equivalence> {
};
template <> struct Action<grammar::grouped_formula> {
    static void apply(const TokenInput::Span& span, Formula& outer)
    {
        outer.operands.back().range = span.range();
    }
};
template <> struct Action<grammar::comparison> : makes<Formula> {
};
template <> struct Action<grammar::left_path> : makes_member<Path, &Formula::left> {
};
template <> struct Action<grammar::right_path> : makes_member<Path, &Formula::right> {
};
template <> struct Action<grammar::equal_sign> : sets<&Formula::kind, Formula::Kind::equal> {
};
template <> struct Action<grammar::unequal_sign> : sets<&Formula::kind, Formula::Kind::notEqual> {
};
template <> struct Action<grammar::member_sign> : sets<&Formula::kind, Formula::Kind::member> {
};
template <> struct Action<grammar::member_value> : sets_name<&Formula::values> {
};

// ---- variables and laws

template <> struct Action<grammar::variable> : makes<Variable> {
};
template <> struct Action<grammar::mode_word> : sets<&Variable::kind, VariableKind::mode> {
};
template <> struct Action<grammar::cond_word> : sets<&Variable::kind, VariableKind::condition> {
};
template <> struct Action<grammar::command_word> : sets<&Variable::kind, VariableKind::command> {
};
template <> struct Action<grammar::value_in_list> : makes<Value> {
};
template <> struct Action<grammar::value_in_braces> : makes<Value> {
};
template <> struct Action<grammar::declared_name> : sets_name<&Value::name> {
};
template <> struct Action<grammar::name_in_braces> : sets_name<&Value::name> {
};
template <> struct Action<grammar::initial_flag> : sets<&Value::initial, true> {
};
template <> struct Action<grammar::fault_flag> : sets<&Value::fault, true> {
};
template <> struct Action<grammar::lost_probability> : makes_expression<&Variable::lost> {
};
template <> struct Action<grammar::law> : makes<Law> {
};

// ---- transitions

template <> struct Action<grammar::transition> : makes<Transition> {
};
template <>
struct Action<grammar::nominal_word> : sets<&Transition::kind, TransitionKind::nominal> {
};
template <> struct Action<grammar::fault_word> : sets<&Transition::kind, TransitionKind::fault> {
};
template <> struct Action<grammar::idle_word> : sets<&Transition::kind, TransitionKind::idle> {
};
template <> struct Action<grammar::mode_name> : sets_name<&Transition::variable> {
};
template <> struct Action<grammar::any_value> : sets<&Transition::any, true> {
};
template <> struct Action<grammar::source_value> : sets_name<&Transition::sources> {
};
template <> struct Action<grammar::sources> {
    static void apply(const TokenInput::Span& span, Transition& transition)
    {
        transition.sourcesRange = span.range();
    }
};
template <> struct Action<grammar::target_value> : sets_name<&Transition::target> {
};
template <>
struct Action<grammar::probability> : makes_member<Probability, &Transition::probability> {
};
template <> struct Action<grammar::per_unit> : sets_name<&Probability::per> {
};

// ---- parts

template <> struct Action<grammar::part> : makes<Part> {
};
template <> struct Action<grammar::part_name> : sets_name<&Part::name> {
};
template <> struct Action<grammar::part_count> : makes_expression<&Part::count> {
};
template <> struct Action<grammar::part_type> : sets_name<&Part::type> {
};
template <> struct Action<grammar::argument> : makes_member<Argument, &Part::arguments> {
};
template <> struct Action<grammar::argument_name> : sets_name<&Argument::name> {
};
template <> struct Action<grammar::argument_value> : makes_expression<&Argument::value> {
};
template <> struct Action<grammar::initially> : makes<InitialValue> {
};
template <> struct Action<grammar::initial_variable> : makes_member<Path, &InitialValue::variable> {
};
template <> struct Action<grammar::initial_value> : sets_name<&InitialValue::value> {
};

// ---- bindings

template <> struct Action<grammar::binding> : makes<Binding> {
};
template <>
struct Action<grammar::observe_word> : sets<&Binding::kind, Binding::Kind::observation> {
};
template <>
struct Action<grammar::bind_command_word> : sets<&Binding::kind, Binding::Kind::command> {
};
template <> struct Action<grammar::bound_variable> : makes_member<Path, &Binding::variable> {
};
template <> struct Action<grammar::channel> : sets_text<&Binding::channel> {
};
template <> struct Action<grammar::thresholds> : makes_member<Thresholds, &Binding::translation> {
};
template <> struct Action<grammar::threshold_value> : sets_name<&Thresholds::values> {
};
template <> struct Action<grammar::hysteresis> : makes_expression<&Thresholds::hysteresis> {
};
template <> struct Action<grammar::limit> : makes_member<Thresholds::Limit, &Thresholds::limits> {
    static void apply(const TokenInput::Span& span, const Thresholds::Limit& limit)
    {
        if (limit.below != limit.above) return;
        throw Mistake{&span.first(),
                      "a limit that does not say which side the number itself belongs to",
                      "'<' on one side of the number and '<=' on the other",
                      {},
                      span.range().length};
    }
};
template <> struct Action<grammar::below_less> : sets<&Thresholds::Limit::below, Order::less> {
};
template <>
struct Action<grammar::below_less_or_equal> : sets<&Thresholds::Limit::below, Order::lessOrEqual> {
};
template <> struct Action<grammar::limit_number> : makes_expression<&Thresholds::Limit::number> {
};
template <> struct Action<grammar::above_less> : sets<&Thresholds::Limit::above, Order::less> {
};
template <>
struct Action<grammar::above_less_or_equal> : sets<&Thresholds::Limit::above, Order::lessOrEqual> {
};
template <> struct Action<grammar::readings> : makes_member<Readings, &Binding::translation> {
};
template <> struct Action<grammar::reading> : makes_member<Reading, &Readings::readings> {
};
template <> struct Action<grammar::read_value> : sets_name<&Reading::value> {
};
template <> struct Action<grammar::read_number> : makes_expression<&Reading::reading> {
};
template <> struct Action<grammar::read_text> : sets_text<&Reading::reading> {
};
template <> struct Action<grammar::duration> : makes<Duration> {
};
template <> struct Action<grammar::unit> : sets_name<&Duration::unit> {
};
template <> struct Action<grammar::step_length> : makes<StepLength> {
};

// ---- loops and declarations

template <typename Member> struct Action<grammar::loop<Member>> : makes<Loop> {
};
template <typename Member> struct Action<grammar::loop_members<Member>> : gives_members {
};
template <> struct Action<grammar::loop_index> : sets_name<&Loop::index> {
};
template <> struct Action<grammar::loop_first> : makes_expression<&Loop::first> {
};
template <> struct Action<grammar::loop_last> : makes_expression<&Loop::last> {
};

template <> struct Action<grammar::import> : makes<Import> {
};
template <> struct Action<grammar::import_path> : sets_text<&Import::path> {
};
template <> struct Action<grammar::constant> : makes<Constant> {
};
template <> struct Action<grammar::constant_value> : makes_expression<&Constant::value> {
};
template <> struct Action<grammar::component> : makes<Component> {
};
template <> struct Action<grammar::parameter> : makes_member<Parameter, &Component::parameters> {
};
template <> struct Action<grammar::parameter_value> : makes_expression<&Parameter::value> {
};
template <> struct Action<grammar::component_body> : gives_members {
};
template <> struct Action<grammar::system> : makes<System> {
};
template <> struct Action<grammar::system_body> : gives_members {
};

} // namespace language
