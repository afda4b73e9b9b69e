#include "assess/Labels.h"

#include "plant/Names.h"
#include "telemetry/CsvRecords.h"
#include "telemetry/Reading.h"
#include "telemetry/TimeFormat.h"
#include "text/NearestName.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <optional>

namespace assess {

namespace {

constexpr std::size_t mostBytes = std::size_t{1} << 20U;
constexpr std::size_t mostErrors = 20;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view anything = "fault";

std::string trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(" \t") + 1 - begin));
}

// The name without a byte order mark, which a spreadsheet leaves before the first one.
std::string headerOf(std::string_view cell)
{
    if (cell.starts_with(byteOrderMark)) cell.remove_prefix(byteOrderMark.size());
    return trimmed(cell);
}

// Finds what a label names.
class Parts {
public:
    explicit Parts(const plant::Plant& plant) : plant_(plant)
    {
        for (std::size_t i = 0; i < plant.variables().size(); ++i) {
            const plant::PlantVariable& variable = plant.variables()[i];
            const std::string name = plant::nameOf(*variable.variable);
            variables_.emplace(name, static_cast<plant::VariableIndex>(i));
            components_[name.substr(0, name.rfind('.'))];
            if (variable.isMode)
                components_[name.substr(0, name.rfind('.'))].push_back(
                    static_cast<plant::VariableIndex>(i));
        }
    }

    // Says what is wrong with it, if anything.
    std::optional<text::Message> find(const std::string& what, Label& label) const
    {
        if (what == anything) return {};
        const std::size_t sign = what.find('=');
        const std::string left = trimmed(std::string_view(what).substr(0, sign));
        if (sign == std::string::npos && findComponent(left, label)) {
            if (!label.modes.empty()) return {};
            return text::Message{fmt::format("'{}' has no modes", left),
                                 "a component that can fail, or the word fault", ""};
        }
        return findVariable(left,
                            sign == std::string::npos
                                ? std::nullopt
                                : std::optional(trimmed(std::string_view(what).substr(sign + 1))),
                            label);
    }

private:
    // A part of a part is `branch/valve` or `branch.valve`.
    static std::string withSlashes(std::string name)
    {
        std::replace(name.begin(), name.end(), '.', '/');
        return name;
    }

    bool findComponent(const std::string& name, Label& label) const
    {
        const std::string path = withSlashes(name);
        bool found = false;
        for (auto at = components_.lower_bound(path); at != components_.end(); ++at) {
            if (!at->first.starts_with(path)) break;
            if (at->first.size() > path.size() && at->first[path.size()] != '/') continue;
            found = true;
            label.modes.insert(label.modes.end(), at->second.begin(), at->second.end());
        }
        std::sort(label.modes.begin(), label.modes.end());
        return found;
    }

    std::optional<text::Message> findVariable(const std::string& name,
                                              const std::optional<std::string>& value,
                                              Label& label) const
    {
        const std::size_t dot = name.rfind('.');
        const auto found = variables_.find(
            dot == std::string::npos ? name : withSlashes(name.substr(0, dot)) + name.substr(dot));
        if (found == variables_.end()) return unknown(name, value.has_value());
        const plant::PlantVariable& variable = plant_.variable(found->second);
        if (!variable.isMode) {
            return text::Message{fmt::format("'{}' is no mode", name), "a mode, or a component", ""};
        }
        label.modes = {found->second};
        if (!value) return {};
        for (const plant::AtomIndex atom : variable.values) {
            if (plant_.atom(atom)->value == *value) label.values = {atom};
        }
        if (label.values.empty())
            return plant::unknownValue(*value, name, plant::valuesOf(*variable.variable));
        return {};
    }

    text::Message unknown(const std::string& name, bool modesOnly) const
    {
        std::vector<std::string_view> known;
        for (const auto& [variable, index] : variables_) {
            if (plant_.variable(index).isMode) known.push_back(variable);
        }
        if (!modesOnly) {
            for (const auto& [component, modes] : components_) {
                if (!modes.empty()) known.push_back(component);
            }
        }
        return {fmt::format("{} is not known to the model", text::quoted(name)),
                modesOnly
                    ? "COMPONENT.MODE = VALUE"
                    : "a component, COMPONENT.MODE, COMPONENT.MODE = VALUE, or the word fault",
                text::didYouMean(name, known)};
    }

    const plant::Plant& plant_;
    std::map<std::string, plant::VariableIndex> variables_;
    std::map<std::string, std::vector<plant::VariableIndex>> components_; // with their modes
};

