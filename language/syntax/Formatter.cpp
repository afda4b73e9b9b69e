#include "language/syntax/Formatter.h"

#include "language/syntax/Layout.h"
#include "language/syntax/Parser.h"
#include "language/syntax/Spacing.h"
#include "language/syntax/Token.h"

#include <algorithm>
#include <set>

namespace language {

namespace {

using namespace syntax;

// Where the cells of a statement begin, its first one aside.
using Starts = std::set<std::size_t>;

class Formatter {
public:
    Formatter(const text::SourceText& source, const TokenList& list) : source_(source), list_(list)
    {
    }

    std::string run(const File& file)
    {
        for (const Declaration& declaration : file.declarations) {
            std::visit(*this, declaration);
        }
        comments(list_.tokens.size() - 1, 0);
        return layOut(lines_);
    }

    void operator()(const Import& import) { statement(import.range, LineKind::other, {}); }
    void operator()(const Constant& constant)
    {
        const Span span = spanOf(constant.range);
        statement(constant.range, LineKind::constant, {first(span, TokenKind::equals)});
    }
    void operator()(const Component& component) { block(component.range, component.members); }
    void operator()(const System& system) { block(system.range, system.members); }
    void operator()(const Loop& loop)
    {
        const Span span = spanOf(loop.range);
        const bool inBraces = token(span.end - 1).kind == TokenKind::closeBrace && isBlock(span);
        if (inBraces) {
            block(loop.range, loop.members);
        } else {
            statement(loop.range, LineKind::other, {}, loopSpacing(loop));
        }
    }
    void operator()(const Variable& variable)
    {
        const Span span = spanOf(variable.range);
        const std::size_t brace = first(span, TokenKind::openBrace);
        const bool inBraces = brace != span.end;
        if (inBraces && !onOneLine(span)) {
            listBlock(span, brace, LineKind::variable, {span.begin + 1}, variable.values,
                      LineKind::value);
        } else if (inBraces) {
            valuesOnOneLine(span, brace, variable);
        } else {
            statement(variable.range, LineKind::variable,
                      {span.begin + 1, first(span, TokenKind::colon) + 1});
        }
    }
    void operator()(const Law& law)
    {
        const Span span = spanOf(law.range);
        Starts starts;
        const std::size_t arrow = firstOutside(span, [](TokenKind kind) {
            return kind == TokenKind::arrow || kind == TokenKind::doubleArrow;
        });
        if (arrow != span.end) starts.insert(arrow);
        statement(law.range, LineKind::law, starts);
    }
    void operator()(const Transition& transition)
    {
        const Span span = spanOf(transition.range);
        Starts starts{span.begin + 1};
        std::size_t shape = 0;
        for (const TokenKind kind : {TokenKind::arrow, TokenKind::whenWord, TokenKind::colon}) {
            const std::size_t found =
                firstOutside(span, [kind](TokenKind other) { return other == kind; });
            if (found != span.end) starts.insert(found);
            shape = 2 * shape + (found != span.end ? 1 : 0);
        }
        Spacing spacing;
        spacing.colonStandsFree = true;
        statement(transition.range, LineKind::transition, starts, spacing, shape);
    }
    void operator()(const Part& part)
    {
        const Span span = spanOf(part.range);
        const std::size_t brace = first(span, TokenKind::openBrace);
        const Starts starts{first(span, TokenKind::colon) + 1};
        if (brace != span.end && !onOneLine(span)) {
            listBlock(span, brace, LineKind::part, starts, part.initials, LineKind::initial);
        } else {
            statement(part.range, LineKind::part, starts);
        }
    }
    void operator()(const InitialValue& initial)
    {
        statement(initial.range, LineKind::initial,
                  {first(spanOf(initial.range), TokenKind::equals)});
    }
    void operator()(const Binding& binding)
    {
        const Span span = spanOf(binding.range);
        Starts starts{span.begin + 1};
        std::size_t shape = 0;
        for (const TokenKind kind : {TokenKind::fromWord, TokenKind::colon}) {
            const std::size_t found = first(span, kind);
            if (found != span.end) starts.insert(found);
            shape = 2 * shape + (found != span.end ? 1 : 0);
        }
        Spacing spacing;
        spacing.colonStandsFree = true;
        spacing.parenthesisStandsFree = true;
        statement(binding.range, LineKind::binding, starts, spacing, shape);
    }
    void operator()(const StepLength& step) { statement(step.range, LineKind::other, {}); }

private:
    // Indices of tokens, the end excluded.
    struct Span {
        std::size_t begin;
        std::size_t end;
    };

    const Token& token(std::size_t index) const { return list_.tokens[index]; }

