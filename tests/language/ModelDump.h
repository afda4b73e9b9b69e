// All of a model as text, walked through the objects as the engine walks them: what differs in a dump can differ in a trace.
#pragma once

#include "language/Reader.h"

#include <string>

/// Requires a model. Containers appear in the order in which they iterate.
std::string modelDump(const language::ReadResult& read);
