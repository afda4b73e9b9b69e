#include "report/PlantOutline.h"

#include "report/ConflictReport.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

namespace report {

namespace {

using ComponentSet = std::vector<std::uint32_t>;

class Outlining {
public:
    explicit Outlining(const language::ReadResult& model) : model_(*model.model), names_(model)
    {
        for (const auto& component : model_.components()) {
            numbers_.emplace(component, static_cast<std::uint32_t>(numbers_.size()));
            outline_.components.push_back(component->name);
        }
    }

    PlantOutline outline()
    {
        for (std::size_t law = 0; law < model_.lawCount(); ++law) {
            ComponentSet components = componentsOf(law);
            const std::uint32_t statement = statementOf(law);
            ComponentSet& all = outline_.laws[statement].components;
            all.insert(all.end(), components.begin(), components.end());
            if (components.size() > 1) sets_[statement].push_back(std::move(components));
        }
        for (LawStatement& law : outline_.laws) {
            makeSet(law.components);
        }
        for (auto& [statement, sets] : sets_) {
            connect(statement, sets);
        }
        return std::move(outline_);
    }

private:
    static void makeSet(ComponentSet& components)
    {
        std::sort(components.begin(), components.end());
        components.erase(std::unique(components.begin(), components.end()), components.end());
    }

    ComponentSet componentsOf(std::size_t law) const
    {
        ComponentSet components;
        for (const plant::Literal& literal : model_.literalsOf(law)) {
            components.push_back(numbers_.at(literal.atom->stateVar->comp));
        }
        makeSet(components);
        return components;
    }

    std::uint32_t statementOf(std::size_t law)
    {
        AppliedLaw written = names_.law(law);
        auto key = std::tuple(written.file, written.line, written.column, written.text);
        const auto next = static_cast<std::uint32_t>(outline_.laws.size());
        const auto [found, isNew] = statements_.emplace(std::move(key), next);
        if (isNew)
            outline_.laws.push_back(
                {written.file, written.line, written.column, std::move(written.text), {}});
        return found->second;
    }

    // Larger sets first, so that what is part of one is known when it comes.
    void connect(std::uint32_t statement, std::vector<ComponentSet>& sets)
    {
        std::stable_sort(sets.begin(), sets.end(), [](const auto& a, const auto& b) {
            return a.size() != b.size() ? a.size() > b.size() : a < b;
        });
        std::unordered_map<std::uint32_t, std::vector<const ComponentSet*>> kept;
        for (const ComponentSet& set : sets) {
            const std::vector<const ComponentSet*>& near = kept[set.front()];
            const bool isPart = std::any_of(near.begin(), near.end(), [&](const auto* other) {
                return std::includes(other->begin(), other->end(), set.begin(), set.end());
            });
            if (isPart) continue;
            for (const std::uint32_t component : set) {
                kept[component].push_back(&set);
            }
            const auto [found, isNew] = connections_.emplace(set, outline_.connections.size());
            if (isNew) outline_.connections.push_back({set, {}});
            outline_.connections[found->second].laws.push_back(statement);
        }
    }

    const plant::Model& model_;
    ModelNames names_;
    PlantOutline outline_;
    std::unordered_map<const Comp*, std::uint32_t> numbers_;
    std::map<std::tuple<std::string, std::size_t, std::size_t, std::string>, std::uint32_t> statements_;
    std::map<std::uint32_t, std::vector<ComponentSet>> sets_; // by statement
    std::map<ComponentSet, std::size_t> connections_;
};

} // namespace

PlantOutline outlineOf(const language::ReadResult& model)
{
    return Outlining(model).outline();
}

} // namespace report
