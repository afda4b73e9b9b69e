// The verbs of the program, a file each: `run` is declared and done in app/Run.cpp. A verb added here and to the list in
// app/main.cpp is in the program.
#pragma once

#include "app/CommandLine.h"

namespace app {

Verb adviseVerb();
Verb calibrateVerb();
Verb checkVerb();
Verb diagnoseVerb();
Verb evaluateVerb();
Verb explainVerb();
Verb exportVerb();
Verb fmtVerb();
Verb graphVerb();
Verb queryVerb();
Verb reportVerb();
Verb runVerb();
Verb simulateVerb();
Verb traceVerb();

} // namespace app
