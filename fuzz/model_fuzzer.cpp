// Feeds the reader of model files with any bytes. Whatever they are, it must come back with a tree or with errors that can be
// shown; what it accepts must be laid out as a text that says the same, and laying that out again must change nothing.
#include "fuzz/Require.h"
#include "language/syntax/Formatter.h"
#include "language/syntax/Parser.h"
#include "tests/language/syntax/SyntaxText.h"

#include <cstdint>

namespace {

void checkErrors(const std::vector<text::Diagnostic>& errors, const text::SourceText& source,
                 const language::syntax::Limits& limits)
{
    require(errors.size() <= limits.errors + 1, "the number of errors is bounded");
    for (std::size_t i = 0; i < errors.size(); ++i) {
        const text::Diagnostic& error = errors[i];
        require(error.place.line <= source.lineCount(), "an error is in a line of the text");
        require(error.place.column <= source.line(error.place.line).size() + 1,
                "an error is in its line");
        require(i == 0 || error.place.line == 0 || !(error.place < errors[i - 1].place),
                "errors are in the order of their places");
        requireShown(error);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const text::SourceText source("fuzz.itms",
                                  std::string(reinterpret_cast<const char*>(data), size));
    const language::syntax::Limits limits;
    const language::ParsedFile parsed = language::parse(source, limits);
    checkErrors(parsed.errors, source, limits);
    const language::Formatted formatted = language::format(source, limits);
    require(formatted.errors.size() == parsed.errors.size(), "the formatter finds the same errors");
    if (!parsed.errors.empty()) return 0;

    const text::SourceText laidOut("formatted.itms", formatted.text);
    const language::ParsedFile again = language::parse(laidOut, limits);
    require(again.errors.empty(), "what is laid out can be read");
    require(language::syntaxText(again.file) == language::syntaxText(parsed.file),
            "and says the same");
    require(language::format(laidOut, limits).text == formatted.text, "and stays as it is");
    return 0;
}
