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
        double t = 0;            ///< seconds
        std::size_t binding = 0; ///< which of the variable's channels, from 0

        friend bool operator==(const Last&, const Last&) = default;
    };
    /// The readings of one window of an expression (Window.h).
    struct Window {
        struct Sample {
            double t = 0; ///< seconds
            double value = 0;

            friend bool operator==(const Sample&, const Sample&) = default;
        };
        std::vector<Sample> samples; ///< the oldest first
        std::size_t older = 0; ///< how many of those after the first two have sums of their own

        friend bool operator==(const Window&, const Window&) = default;
    };
    /// A value that does not count yet, of a channel with `for`.
    struct Pending {
        std::string variable; ///< COMPONENT.VARIABLE
        std::size_t binding = 0;
        std::string value;
        double since = 0; ///< seconds
        double t = 0;     ///< of the last reading

        friend bool operator==(const Pending&, const Pending&) = default;
    };
    /// A channel for which others wait until it has settled.
    struct Settling {
        std::string channel;
        std::string reading;
        double since = 0; ///< seconds; when it last changed

        friend bool operator==(const Settling&, const Settling&) = default;
    };

    std::size_t files = 0;               ///< of several that are done with
    std::size_t lines = 0;               ///< of the input, or of the next file, that are done with
    std::size_t steps = 0;               ///< that were read
    std::optional<double> t;             ///< of the last step, in seconds
    std::vector<Last> last;              ///< in the order of Names::variables()
    std::vector<Window> windows = {};    ///< in the order of the expressions
    std::vector<Pending> pending = {};   ///< in the order of Names::variables()
    std::vector<Settling> settling = {}; ///< those that were read, in the order of their names
    std::optional<double> begin = {};    ///< the time of the first step, where something settles

    friend bool operator==(const ReaderState&, const ReaderState&) = default;
};

} // namespace telemetry
