#include "language/json/JsonNode.h"

#include "plant/TransitionRules.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace language {

namespace {

std::string kindOf(const nlohmann::json& value)
{
    switch (value.type()) {
    case nlohmann::json::value_t::null: return "null";
    case nlohmann::json::value_t::object: return "an object";
    case nlohmann::json::value_t::array: return "an array";
    case nlohmann::json::value_t::string: return text::quoted(value.get_ref<const std::string&>());
    case nlohmann::json::value_t::boolean: return value.get<bool>() ? "true" : "false";
    case nlohmann::json::value_t::number_integer:
    case nlohmann::json::value_t::number_unsigned:
    case nlohmann::json::value_t::number_float:
        return "the number " + text::shown(value.get<double>());
    default: return "something else";
    }
}

bool canBeInAName(char c)
{
    constexpr std::string_view refused = ".,:=!|\"";
    return static_cast<unsigned char>(c) > ' ' && c != '\x7F' &&
           refused.find(c) == std::string_view::npos;
}

} // namespace

std::string JsonNode::pointer() const
{
    if (!parent_) return {};
    return parent_->pointer() + "/" + (key_.empty() ? std::to_string(index_) : std::string(key_));
}

void JsonNode::error(std::string message, std::string expected, std::string hint) const
{
    error(text::Message{std::move(message), std::move(expected), std::move(hint)});
}

void JsonNode::error(text::Message what) const
{
    places_.error(pointer(), std::move(what));
}

plant::PlaceHandle JsonNode::at() const
{
    if (parent_ && key_.empty()) return places_.at(parent_->pointer(), index_, {});
    if (parent_ && parent_->parent_ && parent_->key_.empty()) {
        return places_.at(parent_->parent_->pointer(), parent_->index_, key_);
    }
    return places_.at(pointer());
}

bool JsonNode::has(std::string_view key) const
{
    return value_.contains(key);
}

JsonNode JsonNode::operator[](std::string_view key) const&
{
    return {value_.at(std::string(key)), *this, key, 0};
}

std::size_t JsonNode::size() const
{
    return value_.size();
}

JsonNode JsonNode::operator[](std::size_t index) const&
{
    return {value_[index], *this, {}, index};
}

bool JsonNode::isText() const
{
    return value_.is_string();
}

bool JsonNode::isObjectAtAll() const
{
    return value_.is_object();
}

bool JsonNode::isNull() const
{
    return value_.is_null();
}

bool JsonNode::isObject(const Keys& required, const Keys& optional) const
{
    if (!value_.is_object()) {
        errorOfKind("an object");
        return false;
    }
    Keys known = required;
    known.insert(known.end(), optional.begin(), optional.end());
    bool complete = true;
    for (const std::string_view key : required) {
        if (value_.contains(key)) continue;
        error("there is no " + text::quoted(key));
        complete = false;
    }
    for (const auto& [key, value] : value_.items()) {
        if (std::find(known.begin(), known.end(), key) != known.end()) continue;
        error("the key " + text::quoted(key) + " is not known", text::enumerated(known),
              worthAHint() ? text::didYouMean(key, known) : "");
    }
    return complete;
}

bool JsonNode::isArray() const
{
    if (value_.is_array()) return true;
    errorOfKind("an array");
    return false;
}

std::optional<std::string> JsonNode::text() const
{
    if (value_.is_string()) return value_.get<std::string>();
    errorOfKind("a text");
    return std::nullopt;
}

std::optional<double> JsonNode::number() const
{
    if (value_.is_number()) return value_.get<double>();
    errorOfKind("a number");
    return std::nullopt;
}

std::optional<bool> JsonNode::flag() const
{
    if (value_.is_boolean()) return value_.get<bool>();
    errorOfKind("true or false");
    return std::nullopt;
}

std::optional<std::uint32_t> JsonNode::whole(std::uint32_t least, std::uint32_t most) const
{
    if (value_.is_number_unsigned()) {
        const auto number = value_.get<std::uint64_t>();
        if (least <= number && number <= most) return static_cast<std::uint32_t>(number);
    }
    errorOfKind(least == most ? std::to_string(least)
                              : "a whole number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    return std::nullopt;
}

std::optional<double> JsonNode::probability() const
{
    if (value_.is_number()) {
        const auto number = value_.get<double>();
        if (plant::isProbability(number)) return number;
    }
    errorOfKind("a probability: a number from 0 to 1");
    return std::nullopt;
}

std::optional<std::string> JsonNode::name() const
{
    const std::optional<std::string> found = text();
    if (!found) return std::nullopt;
    if (!found->empty() && std::all_of(found->begin(), found->end(), canBeInAName)) return found;
    errorOfKind("a name: one character at least, no blanks, and none of . , : = ! | \"");
    return std::nullopt;
}

std::optional<std::size_t> JsonNode::oneOf(const Keys& words) const
{
    const std::optional<std::string> found = text();
    if (!found) return std::nullopt;
    const auto word = std::find(words.begin(), words.end(), *found);
    if (word != words.end()) return static_cast<std::size_t>(word - words.begin());
    error("found " + text::quoted(*found), text::enumerated(words), text::didYouMean(*found, words));
    return std::nullopt;
}

void JsonNode::errorOfKind(const std::string& expected) const
{
    error("found " + kindOf(value_), expected);
}

} // namespace language
