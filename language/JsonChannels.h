// The channels of a JSON model.
#pragma once

#include "language/Bindings.h"
#include "language/PlantNames.h"

#include <unordered_map>

namespace language {

class JsonChannels {
public:
    JsonChannels(const PlantNames& names, Bindings& bindings) : names_(names), bindings_(bindings)
    {
    }

    /// Adds one of them to the bindings.
    void add(const JsonNode& node);

private:
    std::optional<ChannelBinding::Kind> kindOf(const JsonNode& node, const StateVar& variable) const;
    static std::optional<ThresholdTable> thresholds(const JsonNode& node, const StateVar& variable);
    static bool readLimits(const JsonNode& node, ThresholdTable& table);
    static bool checkHysteresis(const JsonNode& node, const ThresholdTable& table);
    static std::optional<ReadingTable> readings(const JsonNode& channel, const StateVar& variable);
    bool readTranslation(const JsonNode& node, ChannelBinding& made) const;

    const PlantNames& names_;
    Bindings& bindings_;
    std::unordered_map<const StateVar*, std::string> bound_; ///< to the pointers of their channels
};

} // namespace language
