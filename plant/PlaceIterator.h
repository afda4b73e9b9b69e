// Steps over anything that gives a value for each place.
#pragma once

#include <compare>
#include <cstddef>
#include <iterator>

namespace plant {

/// Random access over `array[place]`. Valid as long as the array is.
template <class Array, class Value> class PlaceIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = Value;
    using difference_type = std::ptrdiff_t;
    using pointer = const Value*;
    using reference = const Value&;

    PlaceIterator() = default;
    PlaceIterator(const Array& array, std::size_t place) : array_(&array), place_(place) {}
    reference operator*() const { return (*array_)[place_]; }
    pointer operator->() const { return &(*array_)[place_]; }
    reference operator[](difference_type by) const { return *(*this + by); }
    PlaceIterator& operator++() { return *this += 1; }
    PlaceIterator operator++(int)
    {
        const PlaceIterator before = *this;
        ++place_;
        return before;
    }
    PlaceIterator& operator--() { return *this += -1; }
    PlaceIterator operator--(int)
    {
        const PlaceIterator before = *this;
        --place_;
        return before;
    }
    PlaceIterator& operator+=(difference_type by)
    {
        place_ += static_cast<std::size_t>(by);
        return *this;
    }
    PlaceIterator& operator-=(difference_type by) { return *this += -by; }
    friend PlaceIterator operator+(PlaceIterator from, difference_type by) { return from += by; }
    friend PlaceIterator operator+(difference_type by, PlaceIterator from) { return from += by; }
    friend PlaceIterator operator-(PlaceIterator from, difference_type by) { return from += -by; }
    friend difference_type operator-(const PlaceIterator& a, const PlaceIterator& b)
    {
        return static_cast<difference_type>(a.place_) - static_cast<difference_type>(b.place_);
    }
    friend bool operator==(const PlaceIterator& a, const PlaceIterator& b)
    {
        return a.place_ == b.place_;
    }
    friend auto operator<=>(const PlaceIterator& a, const PlaceIterator& b)
    {
        return a.place_ <=> b.place_;
    }

private:
    const Array* array_ = nullptr;
    std::size_t place_ = 0;
};

} // namespace plant
