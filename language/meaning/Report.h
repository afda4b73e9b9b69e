// The errors and warnings of a model, over all of its files.
#pragma once

#include "language/syntax/Syntax.h"
#include "plant/PlaceHandle.h"
#include "text/SourceText.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace language {

/// The texts of a model; a range's `file` is the index of its text.
using SourceTexts = std::vector<std::unique_ptr<text::SourceText>>;

/// Gathers what is wrong, each once: an expression in a component is wrong in all of its instances, and said to be so for the
/// first. After `limit` errors it only counts.
class Report : public plant::PlaceBook {
public:
    Report(const SourceTexts& sources, std::size_t limit) : sources_(sources), limit_(limit) {}

    void error(const text::Range& at, std::string message, std::string expected = {},
               std::string hint = {});
    void warning(const text::Range& at, std::string message, std::string hint = {});
    /// An error that was made elsewhere, such as in the parser.
    void take(std::uint32_t file, text::Diagnostic error);

    /// The place of a range, for the checks of plant/.
    plant::PlaceHandle at(const text::Range& range)
    {
        return {*this, {range.file, range.line, range.column, range.length}};
    }
    void report(const plant::PlaceKey& at, text::Message what) override;
    std::string reference(const plant::PlaceKey& to, const plant::PlaceKey& from) const override;
    const plant::Words& words() const override;

    bool failed() const { return errorCount_ > 0; }
    /// Further errors would only be counted.
    bool full() const { return errorCount_ >= limit_; }

    /// `fluids.itms:12`, or `line 12` where the other place is in the same file as `seenFrom`.
    std::string where(const text::Range& range, const text::Range& seenFrom) const;

    /// In the order of files, lines and columns, with a last one that says how many were not told.
    std::vector<text::Diagnostic> errors();
    std::vector<text::Diagnostic> warnings();

private:
    using Key = std::tuple<std::uint32_t, std::size_t, std::size_t>; ///< file, line, column

    const SourceTexts& sources_;
    std::size_t limit_;
    std::size_t errorCount_ = 0;
    std::multimap<Key, text::Diagnostic> errors_;
    std::multimap<Key, text::Diagnostic> warnings_;
    std::unordered_set<std::string> told_;
};

} // namespace language
