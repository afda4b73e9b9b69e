#include "plant/Implicates.h"

#include "text/Digest.h"
#include "text/File.h"
#include "text/NearestName.h"
#include "text/SourceText.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <unordered_set>

namespace plant {

namespace {

constexpr std::size_t mostBytes = std::size_t{256} << 20U;
constexpr std::size_t mostErrors = 100;

class ImplicateCheck {
public:
    ImplicateCheck(const Model& model, const text::SourceText& source, ImplicateFile& file)
        : source_(source), file_(file)
    {
        for (const auto& atom : model.atoms()) {
            known_.insert(atom->id);
            names_.push_back(atom->id);
        }
    }

    // A line is what a newline ends, as for the engine.
    void run()
    {
        const std::string_view text = source_.text();
        std::size_t begin = 0;
        for (std::size_t end = text.find('\n'); end != std::string_view::npos;
             end = text.find('\n', begin)) {
            checkLine(begin, text.substr(begin, end - begin));
            begin = end + 1;
        }
        if (begin < text.size()) {
            file_.warnings.push_back(source_.error(source_.range(begin, text.size() - begin),
                                                   "the last line is not read: it has no end", "",
                                                   "end it with a newline"));
        }
    }

private:
    void checkLine(std::size_t offset, std::string_view line)
    {
        const std::size_t colon = line.find(':');
        checkAtom(offset, line.substr(0, colon));
        // Without a colon the engine takes the line for the implicates, too.
        std::size_t begin = colon == std::string_view::npos ? 0 : colon + 1;
        if (begin == line.size() || line[begin] == ',') return;
        ++file_.heads;
        while (begin <= line.size()) {
            const std::size_t end = std::min(line.find_first_of(" ,", begin), line.size());
            checkAtom(offset + begin, line.substr(begin, end - begin));
            begin = end + 1;
        }
    }

    void checkAtom(std::size_t offset, std::string_view name)
    {
        if (known_.contains(name) || file_.errors.size() >= mostErrors) return;
        const std::string near = text::nearestName(name, names_);
        file_.errors.push_back(source_.error(
            source_.range(offset, name.size()),
            name.empty() ? "an atom is missing" : "the model has no atom " + text::quoted(name),
            name.empty() ? "COMPONENT.VARIABLE=VALUE, with one blank or comma between" : "",
            near.empty() ? "" : "did you mean " + text::quoted(near) + "?"));
    }

    const text::SourceText& source_;
    ImplicateFile& file_;
    std::unordered_set<std::string_view> known_;
    std::vector<std::string_view> names_;
};

} // namespace

ImplicateFile checkImplicates(const Model& model)
{
    ImplicateFile file;
    file.path = model.name() + ".pi";
    std::error_code error;
    if (!std::filesystem::exists(file.path, error)) return file;
    file.found = true;
    text::FileText contents = text::readFile(file.path, mostBytes, text::Readable::file);
    if (!contents.text || contents.text->size() > mostBytes) {
        text::Diagnostic& unread = file.errors.emplace_back();
        unread.file = file.path;
        unread.message =
            contents.text ? "the file is too large" : "cannot be read: " + contents.failure;
        return file;
    }
    if (contents.text->starts_with("\xEF\xBB\xBF")) {
        text::Diagnostic& mark = file.errors.emplace_back();
        mark.file = file.path;
        mark.message = "begins with a byte order mark";
        mark.hint = "save it in UTF-8 without one";
        return file;
    }
    text::Digest digest;
    digest.add(*contents.text);
    file.digest = digest.hex();
    const text::SourceText source(file.path, std::move(*contents.text));
    ImplicateCheck(model, source, file).run();
    return file;
}

} // namespace plant
