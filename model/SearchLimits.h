// Limits of a search, and what a search did.
//
// Nothing in the engine bounds how many labels other than faults a candidate flips, so a search can be
// very long. A program that must answer in time sets limits in the registry (DataManager::searchLimits);
// at the defaults the engine behaves as if they did not exist. A search that meets a limit stops at the
// next record: what it found is returned, what is still open is released, and
// DataManager::searchWork.partial is true.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>

/// Why a search ended before its agenda was empty.
enum class SearchLimit : std::uint8_t { none, records, candidates, seconds, stopped, work, memory };

/// Somebody who bounds a search from inside, by what it does between two records: one record of a large model may take long.
class SearchWatch {
public:
    SearchWatch() = default;
    virtual ~SearchWatch() = default;
    SearchWatch(const SearchWatch&) = delete;
    SearchWatch& operator=(const SearchWatch&) = delete;

    /// Takes note of so much work, in labels looked at or copied. Returns the limit that is met, `none` for going on. Once it
    /// returned another one, it does so until the search is over.
    virtual SearchLimit take(std::uint64_t work) = 0;
};

/// What one call of itms::addPropositions may spend. A larger value costs time and memory in proportion.
struct SearchLimits {
    static constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

    /// Records expanded (conflicts resolved), 0..unlimited.
    std::uint64_t maxRecords = unlimited;
    /// Candidates that the call appends to its results, 0..unlimited.
    std::uint64_t maxCandidates = unlimited;
    /// Wall-clock seconds, >= 0; infinite by default.
    double maxSeconds = std::numeric_limits<double>::infinity();
    /// Ends the search once it is true. Read before every record; not owned, and it must outlive the search.
    /// For a signal handler, or another thread, that wants no further answer. Null by default: nobody does.
    const std::atomic<bool>* stop = nullptr;
    /// Told of the work. Not owned, and it must outlive the search. Null by default: nobody.
    SearchWatch* watch = nullptr;
};

/// What the latest call of itms::addPropositions did.
struct SearchWork {
    bool begun = false;           ///< the search took the state over; false after an early return
    std::uint64_t records = 0;    ///< records expanded
    std::uint64_t flips = 0;      ///< labels flipped, each in a child record of its own
    std::uint64_t components = 0; ///< components instantiated on demand
    std::uint64_t candidates = 0; ///< candidates appended to the results
    bool partial = false;         ///< a limit cut the search: there may be further candidates
    SearchLimit limit = SearchLimit::none; ///< which one
};
