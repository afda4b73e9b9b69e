// An explained step as a person reads it:
//
//     Step 4, t = 3: faulty
//
//       100 %  valve.position = stuckClosed since step 4
//              instead of open: resolves conflict 1
//
//     Conflict 1, step 4, t = 3
//       observed  valve.outflow = zero (FT-101)
//       expected  valve.outflow = positive
//       assumed   valve.position = open, from closed by valve.request = open
//       read      valve.inflow = positive (FT-100)
//       law       examples/models/valve.itms:12:5
//                 law position = open -> outflow = inflow
//                 gives valve.outflow = positive
//       check     confirmed; nothing that is assumed or read can be left out
#pragma once

#include "report/StepExplanation.h"
#include "report/Text.h"

namespace report {

std::string explanationText(const StepExplanation& explanation, const Colours& colours);

} // namespace report
