// The grammar is written with the parser templates of PEGTL. A rule in must<> raises when it does not match;
// the control class turns that into a Failure with the offset and the rule's own identity, and explain() makes
// the message from what stands there.
#include "netlist/BenchLine.h"

#include "netlist/Circuit.h"
#include "text/Diagnostic.h"
#include "text/NearestName.h"

#include <tao/pegtl.hpp>

namespace netlist {

namespace {

namespace pegtl = tao::pegtl;

// Spaces that look like nothing (no-break, zero width, byte order mark) are no part of a name: they come with
// text copied from elsewhere, and would make two signals that look the same out of one.
// clang-format off
struct NameCharacter : pegtl::sor<
    pegtl::ranges<'!', '"', '$', '\'', '*', '+', '-', '<', '>', '~'>,
    pegtl::utf8::ranges<0xA1, 0x1FFF, 0x2010, 0x2027, 0x2030, 0x205E, 0x2070, 0x2FFF, 0x3001, 0xFEFE,
                        0xFF00, 0x10FFFF>> {};
// clang-format on
struct Name : pegtl::plus<NameCharacter> {};
struct Blanks : pegtl::star<pegtl::one<' ', '\t', '\r', '\v', '\f'>> {};

struct Head : Name {};
struct Kind : Name {};
struct Argument : Name {};

struct Comment : pegtl::seq<pegtl::one<'#'>, pegtl::star<pegtl::any>> {};
struct Opening : pegtl::one<'('> {};
struct Closing : pegtl::one<')'> {};
struct Comma : pegtl::one<','> {};
struct Names
    : pegtl::seq<pegtl::must<Argument>, Blanks,
                 pegtl::until<Closing, pegtl::must<Comma>, Blanks, pegtl::must<Argument>, Blanks>> {
};
struct Declaration : pegtl::seq<pegtl::one<'('>, Blanks, Names> {};
struct Equals : pegtl::one<'='> {};
struct Function : pegtl::if_must<Equals, Blanks, Kind, Blanks, Opening, Blanks, Names> {};
struct DeclarationOrFunction : pegtl::sor<Declaration, Function> {};
struct CommentOrEnd : pegtl::sor<Comment, pegtl::eof> {};
struct Content : pegtl::must<Head, Blanks, DeclarationOrFunction, Blanks, CommentOrEnd> {};
struct Line : pegtl::seq<Blanks, pegtl::sor<CommentOrEnd, Content>> {};

// Finds every name on a line that is in error.
struct Mention : Name {};
struct Mentions : pegtl::star<pegtl::not_at<pegtl::one<'#'>>, pegtl::sor<Mention, pegtl::any>> {};

enum class Missing { statement, openingOrEquals, kind, opening, argument, commaOrClosing, end };

struct Failure {
    std::size_t offset;
    Missing what;
};

template <typename Rule>
constexpr Missing missing = Missing::statement; // of Head, which nothing else may come before
template <> constexpr Missing missing<DeclarationOrFunction> = Missing::openingOrEquals;
template <> constexpr Missing missing<Kind> = Missing::kind;
template <> constexpr Missing missing<Opening> = Missing::opening;
template <> constexpr Missing missing<Argument> = Missing::argument;
template <> constexpr Missing missing<Comma> = Missing::commaOrClosing;
template <> constexpr Missing missing<CommentOrEnd> = Missing::end;

template <typename Rule> struct Control : pegtl::normal<Rule> {
    template <typename Input, typename... States>
    [[noreturn]] static void raise(const Input& in, States&&... /*states*/)
    {
        throw Failure{static_cast<std::size_t>(in.current() - in.begin()), missing<Rule>};
    }
};

struct Reading {
    std::string_view line;
    Statement statement;
    bool sawEquals = false;
    std::vector<Token> mentions;

    template <typename Input> Token token(const Input& matched) const
    {
        return {matched.string_view(), static_cast<std::size_t>(matched.begin() - line.data())};
    }
};

template <typename Rule> struct Action : pegtl::nothing<Rule> {
};
template <> struct Action<Head> {
    template <typename Input> static void apply(const Input& in, Reading& reading)
    {
        reading.statement.head = reading.token(in);
    }
};
template <> struct Action<Kind> {
    template <typename Input> static void apply(const Input& in, Reading& reading)
    {
        reading.statement.kind = reading.token(in);
    }
};
template <> struct Action<Equals> {
    static void apply0(Reading& reading) { reading.sawEquals = true; }
};
template <> struct Action<Argument> {
    template <typename Input> static void apply(const Input& in, Reading& reading)
    {
        reading.statement.arguments.push_back(reading.token(in));
    }
};
template <> struct Action<Mention> {
    template <typename Input> static void apply(const Input& in, Reading& reading)
    {
        reading.mentions.push_back(reading.token(in));
    }
};

using LineInput = pegtl::memory_input<pegtl::tracking_mode::lazy, pegtl::eol::lf, const char*>;

// What was found at a place of the line.
struct Found {
    enum Kind { nothing, name, separatorCharacter, invisible, notText };
    Kind kind = nothing;
    std::string text; ///< in words, such as "found ','" or "the line ends"
    std::size_t length = 0;
    char separator = ' ';
};

std::string hexadecimal(unsigned value, int digits)
{
    std::string text;
    for (int digit = 0; digit < digits || value > 0; ++digit) {
        text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
        value /= 16;
    }
    return text;
}

// A character that is neither a name's nor a separator: a control or blank one, or not UTF-8.
Found strange(std::string_view rest)
{
    const std::size_t length = text::utf8Length(rest);
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned>(static_cast<unsigned char>(rest[i]));
    };
    if (length == 0)
        return {Found::notText, "found byte 0x" + hexadecimal(byte(0), 2) + ", which is not UTF-8",
                1, ' '};
    unsigned character = length == 1 ? byte(0) : byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        character = (character << 6U) | (byte(i) & 0x3FU);
    }
    return {Found::invisible, "found the invisible character U+" + hexadecimal(character, 4),
            length, ' '};
}

