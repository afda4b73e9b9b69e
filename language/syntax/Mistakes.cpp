// A message is made of the farthest token that was looked at and of what was tried there in vain. Then the statement is passed
// over: indentation, braces and the words that begin statements tell where the next one begins.
#include "language/syntax/Mistakes.h"

#include "language/syntax/Words.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace language {

namespace {

using Expectations = std::vector<TokenInput::Expectation>;

// A word that begins a statement of a block, or a name that begins a part.
bool beginsMember(const Token* token)
{
    if (token->kind >= TokenKind::modeWord && token->kind <= TokenKind::stepWord) return true;
    if (token->kind != TokenKind::name) return false;
    if (token[1].kind == TokenKind::colon) return true;
    return token[1].kind == TokenKind::openBracket && token[2].kind != TokenKind::end &&
           token[3].kind == TokenKind::closeBracket && token[4].kind == TokenKind::colon;
}

// A name that has to be a word at the beginning of a line: what stands behind it is no part of the line before.
bool isSoftStatement(const text::SourceText& source, const Token* token)
{
    if (token->kind != TokenKind::name || !token->firstOnLine || token[1].firstOnLine) return false;
    const std::string_view word =
        std::string_view(source.text()).substr(token->offset, token->length);
    return ((word == "input" || word == "measurable") && token[1].kind == TokenKind::name) ||
           (word == "repair" && (canBeValue(token[1].kind) || token[1].kind == TokenKind::anyWord));
}

// The column where the line of the token begins.
std::uint32_t indentation(const Token* token)
{
    while (!token->firstOnLine) {
        --token;
    }
    return token->column;
}

// The token to go on from: the next statement on a line of its own, or what ends the block. A line that is not farther to the
// right than the statement is a new one. Braces that were opened behind the mistake belong to the statement that has it; one
// before the mistake may have lost its end.
const Token* afterStatement(const text::SourceText& source, const Token* begin, const Token* at,
                            bool inBlock)
{
    std::ptrdiff_t before = 0;
    for (const Token* token = begin; token < at; ++token) {
        if (token->kind == TokenKind::openBrace) ++before;
        if (token->kind == TokenKind::closeBrace) --before;
    }
    std::size_t behind = 0;
    const std::uint32_t margin = indentation(begin);
    for (const Token* token = at;; ++token) {
        if (token->kind == TokenKind::end) return token;
        if (token == begin) {
            if (token->kind == TokenKind::openBrace) ++behind;
            continue;
        }
        if (beginsDeclaration(*token)) return token;
        const bool closes =
            token->kind == TokenKind::closeBrace || token->kind == TokenKind::openBrace;
        if (token->firstOnLine && behind == 0 && !closes &&
            (beginsMember(token) || isSoftStatement(source, token) ? inBlock
                                                                   : token->column <= margin)) {
            return token;
        }
        if (token->kind == TokenKind::openBrace) ++behind;
        if (token->kind != TokenKind::closeBrace) continue;
        if (behind > 0) {
            --behind;
        } else if (before > 0) {
            --before;
        } else if (inBlock) {
            return token;
        }
    }
}

std::string inQuotes(const TokenInput& in, const Token& token)
{
    return token.kind == TokenKind::text ? "the text " + text::quoted(in.text(token))
                                         : text::quoted(in.text(token));
}

// What a statement could go on with is of no interest where a new line begins: the next statement is.
Expectations statementsOnly(const Expectations& expectations)
{
    Expectations kept;
    std::copy_if(expectations.begin(), expectations.end(), std::back_inserter(kept),
                 [](const auto& expectation) {
                     return expectation.what.starts_with("a statement of a") ||
                            expectation.what.starts_with("'import'");
                 });
    return kept.empty() ? expectations : kept;
}

// "':', 'when' or an operator"
std::string listed(const Expectations& expectations)
{
    std::vector<std::string> items;
    for (const auto& [kind, what] : expectations) {
        if (what.empty()) continue;
        const bool isToken = kind > TokenKind::unreadable;
        const std::string item = isToken ? "'" + std::string(what) + "'" : std::string(what);
        if (std::find(items.begin(), items.end(), item) == items.end()) items.push_back(item);
    }
    return text::alternatives(items);
}

bool isExpected(const Expectations& expectations, TokenKind kind)
{
    return std::any_of(expectations.begin(), expectations.end(),
                       [kind](const auto& expectation) { return expectation.kind == kind; });
}

bool isExpected(const Expectations& expectations, std::string_view part)
{
    return std::any_of(expectations.begin(), expectations.end(), [part](const auto& expectation) {
        return expectation.what.find(part) != std::string_view::npos;
    });
}

// The words that could stand there.
std::vector<std::string_view> expectedWords(const Expectations& expectations)
{
    std::vector<std::string_view> words;
    const auto add = [&words](TokenKind first, TokenKind last) {
        for (auto kind = first; kind <= last;
             kind = static_cast<TokenKind>(static_cast<int>(kind) + 1)) {
            words.push_back(spelling(kind));
        }
    };
    for (const auto& [kind, what] : expectations) {
        if (isWord(kind)) words.push_back(what);
    }
    if (isExpected(expectations, "'component'")) add(TokenKind::importWord, TokenKind::systemWord);
    if (isExpected(expectations, "a statement of a")) {
        add(TokenKind::modeWord, TokenKind::forWord);
        words.push_back("repair");
    }
    if (isExpected(expectations, "a statement of a system")) {
        words.insert(words.end(), {"step", "input", "measurable"});
    }
    if (isExpected(expectations, "a law, ")) {
        words.insert(words.end(),
                     {"law", "initially", "for", "observe", "command", "input", "measurable"});
    }
    if (isExpected(expectations, "'varies'")) {
        words.insert(words.end(), {"varies", "noise", "misread"});
    }
    if (isExpected(expectations, "unit of time")) {
        words.insert(words.end(), timeUnits().begin(), timeUnits().end());
    }
    return words;
}

// The same sign twice, without a blank between: `==`, `&&`, `||`.
bool isDoubled(const Token* at)
{
    return at[-1].kind == at->kind && at[-1].offset + at[-1].length == at->offset;
}

bool touches(const Token* at)
{
    return at[-1].offset + at[-1].length == at->offset;
}

// What to do about the token `at`, which is not the first of the file.
std::string adviceBehind(const TokenInput& in, const Token* at, const Expectations& expectations)
{
    if (isDoubled(at) && (at->kind == TokenKind::equals || at->kind == TokenKind::ampersand ||
                          at->kind == TokenKind::bar)) {
        return "write a single " + inQuotes(in, *at);
    }
    if (at[-1].kind == TokenKind::number && at->kind == TokenKind::name && touches(at)) {
        return "a name does not begin with a digit";
    }
    if (at[-1].kind == TokenKind::name && at->kind == TokenKind::minus && touches(at)) {
        return "names are made of letters, digits and underscores";
    }
    if (at->kind == TokenKind::number && isExpected(expectations, "a value")) {
        return "values are names; an 'observe' line says which numbers stand for them";
    }
    if (at->kind == TokenKind::openBrace && isExpected(expectations, "a value")) {
        return "separate the values by commas, without braces";
    }
    return {};
}

std::string advice(const TokenInput& in, const Token* begin, const Token* at,
                   const Expectations& expectations)
{
    const bool first = at == begin;
    const bool inComponent = isExpected(expectations, "a statement of a component");
    if (first && inComponent && in.text(*at) == "input" && at[1].kind == TokenKind::name &&
        !at[2].firstOnLine) {
        return "'input' stands in the system";
    }
    if (first && at->kind == TokenKind::number && touches(at + 1))
        return "a name does not begin with a digit";
    if (first && at->kind == TokenKind::name && at[1].kind == TokenKind::minus && touches(at + 1)) {
        return "names are made of letters, digits and underscores";
    }
    if (at->kind == TokenKind::name) {
        const std::string nearest = text::nearestName(in.text(*at), expectedWords(expectations));
        if (!nearest.empty()) return "did you mean '" + nearest + "'?";
        if (first && isExpected(expectations, "a statement of a") &&
            at[1].kind == TokenKind::name && !at[1].firstOnLine) {
            return "a part is written " +
                   text::quoted(std::string(in.text(*at)) + ": " + std::string(in.text(at[1])));
        }
    }
    const bool binds = at->kind == TokenKind::observeWord || at->kind == TokenKind::stepWord;
    if (binds && inComponent) {
        return text::quoted(in.text(*at)) + " stands in the system";
    }
    if (in.context == "a variable" && begin->kind == TokenKind::commandWord &&
        (at->kind == TokenKind::dot || at->kind == TokenKind::fromWord ||
         at->kind == TokenKind::openBracket)) {
        return "a command is bound to a channel in the system";
    }
    if (first && !in.context.empty() &&
        (at->kind == TokenKind::importWord || at->kind == TokenKind::constWord)) {
        return text::quoted(in.text(*at)) + " stands outside of components and systems";
    }
    if (at->kind == TokenKind::closeBrace && begin == at) return "there is one '}' too many";
    return !in.isFirst(at) && at->kind != TokenKind::end ? adviceBehind(in, at, expectations)
                                                         : std::string();
}

} // namespace

