// How telemetry is written, and what to do about what is not as it should be.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace telemetry {

struct ReadSettings {
    /// Go on after a line with a mistake, as if it were not there. Otherwise the first mistake ends the reading.
    bool skipBad = false;
    /// Of a line, or of a row of a table. A longer one is a mistake.
    std::size_t mostBytes = std::size_t{16} << 20;
    /// More may be written to the input later: what is not complete at its end is not taken, so that another reader can go on from
    /// state() when it is. That is a last line without its end, and in a long table the step of the last rows.
    bool mayGrow = false;

    /// A column, or a key of JSON Lines, that the model does not know is a mistake. Otherwise it is passed over and noted.
    bool knownNamesOnly = false;
    /// What is no number, where only numbers are readings, is a mistake. Otherwise it is not observed, and noted.
    bool readableOnly = false;

    /// The column or key of the time. Empty: `t`, or in a table without it, the only column with another usual name.
    std::string timeColumn = {};
    /// A TimeFormat. Empty: found out from the first time.
    std::string timeFormat = {};
    /// Between the cells of a table. 0: found out from the header.
    char separator = 0;
    /// In the numbers of a table, `.` or `,`. Requires: it is not the separator.
    char decimal = '.';
    /// More than so many step lengths of the model after the step before, a step has a gap. Requires: 1 or more.
    double gapSteps = 3;
    /// Names of columns and keys, and the names of the model that they stand for. Names that the model does not know are passed over.
    std::map<std::string, std::string> renamed = {};
};

} // namespace telemetry
