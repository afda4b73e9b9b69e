// The places of a JSON document: pointers to its values.
#pragma once

#include "language/meaning/Report.h"
#include "plant/PlaceHandle.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace language {

/// Keeps pointers as keys. A key has the number of a list, the number of an entry in it from 1 on and the number of a key within
/// the entry, 0 where there is none: what a model has many of are entries of a few lists.
class JsonPlaces : public plant::PlaceBook {
public:
    /// Both outlive this.
    JsonPlaces(const text::SourceText& source, Report& report) : source_(source), report_(report) {}

    plant::PlaceHandle at(const std::string& pointer);
    plant::PlaceHandle at(const std::string& list, std::size_t entry, std::string_view key);

    /// An error at that pointer; empty: of the whole document.
    void error(const std::string& pointer, text::Message what);
    /// Whether an error would still be shown: a hint that takes a search is not worth while otherwise.
    bool worthAHint() const { return !report_.full(); }

    void report(const plant::PlaceKey& at, text::Message what) override;
    std::string reference(const plant::PlaceKey& to, const plant::PlaceKey& from) const override;
    const plant::Words& words() const override;

private:
    std::uint32_t number(std::string_view text);
    std::string pointer(const plant::PlaceKey& key) const;

    const text::SourceText& source_;
    Report& report_;
    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::vector<const std::string*> texts_; ///< by number
};

} // namespace language
