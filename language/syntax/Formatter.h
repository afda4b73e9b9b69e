// The one layout of a model file: what `itms fmt` writes.
//
//     mode position{closed initial,open}         mode position { closed initial, open }
//     fault closed->stuck:0.004              ->  fault closed -> stuck : 0.004
//     fault  open -> broken : 0.1                fault open   -> broken : 0.1
//
// - A statement begins on a line of its own, four columns to the right of the block around it. What its author broke into
//   several lines stays broken there, eight columns to the right.
// - In neighbouring lines of one kind what corresponds stands in one column; so do their comments.
// - Blank lines stay, one where there were several, none at the beginning and the end of a block.
// - Comments stay as they are: on a line of their own, behind a statement, or within one.
// - A block of values or of initial values that was written on one line stays on one line.
#pragma once

#include "language/syntax/Syntax.h"
#include "text/SourceText.h"

#include <string>
#include <vector>

namespace language {

struct Formatted {
    std::string text;                     ///< empty if there are errors
    std::vector<text::Diagnostic> errors; ///< of the syntax: only what can be read can be laid out
};

/// Lays a file out. Linear.
/// Ensures: formatting the text again gives the same text, and its syntax tree is that of the source.
Formatted format(const text::SourceText& source, const syntax::Limits& limits = {});

} // namespace language