class LabelReader {
public:
    LabelReader(telemetry::LineSource& lines, const plant::Plant& plant,
                const std::string& timeFormat)
        : name_(lines.name()), records_(lines, mostBytes, false), parts_(plant),
          time_(timeFormat, true), iso_("iso8601")
    {
    }

    LabelsRead read()
    {
        if (readHeader()) {
            while (read_.errors.size() < mostErrors) {
                const auto got = records_.next();
                if (got == telemetry::CsvRecords::Got::mistake) fail(records_.mistake());
                if (got == telemetry::CsvRecords::Got::record) readRow();
                if (got == telemetry::CsvRecords::Got::end ||
                    got == telemetry::CsvRecords::Got::interrupted)
                    break;
            }
            if (read_.labels.empty() && read_.errors.empty()) failWhole("there is no label");
        }
        if (!read_.errors.empty()) read_.labels.clear();
        return std::move(read_);
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    void fail(text::Diagnostic error)
    {
        error.file = name_;
        read_.errors.push_back(std::move(error));
    }
    void fail(const text::Message& what, std::size_t cell)
    {
        fail(records_.errorAtCell(what, cell));
    }
    void failWhole(const std::string& what)
    {
        text::Diagnostic error;
        error.message = what;
        error.expected = "a header start,end,what, and a row for each fault";
        fail(error);
    }

    bool readHeader()
    {
        switch (records_.next()) {
        case telemetry::CsvRecords::Got::record: break;
        case telemetry::CsvRecords::Got::mistake: fail(records_.mistake()); return false;
        default: failWhole("the file is empty"); return false;
        }
        const auto& cells = records_.cells();
        width_ = cells.size();
        for (std::size_t i = 0; i < width_; ++i) {
            const std::string name = headerOf(cells[i].text);
            for (std::size_t column = 0; column < columns_.size(); ++column) {
                if (name != columnNames[column]) continue;
                if (columns_[column] != none) {
                    fail({fmt::format("column '{}' is there twice", name), "it once", ""}, i);
                    return false;
                }
                columns_[column] = i;
            }
        }
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            if (columns_[column] != none) continue;
            failMissing(columnNames[column]);
            return false;
        }
        return true;
    }

    void failMissing(const std::string& column)
    {
        std::vector<std::string> names;
        for (const auto& cell : records_.cells()) {
            names.push_back(headerOf(cell.text));
        }
        const std::vector<std::string_view> views(names.begin(), names.end());
        const std::string nearest = text::nearestName(column, views);
        fail({fmt::format("there is no column '{}'", column), "a header with start, end and what",
              nearest.empty() ? "" : "rename " + text::quoted(nearest)},
             0);
    }

    std::optional<double> readTime(std::size_t cell)
    {
        const std::string& text = records_.cells()[cell].text;
        std::optional<double> time = time_.read(text);
        if (!time || !std::isfinite(*time)) time = iso_.read(text);
        if (time && std::isfinite(*time)) return time;
        fail({fmt::format("the time is {}", text::quoted(text)), time_.expected(), time_.hint(text)},
             cell);
        return {};
    }

    void readRow()
    {
        const auto& cells = records_.cells();
        if (cells.size() != width_) {
            fail({fmt::format("this row has {} cells", cells.size()),
                  fmt::format("{}, as many as the header", width_), ""},
                 std::min(cells.size(), width_));
            return;
        }
        Label label;
        label.line = records_.firstLine();
        const auto start = readTime(columns_[0]);
        if (!start) return;
        label.start = *start;
        if (!trimmed(cells[columns_[1]].text).empty()) {
            const auto end = readTime(columns_[1]);
            if (!end) return;
            label.end = *end;
            if (label.end <= label.start) {
                fail({"the end is not after the start", "a later time, or nothing", ""},
                     columns_[1]);
                return;
            }
        }
        label.what = trimmed(cells[columns_[2]].text);
        if (auto mistake = parts_.find(label.what, label)) {
            fail(*mistake, columns_[2]);
            return;
        }
        read_.labels.push_back(std::move(label));
    }

    static constexpr std::array<const char*, 3> columnNames{"start", "end", "what"};

    std::string name_;
    telemetry::CsvRecords records_;
    Parts parts_;
    telemetry::TimeFormat time_;
    telemetry::TimeFormat iso_;
    std::array<std::size_t, 3> columns_{none, none, none};
    std::size_t width_ = 0;
    LabelsRead read_;
};

} // namespace

LabelsRead readLabels(telemetry::LineSource& lines, const plant::Plant& plant,
                      const std::string& timeFormat)
{
    return LabelReader(lines, plant, timeFormat).read();
}

} // namespace assess
