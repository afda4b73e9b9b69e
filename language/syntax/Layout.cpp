#include "language/syntax/Layout.h"

#include <algorithm>
#include <cstdint>

namespace language {

namespace {

// What an UTF-8 text takes on a terminal, one place for a character.
std::size_t width(const std::string& text)
{
    const std::size_t lineStart = text.rfind('\n') + 1; // 0 when there is one line
    std::size_t places = 0;
    for (std::size_t i = lineStart; i < text.size(); ++i) {
        if ((static_cast<std::uint8_t>(text[i]) & 0xC0U) != 0x80U) ++places;
    }
    return places;
}

bool continues(const Line& line, const Line& next, std::size_t cell)
{
    return !next.blankBefore && line.kind == next.kind && line.kind != LineKind::other &&
           line.depth == next.depth && next.cells.size() > cell + 1 &&
           (cell < 2 || line.shape == next.shape);
}

// The width of each cell that another follows, per line. A column goes on as long as the lines have the cell.
std::vector<std::vector<std::size_t>> columnWidths(const std::vector<Line>& lines)
{
    std::vector<std::vector<std::size_t>> widths(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        widths[i].resize(lines[i].cells.size());
    }
    for (std::size_t first = 0; first < lines.size(); ++first) {
        for (std::size_t cell = 0; cell + 1 < lines[first].cells.size(); ++cell) {
            if (widths[first][cell] > 0) continue; // a column from above
            std::size_t widest = 0;
            std::size_t last = first;
            for (;; ++last) {
                widest = std::max(widest, width(lines[last].cells[cell]));
                if (last + 1 == lines.size() || !continues(lines[last], lines[last + 1], cell))
                    break;
            }
            for (std::size_t i = first; i <= last; ++i) {
                widths[i][cell] = widest;
            }
        }
    }
    return widths;
}

std::string joined(const Line& line, const std::vector<std::size_t>& widths)
{
    std::string text(4 * line.depth, ' ');
    for (std::size_t i = 0; i < line.cells.size(); ++i) {
        text += line.cells[i];
        if (i + 1 < line.cells.size())
            text += std::string(widths[i] - width(line.cells[i]) + 1, ' ');
    }
    return text;
}

// Comments behind neighbouring lines of one depth begin in one column.
void addComments(const std::vector<Line>& lines, std::vector<std::string>& texts)
{
    constexpr std::size_t gap = 2;
    for (std::size_t first = 0; first < lines.size(); ++first) {
        if (lines[first].comment.empty()) continue;
        std::size_t last = first;
        std::size_t widest = 0;
        for (;; ++last) {
            widest = std::max(widest, width(texts[last]));
            const bool more = last + 1 < lines.size() && !lines[last + 1].comment.empty() &&
                              !lines[last + 1].blankBefore &&
                              lines[last + 1].depth == lines[first].depth;
            if (!more) break;
        }
        for (std::size_t i = first; i <= last; ++i) {
            texts[i] += std::string(widest - width(texts[i]) + gap, ' ') + lines[i].comment;
        }
        first = last;
    }
}

} // namespace

std::string layOut(const std::vector<Line>& lines)
{
    const auto widths = columnWidths(lines);
    std::vector<std::string> texts;
    texts.reserve(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        texts.push_back(joined(lines[i], widths[i]));
    }
    addComments(lines, texts);
    std::string whole;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].blankBefore) whole += '\n';
        whole += texts[i] + '\n';
    }
    return whole;
}

} // namespace language
