// The channels of a JSON model.
#pragma once

#include "language/json/JsonNames.h"
#include "plant/CheckedBuilder.h"

#include <optional>

namespace language {

class JsonChannels {
public:
    /// `stepSeconds` is the length of a step.
    JsonChannels(plant::CheckedBuilder& builder, const JsonNames& names, double stepSeconds)
        : builder_(builder), names_(names), stepSeconds_(stepSeconds)
    {
    }

    /// Adds one of them to the bindings.
    void add(const JsonNode& node);
    /// Adds the name of a variable that can be measured.
    void addMeasurable(const JsonNode& node);

private:
    static std::optional<plant::ChannelBinding::Kind> kindOf(const JsonNode& node,
                                                             const StateVar& variable);
    std::optional<plant::ThresholdTable> thresholds(const JsonNode& node,
                                                    const StateVar& variable) const;
    bool readLimits(const JsonNode& node, plant::ThresholdTable& table) const;
    bool readComputed(const JsonNode& node, plant::ChannelBinding& made) const;
    static bool readSeconds(const JsonNode& node, const char* key, std::optional<double>& seconds);
    static bool readTimes(const JsonNode& node, plant::ChannelBinding& made);
    static std::optional<plant::ReadingTable> readings(const JsonNode& channel,
                                                       const StateVar& variable);
    static std::optional<plant::NumberRange> range(const JsonNode& node);
    static bool readSpread(const JsonNode& node, plant::ChannelBinding& made);
    static bool readNoise(const JsonNode& node, plant::ChannelBinding& made);
    static bool readChances(const JsonNode& node, plant::ChannelBinding& made);
    bool readTranslation(const JsonNode& node, plant::ChannelBinding& made) const;

    plant::CheckedBuilder& builder_;
    const JsonNames& names_;
    double stepSeconds_;
};

} // namespace language