    Span spanOf(const text::Range& range) const
    {
        const auto& tokens = list_.tokens;
        const auto begin = std::lower_bound(
            tokens.begin(), tokens.end(), range, [](const Token& a, const text::Range& b) {
                return a.line != b.line ? a.line < b.line : a.column < b.column;
            });
        const std::uint32_t end = begin->offset + range.length;
        const auto after =
            std::lower_bound(begin, tokens.end(), end,
                             [](const Token& a, std::uint32_t offset) { return a.offset < offset; });
        return {static_cast<std::size_t>(begin - tokens.begin()),
                static_cast<std::size_t>(after - tokens.begin())};
    }

    std::size_t first(const Span& span, TokenKind kind) const
    {
        std::size_t index = span.begin;
        while (index < span.end && token(index).kind != kind) {
            ++index;
        }
        return index;
    }

    // The first that is not in parentheses.
    template <typename Predicate>
    std::size_t firstOutside(const Span& span, const Predicate& wanted) const
    {
        std::size_t open = 0;
        for (std::size_t index = span.begin; index < span.end; ++index) {
            const TokenKind kind = token(index).kind;
            if (kind == TokenKind::openParenthesis) ++open;
            if (kind == TokenKind::closeParenthesis) --open;
            if (open == 0 && wanted(kind)) return index;
        }
        return span.end;
    }

    bool onOneLine(const Span& span) const
    {
        const bool same = token(span.begin).line == token(span.end - 1).line;
        const auto comment = firstComment(span.begin + 1);
        return same && (comment == list_.comments.end() || comment->nextToken >= span.end);
    }

    // Whether the loop's braces are its own: those of `in {...}` stand behind a colon.
    bool isBlock(const Span& span) const
    {
        return first(span, TokenKind::openBrace) < first(span, TokenKind::colon);
    }

    std::vector<Comment>::const_iterator firstComment(std::size_t nextToken) const
    {
        return std::lower_bound(
            list_.comments.begin(), list_.comments.end(), nextToken,
            [](const Comment& comment, std::size_t index) { return comment.nextToken < index; });
    }

    // ---- lines

    void add(Line line, std::uint32_t firstLine, std::uint32_t lastLine)
    {
        const bool blank = !lines_.empty() && firstLine > lastSourceLine_ + 1;
        line.blankBefore = blank && !blockBegins_;
        blockBegins_ = false;
        lastSourceLine_ = std::max(lastSourceLine_, lastLine);
        lines_.push_back(std::move(line));
    }

    // The comments that were not written yet and stand before the token.
    void comments(std::size_t before, std::size_t depth)
    {
        for (; nextComment_ < list_.comments.size() &&
               list_.comments[nextComment_].nextToken <= before;
             ++nextComment_) {
            const Comment& comment = list_.comments[nextComment_];
            if (comment.firstOnLine || lines_.empty()) {
                Line line;
                line.depth = depth;
                line.cells.push_back(text(comment, depth));
                add(std::move(line), comment.line, comment.lastLine);
            } else {
                Line& last = lines_.back();
                last.comment += (last.comment.empty() ? "" : " ") + text(comment, depth);
                lastSourceLine_ = std::max(lastSourceLine_, comment.lastLine);
            }
        }
    }

    // The comment's text: without blanks at the ends of its lines, and lines that begin with `*` below its first one.
    std::string text(const Comment& comment, std::size_t depth) const
    {
        std::string_view rest =
            std::string_view(source_.text()).substr(comment.offset, comment.length);
        std::string written;
        for (bool firstLine = true; !rest.empty() || firstLine; firstLine = false) {
            const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
            std::string_view line = rest.substr(0, end);
            rest.remove_prefix(end);
            if (rest.starts_with("\r\n")) rest.remove_prefix(1);
            if (!rest.empty()) rest.remove_prefix(1);
            line = line.substr(0, line.find_last_not_of(" \t\f\v") + 1);
            const std::size_t start = std::min(line.find_first_not_of(" \t"), line.size());
            if (!firstLine) {
                written += '\n';
                if (line.substr(start).starts_with('*')) {
                    written += std::string(4 * depth + 1, ' ');
                    line.remove_prefix(start);
                }
            }
            written += line;
        }
        return written;
    }

