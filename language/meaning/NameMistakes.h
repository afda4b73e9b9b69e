// What is wrong with the names in a path or a comparison, in the words that model files and formulas over a built model share.
#pragma once

#include "text/Diagnostic.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace language {

/// An array of parts without an index, and an index where there is no array.
text::Message arrayWithoutIndex(const std::string& array);
text::Message indexWithoutArray(const std::string& part);

/// A part where a variable is needed; `known` is what there is in it.
text::Message partForVariable(const std::string& part, const std::vector<std::string_view>& known);

/// A name that neither a variable nor a part has. `what` says so, `known` are those that there are. The hint is the nearest of them.
text::Message unknownVariable(std::string_view name, std::string what,
                              const std::vector<std::string_view>& known);
/// The hint where such a name is a value of a variable, on the left side of a comparison.
std::string valueInPlaceOf(const std::string& variable, std::string_view value);

/// A variable with its values, its name, and what goes before the list of its values.
struct Operand {
    std::string name;
    std::string label;
    std::vector<std::string_view> values;
};

/// That two variables do not have the same values; nothing when they do, in whatever order.
std::optional<text::Message> differentValues(const Operand& left, const Operand& right);

} // namespace language
