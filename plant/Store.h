// Objects that stay where they are, made one after the other.
//
// They stand in blocks of some hundreds: a large plant has millions, and each by itself would cost an allocation and its place in a
// list.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace plant {

/// A pointer to an object in a store, to be used as one that owns it: `*`, `->`, get().
template <typename T> class Stored {
public:
    explicit Stored(T* object) : object_(object) {}
    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    operator T*() const { return object_; }

private:
    T* object_;
};

template <typename T> class Store {
public:
    Store() = default;
    ~Store()
    {
        for (std::size_t i = 0; i < size_; ++i) {
            std::destroy_at((*this)[i].get());
        }
    }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// Its address stays the same while the store lives.
    template <typename... Arguments> T* make(Arguments&&... arguments)
    {
        if (size_ == blocks_.size() * blockSize)
            blocks_.push_back(std::make_unique_for_overwrite<Block>());
        T* made = ::new (at(size_)) T(std::forward<Arguments>(arguments)...);
        ++size_;
        return made;
    }

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    /// Requires: a place below size(). In the order of their making.
    Stored<T> operator[](std::size_t place) const
    {
        return Stored<T>(std::launder(static_cast<T*>(at(place))));
    }
    Stored<T> front() const { return (*this)[0]; }

    class Iterator {
    public:
        Iterator(const Store& store, std::size_t place) : store_(&store), place_(place) {}
        Stored<T> operator*() const { return (*store_)[place_]; }
        Iterator& operator++()
        {
            ++place_;
            return *this;
        }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        const Store* store_;
        std::size_t place_;
    };
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size_}; }

private:
    static constexpr std::size_t blockSize = 128;

    struct Block {
        alignas(T) std::byte bytes[blockSize * sizeof(T)];
    };

    void* at(std::size_t place) const
    {
        return blocks_[place / blockSize]->bytes + place % blockSize * sizeof(T);
    }

    std::vector<std::unique_ptr<Block>> blocks_;
    std::size_t size_ = 0;
};

} // namespace plant
