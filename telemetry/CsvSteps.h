// Steps from comma-separated values, in one of two shapes. The header shows which:
//
//     t,XV-A,FT-101              t,name,value
//     0,open,0.02                0,XV-A,open
//     1,,0.06                    0,FT-101,0.02
//                                1,FT-101,0.06
//
// Wide: each row is a step. Long: the rows of one time are a step. The name of a command gives a command, any other name is
// observed, and one that the model does not have is passed over; an empty cell counts for nothing. A row with a mistake is left
// out; in the long shape the other rows of its time stay.
#pragma once

#include "telemetry/CsvRecords.h"
#include "telemetry/ReadSettings.h"
#include "telemetry/StepBuilder.h"
#include "telemetry/TimeFormat.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace telemetry {

class CsvSteps {
public:
    /// `line` is the last one that the source gave, and the first one of the header. Where the input may grow, the last rows of
    /// a long table are no step yet.
    /// Requires: `lines` and the builder outlive this.
    CsvSteps(LineSource& lines, StepBuilder& builder, const ReadSettings& settings,
             std::string_view line);

    /// Whether times are seconds since the beginning of 1970. Known with the first step.
    bool isWallClock() const { return time_.isWallClock(); }

    /// There is nothing more, or with `interrupted`, nothing yet.
    struct None {
        bool interrupted = false;
    };

    /// Reads the header. When it is interrupted, it is called again.
    /// Requires: it is called first, and nothing is called after an error.
    std::variant<std::monostate, text::Diagnostic, None> readHeader();
    /// Passes over lines until `count` of them are done with; false when there are not so many (yet).
    bool skipTo(std::size_t count);
    /// The next step, or a mistake, in which the name of the file is left to the caller.
    std::variant<Step, text::Diagnostic, None> next();
    /// Lines of the input that are done with, with the last step.
    std::size_t linesDone() const { return linesDone_; }
    /// How many mistakes next() gave of lines after those.
    std::size_t mistakesAhead() const { return mistakesAhead_; }
    /// At the end of an input that may grow: there is something after those lines.
    bool isCut() const { return isCut_; }

private:
    struct Column {
        std::string text;
        std::uint32_t name = Names::none; ///< none: the time, or passed over
        Side side = Side::observation;
    };
    using Result = std::variant<Step, text::Diagnostic, None>;
    using Problem = std::optional<text::Diagnostic>;

    Problem findTime();
    Problem readColumns();
    Problem readColumn(std::size_t cell);
    Problem readTime(std::size_t cell, double& t);
    Reading reading(const std::string& text);
    bool isPassedOver(const std::string& name) const;
    Problem find(const std::string& name, std::size_t cell, Column& column) const;
    Problem checkTime(std::size_t cell, double t, std::optional<double> before) const;
    bool isHeaderAgain() const;
    Result atEnd();
    text::Diagnostic noted(text::Diagnostic mistake);
    Result wideRow();
    Problem longRow(std::optional<Step>& step);

    CsvRecords records_;
    StepBuilder& builder_;
    const ReadSettings settings_;
    TimeFormat time_;
    char separator_;
    bool isLong_ = false;
    std::vector<Column> columns_; // of the wide shape
    std::vector<std::string> header_;
    std::size_t timeColumn_ = 0;
    std::string pointed_;             // a number with a point for its comma
    std::optional<double> draftTime_; // of the long shape, while there is a draft
    std::size_t linesDone_ = 0;
    std::size_t mistakesAhead_ = 0;
    bool isCut_ = false;
};

} // namespace telemetry
