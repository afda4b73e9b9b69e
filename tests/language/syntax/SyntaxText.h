// A syntax tree as a text without places: two files say the same when these texts are equal. For tests, which compare
// what was read.
//
//     law a = b & c != d       ->      (law (& (= a b) (!= c d)))
#pragma once

#include "language/syntax/Syntax.h"

#include <string>

namespace language {

/// One line for each declaration and member, those of a block indented. Numbers have all digits that tell them apart.
std::string syntaxText(const syntax::File& file);

} // namespace language
