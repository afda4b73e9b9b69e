// The errors and warnings of a model, over all of its files.
#pragma once

#include "language/syntax/Syntax.h"
#include "plant/PlaceHandle.h"
#include "text/Diagnostics.h"
#include "text/SourceText.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace language {

/// The texts of a model; a range's `file` is the index of its text.
using SourceTexts = std::vector<std::unique_ptr<text::SourceText>>;

/// Makes diagnostics of what is wrong with ranges of these texts, each range once: an expression in a component is wrong in all of
/// its instances, and is reported for the first. After `limit` errors it only counts.
class Report : public plant::PlaceBook {
public:
    Report(const SourceTexts& sources, std::size_t limit) : sources_(sources), gathered_(limit) {}

    void error(const text::Range& at, std::string message, std::string expected = {},
               std::string hint = {});
    void warning(const text::Range& at, std::string message, std::string hint = {});
    /// An error that was made elsewhere, such as in the parser.
    void take(std::uint32_t file, text::Diagnostic error)
    {
        gathered_.error(file, std::move(error));
    }

    /// The place of a range, for the checks of plant/.
    plant::PlaceHandle at(const text::Range& range)
    {
        return {*this, {range.file, range.line, range.column, range.length}};
    }
    void report(const plant::PlaceKey& at, text::Message what) override;
    /// `line 12` within a file, otherwise `fluids.itms:12`.
    std::string reference(const plant::PlaceKey& to, const plant::PlaceKey& from) const override;
    const plant::Words& words() const override;

    bool failed() const { return gathered_.failed(); }
    /// Further errors would only be counted.
    bool full() const { return gathered_.full(); }

    /// In the order of files, lines and columns, with a last one that says how many are not shown.
    std::vector<text::Diagnostic> errors();
    std::vector<text::Diagnostic> warnings() { return gathered_.takeWarnings(); }

private:
    const SourceTexts& sources_;
    text::Diagnostics gathered_;
};

} // namespace language
