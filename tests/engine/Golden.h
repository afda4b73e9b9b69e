// Traces kept as files, to be read by people and compared byte by byte.
#pragma once

#include <string>

/// The trace as it is kept in a file: addresses read `<address>`, the folder of the sources is left out, and a
/// result that is no number has no sign, which depends on the processor.
std::string readable(const std::string& trace);

/// Compares the trace with tests/engine/golden/NAME.trace and fails the test at the first line that differs. With
/// ITMS_REGENERATE=1 in the environment it writes the file instead; whoever does that reads what changed.
void expectGolden(const std::string& name, const std::string& trace);
