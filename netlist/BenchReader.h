// Reads gate-level circuits in the .bench format, in which the ISCAS-85 and 74X-series benchmark circuits are
// published.
//
//     # a comment                      up to the end of the line, anywhere
//     INPUT(G1)                        the signals that are given from outside
//     INPUT(G2)
//     OUTPUT(G10)                      the signals that are seen outside, one at least
//     G10 = nand(G1, G2)               gates: AND NAND OR NOR XOR XNOR, of one or more inputs; NOT BUF (BUFF) of one
//
// A statement is one line, whatever their order: a signal may be used before its line. INPUT, OUTPUT and the
// kinds of gates are written in any letter case; signals that differ in letter case are different signals.
// Names may hold anything printable but `(` `)` `,` `=` `#`. Blanks and blank lines count for nothing; lines
// end with LF or CR LF; the text is UTF-8 outside comments. A byte order mark at the beginning and a Ctrl-Z at
// the end are passed over.
//
// All errors of a file are reported at once, in the order of their places. An error that follows from another one is
// left out: a line that cannot be read still defines the signals that it seems to define, an undefined signal is
// reported where it is used first, and a group of gates that depend on each other is one cycle.
#pragma once

#include "netlist/Circuit.h"
#include "text/Diagnostic.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace netlist {

/// A circuit, or errors.
struct BenchResult {
    std::optional<Circuit> circuit; ///< set exactly when there is no error
    std::vector<text::Diagnostic> errors;
};

/// Reads a circuit from a text. `fileName` is for the errors; without folder and extension it is the circuit's
/// name. Linear, apart from the search for names near to undefined ones, which ends after a million
/// comparisons.
BenchResult readBench(std::string_view text, const std::string& fileName);

/// Reads a circuit from a file. One that cannot be read is an error without a line.
BenchResult readBenchFile(const std::string& path);

} // namespace netlist
