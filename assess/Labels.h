// What is known to have been wrong with a plant, and when: a table with the columns start, end and what.
//
//     start,end,what
//     2024-05-02T08:00:00Z,2024-05-02T14:30:00Z,coil.valve = stuck
//     2024-05-05T00:00:00Z,,fan
//
// `what` is a component (a part that has parts stands for them, too), one of its modes, a mode and a value, or the word fault.
// Without an end the fault lasts to the end of the telemetry. Further columns are passed over.
#pragma once

#include "plant/Plant.h"
#include "telemetry/LineSource.h"
#include "text/Diagnostic.h"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace assess {

/// A time during which something was wrong.
struct Label {
    double start = 0;                                     ///< seconds, as the telemetry has them
    double end = std::numeric_limits<double>::infinity(); ///< above start; the plant is sound then
    std::string what;                                     ///< as it was written
    /// The mode variables of what is wrong. Empty: nobody knows what it is.
    std::vector<plant::VariableIndex> modes;
    /// Of a mode and a value: the value.
    std::vector<plant::AtomIndex> values;
    std::size_t line = 0; ///< in the file of the labels

    bool isFaultOnly() const { return modes.empty(); }
    bool contains(double t) const { return t >= start && t < end; }
};

struct LabelsRead {
    std::vector<Label> labels; ///< as they stand in the file
    std::vector<text::Diagnostic> errors;
};

/// Reads labels. `timeFormat` is a telemetry::TimeFormat, that of the telemetry; a time in ISO 8601 is read
/// whatever it is. Linear in the lines.
/// Ensures: with an error there are no labels.
LabelsRead readLabels(telemetry::LineSource& lines, const plant::Plant& plant,
                      const std::string& timeFormat = {});

} // namespace assess
