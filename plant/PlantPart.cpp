// A part is found by walking from a variable to those of its component and of its laws, once for the plant's life. The variables of a
// component stand side by side.
#include "plant/PlantPart.h"

#include <algorithm>

namespace plant {

PlantPart::PlantPart(const Plant& whole, std::vector<VariableIndex> variables)
    : variables_(std::move(variables)), plant_(whole, variables_)
{
    for (const VariableIndex variable : variables_) {
        const ValueRange values = whole.variable(variable).values;
        atoms_.insert(atoms_.end(), values.begin(), values.end());
    }
}

std::optional<AtomIndex> PlantPart::here(AtomIndex inWhole) const
{
    const auto found = std::lower_bound(atoms_.begin(), atoms_.end(), inWhole);
    if (found == atoms_.end() || *found != inWhole) return std::nullopt;
    return static_cast<AtomIndex>(found - atoms_.begin());
}

bool PlantPart::has(VariableIndex inWhole) const
{
    return std::binary_search(variables_.begin(), variables_.end(), inWhole);
}

std::shared_ptr<const PlantPart> PlantParts::around(const std::vector<VariableIndex>& variables)
{
    std::vector<std::int32_t> parts;
    for (const VariableIndex variable : variables) parts.push_back(partOf(variable));
    std::sort(parts.begin(), parts.end());
    parts.erase(std::unique(parts.begin(), parts.end()), parts.end());
    std::size_t count = 0;
    for (const std::int32_t part : parts) count += members_[static_cast<std::size_t>(part)].size();
    if (2 * count > plant_.variables().size()) return nullptr;
    const auto known = std::find_if(kept_.begin(), kept_.end(),
                                    [&](const Kept& kept) { return kept.parts == parts; });
    if (known != kept_.end()) {
        std::rotate(kept_.begin(), known, known + 1);
        return kept_.front().made;
    }
    std::vector<VariableIndex> all;
    for (const std::int32_t part : parts) {
        const auto& members = members_[static_cast<std::size_t>(part)];
        all.insert(all.end(), members.begin(), members.end());
    }
    std::sort(all.begin(), all.end());
    auto made = std::make_shared<const PlantPart>(plant_, std::move(all));
    kept_.push_front({std::move(parts), made});
    if (kept_.size() > mostKept) kept_.pop_back();
    return made;
}

std::int32_t PlantParts::partOf(VariableIndex variable)
{
    if (partOf_.empty()) partOf_.assign(plant_.variables().size(), unknown);
    std::int32_t& part = partOf_[static_cast<std::size_t>(variable)];
    if (part == unknown) explore(variable, static_cast<std::int32_t>(members_.size()));
    return part;
}

void PlantParts::explore(VariableIndex variable, std::int32_t part)
{
    std::vector<VariableIndex>& members = members_.emplace_back();
    const auto reach = [&](VariableIndex reached) {
        std::int32_t& known = partOf_[static_cast<std::size_t>(reached)];
        if (known == unknown) {
            known = part;
            members.push_back(reached);
        }
    };
    const auto count = static_cast<VariableIndex>(plant_.variables().size());
    const auto comp = [this](VariableIndex of) { return plant_.variable(of).variable->comp; };
    reach(variable);
    for (std::size_t next = 0; next < members.size(); ++next) {
        const VariableIndex from = members[next];
        if (from > 0 && comp(from - 1) == comp(from)) reach(from - 1);
        if (from + 1 < count && comp(from + 1) == comp(from)) reach(from + 1);
        for (const AtomIndex value : plant_.variable(from).values) {
            for (const ClauseIndex clause : plant_.clausesOf(value)) {
                for (const PlantLiteral& literal : plant_.clause(clause)) {
                    reach(plant_.variableOf(literal.atom));
                }
            }
        }
    }
}

} // namespace plant