    // Tokens as one line, or as several where there are breaks or comments in it; then it is a single cell.
    Line line(const Span& span, LineKind kind, const Starts& starts, Spacing spacing)
    {
        Line made;
        made.kind = kind;
        made.depth = depth_;
        made.cells.emplace_back();
        const std::string fold = "\n" + std::string(4 * depth_ + 8, ' ');
        std::string whole;
        bool folded = false;
        bool fresh = true; // nothing on the physical line yet
        for (std::size_t index = span.begin; index < span.end; ++index) {
            const Token& next = token(index);
            for (; index > span.begin && nextComment_ < list_.comments.size() &&
                   list_.comments[nextComment_].nextToken <= index;
                 ++nextComment_) {
                const Comment& comment = list_.comments[nextComment_];
                if (comment.firstOnLine && !fresh) whole += fold;
                if (!comment.firstOnLine && !fresh) whole += ' ';
                whole += text(comment, depth_ + 2);
                folded = true;
                fresh = !comment.block;
                if (fresh) whole += fold;
            }
            const bool breaks = next.firstOnLine && index > span.begin &&
                                next.kind != TokenKind::openBrace && !fresh;
            const std::string_view written =
                std::string_view(source_.text()).substr(next.offset, next.length);
            const bool blank = spacing.before(next.kind, written);
            if (breaks) {
                whole += fold;
                folded = true;
            } else if (blank && !fresh) {
                whole += ' ';
            }
            if (starts.contains(index)) {
                made.cells.emplace_back();
            } else if (blank && index > span.begin) {
                made.cells.back() += ' ';
            }
            made.cells.back() += written;
            whole += written;
            fresh = false;
        }
        if (folded) {
            made.kind = LineKind::other;
            made.cells = {whole};
        }
        return made;
    }

    void statement(const text::Range& range, LineKind kind, const Starts& starts,
                   const Spacing& spacing = {}, std::size_t shape = 0)
    {
        span(spanOf(range), kind, starts, spacing, shape);
    }

    void span(const Span& span, LineKind kind, const Starts& starts, const Spacing& spacing = {},
              std::size_t shape = 0)
    {
        comments(span.begin, depth_);
        Line made = line(span, kind, starts, spacing);
        made.shape = shape;
        add(std::move(made), token(span.begin).line, token(span.end - 1).line);
    }

    // ---- blocks

    void openBlock(const Span& head, LineKind kind, const Starts& starts)
    {
        span(head, kind, starts);
        blockBegins_ = true;
        ++depth_;
    }

    void closeBlock(const Span& tail)
    {
        comments(tail.begin, depth_);
        --depth_;
        blockBegins_ = true; // no blank line before the brace
        span(tail, LineKind::other, {});
    }

    void block(const text::Range& range, const std::vector<Member>& members)
    {
        const Span all = spanOf(range);
        const std::size_t brace = first(all, TokenKind::openBrace);
        openBlock({all.begin, brace + 1}, LineKind::other, {});
        for (const Member& member : members) {
            std::visit(*this, member);
        }
        closeBlock({all.end - 1, all.end});
    }

    // A block of values or of initial values, each on a line of its own.
    template <typename Item>
    void listBlock(const Span& all, std::size_t brace, LineKind kind, const Starts& starts,
                   const std::vector<Item>& items, LineKind itemKind)
    {
        openBlock({all.begin, brace + 1}, kind, starts);
        for (const Item& item : items) {
            const Span own = spanOf(item.range);
            const std::size_t start =
                itemKind == LineKind::value ? own.begin + 1 : first(own, TokenKind::equals);
            span(own, itemKind, {start});
        }
        closeBlock({first(all, TokenKind::closeBrace), all.end});
    }

    // `mode position { closed initial, open }`, with commas whether they were written or not.
    void valuesOnOneLine(const Span& all, std::size_t brace, const Variable& variable)
    {
        comments(all.begin, depth_);
        Line made = line({all.begin, brace + 1}, LineKind::variable, {all.begin + 1}, {});
        for (std::size_t i = 0; i < variable.values.size(); ++i) {
            const Line value = line(spanOf(variable.values[i].range), LineKind::other, {}, {});
            made.cells.back() += (i > 0 ? ", " : " ") + value.cells.front();
        }
        const Line tail =
            line({first(all, TokenKind::closeBrace), all.end}, LineKind::other, {}, {});
        made.cells.back() += " " + tail.cells.front();
        add(std::move(made), token(all.begin).line, token(all.end - 1).line);
    }

    // In a loop of one line the colon of a binding stands free, as it does outside, and those of the loops do not.
    static Spacing loopSpacing(const Loop& loop)
    {
        Spacing spacing;
        spacing.colonStandsFree = true;
        spacing.parenthesisStandsFree = true;
        for (const Loop* inner = &loop; inner; inner = std::get_if<Loop>(&inner->members.front())) {
            ++spacing.tightColons;
        }
        return spacing;
    }

    const text::SourceText& source_;
    const TokenList& list_;
    std::vector<Line> lines_;
    std::size_t nextComment_ = 0;
    std::size_t depth_ = 0;
    std::uint32_t lastSourceLine_ = 0;
    bool blockBegins_ = true;
};

} // namespace

Formatted format(const text::SourceText& source, const Limits& limits)
{
    Formatted formatted;
    ParsedFile parsed = parse(source, limits);
    formatted.errors = std::move(parsed.errors);
    if (!formatted.errors.empty()) return formatted;
    const TokenList list = tokenize(source, limits.nameLength, limits.errors);
    formatted.text = Formatter(source, list).run(parsed.file);
    return formatted;
}

} // namespace language
