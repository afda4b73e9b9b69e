// How much memory is allocated right now, for tests that expect none to be lost.
#pragma once

#include <cstddef>

/// Allocations that are alive: their bytes where the address sanitizer counts them, else their number, which
/// this program's own `operator new` counts. Equal before and after whatever releases all that it made.
std::size_t liveMemory();
