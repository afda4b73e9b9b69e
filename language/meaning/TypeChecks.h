// What can be found wrong from the types alone: names, values, kinds, duplicates. Numbers are checked when parts are made
// (Elaboration.h), since they depend on the parameters.
#pragma once

#include "language/meaning/Types.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace language {

/// Checks all members of all component types. A statement with an error is entered in Types::broken.
class TypeChecks {
public:
    TypeChecks(const SourceFiles& files, Types& types, Report& report)
        : files_(files), types_(types), report_(report)
    {
    }

    void check();

private:
    struct Resolved {
        const VariableType* variable = nullptr;
        explicit operator bool() const { return variable != nullptr; }
    };

    void checkType(ComponentType& type);
    void checkMembers(const std::vector<syntax::Member>& members);
    void checkLoop(const syntax::Loop& loop);
    void checkVariable(const syntax::Variable& variable);
    void checkPart(const syntax::Part& part);
    void checkArguments(const syntax::Part& part, const ComponentType& type);
    bool checkInitial(const syntax::InitialValue& initial, ComponentType& within);
    void checkStep(const syntax::StepLength& step);

    bool checkTransition(const syntax::Transition& transition);
    const VariableType* modeOf(const syntax::Transition& transition);
    bool checkSources(const syntax::Transition& transition, const VariableType& mode);
    bool checkTarget(const syntax::Transition& transition, const VariableType& mode);
    bool checkRepetition(const syntax::Transition& transition, const VariableType& mode);

    bool checkBinding(const syntax::Binding& binding);
    bool checkTimes(const syntax::Binding& binding);
    bool checkSpread(const syntax::Binding& binding);
    bool checkThresholds(const syntax::Thresholds& thresholds, const VariableType& variable);
    bool checkReadings(const syntax::Readings& readings, const VariableType& variable);

    bool checkFormula(const syntax::Formula& formula);
    bool checkComparison(const syntax::Formula& formula);
    bool checkSameValues(const syntax::Formula& formula, const VariableType& left,
                         const VariableType& right);
    bool checkMember(const syntax::Formula& formula);
    bool checkValue(const VariableType& variable, const syntax::Name& value,
                    bool orVariable = false);

    Resolved resolve(ComponentType& within, const syntax::Path& path);
    bool checkIndex(const PartType& part, const syntax::Segment& segment);
    bool reportUnknown(const ComponentType& within, const syntax::Segment& segment, bool first);
    bool checkNumbers(const syntax::Expression& expression);
    void markParameters(const syntax::Expression& expression);

    const SourceFiles& files_;
    Types& types_;
    Report& report_;
    ComponentType* type_ = nullptr;       ///< that is checked now
    std::vector<std::string_view> local_; ///< its parameters, and the indices of the loops around
    const syntax::StepLength* step_ = nullptr;
    std::unordered_set<std::string> transitions_; ///< of the type, to find one that is written twice
};

} // namespace language
