// Model file to syntax tree.
//
//     SourceText source("pump.itms", text);
//     ParsedFile parsed = parse(source);
//     for (const text::Diagnostic& error : parsed.errors) std::cerr << error.format();
//
// The text is cut into tokens (Lexer.h), and the grammar (Grammar.h), written in PEGTL, reads the tokens. A statement begins
// with its keyword, so no token is read more than a few times: the time is linear in the size of the text. After a mistake
// reading goes on with the next statement, so that one run reports all of them.
#pragma once

#include "language/syntax/Syntax.h"
#include "text/SourceText.h"

#include <optional>
#include <vector>

namespace language {

struct ParsedFile {
    syntax::File file;                    ///< without the statements that have a mistake
    std::vector<text::Diagnostic> errors; ///< in the order of their places
};

/// Reads a model file, whatever its bytes are. Throws nothing but std::bad_alloc.
/// Ensures: the tree is whole when there are no errors.
ParsedFile parse(const text::SourceText& source, const syntax::Limits& limits = {});

struct ParsedFormula {
    std::optional<syntax::Formula> formula; ///< null when there are errors
    std::vector<text::Diagnostic> errors;
};

/// Reads a formula by itself. The names of a path may be joined by `/` as well as by `.`, since that is how the names of
/// components are printed.
ParsedFormula parseFormula(const text::SourceText& source, const syntax::Limits& limits = {});

} // namespace language
