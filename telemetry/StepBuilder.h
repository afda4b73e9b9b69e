// Readings gathered to a step, and what is remembered from one step to the next: the time, and the last value of each channel.
//
//     builder.begin();
//     if (auto mistake = builder.add(name, Side::observation, reading)) ...   // the reading is not taken
//     if (builder.timeIsLater(t)) Step step = builder.finish(t);
//
// Nothing is remembered of a draft that is not finished.
#pragma once

#include "telemetry/LateReadings.h"
#include "telemetry/Names.h"
#include "telemetry/ReadNotes.h"
#include "telemetry/ReadSettings.h"
#include "telemetry/ReaderState.h"
#include "telemetry/Reading.h"
#include "telemetry/Step.h"

#include <optional>
#include <vector>

namespace telemetry {

/// What is wrong with a step so long after, or before, the last one that no number can say how long.
text::Message gapTooLong(double t, double before);

class StepBuilder {
public:
    /// Requires: the model and the bindings outlive this, and the bindings are not changed.
    StepBuilder(const plant::Model& model, const plant::Bindings& bindings,
                const ReadSettings& settings = {});

    const Names& names() const { return names_; }
    /// What was passed over.
    ReadNotes& notes() { return notes_; }
    const ReadNotes& notes() const { return notes_; }
    /// Begins a draft without readings. Linear in those of the one before.
    void begin();
    /// Adds a reading of what the name stands for on that side, all of it or, when something is wrong, nothing. `text` is the name
    /// as the input has it. What is no number where one is wanted is noted, and not added, unless the settings make it a mistake.
    std::optional<text::Message> add(std::uint32_t name, std::string_view text, Side side,
                                     const Reading& reading);
    /// What would be wrong with a reading in a draft without readings.
    std::optional<text::Message> check(std::uint32_t name, std::string_view text, Side side,
                                       const Reading& reading) const;
    /// Whether a step may have that time, finite and in seconds.
    bool timeIsLater(double t) const { return !time_ || t > *time_; }
    /// Gives the step of the draft, and begins a new draft. Linear in the channels that are held, and in
    /// the readings (times their logarithm).
    Step finish(double t);

    std::optional<double> time() const { return time_; } ///< of the last step, in seconds
    double stepSeconds() const { return stepSeconds_; }

    /// All but `lines`. Linear in the channels.
    ReaderState state() const;
    /// Throws std::invalid_argument when the state has a variable or value that the model does not have, or a variable that is not bound.
    void restore(const ReaderState& state);

private:
    struct Last {
        Atom* value = nullptr;
        double t = 0;
    };

    using Observed = std::vector<std::pair<std::uint32_t, Observation>>; // with their variables

    std::optional<text::Message> addOperand(const Name& meant, std::uint32_t name,
                                            std::string_view text, Side side,
                                            const Reading& reading);
    bool isUnreadable(const Variable& variable, const Reading& reading) const;
    bool stillHolds(std::uint32_t variable, double t) const;
    void finishLate(double t, Step& step);
    Observed observed(double t, Step& step);
    void join(Observed& observed);

    Names names_;
    LateReadings late_;
    ReadNotes notes_;
    bool readableOnly_;
    double stepSeconds_;
    double gapSeconds_;
    plant::SharedArray<Atom*> defaults_; // of the commands
    std::vector<std::uint32_t> held_;    // variables whose channel is held
    std::vector<Last> last_;             // by variable; of those without a channel it is not used
    std::optional<double> time_;
    std::size_t steps_ = 0;

    std::vector<Atom*> draft_;                   // by variable, null: no reading
    std::vector<std::uint32_t> drafted_;         // the variables with a reading
    std::vector<std::optional<double>> numbers_; // of these readings, by variable
    std::vector<Atom*> values_;                  // of the reading that is being added
    std::vector<std::optional<double>> given_;   // of these, for what is late
    std::vector<bool> waits_;                    // by variable: nothing stands in for its reading
    bool hasSeveral_ = false;                    // a variable with several channels
};

} // namespace telemetry
