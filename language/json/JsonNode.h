// A value in a JSON document that knows where it is, so that what is wrong with it is reported with its place:
//
//     plant.json: /components/3/variables/0/values: found a number
//       expected: an array
#pragma once

#include "language/json/JsonPlaces.h"

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace language {

/// Refers to the document, and a node within it to the node around it, which must outlive it.
class JsonNode {
public:
    using Keys = std::vector<std::string_view>;

    /// The whole document.
    JsonNode(const nlohmann::json& value, JsonPlaces& places) : value_(value), places_(places) {}

    /// `/components/3/name`; empty for the whole.
    std::string pointer() const;
    /// The same for the checks of plant/.
    plant::PlaceHandle at() const;
    void error(std::string message, std::string expected = {}, std::string hint = {}) const;
    void error(text::Message what) const;
    bool worthAHint() const { return places_.worthAHint(); }

    /// An object with these keys and no others; false, and an error reported for each mistake, when a required one is missing or
    /// it is none. Unknown keys are reported, and do no harm.
    bool isObject(const Keys& required, const Keys& optional = {}) const;
    bool isArray() const;

    bool has(std::string_view key) const;
    /// Requires that there is one.
    JsonNode operator[](std::string_view key) const&;
    JsonNode operator[](std::string_view key) const&& = delete;
    std::size_t size() const;
    /// Requires an array, and an index in it.
    JsonNode operator[](std::size_t index) const&;
    JsonNode operator[](std::size_t index) const&& = delete;

    // Each reports a value of another kind, and returns nothing then.
    std::optional<std::string> text() const;
    std::optional<double> number() const;
    std::optional<bool> flag() const;
    /// A whole number from `least` to `most`.
    std::optional<std::uint32_t> whole(std::uint32_t least, std::uint32_t most) const;
    /// A number from 0 to 1.
    std::optional<double> probability() const;
    /// What can be a name in identifiers and in files of implicates: no blanks and none of . , : = ! | "
    std::optional<std::string> name() const;

    /// One of these words; another one is reported with the nearest. Returns the number of the word.
    std::optional<std::size_t> oneOf(const Keys& words) const;

    bool isText() const;
    bool isObjectAtAll() const; ///< whatever its keys are
    bool isNull() const;

private:
    JsonNode(const nlohmann::json& value, const JsonNode& parent, std::string_view key,
             std::size_t index)
        : value_(value), places_(parent.places_), parent_(&parent), key_(key), index_(index)
    {
    }

    void errorOfKind(const std::string& expected) const;

    const nlohmann::json& value_;
    JsonPlaces& places_;
    const JsonNode* parent_ = nullptr;
    std::string_view key_; ///< empty in an array
    std::size_t index_ = 0;
};

} // namespace language
