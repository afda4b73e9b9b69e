#include "netlist/BenchReader.h"

#include "netlist/BenchLine.h"
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

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr char controlZ = '\x1A';

std::vector<std::string_view> splitLines(std::string_view text)
{
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    if (text.ends_with(controlZ)) text.remove_suffix(1);
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
    }
    return lines;
}

// A byte that no text holds: its line and column are found, and nothing else is read.
bool isText(const std::vector<std::string_view>& lines, text::ErrorList& errors)
{
    for (std::size_t line = 0; line < lines.size(); ++line) {
        const std::size_t offset = lines[line].find('\0');
        if (offset != std::string_view::npos) {
            errors.add({line + 1, offset + 1}, 1, "found a NUL byte: this is not a text file",
                       "a circuit in the .bench format, as UTF-8 text",
                       "if it is UTF-16 text, save it as UTF-8; if it is compressed, unpack it");
            return false;
        }
    }
    return true;
}

void readLines(const std::vector<std::string_view>& lines, Draft& draft, text::ErrorList& errors)
{
    bool open =
        false; // a statement was broken off, which has been reported, and its rest may follow
    for (std::size_t line = 0; line < lines.size(); ++line) {
        const std::variant<Statement, LineError> read = readBenchLine(lines[line]);
        if (const auto* error = std::get_if<LineError>(&read)) {
            const bool isRest = open && error->looksLikeRest;
            if (!isRest) {
                errors.add({line + 1, error->offset + 1}, error->length, error->message,
                           error->expected, error->hint);
            }
            open = error->staysOpen || (isRest && lines[line].find(')') == std::string_view::npos);
            draft.salvage(*error, line + 1);
        } else if (!std::get<Statement>(read).head.text.empty()) {
            open = false;
            draft.add(std::get<Statement>(read), line + 1);
        }
    }
}

} // namespace

BenchResult readBench(std::string_view text, const std::string& fileName)
{
    const std::vector<std::string_view> lines = splitLines(text);
    text::ErrorList errors(fileName, lines);
    Draft draft(errors);
    if (isText(lines, errors)) {
        readLines(lines, draft, errors);
        checkDraft(draft, errors);
    }
    BenchResult result;
    result.errors = errors.take();
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
