// What a verb declares: its options as rows, and its help. The command line is read by these rows, and the help is
// laid out from them, so that an option is described where it is declared and nowhere else.
#pragma once

#include "app/ExitStatus.h"

#include <charconv>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace app {

/// Where the value of an option goes; what is there before is its default. A flag sets a `bool`; an option with a list
/// may be repeated, and an argument with a list takes all that is left. The target outlives the verb.
using Target =
    std::variant<bool*, int*, std::uint64_t*, double*, std::string*, std::optional<int>*,
                 std::optional<std::uint64_t>*, std::optional<std::string>*, std::vector<std::string>*>;

/// Says what is wrong with a value; empty when nothing is.
using Check = std::function<std::string(const std::string& value)>;

/// A number as the command line has it: decimal, `010` is ten. Nothing when the text is anything else.
template <typename Number> std::optional<Number> parsedNumber(std::string_view text)
{
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

/// A whole number from `least` to `most`.
Check wholeNumber(std::uint64_t least, std::uint64_t most = UINT64_MAX);
/// A finite number from `least` to `most`, which may be infinite.
Check number(double least, double most);
/// A number above `least` and below `most`.
Check numberBetween(double least, double most);
/// The name of a file that is written: not empty; `-` only where that is standard output.
Check fileName(bool mayBeStandardOutput = false);
/// One of some words.
Check oneOf(std::vector<std::string> words);

/// "; did you mean 'x'?" when one of `known` is near, else "".
std::string orDidYouMean(std::string_view word, const std::vector<std::string>& known);

/// One option or argument of a verb.
struct Row {
    std::string names; ///< `--format`, `-o,--output`, or an argument's name in the help, `MODEL`
    std::string placeholder; ///< for the value, in the help; empty for a flag and for an argument
    /// In the help, wrapped unless it has line breaks. `{default}` stands for the target's value.
    std::string help;
    Target target;
    Check check;      ///< none: any value will do
    int position = 0; ///< of an argument, from 1; 0 for an option
};

/// Rows that stand together in the help.
struct Section {
    std::string heading; ///< empty for the first section, which has none
    std::vector<Row> rows;
};

/// A verb: what it is called, what it takes, what its help says, and what it does. Texts are wrapped unless they have
/// line breaks.
struct Verb {
    std::string name;
    std::string purpose;           ///< in one line, for the list of verbs
    std::string usage;             ///< what follows the program's name; a line for each form
    std::string description;       ///< what it does
    std::vector<Section> sections; ///< `-h, --help` is added to the last
    std::string notes;             ///< what is to be known beside the options; may be empty
    std::string exitStatus;
    std::string example; ///< a command, without the program's name
    /// Does it, once the options are read. Throws Failure.
    std::function<ExitStatus()> run;
};

/// The help of a verb, as `itms VERB --help` prints it.
std::string helpOf(const Verb& verb);
/// The help of the program with these verbs.
std::string helpOf(const std::vector<Verb>& verbs);

/// Reads the command line, and does what it asks for. Appends the name of the verb to `name` as soon as it is known. Throws
/// Failure, for what is wrong in the command line, too.
ExitStatus runCommandLine(const std::vector<Verb>& verbs, int argc, const char* const* argv,
                          std::string& name);

} // namespace app
