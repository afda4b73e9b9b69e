// Explanations of plants that are networks of cells, such as circuits (monitor/step/CellNetwork.h), found without the engine. Every
// other question goes to another search.
#pragma once

#include "monitor/step/CellNetwork.h"
#include "monitor/step/ExplanationSearch.h"

#include <memory>

namespace monitor {

class ConflictSearch final : public ExplanationSearch {
public:
    /// `otherwise` answers what is not about a network, whose modes are all as they should be and whose sources are all inputs.
    /// The plant outlives this, and is that of every frame. Linear in the plant.
    ConflictSearch(const Plant& plant, std::shared_ptr<ExplanationSearch> otherwise);

    /// In `work`, a record is a conflict that was taken apart, a flip a member of a set that was tried, and a component a cell that was
    /// in one.
    Explanations search(const StepFrame& frame, int faultBudget,
                        const SearchLimits& limits) override;

    /// Whether the plant is a network.
    bool isNetwork() const { return network_.has_value(); }

private:
    std::shared_ptr<ExplanationSearch> otherwise_;
    std::optional<CellNetwork> network_;
};

} // namespace monitor
