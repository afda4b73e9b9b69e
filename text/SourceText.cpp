#include "text/SourceText.h"

#include <algorithm>
#include <utility>

namespace text {

SourceText::SourceText(std::string name, std::string text, std::uint32_t number)
    : name_(std::move(name)), text_(std::move(text)), number_(number), starts_{0}
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text_.starts_with(byteOrderMark)) text_.erase(0, byteOrderMark.size());
    for (std::size_t i = 0; i < text_.size(); ++i) {
        const bool pair = text_[i] == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n';
        if ((text_[i] == '\n' || text_[i] == '\r') && !pair) starts_.push_back(i + 1);
    }
}

std::string_view SourceText::line(std::size_t number) const
{
    if (number < 1 || number > starts_.size()) return {};
    const std::size_t begin = starts_[number - 1];
    std::size_t end = number < starts_.size() ? starts_[number] : text_.size();
    if (number < starts_.size()) {
        --end;
        if (end > begin && text_[end] == '\n' && text_[end - 1] == '\r') --end;
    }
    return std::string_view(text_).substr(begin, end - begin);
}

Place SourceText::place(std::size_t offset) const
{
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), offset);
    return {static_cast<std::size_t>(after - starts_.begin()), offset - *(after - 1) + 1};
}

Range SourceText::range(std::size_t offset, std::size_t length) const
{
    const Place at = place(offset);
    return {number_, static_cast<std::uint32_t>(at.line), static_cast<std::uint32_t>(at.column),
            static_cast<std::uint32_t>(length)};
}

std::string_view SourceText::at(const Range& range) const
{
    if (range.line < 1 || range.line > starts_.size()) return {};
    const std::size_t begin = std::min(starts_[range.line - 1] + range.column - 1, text_.size());
    return std::string_view(text_).substr(begin, range.length);
}

Diagnostic SourceText::error(const Range& range, std::string message, std::string expected,
                             std::string hint) const
{
    return errorAt({std::move(message), std::move(expected), std::move(hint)}, name_,
                   {range.line, range.column}, line(range.line), range.length);
}

} // namespace text
