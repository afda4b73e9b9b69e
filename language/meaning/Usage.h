// Warnings: what is declared and does nothing.
#pragma once

#include "language/meaning/Types.h"

namespace language {

/// Warns of parts that nothing mentions, modes that nothing leads to, and components, constants and parameters of the main
/// file that nothing uses. For models without errors, after the elaboration.
class Usage {
public:
    Usage(const Types& types, Report& report) : types_(types), report_(report) {}

    void warn();

private:
    void warnOfType(const ComponentType& type);
    void warnOfModes(const ComponentType& type, const VariableType& mode);

    const Types& types_;
    Report& report_;
};

} // namespace language
