// JSON as a person may have written it: parsed with the place of a mistake.
#pragma once

#include "language/meaning/Report.h"

#include <memory>
#include <nlohmann/json_fwd.hpp>

namespace language {

/// The document. Null, and an error with its line and column reported, for a text that is not JSON, a number that no double
/// can hold, and an object that has a key twice, of which any other reader would take one in silence.
std::unique_ptr<nlohmann::json> parseJson(const text::SourceText& source, Report& report);

} // namespace language
