// The grammar of model files, over tokens. docs/language.md has the same in EBNF.
//
// Every construct is known by its first token or two, and from there on what follows is required: `must` throws a Mistake
// where it is missing. `recovering` catches it around each statement and goes on with the next one. Rules have the name of
// what they read, and each says below its pattern, as its `action`, what the tree gets from it (NodeActions.h); a rule that
// inherits another one gives it a role. The rules stand from the smallest to the largest: ExpressionGrammar.h, FormulaGrammar.h,
// StatementGrammar.h, BindingGrammar.h, and here loops, blocks and the file.
#pragma once

#include "language/syntax/BindingGrammar.h"

namespace language::grammar {

// ---- loops and blocks

template <typename Member> struct members : star<not_at<end_of_block>, recovering<Member>> {
};
template <typename Member> struct block : seq<open_block, members<Member>, must<close_block>> {
};

struct loop_index : new_name {
    using action = sets_name<&Loop::index>;
};
struct loop_first : sum {
    using action = makes_expression<&Loop::first>;
};
struct loop_last : sum {
    using action = makes_expression<&Loop::last>;
};
template <typename Member>
struct loop_members : sor<if_must<token<TokenKind::colon>, nested<Member>>, nested<block<Member>>> {
    using action = gives_members;
};
template <typename Member>
struct loop
    : in_context<"a loop",
                 if_must<token<TokenKind::forWord>, loop_index, token<TokenKind::inWord>,
                         loop_first, token<TokenKind::dots>, loop_last, loop_members<Member>>> {
    using action = makes<Loop>;
};
struct part_loop_member
    : named<"a law, 'initially' or a loop", sor<law, initially, loop<part_loop_member>>> {};
struct system_loop_member
    : named<"a law, an observation, an input, a command, 'initially' or a loop",
            sor<law, binding, initially, loop<system_loop_member>>> {};
struct component_member
    : named<"a statement of a component",
            sor<variable, law, transition, part, initially, loop<part_loop_member>>> {};
struct system_member
    : named<"a statement of a system", sor<binding, variable, law, transition, part, initially,
                                           loop<system_loop_member>, step_length>> {};

// ---- the file

struct import_path : text {
    using action = sets_text<&Import::path>;
};
struct import : in_context<"an import", if_must<token<TokenKind::importWord>, import_path>> {
    using action = makes<Import>;
};
struct constant_value : sum {
    using action = makes_expression<&Constant::value>;
};
struct constant : in_context<"a constant", if_must<token<TokenKind::constWord>, new_name,
                                                   token<TokenKind::equals>, constant_value>> {
    using action = makes<Constant>;
};
struct parameter_value : sum {
    using action = makes_expression<&Parameter::value>;
};
struct parameter : seq<named<"the name of a parameter", new_name>,
                       opt<if_must<token<TokenKind::equals>, parameter_value>>> {
    using action = makes_member<Parameter, &Component::parameters>;
};
struct parameters : if_must<token<TokenKind::openParenthesis>, comma_list<parameter>,
                            token<TokenKind::closeParenthesis>> {};
struct component_body : block<component_member> {
    using action = gives_members;
};
struct system_body : block<system_member> {
    using action = gives_members;
};
struct component
    : in_context<"a component",
                 if_must<token<TokenKind::componentWord>, new_name, opt<parameters>, component_body>> {
    using action = makes<Component>;
};
struct system
    : in_context<"a system", if_must<token<TokenKind::systemWord>, new_name, system_body>> {
    using action = makes<System>;
};
struct declaration
    : named<"'import', 'const', 'component' or 'system'", sor<import, constant, component, system>> {
};
struct file : until<eof, recovering<declaration>> {};

} // namespace language::grammar
