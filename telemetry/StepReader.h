// What happened in a plant, read step by step from a file or from standard input as it comes.
//
//     telemetry::StepReader reader(path, *model, bindings, {});
//     while (true) {
//         auto next = reader.next();
//         if (const auto* step = std::get_if<telemetry::Step>(&next)) ...
//         else if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) std::cerr << mistake->error.format();
//         else break;
//     }
//
// The first line that is not empty tells the format: `{` begins JSON Lines (JsonLine.h), anything else is the header of a table
// (CsvSteps.h). A step is returned as soon as it is complete: with the end of its line, or in a long table, whose rows of one
// time are a step, with the first row of a later time. A byte order mark at the begin is passed over; lines end with LF or CR LF.
#pragma once

#include "plant/Bindings.h"
#include "plant/Model.h"
#include "telemetry/CsvSteps.h"
#include "telemetry/JsonLine.h"
#include "telemetry/LineReader.h"
#include "telemetry/ReaderState.h"
#include "telemetry/Step.h"
#include "telemetry/StepBuilder.h"
#include "text/Diagnostic.h"

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

/// Something wrong in a line.
struct Mistake {
    text::Diagnostic error;
    bool endsReading = false; ///< nothing comes after it
};

/// There is no further step.
struct End {
    bool interrupted =
        false; ///< a signal ended a read that waited; a further call of next() goes on
};

class StepReader {
public:
    /// `-` is standard input. The model and the bindings outlive this, and the bindings are not changed. Throws ReadFailure
    /// when the file cannot be opened.
    StepReader(const std::string& path, const plant::Model& model, const plant::Bindings& bindings,
               const ReadSettings& settings = {});

    /// The next step, or what is wrong with a line; the plant's state as far as it is remembered here is the same after a mistake as
    /// before. Throws ReadFailure when the file cannot be read. Linear in the line and in the commands of the model.
    std::variant<Step, Mistake, End> next();

    /// What is remembered after the last step that next() returned.
    ReaderState state() const;

    /// Where reading goes on after restore().
    enum class Input {
        same, ///< this is the input that the state was taken of, from its begin: what was done with is passed over
        continuation ///< this begins where that input ended (a table has its header again)
    };
    /// Before the first call of next(). Throws std::invalid_argument when the state is not one of this model.
    void restore(const ReaderState& state, Input input = Input::same);

    /// How much of a file was read, 0 to 1; 0 of what has no size, such as a pipe.
    double doneShare() const { return lines_.doneShare(); }
    /// The input's name for messages.
    const std::string& name() const { return lines_.name(); }

private:
    using Next = std::variant<Step, Mistake, End>;

    std::optional<Next> begin();
    std::optional<Next> readHeader();
    std::optional<Next> skip();
    Next tooLong(std::string_view line, bool endsReading);
    Next mistake(text::Diagnostic error, bool endsReading);
    Next nextLine();
    Next parseLine(std::string_view line);

    ReadSettings settings_;
    LineReader lines_;
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
