// Feeds the reader of JSON models with any bytes. Whatever they are, it must come back with a model or with errors that can be
// shown; a model that it accepts must be written as one that is read again, and written with the same bytes.
#include "fuzz/Require.h"
#include "language/Reader.h"
#include "language/json/ModelJson.h"

#include <cstdint>

namespace {

void checkErrors(const std::vector<text::Diagnostic>& errors)
{
    require(errors.size() <= language::ReadOptions().mostErrors + 1,
            "the number of errors is bounded");
    for (const text::Diagnostic& error : errors) {
        requireShown(error);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const language::ReadResult read =
        language::readModelText("fuzz.json", std::string(reinterpret_cast<const char*>(data), size));
    require((read.model != nullptr) == read.errors.empty(), "there is a model or an error");
    checkErrors(read.errors);
    if (!read.model) return 0;

    const std::string written = language::modelJson(read);
    const language::ReadResult again = language::readModelText("fuzz.json", written);
    require(again.model != nullptr, "what is written can be read");
    require(language::modelJson(again) == written, "and is written again as it is");
    return 0;
}
