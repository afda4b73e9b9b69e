// What only a system says: which channels observe and command its variables, and how long a step is.
#pragma once

#include "language/syntax/ChannelGrammar.h"

namespace language::grammar {

struct bound_variable : path {
    using action = makes_member<Path, &Binding::variable>;
};
struct channel : channel_sum {
    using action = makes_expression<&Binding::channel>;
};
struct below_less : token<TokenKind::less> {
    using action = sets<&Thresholds::Limit::below, Order::less>;
};
struct below_less_or_equal : token<TokenKind::lessOrEqual> {
    using action = sets<&Thresholds::Limit::below, Order::lessOrEqual>;
};
struct above_less : token<TokenKind::less> {
    using action = sets<&Thresholds::Limit::above, Order::less>;
};
struct above_less_or_equal : token<TokenKind::lessOrEqual> {
    using action = sets<&Thresholds::Limit::above, Order::lessOrEqual>;
};
struct limit_number : channel_sum {
    using action = makes_expression<&Thresholds::Limit::number>;
};
struct limit : seq<sor<below_less, below_less_or_equal>,
                   must<limit_number, sor<above_less, above_less_or_equal>>> {
    struct action : makes_member<Thresholds::Limit, &Thresholds::limits> {
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
};
struct threshold_value : value_name {
    using action = sets_name<&Thresholds::values>;
};
struct hysteresis : sum {
    using action = makes_expression<&Thresholds::hysteresis>;
};
struct thresholds : seq<begins_thresholds, threshold_value, plus<limit, must<threshold_value>>,
                        opt<if_must<within_word<false>, hysteresis>>> {
    using action = makes_member<Thresholds, &Binding::translation>;
};
struct read_value : value_name {
    using action = sets_name<&Reading::value>;
};
struct read_number : sum {
    using action = makes_expression<&Reading::reading>;
};
struct read_text : text {
    using action = sets_text<&Reading::reading>;
};
struct otherwise : token<TokenKind::otherwiseWord> {};
struct reading
    : seq<read_value,
          must<sor<if_must<token<TokenKind::equals>, sor<read_text, read_number>>, otherwise>>> {
    using action = makes_member<Reading, &Readings::readings>;
};
struct readings : comma_list<reading> {
    using action = makes_member<Readings, &Binding::translation>;
};
struct hold_duration : duration {
    using action = makes_member<Duration, &Binding::hold>;
};
struct hold : if_must<token<TokenKind::holdWord>, hold_duration> {};
struct persistence_duration : duration {
    using action = makes_member<Duration, &Binding::persistence>;
};
/// Not `for i in`, which begins a loop.
struct persistence : seq<persists, must<persistence_duration>> {};
struct settling_duration : duration {
    using action = makes_member<Duration, &Settling::duration>;
};
struct settling_channel : named<"a channel in double quotes", text> {
    using action = sets_text<&Settling::channels>;
};
struct settling
    : seq<named<"", soft_word<"settled">>, must<settling_duration>,
          must<named<"'after'", soft_word<"after">>>, must<comma_list<settling_channel>>> {
    using action = makes_member<Settling, &Binding::settling>;
};
template <auto Member> struct range_bound : sum {
    using action = makes_expression<Member>;
};
template <auto Member>
struct number_range : seq<range_bound<&NumberRange::from>, must<token<TokenKind::dots>>,
                          must<range_bound<&NumberRange::to>>> {
    using action = makes_member<NumberRange, Member>;
};
struct physical_range : if_must<within_word<true>, number_range<&Binding::physical>> {};
struct noisy_value : value_name {
    using action = sets_name<&Noise::Value::value>;
};
struct noise_of_value
    : seq<noisy_value, must<token<TokenKind::equals>>, must<number_range<&Noise::Value::readings>>> {
    using action = makes_member<Noise::Value, &Noise::values>;
};
struct noise_deviation : sum {
    using action = makes_expression<&Noise::deviation>;
};
struct noise : seq<named<"", soft_word<"noise">>,
                   must<sor<seq<begins_value_range, comma_list<noise_of_value>>, noise_deviation>>> {
    using action = makes_member<Noise, &Binding::noise>;
};
struct misread_probability : sum {
    using action = makes_expression<&Binding::misread>;
};
struct misread : seq<named<"", soft_word<"misread">>, must<misread_probability>> {};
struct variation : seq<named<"'varies'", soft_word<"varies">>, must<amount>, opt<per>> {
    using action = makes_member<Probability, &Binding::varies>;
};
struct binding_rest
    : seq<must<bound_variable>, opt<if_must<token<TokenKind::fromWord>, channel>>,
          opt<if_must<token<TokenKind::colon>, sor<thresholds, readings>>>, opt<physical_range>,
          opt<hold>, opt<persistence>, opt<settling>, opt<noise>, opt<misread>> {};
struct varies : opt<variation> {};
// Where it has no place it is read all the same, for a message that says why.
struct varies_in_vain : named<"", varies> {};
struct observe_word : token<TokenKind::observeWord> {
    using action = sets<&Binding::kind, Binding::Kind::observation>;
};
struct observation : in_context<"an observation", seq<observe_word, binding_rest, varies>> {};
struct input_word : soft_word<"input"> {
    using action = sets<&Binding::kind, Binding::Kind::input>;
};
struct input : in_context<"an input", seq<input_word, binding_rest, varies_in_vain>> {};
struct bind_command_word : token<TokenKind::commandWord> {
    using action = sets<&Binding::kind, Binding::Kind::command>;
};
struct command_binding
    : in_context<"a command", seq<command_is_bound, bind_command_word, binding_rest, varies_in_vain>> {
};
struct measurable_word : soft_word<"measurable"> {
    using action = sets<&Binding::kind, Binding::Kind::measurable>;
};
struct measurable : in_context<"what can be measured", seq<measurable_word, must<bound_variable>>> {
};
struct binding : sor<observation, input, measurable, command_binding> {
    using action = makes<Binding>;
};
struct step_length
    : in_context<"the length of a step", if_must<token<TokenKind::stepWord>, duration>> {
    using action = makes<StepLength>;
};

} // namespace language::grammar
