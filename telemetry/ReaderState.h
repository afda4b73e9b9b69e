// What a reader of telemetry remembers between two steps, as names and numbers that can be written down.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace telemetry {

/// What StepReader::state() takes and StepReader::restore() gives back.
struct ReaderState {
    /// The last reading of a variable that is bound to a channel.
    struct Last {
        std::string variable; ///< COMPONENT.VARIABLE
        std::string value;
        double t = 0; ///< seconds

        friend bool operator==(const Last&, const Last&) = default;
    };

    std::size_t lines = 0;   ///< of the input that are done with
    std::size_t steps = 0;   ///< that were read
    std::optional<double> t; ///< of the last step, in seconds
    std::vector<Last> last;  ///< in the order of Names::variables()

    friend bool operator==(const ReaderState&, const ReaderState&) = default;
};

} // namespace telemetry
