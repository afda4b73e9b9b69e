// Where blanks stand between the tokens of a statement that is laid out.
#pragma once

#include "language/syntax/Token.h"

#include <cstddef>
#include <string_view>

namespace language {

/// Goes through the tokens of one statement.
class Spacing {
public:
    bool colonStandsFree = false;       ///< ` : ` instead of `: `
    bool parenthesisStandsFree = false; ///< also behind a name: `varies (a + b)`
    std::size_t tightColons = 0;        ///< so many first ones do not: those of loops

    /// Whether a blank stands before the token; notes the token. `text` is what it is.
    bool before(TokenKind kind, std::string_view text);

private:
    bool wants(TokenKind kind) const;

    std::size_t brackets_ = 0; ///< open `[`
    bool inSet_ = false;       ///< within the braces of `in {...}`
    bool unary_ = false;       ///< the last token was a sign of a number
    bool function_ = false;    ///< the last token was the name of a function
    TokenKind last_ = TokenKind::end;
};

} // namespace language
