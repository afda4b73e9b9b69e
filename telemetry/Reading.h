// One reading as the input has it, and the value of a variable that it stands for.
#pragma once

#include "telemetry/Names.h"
#include "text/Diagnostic.h"

#include <optional>
#include <string_view>

namespace telemetry {

/// A reading. A cell of a table is a text that may be a number.
struct Reading {
    enum class Kind { number, text, cell };

    Kind kind = Kind::number;
    double number = 0;
    std::string_view text; ///< as written, for a number too
};

/// The decimal number, such as `-1.5e-3`, that the whole text is. One that is too large is infinite; `inf` and `nan` are read,
/// hexadecimal numbers are not. With the decimal sign `,` there is no point in it.
std::optional<double> parseNumber(std::string_view text, char decimal = '.');

/// The number that a reading is, or that its text is where cells of a table are.
std::optional<double> numberOf(const Reading& reading);
/// Whether a reading of the variable is a number or nothing: it has thresholds, or readings all of which are numbers.
bool wantsNumber(const Variable& variable);
/// Whether numberOf() gives a finite number.
bool isNumber(const Reading& reading);

/// The value, or null where the reading has no meaning. `last` is the value before, for the hysteresis; `byChannel`: the variable was
/// named by its channel, so a text that the channel maps is not the name of a value. Linear in the values.
Atom* valueOf(const Variable& variable, bool byChannel, const Reading& reading, const Atom* last);

/// Why the reading has no meaning; `name` is what the input calls the variable.
/// Requires: valueOf() gave null for it.
text::Message notAValue(const Variable& variable, std::string_view name, const Reading& reading);

} // namespace telemetry
