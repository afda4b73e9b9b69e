#include "language/json/JsonPlaces.h"

namespace language {

plant::PlaceHandle JsonPlaces::at(const std::string& pointer)
{
    return {*this, {number(pointer), 0, 0, 0}};
}

plant::PlaceHandle JsonPlaces::at(const std::string& list, std::size_t entry, std::string_view key)
{
    const std::uint32_t keyNumber = key.empty() ? 0 : number(key) + 1;
    return {*this, {number(list), static_cast<std::uint32_t>(entry + 1), keyNumber, 0}};
}

void JsonPlaces::error(const std::string& pointer, text::Message what)
{
    if (!pointer.empty()) what.message = pointer + ": " + what.message;
    report_.take(source_.number(), source_.error({}, std::move(what.message),
                                                 std::move(what.expected), std::move(what.hint)));
}

void JsonPlaces::report(const plant::PlaceKey& at, text::Message what)
{
    error(pointer(at), std::move(what));
}

std::string JsonPlaces::reference(const plant::PlaceKey& to, const plant::PlaceKey&) const
{
    return pointer(to);
}

const plant::Words& JsonPlaces::words() const
{
    static const plant::Words words{
        .fullNames = true,
        .at = "",
        .law = "",
        .laws = "",
        .lastLaw = ", ",
        .guardThatHolds = "literals that can hold together",
        .hysteresis = "the hysteresis",
        .unsatisfiable = {"a law without literals, which no assignment satisfies", "one at least",
                          ""},
        .commandObserved = {"", "command", ""},
        .commandAsInput = {"", "command", ""},
        .conditionCommanded = {"", "observe", ""}};
    return words;
}

std::uint32_t JsonPlaces::number(std::string_view text)
{
    const auto next = static_cast<std::uint32_t>(texts_.size());
    const auto [known, isNew] = numbers_.try_emplace(std::string(text), next);
    if (isNew) texts_.push_back(&known->first);
    return known->second;
}

std::string JsonPlaces::pointer(const plant::PlaceKey& key) const
{
    std::string pointer = *texts_[key[0]];
    if (key[1] > 0) pointer += "/" + std::to_string(key[1] - 1);
    if (key[2] > 0) pointer += "/" + *texts_[key[2] - 1];
    return pointer;
}

} // namespace language
