#include "session/CheckpointField.h"

#include "session/Errors.h"
#include "text/Diagnostic.h"
#include "text/Wording.h"

#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace session {

namespace {

std::string kindOfValue(const nlohmann::json& value)
{
    if (value.is_null()) return "null";
    if (value.is_object()) return "an object";
    if (value.is_array()) return "a list";
    if (value.is_string()) return "the text " + text::quoted(value.get_ref<const std::string&>());
    if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
    return text::shown(value.get<double>());
}

} // namespace

CheckpointField::CheckpointField(const nlohmann::json& json, std::string name)
    : json_(&json), name_(std::move(name))
{
}

CheckpointField CheckpointField::operator[](const std::string& key) const
{
    if (!json_->is_object()) refuseKind("an object");
    std::string name = name_.empty() ? key : name_ + "." + key;
    const auto member = json_->find(key);
    if (member == json_->end()) throw DamagedCheckpoint(name + " is missing");
    return CheckpointField(*member, std::move(name));
}

bool CheckpointField::has(const std::string& key) const
{
    return json_->is_object() && json_->contains(key);
}

std::vector<CheckpointField> CheckpointField::items() const
{
    if (!json_->is_array()) refuseKind("a list");
    std::vector<CheckpointField> items;
    for (std::size_t i = 0; i < json_->size(); ++i) {
        items.emplace_back((*json_)[i], fmt::format("{}[{}]", name_, i));
    }
    return items;
}

std::vector<CheckpointField> CheckpointField::items(std::size_t count) const
{
    auto found = items();
    if (found.size() != count) refuse(fmt::format("has {} items, not {}", found.size(), count));
    return found;
}

std::vector<std::pair<std::string, CheckpointField>> CheckpointField::members() const
{
    if (!json_->is_object()) refuseKind("an object");
    std::vector<std::pair<std::string, CheckpointField>> members;
    for (const auto& [key, value] : json_->items()) {
        members.emplace_back(key, CheckpointField(value, name_ + "." + key));
    }
    return members;
}

bool CheckpointField::flag() const
{
    if (!json_->is_boolean()) refuseKind("true or false");
    return json_->get<bool>();
}

const std::string& CheckpointField::text() const
{
    if (!json_->is_string()) refuseKind("a text");
    return json_->get_ref<const std::string&>();
}

bool CheckpointField::isNull() const
{
    return json_->is_null();
}

double CheckpointField::number(double least, double most) const
{
    if (!json_->is_number()) refuseKind("a number");
    const auto number = json_->get<double>();
    if (!std::isfinite(number)) refuse("is no finite number");
    if (number < least || number > most)
        refuse(fmt::format("is {}, and not from {} to {}", text::shown(number), text::shown(least),
                           text::shown(most)));
    return number;
}

std::uint64_t CheckpointField::whole(std::uint64_t most) const
{
    if (json_->is_number_unsigned() && json_->get<std::uint64_t>() <= most)
        return json_->get<std::uint64_t>();
    refuseKind(fmt::format("a whole number from 0 to {}", most));
}

void CheckpointField::refuse(const std::string& what) const
{
    throw DamagedCheckpoint((name_.empty() ? "it" : name_) + " " + what);
}

void CheckpointField::refuseKind(const std::string& expected) const
{
    refuse(fmt::format("is {}, not {}", kindOfValue(*json_), expected));
}

} // namespace session
