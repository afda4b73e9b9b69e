#include "language/syntax/Spacing.h"

#include "language/syntax/Words.h"

namespace language {

namespace {

bool endsOperand(TokenKind kind)
{
    return kind == TokenKind::name || kind == TokenKind::number || kind == TokenKind::text ||
           kind == TokenKind::closeParenthesis || kind == TokenKind::closeBracket;
}

} // namespace

bool Spacing::before(TokenKind kind, std::string_view text)
{
    const bool blank = last_ != TokenKind::end && wants(kind);
    unary_ = kind == TokenKind::minus && !endsOperand(last_);
    if (kind == TokenKind::openBrace && last_ == TokenKind::inWord) inSet_ = true;
    if (kind == TokenKind::closeBrace) inSet_ = false;
    if (kind == TokenKind::colon && tightColons > 0) --tightColons;
    if (kind == TokenKind::openBracket) ++brackets_;
    if (kind == TokenKind::closeBracket && brackets_ > 0) --brackets_;
    function_ = kind == TokenKind::name && channelFunction(text);
    last_ = kind;
    return blank;
}

bool Spacing::wants(TokenKind kind) const
{
    switch (last_) {
    case TokenKind::openParenthesis:
    case TokenKind::openBracket:
    case TokenKind::dot:
    case TokenKind::dots:
    case TokenKind::exclamation: return false;
    case TokenKind::openBrace:
        if (inSet_) return false;
        break;
    default: break;
    }
    if (unary_) return false;
    switch (kind) {
    case TokenKind::comma:
    case TokenKind::closeParenthesis:
    case TokenKind::openBracket:
    case TokenKind::closeBracket:
    case TokenKind::dot:
    case TokenKind::dots: return false;
    case TokenKind::closeBrace: return !inSet_;
    case TokenKind::colon: return colonStandsFree && tightColons == 0;
    case TokenKind::openParenthesis:
        return last_ != TokenKind::name || (parenthesisStandsFree && !function_);
    case TokenKind::plus:
    case TokenKind::minus:
    case TokenKind::star:
    case TokenKind::slash: return brackets_ == 0 || !endsOperand(last_);
    default: break;
    }
    const bool sign = last_ == TokenKind::plus || last_ == TokenKind::minus ||
                      last_ == TokenKind::star || last_ == TokenKind::slash;
    return !(sign && brackets_ > 0);
}

} // namespace language
