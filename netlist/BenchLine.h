// One line of a .bench file: its grammar, and what is wrong with a line that does not follow it.
//
//     line        <- blank* (declaration / gate)? blank* comment? end
//     declaration <- name '(' names ')'                    INPUT(G1gat)
//     gate        <- name '=' name '(' names ')'           G10gat = nand(G1gat, G3gat)
//     names       <- name (',' name)*
//     comment     <- '#' anything
//
// with blanks allowed between any two of these. A name is a run of printable UTF-8 characters other than `(`
// `)` `,` `=` `#`. What a name stands for (INPUT, a kind of gate, a signal) is not a matter of the grammar.
#pragma once

#include "text/Diagnostic.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace netlist {

/// A name, as a view into the line.
struct Token {
    std::string_view text;
    std::size_t offset = 0; ///< bytes of the line before it
};

/// A line that follows the grammar. Without a statement (blank, or a comment only) `head` is empty.
struct Statement {
    Token head; ///< the word before the parenthesis, or before `=`
    Token kind; ///< of a gate, the word after `=`; empty for a declaration
    std::vector<Token> arguments;

    bool isGate() const { return !kind.text.empty(); }
};

/// Why a line does not follow the grammar, and how far it did.
struct LineError : text::Message {
    std::size_t offset = 0;      ///< bytes of the line before the place
    std::size_t length = 0;      ///< bytes of what stands there, 0 at the line's end
    Statement read;              ///< what had been read before the place
    bool sawEquals = false;      ///< it is a gate's line
    bool isWhole = false;        ///< `read` is a whole statement: what follows it is wrong
    bool staysOpen = false;      ///< the line ends inside of parentheses
    bool looksLikeRest = false;  ///< it could go on with a statement of an earlier line
    std::vector<Token> mentions; ///< every name on the line, comments excepted
};

/// Reads a line, without its end. Linear.
/// Requires: the line outlives the tokens, which are views into it.
std::variant<Statement, LineError> readBenchLine(std::string_view line);

} // namespace netlist