Mistakes::Mistakes(const text::SourceText& source, const syntax::Limits& limits,
                   const TokenList& list, std::string_view whole)
    : source_(source), limits_(limits), openComment_(list.openComment), whole_(whole),
      errors_(list.errors)
{
}

void Mistakes::recover(TokenInput& in, const Token* begin, std::size_t blocks,
                       const Mistake& mistake)
{
    const Token* at = mistake.at ? mistake.at : in.farthest();
    // A law that lacks its end has taken the name of the part on the next line for it, or the word with which that line begins.
    if (blocks > 0 && at == begin && at[-1].firstOnLine && at[-1].kind == TokenKind::name &&
        (at->kind == TokenKind::colon || isSoftStatement(source_, at - 1))) {
        const Token& last = at[-2];
        const std::string_view name = in.text(at[-1]);
        add(source_.range(last.offset + last.length, 1), "unexpected end of the line", {},
            at->kind == TokenKind::colon ? "the next line begins a part, " + text::quoted(name)
                                         : "the next line begins with " + text::quoted(name));
        in.restart(at - 1);
        return;
    }
    const auto unreadable = [](const Token* token) { return token->kind == TokenKind::unreadable; };
    const bool silent = unreadable(at) || (at->kind == TokenKind::end && openComment_) ||
                        (at->kind != TokenKind::end && unreadable(at + 1) && touches(at + 1));
    if (!silent) report(in, begin, blocks, mistake);
    in.restart(afterStatement(source_, begin, at, blocks > 0));
}

