#include "netlist/BenchText.h"

#include <utility>

namespace netlist {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr char controlZ = '\x1A';

} // namespace

BenchText::BenchText(std::string name, std::string_view text) : name_(std::move(name))
{
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    if (text.ends_with(controlZ)) text.remove_suffix(1);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines_.push_back(line);
    }
}

text::Diagnostic BenchText::error(text::Place place, std::size_t length, text::Message message) const
{
    return text::errorAt(std::move(message), name_, place,
                         place.line > 0 ? line(place.line) : std::string_view(), length);
}

} // namespace netlist
