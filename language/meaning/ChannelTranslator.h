// What is computed from channels, as the plant has it: names and numbers put in, times in seconds.
#pragma once

#include "language/meaning/Numbers.h"
#include "language/syntax/Syntax.h"
#include "plant/ChannelExpression.h"

#include <optional>
#include <string>

namespace language {

/// Whether an expression is more than a number: it has a channel, or a function over time.
bool isComputed(const syntax::Expression& expression);

class ChannelTranslator {
public:
    ChannelTranslator(const SourceFiles& files, Report& report, double stepSeconds)
        : files_(files), report_(report), stepSeconds_(stepSeconds)
    {
    }

    /// Nothing, and an error reported, where a number in it cannot be computed.
    std::optional<plant::ChannelExpression> translate(const syntax::Expression& expression,
                                                      const Environment& environment);
    /// The name of a channel, with what stands in braces computed. Outside of loops braces are part of the name.
    std::optional<std::string> channelName(const std::string& text, const text::Range& range,
                                           const Environment& environment);
    /// An amount of a unit, in seconds.
    std::optional<double> seconds(const syntax::Expression& amount, const syntax::Name& unit,
                                  const Environment& environment);

private:
    const SourceFiles& files_;
    Report& report_;
    double stepSeconds_;
};

} // namespace language
