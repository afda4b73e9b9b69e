// Whether anybody reads the trace. The engine writes to std::cout; a program that wants no trace puts
// the stream into a failed state, and then no text is formatted and no literal walked for printing.
#pragma once

#include <iostream>

/// True while std::cout takes output. Constant time; every printer of the library asks it first.
inline bool tracing()
{
    return std::cout.good();
}
