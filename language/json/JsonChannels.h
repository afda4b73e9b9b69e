// The channels of a JSON model.
#pragma once

#include "language/json/PlantNames.h"
#include "plant/Bindings.h"

#include <unordered_map>

namespace language {

class JsonChannels {
public:
    JsonChannels(const PlantNames& names, plant::Bindings& bindings)
        : names_(names), bindings_(bindings)
    {
    }

    /// Adds one of them to the bindings.
    void add(const JsonNode& node);

private:
    std::optional<plant::ChannelBinding::Kind> kindOf(const JsonNode& node,
                                                      const StateVar& variable) const;
    static std::optional<plant::ThresholdTable> thresholds(const JsonNode& node,
                                                           const StateVar& variable);
    static bool readLimits(const JsonNode& node, plant::ThresholdTable& table);
    static bool checkHysteresis(const JsonNode& node, const plant::ThresholdTable& table);
    static std::optional<plant::ReadingTable> readings(const JsonNode& channel,
                                                       const StateVar& variable);
    bool readTranslation(const JsonNode& node, plant::ChannelBinding& made) const;

    const PlantNames& names_;
    plant::Bindings& bindings_;
    std::unordered_map<const StateVar*, std::string> bound_; ///< to the pointers of their channels
};

} // namespace language
