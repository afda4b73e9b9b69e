#include "plant/BindingRules.h"

#include "text/Wording.h"

#include <algorithm>

namespace plant {

bool checkDirection(bool isCommand, ChannelBinding::Kind kind, const std::string& name,
                    const PlaceHandle& at, bool input)
{
    if (isCommand == (kind == ChannelBinding::Kind::command)) return true;
    text::Message what = !isCommand ? at.words().conditionCommanded
                         : input    ? at.words().commandAsInput
                                    : at.words().commandObserved;
    what.message = text::quoted(name) +
                   (isCommand ? " is a command: it is given, not observed" : " is not a command");
    at.report(std::move(what));
    return false;
}

bool checkMeasurable(bool isCommand, const std::string& name, const PlaceHandle& at)
{
    if (isCommand)
        at.report(text::quoted(name) + " is a command: it is given, not measured",
                  "a condition, or a mode");
    return !isCommand;
}

bool ThresholdRow::add(std::string_view value, const PlaceHandle& at)
{
    const bool isNew = std::find(seen_.begin(), seen_.end(), value) == seen_.end();
    if (!isNew) at.report(text::quoted(value) + " is in the row twice", "each value once");
    seen_.push_back(value);
    return isNew;
}

std::vector<std::string_view> ThresholdRow::missing(const std::vector<std::string_view>& values) const
{
    std::vector<std::string_view> missing;
    for (const std::string_view value : values) {
        if (std::find(seen_.begin(), seen_.end(), value) == seen_.end()) missing.push_back(value);
    }
    return missing;
}

bool ThresholdRow::checkComplete(std::size_t values, const std::string& name, const PlaceHandle& at,
                                 std::string hint) const
{
    if (seen_.size() == values) return true;
    at.report(std::to_string(seen_.size()) + " of the " + std::to_string(values) + " values of " +
                  text::quoted(name) + " are in the row",
              "all of them, from the lowest to the highest", std::move(hint));
    return false;
}

bool checkLimit(const ThresholdTable& table, std::size_t limit, const PlaceHandle& at)
{
    if (limit == 0) return true;
    if (table.limits[limit - 1].computed || table.limits[limit].computed) return true;
    const double before = table.limits[limit - 1].number;
    const double number = table.limits[limit].number;
    if (number > before) return true;
    at.report("the limit " + text::shown(number) + " is not above the one before it, " +
                  text::shown(before),
              "limits from the lowest to the highest");
    return false;
}

bool checkHysteresis(const ThresholdTable& table, const PlaceHandle& at)
{
    const std::string found =
        std::string(at.words().hysteresis) + " is " + text::shown(table.hysteresis);
    if (table.hysteresis < 0) {
        at.report(found, "0 or more");
        return false;
    }
    if (table.limits.size() < 2 || table.isComputed()) return true;
    double least = table.limits[1].number - table.limits[0].number;
    for (std::size_t i = 2; i < table.limits.size(); ++i) {
        least = std::min(least, table.limits[i].number - table.limits[i - 1].number);
    }
    if (table.hysteresis * 2 < least) return true;
    at.report(found + ", and two limits are only " + text::shown(least) + " apart",
              "less than half of the distance between two limits");
    return false;
}

bool ReadingSet::add(std::variant<double, std::string> reading, const std::string& called,
                     const PlaceHandle& at)
{
    if (seen_.insert(std::move(reading)).second) return true;
    at.report(called + " stands for two values");
    return false;
}

bool checkObserved(ChannelBinding::Kind kind, const std::string& what, const PlaceHandle& at)
{
    if (kind == ChannelBinding::Kind::observation) return true;
    at.report("a command with " + what, {},
              "only what is observed is computed, waits, or is misread");
    return false;
}

bool checkWindow(double seconds, double stepSeconds, const PlaceHandle& at)
{
    constexpr double mostSteps = 1e6;
    if (!checkSeconds(seconds, at)) return false;
    if (seconds > 0 && seconds <= mostSteps * stepSeconds) return true;
    if (seconds > 0) {
        at.report("a window of " + text::shown(seconds / stepSeconds) + " steps",
                  "at most " + text::shown(mostSteps) + " steps");
    } else {
        at.report("a window of no length", "more than 0");
    }
    return false;
}

bool checkVaryingKind(ChannelBinding::Kind kind, bool input, const PlaceHandle& at)
{
    const bool command = kind == ChannelBinding::Kind::command;
    if (!command && !input) return true;
    if (command) {
        at.report("a command with 'varies'", {},
                  "'varies' says how often a reading changes: leave it out");
    } else {
        at.report(
            "an input with 'varies'", {},
            "an input is not scored, however often it changes: leave out 'varies', or observe it");
    }
    return false;
}

bool checkVaries(double probability, const PlaceHandle& at)
{
    if (probability > 0 && probability < 1) return true;
    at.report("the reading changes with probability " + text::shown(probability) + " per step",
              "more than 0 and less than 1");
    return false;
}

bool checkMisread(double probability, const PlaceHandle& at)
{
    if (probability > 0 && probability < 1) return true;
    at.report("a reading is wrong with probability " + text::shown(probability),
              "more than 0 and less than 1");
    return false;
}

bool checkSeconds(double seconds, const PlaceHandle& at)
{
    if (seconds >= 0 && seconds <= mostSeconds) return true;
    if (seconds < 0) {
        at.report("the time is " + text::shown(seconds), "0 or more");
    } else {
        at.report("the time is " + text::shown(seconds) + " s",
                  "at most " + text::shown(mostSeconds) + " s");
    }
    return false;
}

bool checkStepLength(double seconds, const PlaceHandle& at)
{
    if (seconds >= leastStepSeconds && seconds <= mostSeconds) return true;
    if (seconds <= 0) {
        at.report("the length of a step is " + text::shown(seconds), "more than 0");
    } else {
        at.report("the length of a step is " + text::shown(seconds) + " s",
                  "from " + text::shown(leastStepSeconds) + " to " + text::shown(mostSeconds) + " s");
    }
    return false;
}

} // namespace plant
