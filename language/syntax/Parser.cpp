#include "language/syntax/Parser.h"

#include "language/syntax/Grammar.h"
#include "language/syntax/Mistakes.h"

#include <tao/pegtl/normal.hpp>
#include <tao/pegtl/parse.hpp>

#include <charconv>
#include <cmath>

namespace language {

namespace {

/// A rule that must match and does not is a mistake. Every rule goes back to its first token when it fails: that costs next to
/// nothing with tokens, and each rule is compiled once instead of once for each way to fail.
template <typename Rule> struct Control : tao::pegtl::normal<Rule> {
    template <grammar::apply_mode A, grammar::rewind_mode, template <typename...> class Actions,
              template <typename...> class Controls, typename... States>
    [[nodiscard]] static bool match(TokenInput& in, States&... states)
    {
        using tao::pegtl::normal;
        return normal<Rule>::template match<A, grammar::rewind_mode::required, Actions, Controls>(
            in, states...);
    }

    template <typename Input, typename... States>
    [[noreturn]] static void raise(const Input&, States&&...)
    {
        throw Mistake{};
    }
};

bool fits(const text::SourceText& source, const syntax::Limits& limits,
          std::vector<text::Diagnostic>& errors)
{
    if (source.text().size() <= limits.fileBytes) return true;
    errors.push_back(
        source.error({}, "a file of " + std::to_string(source.text().size()) + " bytes",
                     "at most " + std::to_string(limits.fileBytes), "divide it and use 'import'"));
    return false;
}

// Outside of an index a formula divides nothing.
void joinPathsBySlashes(std::vector<Token>& tokens)
{
    std::size_t brackets = 0;
    for (Token& token : tokens) {
        if (token.kind == TokenKind::openBracket) ++brackets;
        if (token.kind == TokenKind::closeBracket && brackets > 0) --brackets;
        if (token.kind == TokenKind::slash && brackets == 0) token.kind = TokenKind::dot;
    }
}

} // namespace

syntax::Text grammar::readText(const TokenInput::Span& span)
{
    const std::string_view written = span.text();
    syntax::Text read{{}, span.range()};
    for (std::size_t i = 1; i + 1 < written.size();) {
        if (written[i] == '\\') {
            ++i;
            if (written[i] != '\\' && written[i] != '"') {
                throw Mistake{&span.first(),
                              "a '\\' in a text that stands before neither '\"' nor '\\'",
                              {},
                              "write '\\\\' for the sign itself"};
            }
        }
        const std::size_t length = ::text::utf8Length(written.substr(i));
        if (length == 0)
            throw Mistake{&span.first(), "a text that is not UTF-8", {}, "save the file in UTF-8"};
        if (static_cast<unsigned char>(written[i]) < ' ') {
            throw Mistake{&span.first(), "a control character in a text", {}, "take it out"};
        }
        read.text += written.substr(i, length);
        i += length;
    }
    return read;
}

double grammar::readNumber(const TokenInput::Span& span)
{
    const std::string_view text = span.text();
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) {
        throw Mistake{&span.first(), "a number too large or too small to compute with", {}, {}};
    }
    return value;
}

ParsedFile parse(const text::SourceText& source, const syntax::Limits& limits)
{
    ParsedFile parsed;
    if (!fits(source, limits, parsed.errors)) return parsed;
    const TokenList list = tokenize(source, limits.nameLength, limits.errors);
    Mistakes mistakes(source, limits, list);
    TokenInput in(source, list.tokens, limits, mistakes);
    try {
        tao::pegtl::parse<grammar::file, grammar::Action, Control>(in, parsed.file.declarations);
    } catch (const TooManyMistakes&) {
    }
    parsed.errors = mistakes.take();
    return parsed;
}

ParsedFormula parseFormula(const text::SourceText& source, const syntax::Limits& limits)
{
    ParsedFormula parsed;
    if (!fits(source, limits, parsed.errors)) return parsed;
    TokenList list = tokenize(source, limits.nameLength, limits.errors);
    if (list.tokens.size() == 1 && list.errors.empty()) {
        parsed.errors.push_back(source.error(source.range(0, 1), "the formula is empty",
                                             "such as valve.position = open"));
        return parsed;
    }
    joinPathsBySlashes(list.tokens);
    Mistakes mistakes(source, limits, list, "the formula");
    TokenInput in(source, list.tokens, limits, mistakes);
    try {
        tao::pegtl::parse<grammar::recovering<grammar::lone_formula>, grammar::Action, Control>(
            in, parsed.formula);
    } catch (const TooManyMistakes&) {
    }
    parsed.errors = mistakes.take();
    if (!parsed.errors.empty()) parsed.formula.reset();
    return parsed;
}

} // namespace language
