// What the verbs' command lines have in common: checks of values, and complaints that name the nearest right word.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace app {

/// "; did you mean 'x'?" when one of `known` is near, else "".
std::string didYouMean(std::string_view word, const std::vector<std::string>& known);

/// A whole number from `least` to `most`.
CLI::Validator wholeNumber(std::uint64_t least, std::uint64_t most);
/// A number from `least` to `most`, without the bounds themselves where `open`.
CLI::Validator number(double least, double most, bool open);
/// One of some words.
CLI::Validator oneOf(std::vector<std::string> words);

/// Throws Failure when `verb` was given arguments that it does not know.
void refuseUnknown(const CLI::App& verb);

} // namespace app
