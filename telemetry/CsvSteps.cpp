#include "telemetry/CsvSteps.h"

#include "text/NearestName.h"

#include <cmath>
#include <fmt/format.h>
#include <unordered_map>

namespace telemetry {

namespace {

constexpr const char* headers = "'t' and names, such as t,XV-A,FT-101, or t,name,value";

} // namespace

std::variant<std::monostate, text::Diagnostic, CsvSteps::None> CsvSteps::readHeader()
{
    const CsvRecords::Got got = records_.next();
    if (got == CsvRecords::Got::mistake) return records_.mistake();
    if (got != CsvRecords::Got::record) return None{got == CsvRecords::Got::interrupted};
    linesDone_ = records_.linesDone();
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    isLong_ = cells.size() == 3 && cells[0].text == "t" && cells[1].text == "name" &&
              cells[2].text == "value";
    if (isLong_) return {};
    if (auto problem = readColumns()) return std::move(*problem);
    return {};
}

CsvSteps::Problem CsvSteps::readColumns()
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    std::unordered_map<std::string_view, std::size_t> seen;
    bool hasTime = false;
    for (const CsvRecords::Cell& cell : cells) {
        hasTime = hasTime || cell.text == "t";
    }
    if (!hasTime) {
        std::vector<std::string_view> given;
        for (const CsvRecords::Cell& cell : cells) {
            given.push_back(cell.text);
        }
        const bool semicolons = cells.size() == 1 && cells[0].text.find(';') != std::string::npos;
        return records_.errorAtCell({"the first line is neither a step nor a header with 't'",
                                     fmt::format("JSON, a step a line, or a header of {}", headers),
                                     semicolons ? "columns are separated by commas"
                                                : "the column of the time is called 't'"},
                                    0);
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto [first, isNew] = seen.emplace(cells[i].text, i);
        if (!isNew) {
            return records_.errorAtCell(
                {fmt::format("column {} is there twice", text::quoted(cells[i].text)),
                 "each column once",
                 fmt::format("it is the {}. and the {}. column", first->second + 1, i + 1)},
                i);
        }
        Column& column = columns_.emplace_back();
        if (cells[i].text == "t") {
            timeColumn_ = i;
        } else if (auto problem = find(cells[i].text, i, column)) {
            return problem;
        }
    }
    return std::nullopt;
}

CsvSteps::Problem CsvSteps::find(const std::string& name, std::size_t cell, Column& column) const
{
    column.text = name;
    column.name = builder_.names().find(name);
    if (name.empty()) {
        return records_.errorAtCell({"the name is missing", "a channel, or COMPONENT.VARIABLE", ""},
                                    cell);
    }
    if (column.name == Names::none)
        return records_.errorAtCell(builder_.names().unknown(name), cell);
    const Name& meant = builder_.names()[column.name];
    if (!meant.observed.empty() && !meant.commanded.empty())
        return records_.errorAtCell(builder_.names().unknown(name), cell);
    column.side = meant.observed.empty() ? Side::command : Side::observation;
    return std::nullopt;
}

bool CsvSteps::skipTo(std::size_t count)
{
    const bool skipped = records_.skipTo(count);
    if (skipped) linesDone_ = records_.linesDone();
    return skipped;
}

std::variant<Step, text::Diagnostic, CsvSteps::None> CsvSteps::next()
{
    while (true) {
        const CsvRecords::Got got = records_.next();
        if (got == CsvRecords::Got::interrupted) return None{true};
        if (got == CsvRecords::Got::end) return atEnd();
        if (!draftTime_) linesDone_ = records_.linesDone();
        if (got == CsvRecords::Got::mistake) return noted(records_.mistake());
        if (!isLong_) return wideRow();
        std::optional<Step> step;
        if (auto problem = longRow(step)) return noted(std::move(*problem));
        if (step) return std::move(*step);
    }
}