Found whatStands(std::string_view line, std::size_t offset, const std::vector<Token>& mentions)
{
    if (offset >= line.size()) return {Found::nothing, "the line ends", 0, ' '};
    const char first = line[offset];
    if (first == '#') return {Found::nothing, "a comment begins", 1, ' '};
    for (const Token& token : mentions) {
        if (token.offset == offset) {
            return {Found::name, "found " + text::quoted(token.text), token.text.size(), ' '};
        }
    }
    if (first == '(' || first == ')' || first == ',' || first == '=') {
        return {Found::separatorCharacter, std::string("found '") + first + "'", 1, first};
    }
    return strange(line.substr(offset));
}

bool isKeyword(std::string_view text)
{
    return text::editDistance(text, "INPUT", 0) == 0 || text::editDistance(text, "OUTPUT", 0) == 0;
}

// The hint for a list in parentheses where a name is missing, or where something wrong follows a name.
std::string listHint(const Found& found, bool nameIsMissing)
{
    if (found.kind == Found::nothing) {
        return "close the list with ')'; a statement is one line";
    }
    if (found.kind == Found::name) {
        return "signals are separated by commas";
    }
    if (found.separator == '(') {
        return "gates are not nested: give the inner one a line and a signal of its own";
    }
    if (found.separator == '=') {
        return "close the list with ')', and put each statement on a line of its own";
    }
    return nameIsMissing ? "name it, or take the comma away" : "";
}

// Sets the three texts of an error.
void explain(Missing missingPart, const Found& found, LineError& error)
{
    const Statement& read = error.read;
    const bool gate = read.isGate();
    switch (missingPart) {
    case Missing::statement:
        error.message = found.text + " where a statement begins";
        error.expected = "INPUT(a), OUTPUT(a) or y = gate(a, b, ...)";
        error.hint = "a comment begins with '#'";
        break;
    case Missing::openingOrEquals:
        error.message = found.text + " after " + text::quoted(read.head.text);
        error.expected =
            isKeyword(read.head.text) ? "'(' and the name of a signal" : "'=' and a gate";
        error.hint =
            isKeyword(read.head.text) ? "write INPUT(a) or OUTPUT(a)" : "write y = gate(a, b, ...)";
        break;
    case Missing::kind:
        error.message = found.text + " after '='";
        error.expected = "a kind of gate: " + gateKindNames();
        error.hint = "write y = and(a, b); a copy of a signal is y = buf(a)";
        break;
    case Missing::opening:
        error.message = found.text + " after " + text::quoted(read.kind.text);
        error.expected = "'(' and the inputs of the gate";
        error.hint =
            gateKind(read.kind.text) ? "write y = and(a, b)" : "a copy of a signal is y = buf(a)";
        break;
    case Missing::argument:
        error.message = "argument " + std::to_string(read.arguments.size() + 1) + " of " +
                        text::quoted(gate ? read.kind.text : read.head.text) +
                        " is missing: " + found.text;
        error.expected = "the name of a signal";
        error.hint = found.separator == ')' && read.arguments.empty()
                         ? "name it between the parentheses"
                         : listHint(found, true);
        break;
    case Missing::commaOrClosing:
        error.message = found.text + " after " + text::quoted(read.arguments.back().text);
        error.expected = "',' and a further signal, or ')'";
        error.hint = listHint(found, false);
        break;
    case Missing::end:
        error.message = found.text + " after the end of a statement";
        error.expected = "the end of the line, or a comment";
        error.hint = "put each statement on a line of its own, and '#' before a comment";
        break;
    }
    if (found.kind == Found::notText) error.hint = "save the file as UTF-8";
    if (found.kind == Found::invisible) error.hint = "delete it, or put a space in its place";
}

// A statement that was broken into lines is one mistake: its first line stays open, and the others look like its rest.
void relateToNeighbours(Missing missingPart, const Found& found, LineError& error)
{
    const bool inList = missingPart == Missing::argument || missingPart == Missing::commaOrClosing;
    error.staysOpen = inList && found.kind == Found::nothing;
    const bool atName = missingPart == Missing::statement || missingPart == Missing::openingOrEquals;
    error.looksLikeRest =
        atName && (found.kind == Found::nothing || found.separator == ',' || found.separator == ')');
}

} // namespace

std::variant<Statement, LineError> readBenchLine(std::string_view line)
{
    Reading reading{line, {}, false, {}};
    LineInput in(line.data(), line.data() + line.size(), "");
    try {
        pegtl::parse<Line, Action, Control>(in, reading);
        return std::move(reading.statement);
    } catch (const Failure& failure) {
        LineInput again(line.data(), line.data() + line.size(), "");
        pegtl::parse<Mentions, Action>(again, reading);
        const Found found = whatStands(line, failure.offset, reading.mentions);
        LineError error;
        error.offset = failure.offset;
        error.length = found.length;
        error.read = std::move(reading.statement);
        error.sawEquals = reading.sawEquals;
        error.isWhole = failure.what == Missing::end;
        error.mentions = std::move(reading.mentions);
        explain(failure.what, found, error);
        relateToNeighbours(failure.what, found, error);
        return error;
    }
}

} // namespace netlist
