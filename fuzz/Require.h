// What fuzzers require of what they fed: a promise that does not hold stops them, so that the text is kept.
#pragma once

#include "text/Diagnostic.h"

#include <cstdio>
#include <cstdlib>

inline void require(bool condition, const char* what)
{
    if (condition) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Requires that an error can be shown.
inline void requireShown(const text::Diagnostic& error)
{
    require(!error.message.empty(), "an error has a message");
    const std::string shown = error.format();
    for (std::string_view rest = shown; !rest.empty();) {
        const std::size_t length = text::utf8Length(rest);
        require(length > 0, "an error is shown as UTF-8");
        rest.remove_prefix(length);
    }
}
