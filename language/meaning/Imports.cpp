#include "language/meaning/Imports.h"

#include "text/File.h"
#include "text/Folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace language {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t deepestImport = 100;

std::string identityOf(const std::string& path)
{
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(path, error);
    return error ? path : canonical.string();
}

} // namespace

void ImportReader::read(const std::string& path)
{
    text::FileText contents = text::readFile(path, limits_.fileBytes);
    if (!contents.text) {
        text::Diagnostic error;
        error.file = path;
        error.message = "cannot be read: " + contents.failure;
        files_.parsed = false;
        report_.take(0, std::move(error));
        return;
    }
    add(path, std::move(*contents.text));
}

void ImportReader::read(const std::string& path, std::string text)
{
    add(path, std::move(text));
}

void ImportReader::add(const std::string& path, std::string text)
{
    const auto number = static_cast<std::uint32_t>(files_.texts.size());
    files_.texts.push_back(std::make_unique<text::SourceText>(path, std::move(text), number));
    files_.trees.emplace_back();
    paths_.push_back(identityOf(path));
    open_.push_back(number);
    parseFile(number);
    open_.pop_back();
    files_.order.push_back(number);
}

void ImportReader::parseFile(std::uint32_t number)
{
    ParsedFile parsed = parse(*files_.texts[number], limits_);
    for (text::Diagnostic& error : parsed.errors) {
        files_.unread = true;
        noteUnread(*files_.texts[number], error.place.line);
        report_.take(number, std::move(error));
    }
    files_.trees[number] = std::move(parsed.file);
    // Imported files are added while this loop runs: the tree moves, its declarations do not.
    const std::vector<syntax::Declaration> imports = [&] {
        std::vector<syntax::Declaration> found;
        for (const syntax::Declaration& declaration : files_.trees[number].declarations) {
            if (std::holds_alternative<syntax::Import>(declaration)) found.push_back(declaration);
        }
        return found;
    }();
    for (const syntax::Declaration& declaration : imports) {
        followImport(std::get<syntax::Import>(declaration), number);
    }
}

bool ImportReader::mayBeRead(const std::string& path) const
{
    return anywhere_ || text::isBelow(path, fs::path(paths_.front()).parent_path().string()) ||
           text::isBelowAny(path, searchPath_);
}

void ImportReader::followImport(const syntax::Import& import, std::uint32_t importer)
{
    const fs::path wanted(import.path.text);
    std::vector<fs::path> candidates;
    candidates.push_back(fs::path(files_.texts[importer]->name()).parent_path() / wanted);
    if (wanted.is_relative()) {
        for (const std::string& folder : searchPath_) {
            candidates.push_back(fs::path(folder) / wanted);
        }
    }
    std::string failure;
    for (const fs::path& candidate : candidates) {
        const std::string path = candidate.string();
        std::error_code error;
        if (fs::exists(candidate, error) && !mayBeRead(path)) {
            files_.unread = true;
            report_.error(import.path.range, "the import leads to " + text::quoted(path),
                          "a file below the folder of the model, or one that is named with -I",
                          "--allow-imports-anywhere reads it, if you trust the model");
            return;
        }
        const auto known = std::find(paths_.begin(), paths_.end(), identityOf(path));
        if (known != paths_.end()) {
            const auto number = static_cast<std::uint32_t>(known - paths_.begin());
            const auto from = std::find(open_.begin(), open_.end(), number);
            if (from == open_.end()) return;
            std::string circle;
            for (auto file = from; file != open_.end(); ++file) {
                circle += files_.texts[*file]->name() + " -> ";
            }
            report_.error(import.path.range,
                          "files import each other in a circle: " + circle +
                              files_.texts[number]->name(),
                          {}, "move what both need into a file of its own");
            return;
        }
        text::FileText contents = text::readFile(path, limits_.fileBytes, text::Readable::file);
        if (contents.text) {
            if (open_.size() >= deepestImport) {
                report_.error(import.path.range, "imports are nested deeper than " +
                                                     std::to_string(deepestImport) + " files");
                return;
            }
            add(path, std::move(*contents.text));
            return;
        }
        if (failure.empty()) failure = std::move(contents.failure);
    }
    files_.unread = true;
    std::string folders;
    for (const fs::path& candidate : candidates) {
        folders += (folders.empty() ? "" : ", ") + candidate.string();
    }
    report_.error(import.path.range,
                  "file " + text::quoted(import.path.text) + " cannot be read: " + failure,
                  "a file at " + folders);
}

// Names and parts of names are all that is needed: what else the line has does no harm.
void ImportReader::noteUnread(const text::SourceText& text, std::size_t line)
{
    std::string word;
    for (const char c : std::string(text.line(line)) + " ") {
        const bool letter =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
        if (letter) {
            word += c;
        } else if (!word.empty()) {
            files_.unreadWords.insert(std::move(word));
            word.clear();
        }
    }
}

} // namespace language
