// Where the parts of a model were written, as far as the checks of plant/ need to know it.
//
// A front end keeps a PlaceBook: it alone knows what its keys stand for, how an error is shown there, and which words its readers
// are used to. The checks hold handles, report through them, and know no file format.
#pragma once

#include "text/Diagnostic.h"

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace plant {

/// A place in the coordinates of its front end: file, line, column and length in a text, the numbers of a list and of an entry in
/// data. Keys of the same kind of statement compare in the order in which the statements were written.
using PlaceKey = std::array<std::uint32_t, 4>;

/// What front ends put differently on purpose: a model file is read by people who see lines, JSON by whoever maintains the program
/// that wrote it. All other words of a check are those of the check.
struct Words {
    /// A value goes by its identifier, `valve.position=open`; otherwise by its own name, `open`.
    bool fullNames = false;
    /// Before a place in a sentence: "the first is at line 3", "the first is /laws/3".
    std::string_view at;
    /// Before the places of one law and of several, and between the last two of them.
    std::string_view law;
    std::string_view laws;
    std::string_view lastLaw;
    /// What is expected in place of a guard that can never hold.
    std::string_view guardThatHolds;
    std::string_view hysteresis;
    /// Of a law that no assignment satisfies.
    text::Message unsatisfiable;
    /// What is expected, and what to do, where a command is observed, where it is an input, and where something else is commanded.
    text::Message commandObserved;
    text::Message commandAsInput;
    text::Message conditionCommanded;
};

/// The places of one reading, kept by the front end. Outlives all handles.
class PlaceBook {
public:
    virtual ~PlaceBook() = default;

    /// Makes the message an error at that place.
    virtual void report(const PlaceKey& at, text::Message what) = 0;
    /// How a message at `from` refers to another place: "line 12", "fluids.itms:12", "/laws/3".
    virtual std::string reference(const PlaceKey& to, const PlaceKey& from) const = 0;
    virtual const Words& words() const = 0;
};

/// A place in a book. Cheap to copy and to keep.
class PlaceHandle {
public:
    PlaceHandle(PlaceBook& book, const PlaceKey& key) : book_(&book), key_(key) {}

    void report(text::Message what) const { book_->report(key_, std::move(what)); }
    void report(std::string message, std::string expected = {}, std::string hint = {}) const
    {
        report(text::Message{std::move(message), std::move(expected), std::move(hint)});
    }
    std::string seenFrom(const PlaceHandle& other) const
    {
        return book_->reference(key_, other.key_);
    }
    const Words& words() const { return book_->words(); }

    /// Both of the same book.
    friend bool operator==(const PlaceHandle& a, const PlaceHandle& b) { return a.key_ == b.key_; }
    friend auto operator<=>(const PlaceHandle& a, const PlaceHandle& b)
    {
        return a.key_ <=> b.key_;
    }

private:
    PlaceBook* book_;
    PlaceKey key_;
};

/// Reports `message` at `at`, with a hint at the place where the same stands for the first time.
void reportTwice(const PlaceHandle& at, const PlaceHandle& first, std::string message,
                 std::string expected);

} // namespace plant
