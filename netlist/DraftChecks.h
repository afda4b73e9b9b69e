// What can be said of a circuit only when all of its text was read.
#pragma once

#include "netlist/Draft.h"
#include "text/ErrorList.h"

namespace netlist {

/// Reports signals that nothing defines, cycles of gates, and that there is no statement or no OUTPUT.
void checkDraft(const Draft& draft, text::ErrorList& errors);

} // namespace netlist
