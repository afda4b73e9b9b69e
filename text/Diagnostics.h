// The errors and warnings of one or several files, gathered while these are read and checked.
#pragma once

#include "text/Diagnostic.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace text {

/// Puts diagnostics in the order of files, lines and columns; those of one place stay in the order in which they were
/// added. What was added before is dropped: the same mistake is reported once. Errors and warnings are kept apart.
/// Adding costs the logarithm of how many there are.
class Diagnostics {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// Where a diagnostic without a line stands among those of its file.
    enum class WholeFile { first, last };

    /// Once there are `limit` errors, further ones are only counted. Warnings have no limit.
    explicit Diagnostics(std::size_t limit = unlimited, WholeFile wholeFile = WholeFile::first)
        : limit_(limit), wholeFile_(wholeFile)
    {
    }

    /// Adds an error of the file with that number, which orders it; files are numbered by the caller.
    void error(std::uint32_t file, Diagnostic error);
    /// Adds a warning.
    void warning(std::uint32_t file, Diagnostic warning);

    /// True when this is called for that place for the first time. For a caller that reports one error at a place, whatever
    /// it says: it asks before it makes the error.
    bool isFirstAt(std::uint32_t file, Place place);

    /// There is an error.
    bool failed() const { return errorCount_ > 0; }
    /// Further errors would only be counted.
    bool full() const { return errorCount_ >= limit_; }
    /// Of all errors that were added, with those that were only counted, but without repetitions.
    std::size_t errorCount() const { return errorCount_; }
    /// Of the errors that were only counted.
    std::size_t notShown() const { return errorCount_ > limit_ ? errorCount_ - limit_ : 0; }

    /// The errors that are to be shown, in order.
    /// Ensures: none of them is given again; the counts stay.
    std::vector<Diagnostic> takeErrors();
    /// The warnings, in order.
    /// Ensures: none of them is given again.
    std::vector<Diagnostic> takeWarnings();

private:
    using Position =
        std::tuple<std::uint32_t, bool, Place>; ///< file, of the whole file, line and column

    struct Entry {
        Position position;
        Diagnostic diagnostic;
    };

    Position positionOf(std::uint32_t file, Place place) const;
    static std::vector<Diagnostic> inOrder(std::vector<Entry>& entries);

    std::size_t limit_;
    WholeFile wholeFile_;
    std::size_t errorCount_ = 0;
    std::vector<Entry> errors_;
    std::vector<Entry> warnings_;
    std::set<std::tuple<std::uint32_t, Place, std::string>> errorsAdded_;
    std::set<std::tuple<std::uint32_t, Place, std::string>> warningsAdded_;
    std::set<std::tuple<std::uint32_t, Place>> placesAskedFor_;
};

} // namespace text
