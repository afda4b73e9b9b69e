// Which of the lists that come by are new.
#pragma once

#include "plant/ListSequence.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace plant {

/// A set of lists of numbers, of which nothing is ever taken out: the lists one behind the other, and a table with linear
/// probing (The Art of Computer Programming 3, section 6.4, 1973) of their places.
class KnownLists {
public:
    /// False for a list that is known. Linear in the list, on average.
    bool add(std::span<const std::uint32_t> list)
    {
        if (2 * (lists_.size() + 1) > table_.size()) grow();
        const std::uint32_t hash = hashOf(list);
        std::size_t place = hash & (table_.size() - 1);
        for (; table_[place] != none; place = (place + 1) & (table_.size() - 1)) {
            const std::uint32_t known = table_[place];
            if (hashes_[known] == hash && std::ranges::equal(lists_[known], list)) return false;
        }
        table_[place] = static_cast<std::uint32_t>(lists_.size());
        lists_.add(list);
        hashes_.push_back(hash);
        return true;
    }

private:
    static constexpr std::uint32_t none = UINT32_MAX;

    static std::uint32_t hashOf(std::span<const std::uint32_t> list)
    {
        std::uint64_t hash = list.size();
        for (const std::uint32_t entry : list) {
            hash = (hash ^ entry) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 29U;
        }
        return static_cast<std::uint32_t>(hash >> 32U);
    }

    void grow()
    {
        table_.assign(std::max<std::size_t>(16, 2 * table_.size()), none);
        for (std::uint32_t i = 0; i < hashes_.size(); ++i) {
            std::size_t place = hashes_[i] & (table_.size() - 1);
            while (table_[place] != none) {
                place = (place + 1) & (table_.size() - 1);
            }
            table_[place] = i;
        }
    }

    ListSequence<std::uint32_t> lists_;
    std::vector<std::uint32_t> hashes_;
    std::vector<std::uint32_t> table_; ///< a power of two, half empty
};

} // namespace plant
