// What happened in a plant, read step by step from a file, from standard input as it comes, or from any other source of lines.
//
//     telemetry::StepReader reader(path, *model, bindings, {});
//     while (true) {
//         auto next = reader.next();
//         if (const auto* step = std::get_if<telemetry::Step>(&next)) ...
//         else if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) std::cerr << mistake->error.format();
//         else break;
//     }
//
// SoundSteps.h has this loop. The first line that is not empty decides the format: `{` begins JSON Lines (JsonLine.h), anything
// else is the header of a table (CsvSteps.h). A step is returned as soon as it is complete: with the end of its line, or in a long
// table, whose rows of one time are a step, with the first row of a later time. A byte order mark at the beginning is passed over;
// lines end with LF or CR LF.
#pragma once

#include "plant/Bindings.h"
#include "plant/Model.h"
#include "telemetry/CsvSteps.h"
#include "telemetry/JsonLine.h"
#include "telemetry/LineSource.h"
#include "telemetry/ReadSettings.h"
#include "telemetry/ReaderState.h"
#include "telemetry/StepBuilder.h"
#include "telemetry/StepSource.h"
#include "telemetry/TimeFormat.h"
#include "text/Diagnostic.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace telemetry {

class StepReader : public StepSource {
public:
    /// Reads the lines that the source gives.
    /// Requires: the model and the bindings outlive this, and the bindings are not changed.
    StepReader(std::unique_ptr<LineSource> lines, const plant::Model& model,
               const plant::Bindings& bindings, const ReadSettings& settings = {});
    /// Reads a file; `-` is standard input. Requires the same. Throws ReadFailure when the file cannot be opened.
    StepReader(const std::string& path, const plant::Model& model, const plant::Bindings& bindings,
               const ReadSettings& settings = {});

    /// The next step, or what is wrong with a line; the plant's state as far as it is remembered here is the same after a mistake as
    /// before. Linear in the line and in the channels that are held.
    std::variant<Step, Mistake, End> next() override;

    ReaderState state() const override;
    void restore(const ReaderState& state, Input input = Input::same) override;

    /// Whether the times read so far are seconds since the beginning of 1970.
    bool isWallClock() const { return table_ ? table_->isWallClock() : time_.isWallClock(); }
    /// At the end of an input that may grow: the line from which on it was not taken.
    std::optional<std::size_t> cutAt() const;
    /// How many of the mistakes that next() gave are of lines that state() does not count as done.
    std::size_t mistakesAhead() const { return table_ ? table_->mistakesAhead() : 0; }

    /// What was found out of the input or passed over since the last call, and the counts of all that was passed over.
    std::vector<text::Diagnostic> takeNotes();
    std::vector<text::Diagnostic> noteSummary() const;

    double doneShare() const override { return lines_->doneShare(); }
    const std::string& name() const override { return lines_->name(); }

private:
    using Next = std::variant<Step, Mistake, End>;

    std::optional<Next> begin();
    std::optional<Next> readHeader();
    std::optional<Next> skip();
    bool isCut();
    bool isTooLong(std::string_view line) const;
    Next tooLong(std::string_view line, bool endsReading);
    std::vector<text::Diagnostic> named(std::vector<text::Diagnostic> notes) const;
    Next mistake(text::Diagnostic error, bool endsReading);
    Next nextLine();
    Next parseLine(std::string_view line);

    ReadSettings settings_;
    std::unique_ptr<LineSource> lines_;
    StepBuilder builder_;
    TimeFormat time_;
    JsonLineParser json_;
    std::optional<CsvSteps> table_;
    std::string first_; // the first line of JSON, until it is read
    std::size_t firstLine_ = 0;
    bool begun_ = false; // the format is known, and the header read
    bool ended_ = false;
    bool cut_ = false; // the last line of JSON has no end, and is left
    std::size_t skipTo_ = 0;
    std::size_t restoredLines_ = 0;
};

} // namespace telemetry
