// Lists one behind the other: what would be a vector of many short vectors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace plant {

template <typename Entry> class ListSequence {
public:
    void add(std::span<const Entry> list)
    {
        entries_.insert(entries_.end(), list.begin(), list.end());
        end();
    }
    /// An entry of the list that ends next.
    void push(const Entry& entry) { entries_.push_back(entry); }
    /// The entry that was added last. Requires: there is one.
    Entry& last() { return entries_.back(); }
    /// Ends a list.
    void end()
    {
        if (entries_.size() > std::numeric_limits<std::uint32_t>::max()) {
            throw std::length_error("too many entries");
        }
        ends_.push_back(static_cast<std::uint32_t>(entries_.size()));
    }

    std::size_t size() const { return ends_.size(); }
    std::span<const Entry> operator[](std::size_t index) const
    {
        const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
        return {entries_.data() + begin, ends_[index] - begin};
    }
    /// Prefetches what says where a list is.
    void prefetchPlace(std::size_t index) const { __builtin_prefetch(&ends_[index]); }
    /// Prefetches the beginning of a list.
    void prefetch(std::size_t index) const { __builtin_prefetch((*this)[index].data()); }
    /// All entries, list after list.
    std::span<const Entry> entries() const { return entries_; }

    /// Room for so many lists of so many entries altogether.
    void reserve(std::size_t lists, std::size_t entries)
    {
        ends_.reserve(lists);
        entries_.reserve(entries);
    }
    /// So many lists, of which each has the entries that were given with its number, in their order. Linear.
    static ListSequence grouped(std::size_t lists,
                                std::span<const std::pair<std::uint32_t, Entry>> entries)
    {
        if (entries.size() > std::numeric_limits<std::uint32_t>::max()) {
            throw std::length_error("too many entries");
        }
        ListSequence made;
        made.ends_.resize(lists);
        for (const auto& [list, entry] : entries) {
            ++made.ends_[list];
        }
        std::uint32_t begin = 0;
        for (std::uint32_t& end : made.ends_) {
            begin += std::exchange(end, begin);
        }
        // Where each list begins, which moves to where it ends.
        made.entries_.resize(entries.size());
        for (const auto& [list, entry] : entries) {
            made.entries_[made.ends_[list]++] = entry;
        }
        return made;
    }
    /// Gives back what was taken for more entries.
    void shrink()
    {
        entries_.shrink_to_fit();
        ends_.shrink_to_fit();
    }

private:
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> ends_;
};

} // namespace plant
