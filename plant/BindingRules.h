// What every channel has to keep to, whatever it was written in.
//
// A front end calls each check as soon as it knows enough for it. A model file has types, whose mistakes are reported once for
// all of their instances; in data every variable is checked.
#pragma once

#include "plant/Bindings.h"
#include "plant/PlaceHandle.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace plant {

/// Reports a command that is observed, and something else that is commanded. `name` is the variable's, as messages show it; `input`
/// says that the observation is of an input.
bool checkDirection(bool isCommand, ChannelBinding::Kind kind, const std::string& name,
                    const PlaceHandle& at, bool input = false);

/// Reports a command that is to be measured.
bool checkMeasurable(bool isCommand, const std::string& name, const PlaceHandle& at);

/// The values of a row of thresholds, from the lowest to the highest.
class ThresholdRow {
public:
    /// Reports a value that is in the row already. `value` outlives the row.
    bool add(std::string_view value, const PlaceHandle& at);
    std::size_t size() const { return seen_.size(); }
    /// Those of `values` that are not in the row.
    std::vector<std::string_view> missing(const std::vector<std::string_view>& values) const;
    /// Reports a row that does not have all values of a variable; `hint` may say which ones.
    bool checkComplete(std::size_t values, const std::string& name, const PlaceHandle& at,
                       std::string hint = {}) const;

private:
    std::vector<std::string_view> seen_;
};

/// Reports a limit that is not above the one before it, unless one of them is computed.
/// Requires: `limit` is less than the number of limits.
bool checkLimit(const ThresholdTable& table, std::size_t limit, const PlaceHandle& at);

/// Reports a hysteresis that is negative, or so large that two limits would be in each other's way.
/// Requires: the limits are rising.
bool checkHysteresis(const ThresholdTable& table, const PlaceHandle& at);

/// The readings of one channel that stand for values.
class ReadingSet {
public:
    /// False for one that stands for a value already. `called` is how the message at `at` names it.
    bool add(std::variant<double, std::string> reading, const std::string& called,
             const PlaceHandle& at);

private:
    std::set<std::variant<double, std::string>> seen_;
};

/// Reports what only an observation or an input can say: `what` is "a computed channel", "'for'", "'settled'" or "'misread'".
bool checkObserved(ChannelBinding::Kind kind, const std::string& what, const PlaceHandle& at);
/// Reports a window of no length, or of more than 1,000,000 steps: its readings are kept.
bool checkWindow(double seconds, double stepSeconds, const PlaceHandle& at);
/// Reports a probability of misreadings that is none, or with which nothing would be read.
bool checkMisread(double probability, const PlaceHandle& at);

/// Reports 'varies' where no reading is scored: for an input and for a command.
bool checkVaryingKind(ChannelBinding::Kind kind, bool input, const PlaceHandle& at);
/// Reports a reading that changes never or always: a probability per step that is not between 0 and 1.
bool checkVaries(double probability, const PlaceHandle& at);
/// The lengths that a step may have, and the longest time: sums and quotients of them are numbers.
constexpr double leastStepSeconds = 1e-9;
constexpr double mostSeconds = 1e12;
/// Reports a time that is negative, or longer than that.
bool checkSeconds(double seconds, const PlaceHandle& at);
/// Reports a length of a step that is none of these.
bool checkStepLength(double seconds, const PlaceHandle& at);

} // namespace plant
