// The transitions of a JSON model.
#pragma once

#include "language/json/JsonNames.h"
#include "plant/CheckedBuilder.h"

#include <deque>
#include <optional>
#include <unordered_map>

namespace language {

class JsonTransitions {
public:
    JsonTransitions(plant::CheckedBuilder& builder, const JsonNames& names)
        : builder_(builder), names_(names)
    {
    }

    /// Reads one of them, in the order of the list.
    void add(const JsonNode& node);
    /// Checks the probabilities of all of them together, and makes them.
    void finish();

private:
    bool fits(const JsonNode& node, plant::ChangeKind kind, const Atom* from, const Atom* to) const;
    std::optional<plant::Conjunction> guardOf(const JsonNode& node) const;

    plant::CheckedBuilder& builder_;
    const JsonNames& names_;
    std::deque<plant::Change> changes_;
    std::vector<const Atom*> left_; ///< the values that something leaves, in the order of the list
    std::unordered_map<const Atom*, std::vector<const plant::Change*>> leaving_;
    std::size_t index_ = 0; ///< of the next one, in the list
    std::size_t last_ = 0;  ///< of the last one that was sound
};

} // namespace language