void Mistakes::report(const TokenInput& in, const Token* begin, std::size_t blocks,
                      const Mistake& mistake)
{
    const auto rangeOf = [this](const Token& token) {
        return text::Range{source_.number(), token.line, token.column, token.length};
    };
    if (mistake.at && !mistake.message.empty()) {
        text::Range range = rangeOf(*mistake.at);
        if (mistake.length > 0) range.length = mistake.length;
        add(range, mistake.message, mistake.expected, mistake.hint);
        return;
    }
    const Token* at = in.farthest();
    const Expectations expectations =
        at == begin && at->firstOnLine ? statementsOnly(in.expected()) : in.expected();
    if (in.openBraces.size() > blocks && (at->kind == TokenKind::end || beginsDeclaration(*at))) {
        if (endReported_) return; // a file that breaks off
        const Token& brace = *in.openBraces.back();
        const std::string where = at->kind == TokenKind::end
                                      ? "the end of " + whole_
                                      : inQuotes(in, *at) + " in line " + std::to_string(at->line);
        add(rangeOf(brace), "a '{' without its '}'", {},
            "a '}' is missing before " + where + ", or earlier");
        return;
    }
    const std::string context = in.context.empty() ? "" : " in " + std::string(in.context);
    const std::string expected = listed(expectations);
    if (at != begin && (at->firstOnLine || at->kind == TokenKind::end)) {
        const Token& last = at[-1];
        endReported_ = at->kind == TokenKind::end;
        const std::string what =
            "unexpected end of " + (at->kind == TokenKind::end ? whole_ : "the line");
        add(source_.range(last.offset + last.length, 1), what + context, expected, {});
    } else if (at->kind == TokenKind::end) {
        add(rangeOf(*at), "unexpected end of " + whole_ + context, expected, {});
    } else if (isWord(at->kind) && isExpected(expectations, TokenKind::name)) {
        add(rangeOf(*at), inQuotes(in, *at) + " is a word of the language", expected,
            "choose another name");
    } else {
        add(rangeOf(*at), "unexpected " + inQuotes(in, *at) + context, expected,
            advice(in, begin, at, expectations));
    }
}

void Mistakes::add(const text::Range& range, std::string message, std::string expected,
                   std::string hint)
{
    if (errors_.size() >= limits_.errors) throw TooManyMistakes{};
    errors_.push_back(source_.error(range, std::move(message), std::move(expected), std::move(hint)));
}

std::vector<text::Diagnostic> Mistakes::take()
{
    std::stable_sort(
        errors_.begin(), errors_.end(),
        [](const text::Diagnostic& a, const text::Diagnostic& b) { return a.place < b.place; });
    if (errors_.size() >= limits_.errors) {
        errors_.resize(limits_.errors);
        errors_.push_back(source_.error({}, "there may be more errors: only the first " +
                                                std::to_string(limits_.errors) + " are told"));
    }
    return std::move(errors_);
}

} // namespace language
