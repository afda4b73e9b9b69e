// The statements of a component: variables, laws, transitions, parts and initial values.
#pragma once

#include "language/syntax/FormulaGrammar.h"

namespace language::grammar {

// ---- variables

struct mode_word : token<TokenKind::modeWord> {
    using action = sets<&Variable::kind, VariableKind::mode>;
};
struct cond_word : token<TokenKind::condWord> {
    using action = sets<&Variable::kind, VariableKind::condition>;
};
struct command_word : token<TokenKind::commandWord> {
    using action = sets<&Variable::kind, VariableKind::command>;
};
struct initial_flag : token<TokenKind::initialWord> {
    using action = sets<&Value::initial, true>;
};
struct fault_flag : token<TokenKind::faultWord> {
    using action = sets<&Value::fault, true>;
};
struct declared_name : value_name {
    using action = sets_name<&Value::name>;
};
struct name_in_braces : block_value_token {
    using action = sets_name<&Value::name>;
};
struct value_in_braces : seq<name_in_braces, star<sor<initial_flag, fault_flag>>> {
    using action = makes<Value>;
};
struct values_in_braces
    : if_must<token<TokenKind::openBrace>, value_in_braces,
              star<opt<silent<TokenKind::comma>>, value_in_braces>, token<TokenKind::closeBrace>> {
};
// Here `fault` after a value may begin the next statement.
struct value_in_list
    : seq<declared_name, star<not_at<begins_fault>, sor<initial_flag, fault_flag>>> {
    using action = makes<Value>;
};
struct values_after_colon : if_must<token<TokenKind::colon>, comma_list<value_in_list>> {};
struct lost_probability : sum {
    using action = makes_expression<&Variable::lost>;
};
struct lost : if_must<token<TokenKind::lostWord>, lost_probability> {};
struct variable_rest : seq<must<new_name>, must<sor<values_after_colon, values_in_braces>>> {};
struct variable
    : in_context<"a variable", sor<seq<mode_word, variable_rest>, seq<cond_word, variable_rest>,
                                   seq<command_word, variable_rest, opt<lost>>>> {
    using action = makes<Variable>;
};

// ---- laws and transitions

struct law : in_context<"a law", if_must<token<TokenKind::lawWord>, formula>> {
    using action = makes<Law>;
};

struct nominal_word : token<TokenKind::nominalWord> {
    using action = sets<&Transition::kind, TransitionKind::nominal>;
};
struct fault_word : token<TokenKind::faultWord> {
    using action = sets<&Transition::kind, TransitionKind::fault>;
};
struct repair_word : soft_word<"repair"> {
    using action = sets<&Transition::kind, TransitionKind::repair>;
};
struct idle_word : token<TokenKind::idleWord> {
    using action = sets<&Transition::kind, TransitionKind::idle>;
};
struct mode_name : token<TokenKind::name> {
    using action = sets_name<&Transition::variable>;
};
struct of_mode
    : seq<followed_by<TokenKind::name, TokenKind::equals>, mode_name, token<TokenKind::equals>> {};
struct any_value : token<TokenKind::anyWord> {
    using action = sets<&Transition::any, true>;
};
struct source_value : value_name {
    using action = sets_name<&Transition::sources>;
};
struct sources : sor<any_value, comma_list<source_value>> {
    struct action {
        static void apply(const TokenInput::Span& span, Transition& transition)
        {
            transition.sourcesRange = span.range();
        }
    };
};
struct target_value : value_name {
    using action = sets_name<&Transition::target>;
};
struct guard : if_must<token<TokenKind::whenWord>, formula> {};
struct per_unit : named<"a unit of time (ms, s, min, h, d, week, month, year) or 'step'",
                        sor<token<TokenKind::stepWord>, time_unit>> {
    using action = sets_name<&Probability::per>;
};
struct amount : sum {
    struct action : with_node<action, Chain> {
        static Chain start(const TokenInput& in) { return {in.iterator(), {}, {}, 0}; }
        template <typename Outer>
        static void finish(const TokenInput&, const Token*, Chain& chain, Outer& outer)
        {
            outer.amount = std::move(chain.left);
        }
    };
};
struct per : if_must<token<TokenKind::perWord>, per_unit> {};
struct probability : seq<amount, opt<per>> {
    using action = makes_member<Probability, &Transition::probability>;
};
struct transition_rest : seq<opt<guard>, opt<if_must<token<TokenKind::colon>, probability>>> {};
struct change_rest : seq<opt<of_mode>, must<sources>, must<token<TokenKind::arrow>>,
                         must<target_value>, transition_rest> {};
struct nominal_transition : in_context<"a nominal transition", seq<nominal_word, change_rest>> {};
struct fault_transition : in_context<"a fault", seq<fault_word, change_rest>> {};
struct repair_transition : in_context<"a repair", seq<repair_word, change_rest>> {};
struct idle_transition
    : in_context<"an idle transition", seq<idle_word, opt<of_mode>, must<sources>, transition_rest>> {
};
struct transition : sor<nominal_transition, fault_transition, repair_transition, idle_transition> {
    using action = makes<Transition>;
};

// ---- parts and their initial values

struct initial_variable : path {
    using action = makes_member<Path, &InitialValue::variable>;
};
struct initial_value : value_name {
    using action = sets_name<&InitialValue::value>;
};
struct initially
    : in_context<"an initial value", if_must<token<TokenKind::initiallyWord>, initial_variable,
                                             token<TokenKind::equals>, initial_value>> {
    using action = makes<InitialValue>;
};
struct part_name : token<TokenKind::name> {
    using action = sets_name<&Part::name>;
};
struct part_count : sum {
    using action = makes_expression<&Part::count>;
};
struct part_type : named<"the name of a component", token<TokenKind::name>> {
    using action = sets_name<&Part::type>;
};
struct argument_name : named<"the name of a parameter", token<TokenKind::name>> {
    using action = sets_name<&Argument::name>;
};
struct argument_value : sum {
    using action = makes_expression<&Argument::value>;
};
struct argument : seq<argument_name, must<token<TokenKind::equals>, argument_value>> {
    using action = makes_member<Argument, &Part::arguments>;
};
struct arguments : if_must<token<TokenKind::openParenthesis>, comma_list<argument>,
                           token<TokenKind::closeParenthesis>> {};
struct part_initials
    : if_must<token<TokenKind::openBrace>, star<initially>, token<TokenKind::closeBrace>> {};
struct part
    : in_context<
          "a part",
          seq<sor<followed_by<TokenKind::name, TokenKind::colon>,
                  followed_by<TokenKind::name, TokenKind::openBracket>>,
              part_name,
              opt<if_must<token<TokenKind::openBracket>, part_count, token<TokenKind::closeBracket>>>,
              must<token<TokenKind::colon>, part_type>, opt<arguments>, opt<part_initials>>> {
    using action = makes<Part>;
};

} // namespace language::grammar
