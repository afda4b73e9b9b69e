// Numbers computed from what channels read: `("T-sup" - "T-set") / "DP"`, `mean("FT-1") over 5 min`. telemetry/ computes them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace plant {

struct ChannelExpression {
    enum class Kind {
        constant, ///< number
        channel,  ///< what the channel reads at the step
        negation,
        sum,
        difference,
        product,
        quotient,
        absolute,
        least,    ///< min(a, b, ...)
        greatest, ///< max(a, b, ...)
        mean,     ///< over the last `number` seconds, as the next ones
        minimum,
        maximum,
        spread, ///< maximum - minimum
        rate,   ///< change per second
        ago     ///< what the operand was `number` seconds ago
    };

    Kind kind = Kind::constant;
    double number = 0;   ///< a constant, or the seconds of a window
    std::string channel; ///< of a channel: its name
    std::vector<ChannelExpression>
        operands; ///< one of a negation, `absolute` and the windows; two or more of least and greatest; two of the other operations

    friend bool operator==(const ChannelExpression&, const ChannelExpression&) = default;
};

/// Whether it looks back in time, over `number` seconds: mean to ago.
bool isWindow(ChannelExpression::Kind kind);
/// What an operation is called in files: `+`, `-` (also the negation), `*`, `/`, `abs`, `min`, `max`, `mean`, `spread`, `rate`, `ago`.
/// Requires: neither a constant nor a channel.
std::string_view wordOf(ChannelExpression::Kind kind);
/// As in a model file, with all parentheses and times in seconds: `mean("FT-1" - 2) over 300 s`.
std::string textOf(const ChannelExpression& expression);
/// Calls `visit` for the expression and all within it, operands first.
void forEach(const ChannelExpression& expression,
             const std::function<void(const ChannelExpression&)>& visit);

} // namespace plant
