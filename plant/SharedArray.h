// An array whose copies share what none of them changed.
//
//     SharedArray<int> a(1'000'000, 0);
//     SharedArray<int> b = a;                      // constant time
//     b.set(17, 1);                                // copies a few hundred places, whatever the size
//     forEachDifference(a, b, [](std::size_t place) { ... });   // looks at these places only
//
// The values stand in leaves of 64, of which 64 are a branch; a leaf or branch that an array shares with others is copied before it
// is written. So what is kept of a large plant at many steps costs what changed between them, and what differs between two of them is
// found without looking at the rest. Not for several threads.
#pragma once

#include "plant/PlaceIterator.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <vector>

namespace plant {

template <typename T> class SharedArray {
public:
    using value_type = T;

    SharedArray() = default;
    /// So many times the same value. Takes a 64th of a 64th of that in time and memory.
    SharedArray(std::size_t size, const T& value) : size_(size)
    {
        if (size == 0) return;
        const auto leaf = std::make_shared<Leaf>();
        leaf->fill(value);
        const auto branch = std::make_shared<Branch>();
        branch->fill(leaf);
        trunk_ = std::make_shared<Trunk>((size + branchValues - 1) / branchValues, branch);
    }
    /// These values. Linear.
    SharedArray(const std::vector<T>& values) : size_(values.size())
    {
        trunk_ = std::make_shared<Trunk>();
        for (std::size_t first = 0; first < size_; first += leafValues) {
            if (first % branchValues == 0) trunk_->push_back(std::make_shared<Branch>());
            const auto leaf = std::make_shared<Leaf>();
            const std::size_t count = std::min(leafValues, size_ - first);
            std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), count, leaf->begin());
            (*trunk_->back())[first / leafValues % branchLeaves] = leaf;
        }
    }
    SharedArray(std::initializer_list<T> values) : SharedArray(std::vector<T>(values)) {}

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    /// Requires: a place below size(). Constant time; the reference is valid until the array is written or gone.
    const T& operator[](std::size_t place) const
    {
        return (*(*(
            *trunk_)[place / branchValues])[place / leafValues % branchLeaves])[place % leafValues];
    }
    const T& front() const { return (*this)[0]; }
    /// Requires: a place below size(). Ensures: no other array changes.
    void set(std::size_t place, const T& value)
    {
        Branch& branch = own(own(trunk_)[place / branchValues]);
        own(branch[place / leafValues % branchLeaves])[place % leafValues] = value;
    }
    void push_back(const T& value)
    {
        if (!trunk_) trunk_ = std::make_shared<Trunk>();
        if (size_ % branchValues == 0) own(trunk_).push_back(std::make_shared<Branch>());
        Branch& branch = own(own(trunk_)[size_ / branchValues]);
        std::shared_ptr<Leaf>& leaf = branch[size_ / leafValues % branchLeaves];
        if (size_ % leafValues == 0) leaf = std::make_shared<Leaf>();
        own(leaf)[size_ % leafValues] = value;
        ++size_;
    }

    using Iterator = PlaceIterator<SharedArray, T>;
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size_}; }

    std::vector<T> toVector() const { return {begin(), end()}; }

    /// The first place at which the two differ, up to the end of the shorter one.
    static std::size_t firstDifference(const SharedArray& a, const SharedArray& b)
    {
        const std::size_t common = std::min(a.size_, b.size_);
        std::size_t place = 0;
        while (place < common) {
            const std::size_t same = sharedFrom(a, b, place);
            if (same > 0) {
                place += same;
            } else if (a[place] == b[place]) {
                ++place;
            } else {
                return place;
            }
        }
        return common;
    }

    friend bool operator==(const SharedArray& a, const SharedArray& b)
    {
        return a.size_ == b.size_ && firstDifference(a, b) == a.size_;
    }
    friend bool operator<(const SharedArray& a, const SharedArray& b)
    {
        const std::size_t place = firstDifference(a, b);
        return place < b.size_ && (place == a.size_ || a[place] < b[place]);
    }

    /// Calls with every place at which the two differ, by rising place. Requires: they are of the same size. Costs what they do not
    /// share, and a 64th of a 64th of the size.
    template <typename Function>
    friend void forEachDifference(const SharedArray& a, const SharedArray& b, Function function)
    {
        std::size_t place = 0;
        while (place < a.size_) {
            const std::size_t same = sharedFrom(a, b, place);
            if (same > 0) {
                place += same;
                continue;
            }
            const std::size_t end = std::min(a.size_, place + leafValues);
            for (; place < end; ++place) {
                if (!(a[place] == b[place])) function(place);
            }
        }
    }

private:
    static constexpr std::size_t leafValues = 64;
    static constexpr std::size_t branchLeaves = 64;
    static constexpr std::size_t branchValues = leafValues * branchLeaves;

    using Leaf = std::array<T, leafValues>;
    using Branch = std::array<std::shared_ptr<Leaf>, branchLeaves>;
    using Trunk = std::vector<std::shared_ptr<Branch>>;

    // How many places from here on are in the same part of both. Only where a part begins.
    static std::size_t sharedFrom(const SharedArray& a, const SharedArray& b, std::size_t place)
    {
        if (place == 0 && a.trunk_ == b.trunk_) return std::max(a.size_, b.size_);
        if (place % leafValues != 0) return 0;
        const auto& left = (*a.trunk_)[place / branchValues];
        const auto& right = (*b.trunk_)[place / branchValues];
        if (place % branchValues == 0 && left == right) return branchValues;
        const std::size_t leaf = place / leafValues % branchLeaves;
        return (*left)[leaf] == (*right)[leaf] ? leafValues : 0;
    }

    template <typename Part> static Part& own(std::shared_ptr<Part>& part)
    {
        if (part.use_count() != 1) part = std::make_shared<Part>(*part);
        return *part;
    }

    std::shared_ptr<Trunk> trunk_;
    std::size_t size_ = 0;
};

} // namespace plant
