// A value in a JSON document that knows where it is, so that what is wrong with it is told with its place:
//
//     plant.json: /components/3/variables/0/values: found a number
//       expected: an array
#pragma once

#include "language/meaning/Report.h"
#include "language/meaning/Types.h"

#include <nlohmann/json.hpp>
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
    JsonNode(const nlohmann::json& value, const text::SourceText& source, Report& report)
        : value_(value), source_(source), report_(report)
    {
    }

    /// `/components/3/name`; empty for the whole.
    std::string pointer() const;
    void error(std::string message, std::string expected = {}, std::string hint = {}) const;
    /// Whether an error would still be shown: a hint that takes a search is not worth while otherwise.
    bool worthAHint() const { return !report_.full(); }

    /// An object with these keys and no others; false, and an error reported for each mistake, when a required one is missing or
    /// it is none. Unknown keys are reported, and do no harm.
    bool isObject(const Keys& required, const Keys& optional = {}) const;
    bool isArray() const;

    bool has(std::string_view key) const { return value_.contains(key); }
    /// Requires that there is one.
    JsonNode operator[](std::string_view key) const&
    {
        return {value_.at(std::string(key)), *this, key, 0};
    }
    JsonNode operator[](std::string_view key) const&& = delete;
    std::size_t size() const { return value_.size(); }
    /// Requires an array, and an index in it.
    JsonNode operator[](std::size_t index) const& { return {value_[index], *this, {}, index}; }
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

    bool isText() const { return value_.is_string(); }
    bool isNull() const { return value_.is_null(); }

private:
    JsonNode(const nlohmann::json& value, const JsonNode& parent, std::string_view key,
             std::size_t index)
        : value_(value), source_(parent.source_), report_(parent.report_), parent_(&parent),
          key_(key), index_(index)
    {
    }

    void errorOfKind(const std::string& expected) const;

    const nlohmann::json& value_;
    const text::SourceText& source_;
    Report& report_;
    const JsonNode* parent_ = nullptr;
    std::string_view key_; ///< empty in an array
    std::size_t index_ = 0;
};

} // namespace language
