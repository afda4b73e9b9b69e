// The grammar of model files, over tokens. docs/language.md has the same in EBNF.
//
// Every construct is known by its first token or two, and from there on what follows is required: `must` throws a Mistake
// where it is missing. `recovering` catches it around each statement and goes on with the next one. Rules have the name of
// what they read; a rule that inherits another one gives it a role: Actions.h says what the tree gets from it.
#pragma once

#include "language/syntax/GrammarRules.h"

namespace language::grammar {

// ---- names, numbers, texts

struct new_name : named<"a name", token<TokenKind::name>> {};
struct value_name : value_token {};
struct number : token<TokenKind::number> {};
struct text : named<"a text in double quotes", token<TokenKind::text>> {};

template <typename Rule> struct comma_list : list_must<Rule, token<TokenKind::comma>> {
};

// ---- expressions: 0.004, -1.5, 2 * (pStuck + 0.1), i + 1

struct sum;
struct negated_factor;
struct constant_name : token<TokenKind::name> {};
struct negative : if_must<token<TokenKind::minus>, nested<negated_factor>> {};
struct grouped
    : if_must<token<TokenKind::openParenthesis>, nested<sum>, token<TokenKind::closeParenthesis>> {
};
struct factor : named<"a number", sor<number, constant_name, negative, grouped>> {};
struct negated_factor : factor {};
struct times : token<TokenKind::star> {};
struct over : token<TokenKind::slash> {};
struct add : token<TokenKind::plus> {};
struct subtract : token<TokenKind::minus> {};
struct product : seq<factor, star<named<"", sor<times, over>>, must<factor>>> {};
struct sum : seq<product, star<named<"", sor<add, subtract>>, must<product>>> {};

// ---- paths: outflow, branch1.valveA.outflow, cell[i+1].in

struct segment_index : sum {};
struct segment_name : token<TokenKind::name> {};
struct segment
    : seq<segment_name,
          opt<if_must<silent<TokenKind::openBracket>, segment_index, token<TokenKind::closeBracket>>>> {
};
struct path
    : named<"a variable", seq<segment, star<silent<TokenKind::dot>, must<named<"a name", segment>>>>> {
};

// ---- formulas, from the loosest to the tightest: -> and <->, |, &, !

struct formula;
struct left_path : path {};
struct value_word : value_token {};
struct right_path : named<"a value or a variable", sor<path, value_word>> {};
struct equal_sign : token<TokenKind::equals> {};
struct unequal_sign : token<TokenKind::notEquals> {};
struct member_value : value_name {};
struct member_sign : token<TokenKind::inWord> {};
struct comparison
    : seq<left_path, must<sor<if_must<equal_sign, right_path>, if_must<unequal_sign, right_path>,
                              if_must<member_sign, token<TokenKind::openBrace>,
                                      comma_list<member_value>, token<TokenKind::closeBrace>>>>> {};
struct not_sign : sor<token<TokenKind::exclamation>, token<TokenKind::notWord>> {};
struct and_sign : named<"an operator", sor<token<TokenKind::ampersand>, token<TokenKind::andWord>>> {
};
struct or_sign : named<"an operator", sor<token<TokenKind::bar>, token<TokenKind::orWord>>> {};
struct implies_sign : named<"an operator", token<TokenKind::arrow>> {};
struct equivalent_sign : named<"an operator", token<TokenKind::doubleArrow>> {};
struct operand;
struct negation : if_must<not_sign, nested<operand>> {};
struct grouped_formula
    : if_must<token<TokenKind::openParenthesis>, nested<formula>, token<TokenKind::closeParenthesis>> {
};
struct operand : named<"a formula", sor<negation, grouped_formula, comparison>> {};
struct conjunction : list_must<operand, and_sign> {};
struct disjunction : list_must<conjunction, or_sign> {};
struct formula
    : seq<disjunction,
          opt<sor<if_must<implies_sign, disjunction>, if_must<equivalent_sign, disjunction>>>,
          no_second_arrow> {};

struct lone_formula : seq<formula, must<eof>> {};

// ---- variables

struct mode_word : token<TokenKind::modeWord> {};
struct cond_word : token<TokenKind::condWord> {};
struct command_word : token<TokenKind::commandWord> {};
struct initial_flag : token<TokenKind::initialWord> {};
struct fault_flag : token<TokenKind::faultWord> {};
struct declared_name : value_name {};
struct name_in_braces : block_value_token {};
struct value_in_braces : seq<name_in_braces, star<sor<initial_flag, fault_flag>>> {};
struct values_in_braces
    : if_must<token<TokenKind::openBrace>, value_in_braces,
              star<opt<silent<TokenKind::comma>>, value_in_braces>, token<TokenKind::closeBrace>> {
};
// Here `fault` after a value may begin the next statement.
struct value_in_list
    : seq<declared_name, star<not_at<begins_fault>, sor<initial_flag, fault_flag>>> {};
struct values_after_colon : if_must<token<TokenKind::colon>, comma_list<value_in_list>> {};
struct lost_probability : sum {};
struct lost : if_must<token<TokenKind::lostWord>, lost_probability> {};
struct variable_rest : seq<must<new_name>, must<sor<values_after_colon, values_in_braces>>> {};
struct variable
    : in_context<"a variable", sor<seq<mode_word, variable_rest>, seq<cond_word, variable_rest>,
                                   seq<command_word, variable_rest, opt<lost>>>> {};

// ---- laws and transitions

struct law : in_context<"a law", if_must<token<TokenKind::lawWord>, formula>> {};

struct nominal_word : token<TokenKind::nominalWord> {};
struct fault_word : token<TokenKind::faultWord> {};
struct idle_word : token<TokenKind::idleWord> {};
struct mode_name : token<TokenKind::name> {};
struct of_mode
    : seq<followed_by<TokenKind::name, TokenKind::equals>, mode_name, token<TokenKind::equals>> {};
struct any_value : token<TokenKind::anyWord> {};
struct source_value : value_name {};
struct sources : sor<any_value, comma_list<source_value>> {};
struct target_value : value_name {};
struct guard : if_must<token<TokenKind::whenWord>, formula> {};
struct per_unit
    : named<"a unit of time (ms, s, min, h, d) or 'step'", sor<token<TokenKind::stepWord>, time_unit>> {
};
struct amount : sum {};
struct probability : seq<amount, opt<if_must<token<TokenKind::perWord>, per_unit>>> {};
struct transition_rest : seq<opt<guard>, opt<if_must<token<TokenKind::colon>, probability>>> {};
struct change_rest : seq<opt<of_mode>, must<sources>, must<token<TokenKind::arrow>>,
                         must<target_value>, transition_rest> {};
struct nominal_transition : in_context<"a nominal transition", seq<nominal_word, change_rest>> {};
struct fault_transition : in_context<"a fault", seq<fault_word, change_rest>> {};
struct idle_transition
    : in_context<"an idle transition", seq<idle_word, opt<of_mode>, must<sources>, transition_rest>> {
};
struct transition : sor<nominal_transition, fault_transition, idle_transition> {};

// ---- parts and their initial values

struct initial_variable : path {};
struct initial_value : value_name {};
struct initially
    : in_context<"an initial value", if_must<token<TokenKind::initiallyWord>, initial_variable,
                                             token<TokenKind::equals>, initial_value>> {};
struct part_name : token<TokenKind::name> {};
struct part_count : sum {};
struct part_type : named<"the name of a component", token<TokenKind::name>> {};
struct argument_name : named<"the name of a parameter", token<TokenKind::name>> {};
struct argument_value : sum {};
struct argument : seq<argument_name, must<token<TokenKind::equals>, argument_value>> {};
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
              must<token<TokenKind::colon>, part_type>, opt<arguments>, opt<part_initials>>> {};

// ---- bindings to channels, of the system

struct bound_variable : path {};
struct channel : text {};
struct below_less : token<TokenKind::less> {};
struct below_less_or_equal : token<TokenKind::lessOrEqual> {};
struct above_less : token<TokenKind::less> {};
struct above_less_or_equal : token<TokenKind::lessOrEqual> {};
struct limit_number : sum {};
struct limit : seq<sor<below_less, below_less_or_equal>,
                   must<limit_number, sor<above_less, above_less_or_equal>>> {};
struct threshold_value : value_name {};
struct hysteresis : sum {};
struct thresholds : seq<begins_thresholds, threshold_value, plus<limit, must<threshold_value>>,
                        opt<if_must<token<TokenKind::withinWord>, hysteresis>>> {};
struct read_value : value_name {};
struct read_number : sum {};
struct read_text : text {};
struct otherwise : token<TokenKind::otherwiseWord> {};
struct reading
    : seq<read_value,
          must<sor<if_must<token<TokenKind::equals>, sor<read_text, read_number>>, otherwise>>> {};
struct readings : comma_list<reading> {};
struct unit : named<"a unit of time (ms, s, min, h, d)", time_unit> {};
struct duration : seq<amount, must<unit>> {};
struct hold : if_must<token<TokenKind::holdWord>, duration> {};
struct binding_rest
    : seq<must<bound_variable>, opt<if_must<token<TokenKind::fromWord>, channel>>,
          opt<if_must<token<TokenKind::colon>, sor<thresholds, readings>>>, opt<hold>> {};
struct observe_word : token<TokenKind::observeWord> {};
struct observation : in_context<"an observation", seq<observe_word, binding_rest>> {};
struct bind_command_word : token<TokenKind::commandWord> {};
struct command_binding
    : in_context<"a command", seq<command_is_bound, bind_command_word, binding_rest>> {};
struct binding : sor<observation, command_binding> {};
struct step_length
    : in_context<"the length of a step", if_must<token<TokenKind::stepWord>, duration>> {};

// ---- loops and blocks

template <typename Member> struct members : star<not_at<end_of_block>, recovering<Member>> {
};
template <typename Member> struct block : seq<open_block, members<Member>, must<close_block>> {
};

struct loop_index : new_name {};
struct loop_first : sum {};
struct loop_last : sum {};
template <typename Member>
struct loop_members : sor<if_must<token<TokenKind::colon>, nested<Member>>, nested<block<Member>>> {
};
template <typename Member>
struct loop
    : in_context<"a loop",
                 if_must<token<TokenKind::forWord>, loop_index, token<TokenKind::inWord>,
                         loop_first, token<TokenKind::dots>, loop_last, loop_members<Member>>> {
};
struct part_loop_member
    : named<"a law, 'initially' or a loop", sor<law, initially, loop<part_loop_member>>> {};
struct system_loop_member : named<"a law, an observation, a command, 'initially' or a loop",
                                  sor<law, binding, initially, loop<system_loop_member>>> {};
struct component_member
    : named<"a statement of a component",
            sor<variable, law, transition, part, initially, loop<part_loop_member>>> {};
struct system_member
    : named<"a statement of a system", sor<binding, variable, law, transition, part, initially,
                                           loop<system_loop_member>, step_length>> {};

// ---- the file

struct import_path : text {};
struct import : in_context<"an import", if_must<token<TokenKind::importWord>, import_path>> {};
struct constant_value : sum {};
struct constant : in_context<"a constant", if_must<token<TokenKind::constWord>, new_name,
                                                   token<TokenKind::equals>, constant_value>> {};
struct parameter_value : sum {};
struct parameter : seq<named<"the name of a parameter", new_name>,
                       opt<if_must<token<TokenKind::equals>, parameter_value>>> {};
struct parameters : if_must<token<TokenKind::openParenthesis>, comma_list<parameter>,
                            token<TokenKind::closeParenthesis>> {};
struct component_body : block<component_member> {};
struct system_body : block<system_member> {};
struct component
    : in_context<"a component",
                 if_must<token<TokenKind::componentWord>, new_name, opt<parameters>, component_body>> {
};
struct system
    : in_context<"a system", if_must<token<TokenKind::systemWord>, new_name, system_body>> {};
struct declaration
    : named<"'import', 'const', 'component' or 'system'", sor<import, constant, component, system>> {
};
struct file : until<eof, recovering<declaration>> {};

} // namespace language::grammar
