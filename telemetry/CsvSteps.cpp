#include "telemetry/CsvSteps.h"

#include "text/NearestName.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <unordered_map>

namespace telemetry {

namespace {

constexpr const char* headers = "'t' and names, such as t,XV-A,FT-101, or t,name,value";

// What loggers call the time, beside `t`.
constexpr std::array<std::string_view, 6> timeNames{"time",      "timestamp", "datetime",
                                                    "date_time", "date time", "date/time"};

bool isTimeName(std::string_view name)
{
    const auto same = [](char a, char b) {
        return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b - 'A' + 'a') : b);
    };
    return std::any_of(timeNames.begin(), timeNames.end(), [&](std::string_view known) {
        return std::equal(known.begin(), known.end(), name.begin(), name.end(), same);
    });
}

// A comma, unless the header has none outside of quotes, and semicolons or tabs instead.
char separatorOf(std::string_view header)
{
    bool quoted = false;
    bool semicolon = false;
    bool tab = false;
    for (const char sign : header) {
        if (sign == '"') quoted = !quoted;
        if (quoted) continue;
        if (sign == ',') return ',';
        semicolon = semicolon || sign == ';';
        tab = tab || sign == '\t';
    }
    return semicolon ? ';' : tab ? '\t' : ',';
}

} // namespace

CsvSteps::CsvSteps(LineSource& lines, StepBuilder& builder, const ReadSettings& settings,
                   std::string_view line)
    : records_(lines, settings.mostBytes, settings.mayGrow), builder_(builder), settings_(settings),
      time_(settings.timeFormat),
      separator_(settings.separator ? settings.separator : separatorOf(line))
{
    records_.setSeparator(separator_);
    records_.takeBack(line);
}

std::variant<std::monostate, text::Diagnostic, CsvSteps::None> CsvSteps::readHeader()
{
    const CsvRecords::Got got = records_.next();
    if (got == CsvRecords::Got::mistake) return records_.mistake();
    if (got != CsvRecords::Got::record) return None{got == CsvRecords::Got::interrupted};
    linesDone_ = records_.linesDone();
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    if (auto problem = findTime()) return std::move(*problem);
    for (const CsvRecords::Cell& cell : cells) {
        header_.push_back(cell.text);
    }
    isLong_ = cells.size() == 3 && timeColumn_ == 0 && cells[1].text == "name" &&
              cells[2].text == "value";
    if (!isLong_) {
        if (auto problem = readColumns()) return std::move(*problem);
    }
    const std::string& time = cells[timeColumn_].text;
    time_ = TimeFormat(settings_.timeFormat, time != "t");
    if (settings_.timeColumn.empty() && time != "t")
        builder_.notes().say(fmt::format("the times are read from column {}", text::quoted(time)));
    if (!settings_.separator && separator_ != ',') {
        builder_.notes().say(fmt::format("the cells are separated by {}",
                                         separator_ == ';' ? "semicolons" : "tabs"));
    }
    return {};
}

CsvSteps::Problem CsvSteps::findTime()
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    const std::string wanted = settings_.timeColumn.empty() ? "t" : settings_.timeColumn;
    std::vector<std::size_t> usual;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].text == wanted) {
            timeColumn_ = i;
            return std::nullopt;
        }
        if (isTimeName(cells[i].text)) usual.push_back(i);
    }
    if (settings_.timeColumn.empty() && usual.size() == 1) {
        timeColumn_ = usual.front();
        return std::nullopt;
    }
    if (!settings_.timeColumn.empty()) {
        std::vector<std::string_view> given;
        for (const CsvRecords::Cell& cell : cells) {
            given.push_back(cell.text);
        }
        return records_.errorAtCell({fmt::format("the header has no column {}", text::quoted(wanted)),
                                     "the column of the time", text::didYouMean(wanted, given)},
                                    0);
    }
    return records_.errorAtCell(
        {"the first line is neither a step nor a header with 't'",
         fmt::format("JSON, a step a line, or a header of {}", headers),
         usual.empty()
             ? "--time-column NAME says which column has the time"
             : fmt::format("--time-column {} or {} says which column has the time",
                           text::quoted(cells[usual[0]].text), text::quoted(cells[usual[1]].text))},
        0);
}

