// The tokens of a model file: names, words of the language, numbers, texts and symbols.
#pragma once

#include "language/syntax/Syntax.h"
#include "text/SourceText.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace language {

enum class TokenKind : std::uint8_t {
    end, ///< behind the last token of the file
    name,
    number,
    text,
    unreadable, ///< no token of the language, and reported as such
    // Words of the language, in the order of firstWord ... lastWord.
    importWord,
    constWord,
    componentWord,
    systemWord,
    modeWord,
    condWord,
    commandWord,
    lawWord,
    nominalWord,
    faultWord,
    idleWord,
    initiallyWord,
    observeWord,
    forWord,
    stepWord,
    initialWord,
    anyWord,
    whenWord,
    inWord,
    notWord,
    andWord,
    orWord,
    perWord,
    fromWord,
    withinWord,
    holdWord,
    otherwiseWord,
    lostWord,
    // Symbols.
    colon,
    comma,
    equals,
    arrow,
    doubleArrow,
    notEquals,
    exclamation,
    ampersand,
    bar,
    less,
    lessOrEqual,
    openBrace,
    closeBrace,
    openParenthesis,
    closeParenthesis,
    openBracket,
    closeBracket,
    dot,
    dots,
    plus,
    minus,
    star,
    slash,
    count_ ///< the number of kinds
};

/// How the kind is written, for words and symbols; empty for the others.
std::string_view spelling(TokenKind kind);
/// The word's kind, or `name`.
TokenKind wordKind(std::string_view text);
inline bool isWord(TokenKind kind)
{
    return kind >= TokenKind::importWord && kind <= TokenKind::lostWord;
}

/// Words that can be values all the same, because a value never stands where they mean something.
inline bool canBeValue(TokenKind kind)
{
    switch (kind) {
    case TokenKind::name:
    case TokenKind::nominalWord:
    case TokenKind::idleWord:
    case TokenKind::stepWord:
    case TokenKind::holdWord:
    case TokenKind::lostWord:
    case TokenKind::fromWord:
    case TokenKind::withinWord:
    case TokenKind::perWord: return true;
    default: return false;
    }
}

struct Token {
    TokenKind kind = TokenKind::end;
    bool firstOnLine = false; ///< nothing but blanks and comments before it on its line
    std::uint32_t offset = 0; ///< of its first byte in SourceText::text()
    std::uint32_t length = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

/// A comment, and where it stands among the tokens.
struct Comment {
    bool firstOnLine = false;
    bool block = false; ///< /* ... */
    std::uint32_t offset = 0;
    std::uint32_t length = 0; ///< without the line end
    std::uint32_t line = 0;   ///< of its first byte
    std::uint32_t lastLine = 0;
    std::uint32_t nextToken = 0; ///< index of the first token behind it
};

/// A text cut into tokens. The last token is of kind `end`.
struct TokenList {
    std::vector<Token> tokens;
    std::vector<Comment> comments;
    std::vector<text::Diagnostic>
        errors;               ///< bytes that no token is made of, texts and comments without an end
    bool openComment = false; ///< the last comment has no end
};

/// Cuts a text into tokens. Linear. After `maximalErrors` errors it goes on without reporting.
TokenList tokenize(const text::SourceText& source, std::size_t nameLength,
                   std::size_t maximalErrors);

} // namespace language
