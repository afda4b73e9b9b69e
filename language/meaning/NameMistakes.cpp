#include "language/meaning/NameMistakes.h"

#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

text::Message arrayWithoutIndex(const std::string& array)
{
    return {text::quoted(array) + " is an array of parts", "one of them: " + array + "[0], ...", ""};
}

text::Message indexWithoutArray(const std::string& part)
{
    return {text::quoted(part) + " is not an array of parts", part + " without an index", ""};
}

text::Message partForVariable(const std::string& part, const std::vector<std::string_view>& known)
{
    return {text::quoted(part) + " is a part, not a variable",
            "a variable of it: " + part + ". and " + text::enumerated(known), ""};
}

text::Message unknownVariable(std::string_view name, std::string what,
                              const std::vector<std::string_view>& known)
{
    return {std::move(what),
            known.empty() ? "a variable or part; there is none"
                          : "a variable or part: " + text::enumerated(known),
            text::didYouMean(name, known)};
}

std::string valueInPlaceOf(const std::string& variable, std::string_view value)
{
    return "it is a value of " + text::quoted(variable) + ": write " + variable + " = " +
           std::string(value);
}

std::optional<text::Message> differentValues(const Operand& left, const Operand& right)
{
    std::vector<std::string_view> a = left.values;
    std::vector<std::string_view> b = right.values;
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    if (a == b) return std::nullopt;
    const auto shown = [](const Operand& operand) {
        return operand.label + ": " + text::enumerated(operand.values);
    };
    return text::Message{text::quoted(left.name) + " and " + text::quoted(right.name) +
                             " have different values",
                         "two variables with the same values", shown(left) + "; " + shown(right)};
}

} // namespace language
