// What can be said of a circuit only when all of its text was read.
#pragma once

#include "language/ErrorList.h"
#include "netlist/Draft.h"

namespace netlist {

/// Reports signals that nothing defines, cycles of gates, and that there is no statement or no OUTPUT.
void checkDraft(const Draft& draft, language::ErrorList& errors);

} // namespace netlist
