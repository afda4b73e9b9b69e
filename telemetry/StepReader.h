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
// SoundSteps.h has this loop. The first line that is not empty decides the format: `{` begins JSON Lines (JsonLine.h), anything else is the header of a table
// (CsvSteps.h). A step is returned as soon as it is complete: with the end of its line, or in a long table, whose rows of one
// time are a step, with the first row of a later time. A byte order mark at the beginning is passed over; lines end with LF or CR LF.
#pragma once

#include "plant/Bindings.h"
#include "plant/Model.h"
#include "telemetry/CsvSteps.h"
#include "telemetry/JsonLine.h"
#include "telemetry/LineSource.h"
#include "telemetry/ReaderState.h"
#include "telemetry/StepBuilder.h"
#include "telemetry/StepSource.h"
#include "text/Diagnostic.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace telemetry {

struct ReadSettings {
    /// Go on after a line with a mistake, as if it were not there. Otherwise the first mistake ends the reading.
    bool skipBad = false;
    /// Of a line, or of a row of a table. A longer one is a mistake.
    std::size_t mostBytes = std::size_t{16} << 20;
};

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
    /// before. Linear in the line and in the commands of the model.
    std::variant<Step, Mistake, End> next() override;

    ReaderState state() const override;
    void restore(const ReaderState& state, Input input = Input::same) override;

    double doneShare() const override { return lines_->doneShare(); }
    const std::string& name() const override { return lines_->name(); }

private:
    using Next = std::variant<Step, Mistake, End>;

    std::optional<Next> begin();
    std::optional<Next> readHeader();
    std::optional<Next> skip();
    bool isTooLong(std::string_view line) const;
    Next tooLong(std::string_view line, bool endsReading);
    Next mistake(text::Diagnostic error, bool endsReading);
    Next nextLine();
    Next parseLine(std::string_view line);

    ReadSettings settings_;
    std::unique_ptr<LineSource> lines_;
    StepBuilder builder_;
    JsonLineParser json_;
    std::optional<CsvSteps> table_;
    std::string first_; // the first line of JSON, until it is read
    std::size_t firstLine_ = 0;
    bool begun_ = false; // the format is known, and the header read
    bool ended_ = false;
    std::size_t skipTo_ = 0;
    std::size_t restoredLines_ = 0;
};

} // namespace telemetry
