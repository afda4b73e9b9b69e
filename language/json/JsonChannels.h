// The channels of a JSON model.
#pragma once

#include "language/json/JsonNames.h"
#include "plant/CheckedBuilder.h"

#include <optional>

namespace language {

class JsonChannels {
public:
    JsonChannels(plant::CheckedBuilder& builder, const JsonNames& names)
        : builder_(builder), names_(names)
    {
    }

    /// Adds one of them to the bindings.
    void add(const JsonNode& node);

private:
    static std::optional<plant::ChannelBinding::Kind> kindOf(const JsonNode& node,
                                                             const StateVar& variable);
    static std::optional<plant::ThresholdTable> thresholds(const JsonNode& node,
                                                           const StateVar& variable);
    static bool readLimits(const JsonNode& node, plant::ThresholdTable& table);
    static std::optional<plant::ReadingTable> readings(const JsonNode& channel,
                                                       const StateVar& variable);
    static bool readChances(const JsonNode& node, plant::ChannelBinding& made);
    static bool readTranslation(const JsonNode& node, plant::ChannelBinding& made);

    plant::CheckedBuilder& builder_;
    const JsonNames& names_;
};

} // namespace language
