// The checks of a circuit that need all of its text.
#pragma once

#include "netlist/Draft.h"
#include "text/Diagnostics.h"

namespace netlist {

/// Reports signals that nothing defines, cycles of gates, and that there is no statement or no OUTPUT.
/// Requires: every line of `text` was given to the draft.
void checkDraft(const Draft& draft, const BenchText& text, text::Diagnostics& errors);

} // namespace netlist
