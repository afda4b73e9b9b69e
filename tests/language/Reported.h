// What a reader says about a text.
#pragma once

#include "text/Diagnostic.h"

#include <string>
#include <vector>

/// All errors, as they are printed; empty when there are none.
inline std::string reported(const std::vector<text::Diagnostic>& errors)
{
    std::string text;
    for (const text::Diagnostic& error : errors) text += error.format();
    return text;
}
