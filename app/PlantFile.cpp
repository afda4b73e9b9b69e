#include "app/PlantFile.h"

#include "app/Output.h"
#include "text/Diagnostics.h"
#include "text/File.h"
#include "text/NearestName.h"
#include "text/SourceText.h"
#include "text/Wording.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <toml++/toml.h>

namespace app {

namespace {

struct Renaming {
    std::string from;
    std::string to;
    text::Range range; ///< of `to`
};

// A file that is read, and what is wrong with it.
class TomlFile {
public:
    explicit TomlFile(const std::string& path) : source_(path, contentOf(path))
    {
        try {
            table_ = toml::parse(source_.text());
        } catch (const toml::parse_error& error) {
            report(error.source(), std::string(error.description()), {},
                   "a TOML file has lines such as  key = \"text\"");
            refuse();
        }
    }

    const toml::table& table() const { return table_; }

    text::Range range(const toml::source_region& at) const
    {
        const auto bytes = at.end.line == at.begin.line && at.end.column > at.begin.column
                               ? at.end.column - at.begin.column
                               : 1U;
        return {source_.number(), at.begin.line, at.begin.column, bytes};
    }
    void report(const toml::source_region& at, std::string message, std::string expected,
                std::string hint = {})
    {
        report(range(at), std::move(message), std::move(expected), std::move(hint));
    }
    void report(const text::Range& at, std::string message, std::string expected, std::string hint)
    {
        mistakes_.error(
            0, source_.error(at, std::move(message), std::move(expected), std::move(hint)));
    }
    /// Throws what was reported, if anything was.
    void refuse()
    {
        std::string text;
        for (const text::Diagnostic& mistake : mistakes_.takeErrors()) {
            text += mistake.format();
        }
        if (!text.empty()) throw FileFailure(text);
    }

private:
    static std::string contentOf(const std::string& path)
    {
        text::FileText file = text::readFile(path);
        if (!file.text)
            throw FileFailure(fmt::format("{}: {}\n", text::shownName(path), file.failure));
        return std::move(*file.text);
    }

    text::SourceText source_;
    toml::table table_;
    text::Diagnostics mistakes_;
};

void reportUnknown(TomlFile& file, const toml::key& key, const std::vector<std::string_view>& known)
{
    file.report(key.source(), fmt::format("found the key {}", text::quoted(key.str())),
                fmt::format("one of {}", fmt::join(known, ", ")),
                text::didYouMean(key.str(), known));
}

// `"COLUMN" = "CHANNEL"`, each.
std::vector<Renaming> readRenamings(TomlFile& file, const toml::table& table)
{
    std::vector<Renaming> renamings;
    for (const auto& [key, value] : table) {
        const auto* name = value.as_string();
        if (!name) {
            file.report(value.source(), "found no text", "the name of a channel in double quotes");
            continue;
        }
        renamings.push_back({std::string(key.str()), name->get(), file.range(value.source())});
    }
    return renamings;
}

const toml::table* tableAt(TomlFile& file, const toml::node& node)
{
    const toml::table* table = node.as_table();
    if (!table) file.report(node.source(), "found no table", "[telemetry] or [rename] on a line");
    return table;
}

// A setting as the command line would have it.
std::string textOf(const toml::node& node)
{
    if (const auto* text = node.as_string()) return text->get();
    if (const auto number = node.value<double>()) return fmt::format("{}", *number);
    return {};
}

// Sets what the command line does not.
void readSettings(TomlFile& file, const toml::table& table, ReadOptions& options)
{
    ReadOptions here;
    const Section section = readSection(here);
    const Section wanted = readSection(options);
    std::vector<std::string_view> known;
    for (const Row& row : section.rows) {
        if (row.names != "--rename" && row.names != "--plant-file")
            known.push_back(std::string_view(row.names).substr(2));
    }
    for (const auto& [key, value] : table) {
        const auto found = std::find(known.begin(), known.end(), key.str());
        if (found == known.end()) {
            reportUnknown(file, key, known);
            continue;
        }
        const auto place = static_cast<std::size_t>(found - known.begin());
        const std::string text = textOf(value);
        const Check& check = section.rows[place].check;
        const std::string mistake = text.empty() ? "found no text" : check ? check(text) : "";
        if (!mistake.empty()) {
            file.report(value.source(), mistake, {}, {});
            continue;
        }
        auto& target = *std::get<std::optional<std::string>*>(wanted.rows[place].target);
        if (!target) target = text;
    }
}

// The tables of a plant's file.
std::vector<Renaming> readPlant(TomlFile& file, ReadOptions& options)
{
    std::vector<Renaming> renamings;
    for (const auto& [key, value] : file.table()) {
        if (key != "telemetry" && key != "rename") {
            reportUnknown(file, key, {"telemetry", "rename"});
            continue;
        }
        const toml::table* table = tableAt(file, value);
        if (!table) continue;
        if (key == "telemetry") {
            readSettings(file, *table, options);
        } else {
            renamings = readRenamings(file, *table);
        }
    }
    return renamings;
}

} // namespace

struct PlantFiles::Content {
    ReadOptions options;
    std::vector<std::pair<TomlFile, std::vector<Renaming>>> files; ///< the last one takes precedence

    template <typename Read> void add(const std::string& path, Read read)
    {
        TomlFile file(path);
        std::vector<Renaming> renamings = read(file);
        file.refuse();
        files.emplace_back(std::move(file), std::move(renamings));
    }
};

PlantFiles::PlantFiles(const std::string& modelPath, const ReadOptions& options, FileRoles& roles)
    : content_(std::make_unique<Content>())
{
    content_->options = options;
    const std::string beside =
        (std::filesystem::path(modelPath).parent_path() / "plant.toml").string();
    const std::string path = options.plantFile.value_or(beside);
    std::error_code error;
    if (path != "none" && (options.plantFile || std::filesystem::exists(path, error))) {
        roles.reads(path, "the plant's file");
        content_->add(path, [this](TomlFile& file) { return readPlant(file, content_->options); });
    }
    if (options.rename) {
        roles.reads(*options.rename, "the file of --rename");
        content_->add(*options.rename,
                      [](TomlFile& file) { return readRenamings(file, file.table()); });
    }
}

PlantFiles::PlantFiles(PlantFiles&&) noexcept = default;
PlantFiles::~PlantFiles() = default;

Reading PlantFiles::reading(const plant::Model& model, const plant::Bindings& bindings) const
{
    Reading reading = readingOf(content_->options);
    // All names of a large plant, where they are needed.
    std::optional<telemetry::Names> names;
    if (!content_->files.empty()) names.emplace(model, bindings);
    for (auto& [file, renamings] : content_->files) {
        for (const Renaming& one : renamings) {
            if (names->find(one.to) == telemetry::Names::none) {
                text::Message what = names->unknown(one.to);
                file.report(one.range, what.message, what.expected, what.hint);
            }
            reading.settings.renamed[one.from] = one.to;
        }
        file.refuse();
    }
    std::string& text = reading.texts["rename"];
    for (const auto& [from, to] : reading.settings.renamed) {
        text += fmt::format("{}={}\n", from, to);
    }
    return reading;
}

} // namespace app
