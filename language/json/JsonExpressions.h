// What is computed from channels, in a JSON model: a number; {"channel": "FT-1"}; {"op": "-", "of": [A, B]}; and with a time
// {"op": "mean", "of": [A], "seconds": 300}.
#pragma once

#include "language/json/JsonNode.h"
#include "plant/ChannelExpression.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace language {

/// Nothing, and an error reported, where it is none.
std::optional<plant::ChannelExpression> channelExpression(const JsonNode& node, double stepSeconds);

nlohmann::ordered_json expressionJson(const plant::ChannelExpression& expression);

} // namespace language
