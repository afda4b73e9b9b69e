// What a reader passed over without a mistake, for people who want to know: names that the model does not have, and readings that
// are no numbers.
#pragma once

#include "telemetry/Names.h"
#include "text/Diagnostic.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace telemetry {

class ReadNotes {
public:
    /// Something that was found out of the input.
    void say(std::string message);
    /// Columns of a header that the model does not know. Those that are nearly a name of the model that no column has are told of
    /// with it. Costs the product of both numbers of names.
    void passOverColumns(const std::vector<std::string_view>& unknown,
                         const std::vector<std::string_view>& header, const Names& names);
    /// A key that the model does not know. Linear in the names for a new one, else the logarithm of how many there were.
    void passOverKey(std::string_view key, const Names& names);
    /// A reading that is no number where one is wanted.
    void passOverReading(std::uint32_t name, std::string_view called, std::string_view reading);

    /// The header of a table, once more.
    void passOverHeader(std::size_t line);
    /// Two channels of a variable said different things in a step.
    void contradict(const std::string& variable, const std::string& first,
                    const std::string& second);

    /// What is known since the last call, in order, without the name of the file.
    std::vector<text::Diagnostic> take();
    /// The counts of the whole input, without the name of the file.
    std::vector<text::Diagnostic> summary() const;

private:
    struct Unreadable {
        std::string name;
        std::string first;
        std::size_t count = 0;
    };

    struct Contradiction {
        std::string first;
        std::string second;
        std::size_t steps = 0;
    };

    static constexpr std::size_t mostKeys = 1000;

    std::vector<text::Diagnostic> found_;
    std::size_t firstHeader_ = 0; // the line of the first one that was there again
    std::size_t headers_ = 0;
    std::map<std::string, Contradiction> contradictions_; // by variable
    std::set<std::string, std::less<>> keys_;
    bool moreKeys_ = false;
    std::vector<Unreadable> unreadable_;                          // in the order in which they came
    std::unordered_map<std::uint32_t, std::size_t> unreadableAt_; // by the index of the name
};

} // namespace telemetry