CsvSteps::Result CsvSteps::atEnd()
{
    if (draftTime_ && mayGrow_) {
        isCut_ = true;
        return None{};
    }
    linesDone_ = records_.linesDone();
    isCut_ = records_.isCut();
    mistakesAhead_ = 0;
    if (!draftTime_) return None{};
    const double t = *draftTime_;
    draftTime_.reset();
    return builder_.finish(t);
}

text::Diagnostic CsvSteps::noted(text::Diagnostic mistake)
{
    if (draftTime_) ++mistakesAhead_;
    return mistake;
}

CsvSteps::Problem CsvSteps::readTime(std::size_t cell, double& t) const
{
    const std::string& text = records_.cells()[cell].text;
    const auto number = parseNumber(text);
    if (number && std::isfinite(*number)) {
        t = *number;
        return std::nullopt;
    }
    return records_.errorAtCell(
        {text.empty() ? "the time is missing" : fmt::format("the time is {}", text::quoted(text)),
         "a finite number of seconds", ""},
        cell);
}

CsvSteps::Problem CsvSteps::checkTime(std::size_t cell, double t, std::optional<double> before) const
{
    if (before && !std::isfinite(t - *before))
        return records_.errorAtCell(gapTooLong(t, *before), cell);
    if (!before || t > *before) return std::nullopt;
    return records_.errorAtCell(
        {fmt::format("the time is {}", t),
         fmt::format("a time later than that of the step before, {}", *before), ""},
        cell);
}

CsvSteps::Result CsvSteps::wideRow()
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    if (cells.size() != columns_.size()) {
        return records_.errorAtCell(
            {fmt::format("this row has {} cell{}", cells.size(), cells.size() == 1 ? "" : "s"),
             fmt::format("{}, as many as the header", columns_.size()), ""},
            columns_.size());
    }
    double t = 0;
    if (auto problem = readTime(timeColumn_, t)) return std::move(*problem);
    if (auto problem = checkTime(timeColumn_, t, builder_.time())) return std::move(*problem);
    builder_.begin();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Column& column = columns_[i];
        if (i == timeColumn_ || cells[i].text.empty()) continue;
        const Reading reading{Reading::Kind::cell, 0, cells[i].text};
        if (const auto mistake = builder_.add(column.name, column.text, column.side, reading)) {
            builder_.begin();
            return records_.errorAtCell(*mistake, i);
        }
    }
    return builder_.finish(t);
}

// Adds the row to the draft. A row of a later time ends the step before, but only after it was found to be right.
CsvSteps::Problem CsvSteps::longRow(std::optional<Step>& step)
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    if (cells.size() != 3) {
        return records_.errorAtCell(
            {fmt::format("this row has {} cell{}", cells.size(), cells.size() == 1 ? "" : "s"),
             "3, as many as the header: t,name,value", ""},
            3);
    }
    double t = 0;
    if (auto problem = readTime(0, t)) return problem;
    const bool isOfDraft = draftTime_ && t == *draftTime_;
    if (!isOfDraft) {
        if (auto problem = checkTime(0, t, draftTime_ ? draftTime_ : builder_.time()))
            return problem;
    }
    Column column;
    if (auto problem = find(cells[1].text, 1, column)) return problem;
    const Reading reading{Reading::Kind::cell, 0, cells[2].text};
    const bool isGiven = !reading.text.empty();
    if (isGiven) {
        const auto mistake = isOfDraft
                                 ? builder_.add(column.name, column.text, column.side, reading)
                                 : builder_.check(column.name, column.text, column.side, reading);
        if (mistake) return records_.errorAtCell(*mistake, 2);
    }
    if (isOfDraft) return std::nullopt;
    if (draftTime_) step = builder_.finish(*draftTime_);
    linesDone_ = records_.firstLine() - 1;
    mistakesAhead_ = 0;
    draftTime_ = t;
    if (isGiven) builder_.add(column.name, column.text, column.side, reading);
    return std::nullopt;
}

} // namespace telemetry
