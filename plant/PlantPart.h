// Parts of a plant that nothing but guards connects, each a plant by itself.
//
//     const auto part = plant.parts().around({flow, state});        // null: that is most of the plant
//     monitor::Prediction labels(part->plant());                    // costs the part
//     labels.assume(*part->here(value));                            // `value` is an atom of the plant
//
// No law of one part mentions anything of another one, and no component has variables of two. So what follows in a part depends on
// what is given for it alone, and whoever looks for the reason of something that is read there looks nowhere else.
#pragma once

#include "plant/Plant.h"

#include <deque>
#include <optional>

namespace plant {

/// Some of a plant's parts, numbered in the order of the plant.
class PlantPart {
public:
    /// Requires: these are parts of the plant, by rising index. The plant's model outlives it. Linear in them, but for a logarithm.
    PlantPart(const Plant& whole, std::vector<VariableIndex> variables);

    /// Without the changes of its modes.
    const Plant& plant() const { return plant_; }
    /// By rising index in the whole: its own numbers are the places.
    const std::vector<VariableIndex>& variables() const { return variables_; }

    /// The same in the plant that this is a part of. Constant time.
    VariableIndex variableInWhole(VariableIndex variable) const
    {
        return variables_[static_cast<std::size_t>(variable)];
    }
    AtomIndex inWhole(AtomIndex atom) const { return atoms_[static_cast<std::size_t>(atom)]; }

    /// The atom of the whole plant as it is numbered here. Nothing: it is not in this part. Logarithmic.
    std::optional<AtomIndex> here(AtomIndex inWhole) const;
    bool has(VariableIndex inWhole) const;

private:
    std::vector<VariableIndex> variables_;
    std::vector<AtomIndex> atoms_; ///< those of the whole, by rising index
    Plant plant_;
};

/// The parts of a plant, found where they are asked for.
class PlantParts {
public:
    /// Nothing is looked at yet. The plant outlives the parts.
    explicit PlantParts(const Plant& plant) : plant_(plant) {}

    /// The parts with these variables. Null where they are more than half of the plant: then it is as well to take the whole. Costs
    /// what they have, where that was not asked for shortly before.
    std::shared_ptr<const PlantPart> around(const std::vector<VariableIndex>& variables);

private:
    std::int32_t partOf(VariableIndex variable);
    void explore(VariableIndex variable, std::int32_t part);

    static constexpr std::int32_t unknown = -1;
    /// Of which the plants are kept.
    static constexpr std::size_t mostKept = 8;

    struct Kept {
        std::vector<std::int32_t> parts;
        std::shared_ptr<const PlantPart> made;
    };

    const Plant& plant_;
    std::vector<std::int32_t> partOf_; ///< by variable
    std::vector<std::vector<VariableIndex>> members_;
    std::deque<Kept> kept_; ///< latest first
};

} // namespace plant
