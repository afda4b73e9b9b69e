// The iteration order of the hash maps, by buckets written out by hand.
//
// A table starts with 193 buckets. A new key goes to the front of its bucket. When the keys would outnumber the
// buckets, the table grows to the next of its primes first, and the old buckets are emptied from first to last,
// each from front to back, every key going to the front of its new bucket. Iteration runs through the buckets in
// order, each from front to back.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

/// Orders keys as a hash map does whose hash function is `Hash`, a callable from Key to unsigned long.
template <class Key, class Hash> class BucketOrder {
public:
    void insert(const Key& key)
    {
        if (size_ + 1 > buckets_.size()) {
            grow();
        }
        std::vector<Key>& bucket = buckets_[Hash()(key) % buckets_.size()];
        if (std::find(bucket.begin(), bucket.end(), key) == bucket.end()) {
            bucket.insert(bucket.begin(), key);
            ++size_;
        }
    }

    std::vector<Key> keys() const
    {
        std::vector<Key> all;
        for (const std::vector<Key>& bucket : buckets_) {
            all.insert(all.end(), bucket.begin(), bucket.end());
        }
        return all;
    }

private:
    void grow()
    {
        std::size_t count = 1543;
        for (const std::size_t prime : {193, 389, 769}) {
            if (prime >= size_ + 1) {
                count = prime;
                break;
            }
        }
        std::vector<std::vector<Key>> grown(count);
        for (const std::vector<Key>& bucket : buckets_) {
            for (const Key& key : bucket) {
                std::vector<Key>& to = grown[Hash()(key) % count];
                to.insert(to.begin(), key);
            }
        }
        buckets_.swap(grown);
    }

    std::size_t size_ = 0;
    std::vector<std::vector<Key>> buckets_ = std::vector<std::vector<Key>>(193);
};

/// h = 5 h + c for each character, which counts as signed.
struct TextHash {
    unsigned long operator()(const std::string& text) const
    {
        unsigned long h = 0;
        for (const char c : text) {
            h = 5 * h + static_cast<unsigned long>(static_cast<long>(static_cast<signed char>(c)));
        }
        return h;
    }
};

/// A number is its own hash.
struct NumberHash {
    unsigned long operator()(int number) const { return static_cast<unsigned long>(number); }
};
