#include "netlist/BenchReader.h"

#include "netlist/BenchLine.h"
#include "netlist/BenchText.h"
#include "netlist/Draft.h"
#include "netlist/DraftChecks.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <variant>

namespace netlist {

namespace {

// A byte that no text holds: its line and column are found, and nothing else is read.
bool isText(const BenchText& text, text::Diagnostics& errors)
{
    for (std::size_t line = 1; line <= text.lineCount(); ++line) {
        const std::size_t offset = text.line(line).find('\0');
        if (offset != std::string_view::npos) {
            errors.error(
                0, text.error(
                       {line, offset + 1}, 1,
                       {"found a NUL byte: this is not a text file",
                        "a circuit in the .bench format, as UTF-8 text",
                        "if it is UTF-16 text, save it as UTF-8; if it is compressed, unpack it"}));
            return false;
        }
    }
    return true;
}

void readLines(const BenchText& text, Draft& draft, text::Diagnostics& errors)
{
    // A statement was broken off, which has been reported, and its rest may follow.
    bool open = false;
    for (std::size_t line = 1; line <= text.lineCount(); ++line) {
        const std::variant<Statement, LineError> read = readBenchLine(text.line(line));
        if (const auto* error = std::get_if<LineError>(&read)) {
            const bool isRest = open && error->looksLikeRest;
            if (!isRest) {
                errors.error(0, text.error({line, error->offset + 1}, error->length, *error));
            }
            open =
                error->staysOpen || (isRest && text.line(line).find(')') == std::string_view::npos);
            draft.salvage(*error, line);
        } else if (!std::get<Statement>(read).head.text.empty()) {
            open = false;
            draft.add(std::get<Statement>(read), line);
        }
    }
}

} // namespace

BenchResult readBench(std::string_view text, const std::string& fileName)
{
    const BenchText lines(fileName, text);
    text::Diagnostics errors(text::Diagnostics::unlimited, text::Diagnostics::WholeFile::last);
    Draft draft(lines, errors);
    if (isText(lines, errors)) {
        readLines(lines, draft, errors);
        checkDraft(draft, lines, errors);
    }
    BenchResult result;
    result.errors = errors.takeErrors();
    if (result.errors.empty()) {
        result.circuit = draft.finish();
        result.circuit->name = std::filesystem::path(fileName).stem().string();
    }
    return result;
}

BenchResult readBenchFile(const std::string& path)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file && file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
    if (errno != 0) {
        BenchResult result;
        text::Diagnostic& error = result.errors.emplace_back();
        error.file = path;
        error.message = "cannot be read: " + std::generic_category().message(errno);
        return result;
    }
    return readBench(text.view(), path);
}

} // namespace netlist
