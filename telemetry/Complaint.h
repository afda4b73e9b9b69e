// What is wrong with a name or a reading, before it is known where it stands.
#pragma once

#include "text/Diagnostic.h"

#include <string>
#include <string_view>

namespace telemetry {

struct Complaint {
    enum class About { name, value };

    About about = About::value;
    std::string message;
    std::string expected;
    std::string hint;
};

/// The complaint with its place: `length` bytes of `line`, the whole line with that number, from `offset` (from 0) on. The
/// name of the file is left to the caller.
text::Diagnostic errorAt(const Complaint& complaint, std::string_view line, std::size_t lineNumber,
                         std::size_t offset, std::size_t length);

/// `did you mean 'NAME'?`, or nothing where there is no name.
std::string didYouMean(const std::string& name);

} // namespace telemetry
