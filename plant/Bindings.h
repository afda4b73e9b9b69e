// How readings and commands of the outside world become values of a plant's variables. Kept beside the model: the engine needs
// none of it.
#pragma once

#include "model/Atom.h"
#include "model/StateVar.h"
#include "plant/ChannelExpression.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace plant {

/// `low < 1.2 <= nominal <= 4.5 < high within 0.05`: from the lowest value to the highest, one limit between neighbours.
struct ThresholdTable {
    struct Limit {
        double number = 0;
        bool belongsAbove = true; ///< the number itself is read as the higher value
        std::optional<ChannelExpression> computed = {}; ///< in place of the number
    };
    std::vector<Atom*> values;
    std::vector<Limit> limits;
    double hysteresis = 0; ///< how far past a limit a reading has to be to leave the last value

    /// Whether a limit is computed: then nothing is read until it has a number.
    bool isComputed() const;
    /// The value that a number is read as; `last` is the value before, null if none. Linear in the limits.
    Atom* read(double number, const Atom* last) const;
};

/// `open = 1, close = "CLOSE", none otherwise`.
struct ReadingTable {
    std::vector<std::pair<std::variant<double, std::string>, Atom*>> readings;
    Atom* otherwise = nullptr; ///< null: any other reading is an error of the data
};

/// `settled 15 min after "CMD-1", "CMD-2"`: nothing is observed until their readings have been the same for so long.
struct Settling {
    double seconds = 0;
    std::vector<std::string> channels;
};

/// From one number to another, both included.
struct NumberRange {
    double from = 0;
    double to = 0;
};

/// How readings scatter in a simulated plant: around the middle of their value's range with a standard deviation, or evenly within a
/// range of the value's own.
struct Noise {
    double deviation = 0;
    std::vector<std::pair<Atom*, NumberRange>> ranges; ///< in place of the deviation
};

/// One channel of an observed or commanded variable. A variable that is observed may have several, a command has one.
struct ChannelBinding {
    enum class Kind { observation, command };

    Kind kind = Kind::observation;
    /// The variable's own name, COMPONENT.VARIABLE, where none is given; of a computed one the text of the expression.
    std::string channel;
    std::optional<ChannelExpression> computed = {}; ///< of an observation: in place of a channel
    StateVar* variable = nullptr;
    std::variant<std::monostate, ThresholdTable, ReadingTable>
        translation;                   ///< none: the channel has the names of values
    std::optional<double> holdSeconds; ///< how long the last reading stands for a missing one
    /// An observation of what is given from outside: its readings are taken as they are, and never make anything more or less
    /// probable.
    bool input = false;
    /// Of an observation that is no input: how often its reading changes where the plant leaves it open, as a probability per step,
    /// above 0 and below 1.
    std::optional<double> varies;
    /// Of an observation: a new value counts only when it has been read for so many seconds.
    std::optional<double> persistSeconds = {};
    std::optional<Settling> settling = {}; ///< of an observation
    /// Of an observation: how probable it is that a reading has nothing to do with the plant, above 0 and below 1.
    std::optional<double> misread = {};
    /// Of an observation with limits, not computed: what its readings can be at all, and how a simulated plant spreads them.
    std::optional<NumberRange> physical = {};
    std::optional<Noise> noise = {};

    /// Whether its value is known only when all of a step was read.
    bool isLate() const;
    /// The value that a number is read as, null if none; `last` is the value before, null if none. Computed limits are taken as they are.
    Atom* read(double number, const Atom* last = nullptr) const;
    /// The same for a text: one that is mapped, or else the name of a value.
    Atom* read(std::string_view text) const;
};

/// All that a model file says about a plant beyond its model.
struct Bindings {
    double stepSeconds = 1; ///< the length of a step
    std::vector<ChannelBinding> channels;
    std::unordered_map<const StateVar*, double> lost; ///< that a command does not arrive
    /// What somebody can go and look at, though no channel reads it; each once, in the order of their declarations.
    std::vector<StateVar*> measurable = {};
};

} // namespace plant