CsvSteps::Problem CsvSteps::readColumns()
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    std::unordered_map<std::string_view, std::size_t> seen;
    std::vector<std::string_view> header;
    std::vector<std::string_view> unknown;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        header.push_back(cells[i].text);
        const bool passedOver = i != timeColumn_ && isPassedOver(cells[i].text);
        const auto [first, isNew] = seen.emplace(cells[i].text, i);
        if (!isNew && !passedOver) {
            return records_.errorAtCell(
                {fmt::format("column {} is there twice", text::quoted(cells[i].text)),
                 "each column once",
                 fmt::format("it is the {}. and the {}. column", first->second + 1, i + 1)},
                i);
        }
        Column& column = columns_.emplace_back();
        if (passedOver) {
            unknown.push_back(cells[i].text);
        } else if (i != timeColumn_) {
            if (auto problem = find(cells[i].text, i, column)) return problem;
        }
    }
    if (!unknown.empty() && unknown.size() + 1 == cells.size()) {
        const std::vector<std::string> known = builder_.names().texts();
        return records_.errorAtCell(
            {"the model knows no column of this header", "names of channels, or COMPONENT.VARIABLE",
             text::didYouMean(unknown.front(), {known.begin(), known.end()})},
            timeColumn_ == 0 ? 1 : 0);
    }
    builder_.notes().passOverColumns(unknown, header, builder_.names());
    return std::nullopt;
}

bool CsvSteps::isPassedOver(const std::string& name) const
{
    return !settings_.knownNamesOnly && builder_.names().find(name) == Names::none;
}

// With a decimal comma, a text with a point is no number.
Reading CsvSteps::reading(const std::string& text)
{
    if (settings_.decimal == '.') return {Reading::Kind::cell, 0, text};
    if (!parseNumber(text, settings_.decimal)) return {Reading::Kind::text, 0, text};
    pointed_ = text;
    std::replace(pointed_.begin(), pointed_.end(), settings_.decimal, '.');
    return {Reading::Kind::cell, 0, pointed_};
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
    column.side = meant.commanded.empty() ? Side::observation : Side::command;
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
        if (isHeaderAgain()) {
            builder_.notes().passOverHeader(records_.firstLine());
            continue;
        }
        if (!isLong_) return wideRow();
        std::optional<Step> step;
        if (auto problem = longRow(step)) return noted(std::move(*problem));
        if (step) return std::move(*step);
    }
}

// A logger that was started anew writes it anew.
bool CsvSteps::isHeaderAgain() const
{
    const std::vector<CsvRecords::Cell>& cells = records_.cells();
    return std::equal(cells.begin(), cells.end(), header_.begin(), header_.end(),
                      [](const auto& cell, const std::string& name) { return cell.text == name; });
}

CsvSteps::Result CsvSteps::atEnd()
{
    if (draftTime_ && settings_.mayGrow) {
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

CsvSteps::Problem CsvSteps::readTime(std::size_t cell, double& t)
{
    const std::string& text = records_.cells()[cell].text;
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const double time = text.empty() ? none : time_.read(text, settings_.decimal).value_or(none);
    if (auto finding = time_.takeFinding()) builder_.notes().say(std::move(*finding));
    if (std::isfinite(time)) {
        t = time;
        return std::nullopt;
    }
    return records_.errorAtCell(
        {text.empty() ? "the time is missing" : fmt::format("the time is {}", text::quoted(text)),
         time_.expected(), time_.hint(text)},
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
        if (column.name == Names::none || cells[i].text.empty()) continue;
        if (const auto mistake =
                builder_.add(column.name, column.text, column.side, reading(cells[i].text))) {
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
    const bool passedOver = isPassedOver(cells[1].text);
    if (passedOver) {
        builder_.notes().passOverKey(cells[1].text, builder_.names());
    } else if (auto problem = find(cells[1].text, 1, column)) {
        return problem;
    }
    const Reading given = reading(cells[2].text);
    const bool isGiven = !passedOver && !cells[2].text.empty();
    if (isGiven) {
        const auto mistake = isOfDraft
                                 ? builder_.add(column.name, column.text, column.side, given)
                                 : builder_.check(column.name, column.text, column.side, given);
        if (mistake) return records_.errorAtCell(*mistake, 2);
    }
    if (isOfDraft) return std::nullopt;
    if (draftTime_) step = builder_.finish(*draftTime_);
    linesDone_ = records_.firstLine() - 1;
    mistakesAhead_ = 0;
    draftTime_ = t;
    if (isGiven) builder_.add(column.name, column.text, column.side, given);
    return std::nullopt;
}

} // namespace telemetry
