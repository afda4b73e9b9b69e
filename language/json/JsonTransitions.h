// The transitions of a JSON model.
#pragma once

#include "language/json/PlantNames.h"
#include "plant/ModelBuilder.h"

#include <deque>
#include <optional>
#include <unordered_map>

namespace language {

class JsonTransitions {
public:
    JsonTransitions(plant::ModelBuilder& builder, const PlantNames& names)
        : builder_(builder), names_(names)
    {
    }

    /// Makes one of them, in the order of the calls.
    void add(const JsonNode& node);
    /// Reports values that are left with a probability of more than 1. `list` is the node of all of them.
    void checkSums(const JsonNode& list) const;

    std::size_t count() const { return count_; }

private:
    using Conjunction = std::vector<plant::GuardLiteral>;
    enum class Kind { nominal, fault, idle };

    /// A change with the guards under which it happens. A model file has one statement for what are here several
    /// transitions, one behind the other, and takes their probability once.
    struct Change {
        Kind kind;
        Atom* from;
        Atom* to;
        std::vector<Conjunction> alternatives;
        std::optional<double> probability;
        std::size_t index; ///< of the last one, in the list

        bool always() const { return alternatives.size() == 1 && alternatives.front().empty(); }
    };

    static std::optional<Kind> kindOf(const JsonNode& node);
    static const char* word(Kind kind);
    bool fits(const JsonNode& node, Kind kind, const Atom* from, const Atom* to) const;
    std::optional<Conjunction> guardOf(const JsonNode& node) const;
    void make(const Change& change);
    void checkSum(const JsonNode& list, const std::vector<const Change*>& leaving) const;

    plant::ModelBuilder& builder_;
    const PlantNames& names_;
    std::deque<Change> changes_;
    std::vector<const Atom*> left_; ///< the values that something leaves, in the order of the list
    std::unordered_map<const Atom*, std::vector<const Change*>> leaving_;
    std::size_t index_ = 0;
    std::size_t count_ = 0;
};

} // namespace language
