// From component types to the parts of one plant.
//
//     component Cell(p = 0.01) { ... }      system Battery { cell[3]: Cell(p = 0.02) }
//
// becomes the instances cell[0], cell[1] and cell[2] below the system, each with its parameters. Names of instances are joined
// by `/`; the system itself has the empty name. A plant is bounded in the number of its components.
#pragma once

#include "language/meaning/Numbers.h"
#include "language/meaning/Types.h"
#include "plant/CheckedBuilder.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace language {

/// How large a plant may become.
struct ExpansionLimits {
    std::size_t components = 1'000'000;
    std::size_t repetitions = 10'000'000;    ///< of the bodies of all loops together
    std::size_t domainClauses = 100'000'000; ///< of all variables together
    std::uint64_t lawClauses = 1000;         ///< that distribution makes of one law
    /// Of memory, for all parts together. None: as many as this process may still take.
    std::optional<std::uint64_t> bytes = std::nullopt;
};

/// A part of the plant, or the plant itself.
struct Instance {
    struct Initial {
        int value = -1;           ///< -1: as the type says
        const void* by = nullptr; ///< the instance or the braces of the part whose `initially` it is
    };

    ComponentType* type = nullptr;
    std::string path;
    Comp* component = nullptr; ///< null: nothing but parts in it
    std::vector<double> parameters;
    std::vector<std::vector<std::unique_ptr<Instance>>> parts; ///< by part of the type, then by index
    std::vector<Initial> initials;                             ///< by variable of the type
    std::vector<StateVar*> variables;
};

/// Makes the instances and their components and variables.
class Elaboration {
public:
    Elaboration(Types& types, Report& report, plant::CheckedBuilder& builder,
                const ExpansionLimits& limits)
        : types_(types), report_(report), builder_(builder), limits_(limits)
    {
    }

    /// The plant of the system; false when it is too large or endless.
    bool run();

    /// Calls `visit` for every instance, each before its parts.
    void forEach(const std::function<void(Instance&)>& visit) { forEach(*root_, visit); }
    /// Calls `visit` for every sound member of the kinds that are wanted, those in loops once for each value of the index.
    enum class Wanted { initials, lawsAndBindings, transitions };
    using MemberVisit = std::function<void(const syntax::Member&, Environment&)>;
    void forEachMember(Instance& instance, Wanted wanted, const MemberVisit& visit);

    /// The variable of a path that TypeChecks has found sound; null, and an error reported, for an index out of range.
    StateVar* find(Instance& within, const syntax::Path& path, const Environment& environment);

    /// The length of a step, as the system says, or 1 s.
    double stepSeconds();

private:
    struct Place {
        Instance* instance = nullptr;
        std::size_t variable = 0;
    };

    bool makeParts(Instance& instance);
    bool fitsMemory(const PartType& part, std::uint64_t count);
    bool makePart(Instance& parent, const PartType& part, std::size_t number);
    std::optional<std::vector<double>> parametersOf(const syntax::Part& part,
                                                    const ComponentType& type,
                                                    const Environment& environment);
    void applyInitials(Instance& instance);
    void applyInitial(const void* by, Instance& within, const syntax::InitialValue& initial,
                      const Environment& environment);
    void makeVariables(Instance& instance);
    std::optional<std::size_t> initialOf(const Instance& instance, std::size_t variable);
    bool forMembers(const std::vector<syntax::Member>& members, Wanted wanted,
                    Environment& environment, const MemberVisit& visit);
    bool repeat(const syntax::Loop& loop, Wanted wanted, Environment& environment,
                const MemberVisit& visit);
    Place locate(Instance& within, const syntax::Path& path, const Environment& environment);
    Environment environmentOf(const Instance& instance) const;
    void forEach(Instance& instance, const std::function<void(Instance&)>& visit);

    Types& types_;
    Report& report_;
    plant::CheckedBuilder& builder_;
    ExpansionLimits limits_;
    std::unique_ptr<Instance> root_;
    std::unordered_map<const VariableType*, std::vector<plant::ValueDeclaration>> declared_;
    std::size_t components_ = 0;
    std::size_t repetitions_ = 0;
    std::uint64_t bytes_ = 0; ///< that the parts take which are made
};

/// Reports a probability that is none.
std::optional<double> probability(const syntax::Expression& expression,
                                  const Environment& environment, Report& report);

/// The same of a probability per step, or of a rate, which becomes the probability of at least one event in a step,
/// 1 - exp(-rate * step).
std::optional<double> probabilityPerStep(const syntax::Probability& written,
                                         const Environment& environment, double stepSeconds,
                                         Report& report);

/// `name` of the component type for messages, with the instance: `'valveA.position'`.
std::string variableName(const Instance& instance, const VariableType& variable);

} // namespace language
