// The paths of a built model as a tree: the system, its parts, their parts, and the variables of each.
#pragma once

#include "language/meaning/Report.h"
#include "language/syntax/Syntax.h"
#include "plant/Model.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace language {

/// Finds variables by their paths. The model outlives it.
class PlantPaths {
public:
    /// Linear in the names of the components.
    PlantPaths(const plant::Model& model, const std::string& system);

    /// The variable of a path as seen from the system, whose name may stand in front; indices are numbers. Null when there
    /// is none, which is reported.
    StateVar* find(const syntax::Path& path, Report& report) const;

    /// What a path may begin with: the system's own variables, then its parts; an array once.
    std::vector<std::string_view> first() const { return namesIn(root_); }

private:
    struct Part {
        const Comp* component = nullptr; ///< null: nothing but parts in it
        std::vector<std::string> names;  ///< of its parts, in the model's order; of an array once
        std::unordered_map<std::string, std::unique_ptr<Part>>
            parts; ///< by name, of an array by name and index: `cell[3]`
        std::unordered_map<std::string, std::size_t> counts; ///< of its arrays, by name
    };

    Part& makePart(Part& parent, const std::string& name);
    // `owner` is the name of the part `from`, empty for the system.
    const Part* step(const Part& from, const syntax::Segment& segment, const std::string& owner,
                     Report& report) const;
    const Part* element(const Part& from, const syntax::Segment& segment, std::size_t count,
                        Report& report) const;
    void reportUnknown(const Part& from, const syntax::Segment& segment, const std::string& owner,
                       Report& report) const;
    static std::vector<std::string_view> namesIn(const Part& part);

    std::string system_;
    Part root_;
};

} // namespace language
