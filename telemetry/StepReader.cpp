#include "telemetry/StepReader.h"

#include "telemetry/LineReader.h"

#include <fmt/format.h>
#include <utility>

namespace telemetry {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

StepReader::StepReader(std::unique_ptr<LineSource> lines, const plant::Model& model,
                       const plant::Bindings& bindings, const ReadSettings& settings)
    : settings_(settings), lines_(std::move(lines)), builder_(model, bindings, settings),
      time_(settings.timeFormat), json_(builder_, time_, settings)
{
}

StepReader::StepReader(const std::string& path, const plant::Model& model,
                       const plant::Bindings& bindings, const ReadSettings& settings)
    : StepReader(std::make_unique<LineReader>(path, settings.mostBytes), model, bindings, settings)
{
}

StepReader::Next StepReader::mistake(text::Diagnostic error, bool endsReading)
{
    error.file = lines_->name();
    ended_ = endsReading || !settings_.skipBad;
    return Mistake{std::move(error), ended_};
}

// Finds out the format from the first line. Returns nothing when that is done, else what next() is to return.
std::optional<StepReader::Next> StepReader::begin()
{
    if (table_) return readHeader();
    std::string_view line;
    do {
        if (!lines_->next(line)) return End{lines_->interrupted()};
        if (isCut()) return End{};
        if (lines_->lineNumber() == 1 && line.starts_with(byteOrderMark))
            line.remove_prefix(byteOrderMark.size());
    } while (isBlank(line));
    if (line[line.find_first_not_of(" \t")] == '{') {
        first_ = line;
        firstLine_ = lines_->lineNumber();
        begun_ = true;
        return std::nullopt;
    }
    if (isTooLong(line)) return tooLong(line, true);
    if (const std::size_t bracket = line.find_first_not_of(" \t"); line[bracket] == '[') {
        const text::Message array{
            "found an array where a step or a header begins",
            "JSON, a step a line, or a table with a header",
            "write each step on a line of its own, without brackets around them"};
        return mistake(text::errorAt(array, {}, {lines_->lineNumber(), bracket + 1}, line, 1), true);
    }
    table_.emplace(*lines_, builder_, settings_, line);
    return readHeader();
}

std::optional<StepReader::Next> StepReader::readHeader()
{
    auto result = table_->readHeader();
    if (const auto* none = std::get_if<CsvSteps::None>(&result)) return End{none->interrupted};
    if (auto* error = std::get_if<text::Diagnostic>(&result))
        return mistake(std::move(*error), true);
    begun_ = true;
    return std::nullopt;
}

bool StepReader::isCut()
{
    cut_ = settings_.mayGrow && lines_->unended() && lines_->lineNumber() > skipTo_;
    return cut_;
}

bool StepReader::isTooLong(std::string_view line) const
{
    return lines_->tooLong() || line.size() > settings_.mostBytes;
}

StepReader::Next StepReader::tooLong(std::string_view line, bool endsReading)
{
    const text::Message what{fmt::format("this line has more than {} bytes", settings_.mostBytes),
                             "shorter lines", ""};
    return mistake(text::errorAt(what, {}, {lines_->lineNumber(), 1}, line, 1), endsReading);
}

// Passes over the lines that were done with when the restored state was taken. Returns as begin() does.
std::optional<StepReader::Next> StepReader::skip()
{
    bool skipped = true;
    if (table_) {
        skipped = table_->skipTo(skipTo_);
    } else {
        std::string_view line;
        if (firstLine_ <= skipTo_) firstLine_ = 0;
        while (skipped && lines_->lineNumber() < skipTo_) {
            skipped = lines_->next(line);
        }
    }
    if (!skipped && lines_->interrupted()) return End{true};
    const std::size_t wanted = skipTo_;
    skipTo_ = 0;
    if (skipped) return std::nullopt;
    text::Diagnostic error;
    error.message = fmt::format("the input ends after {} lines, and {} of it were read before",
                                lines_->lineNumber(), wanted);
    return mistake(std::move(error), true);
}

StepReader::Next StepReader::next()
{
    if (ended_) return End{};
    if (!begun_) {
        if (auto result = begin()) return std::move(*result);
    }
    if (skipTo_ > 0) {
        if (auto result = skip()) return std::move(*result);
    }
    if (!table_) return nextLine();
    auto result = table_->next();
    if (auto* step = std::get_if<Step>(&result)) {
        step->wallClock = table_->isWallClock();
        return std::move(*step);
    }
    if (auto* error = std::get_if<text::Diagnostic>(&result))
        return mistake(std::move(*error), false);
    return End{std::get<CsvSteps::None>(result).interrupted};
}

StepReader::Next StepReader::nextLine()
{
    std::string_view line = first_;
    if (firstLine_ > 0) {
        firstLine_ = 0;
        return parseLine(line);
    }
    do {
        if (!lines_->next(line)) return End{lines_->interrupted()};
        if (isCut()) return End{};
    } while (isBlank(line));
    return parseLine(line);
}

StepReader::Next StepReader::parseLine(std::string_view line)
{
    if (isTooLong(line)) return tooLong(line, false);
    auto result = json_.parse(line, lines_->lineNumber());
    if (auto* step = std::get_if<Step>(&result)) {
        step->wallClock = time_.isWallClock();
        return std::move(*step);
    }
    return mistake(std::move(std::get<text::Diagnostic>(result)), false);
}

ReaderState StepReader::state() const
{
    ReaderState state = builder_.state();
    if (!begun_ || skipTo_ > 0) {
        state.lines = restoredLines_;
    } else if (table_) {
        state.lines = table_->linesDone();
    } else {
        state.lines = lines_->lineNumber() - ((firstLine_ > 0 || cut_) ? 1 : 0);
    }
    return state;
}

std::vector<text::Diagnostic> StepReader::named(std::vector<text::Diagnostic> notes) const
{
    for (text::Diagnostic& note : notes) {
        note.file = lines_->name();
    }
    return notes;
}

std::vector<text::Diagnostic> StepReader::takeNotes()
{
    return named(builder_.notes().take());
}

std::vector<text::Diagnostic> StepReader::noteSummary() const
{
    return named(builder_.notes().summary());
}

std::optional<std::size_t> StepReader::cutAt() const
{
    if (cut_) return lines_->lineNumber();
    if (table_ && table_->isCut()) return table_->linesDone() + 1;
    return std::nullopt;
}

void StepReader::restore(const ReaderState& state, Input input)
{
    builder_.restore(state);
    skipTo_ = input == Input::same ? state.lines : 0;
    restoredLines_ = skipTo_;
}

} // namespace telemetry
