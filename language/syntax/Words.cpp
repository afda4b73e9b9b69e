#include "language/syntax/Words.h"

#include "language/syntax/Token.h"

#include <array>
#include <unordered_map>
#include <utility>

namespace language {

namespace {

struct Unit {
    std::string_view name;
    double seconds;
};

constexpr std::array<Unit, 19> units{{{"ms", 0.001},
                                      {"s", 1},
                                      {"second", 1},
                                      {"seconds", 1},
                                      {"min", 60},
                                      {"minute", 60},
                                      {"minutes", 60},
                                      {"h", 3600},
                                      {"hour", 3600},
                                      {"hours", 3600},
                                      {"d", 86400},
                                      {"day", 86400},
                                      {"days", 86400},
                                      {"week", 7 * 86400},
                                      {"weeks", 7 * 86400},
                                      {"month", 30 * 86400},
                                      {"months", 30 * 86400},
                                      {"year", 365 * 86400},
                                      {"years", 365 * 86400}}};

// In the order of TokenKind.
constexpr std::array<std::string_view, static_cast<std::size_t>(TokenKind::count_)> spellings{
    "",          "",        "",     "",        "",        "import",  "const", "component",
    "system",    "mode",    "cond", "command", "law",     "nominal", "fault", "idle",
    "initially", "observe", "for",  "step",    "initial", "any",     "when",  "in",
    "not",       "and",     "or",   "per",     "from",    "within",  "hold",  "otherwise",
    "lost",      ":",       ",",    "=",       "->",      "<->",     "!=",    "!",
    "&",         "|",       "<",    "<=",      "{",       "}",       "(",     ")",
    "[",         "]",       ".",    "..",      "+",       "-",       "*",     "/"};
static_assert(spellings[static_cast<std::size_t>(TokenKind::slash)] == "/");
static_assert(spellings[static_cast<std::size_t>(TokenKind::lostWord)] == "lost");

} // namespace

std::string_view spelling(TokenKind kind)
{
    return spellings[static_cast<std::size_t>(kind)];
}

TokenKind wordKind(std::string_view text)
{
    static const std::unordered_map<std::string_view, TokenKind> kinds = [] {
        std::unordered_map<std::string_view, TokenKind> made;
        for (std::size_t i = 0; i < spellings.size(); ++i) {
            if (isWord(static_cast<TokenKind>(i))) made[spellings[i]] = static_cast<TokenKind>(i);
        }
        return made;
    }();
    const auto found = kinds.find(text);
    return found == kinds.end() ? TokenKind::name : found->second;
}

const std::vector<std::string_view>& reservedWords()
{
    static const std::vector<std::string_view> words = [] {
        std::vector<std::string_view> made;
        for (std::size_t i = 0; i < spellings.size(); ++i) {
            if (isWord(static_cast<TokenKind>(i))) made.push_back(spellings[i]);
        }
        return made;
    }();
    return words;
}

const std::vector<std::string_view>& softWords()
{
    static const std::vector<std::string_view> words{"input", "measurable", "repair",  "varies",
                                                     "over",  "ago",        "settled", "after",
                                                     "noise", "misread"};
    return words;
}

const std::vector<ChannelFunction>& channelFunctions()
{
    using Over = ChannelFunction::Over;
    static const std::vector<ChannelFunction> functions{
        {"abs", Over::never},   {"min", Over::may},       {"max", Over::may},
        {"mean", Over::always}, {"spread", Over::always}, {"rate", Over::always}};
    return functions;
}

const ChannelFunction* channelFunction(std::string_view name)
{
    for (const ChannelFunction& function : channelFunctions()) {
        if (function.name == name) return &function;
    }
    return nullptr;
}

const std::vector<std::string_view>& timeUnits()
{
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> made;
        for (const Unit& unit : units) {
            made.push_back(unit.name);
        }
        return made;
    }();
    return names;
}

std::optional<double> secondsOf(std::string_view unit)
{
    for (const Unit& known : units) {
        if (known.name == unit) return known.seconds;
    }
    return {};
}

} // namespace language
