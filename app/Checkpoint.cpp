#include "app/Checkpoint.h"

#include "app/Output.h"
#include "plant/Fingerprint.h"
#include "text/Diagnostic.h"
#include "text/File.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>

namespace app {

namespace {

constexpr const char* formatName = "itms-checkpoint";
constexpr int version = 2;

[[noreturn]] void refuse(const std::string& path, const std::string& what,
                         const std::string& otherwise = "; without --resume the run begins anew")
{
    throw FileFailure(
        fmt::format("{}: {}\n  expected: a checkpoint that itms run --checkpoint wrote\n"
                    "  hint: the file is left as it is{}\n",
                    text::shownName(path), what, otherwise));
}

// The first line of a checkpoint; null for anything else.
nlohmann::json headOf(std::string_view text)
{
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return nullptr;
    auto head = nlohmann::json::parse(text.substr(0, end), nullptr, false);
    const bool ours = head.is_object() && head.contains("format") && head["format"] == formatName;
    return ours ? head : nullptr;
}

std::string readAll(const std::string& path)
{
    text::FileText file = text::readFile(path);
    if (file.text) return std::move(*file.text);
    throw FileFailure(fmt::format("{}: {}: {}\n", text::shownName(path),
                                  file.wasOpened ? "cannot be read" : "cannot be opened",
                                  file.failure));
}

} // namespace

void writeCheckpoint(const std::string& path, const nlohmann::json& content)
{
    const std::string body = content.dump();
    const nlohmann::json head{{"format", formatName},
                              {"v", version},
                              {"bytes", body.size()},
                              {"hash", plant::fingerprint(body)}};
    try {
        text::writeWhole(path, head.dump() + "\n" + body);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(fmt::format("{}\n", failure.what()));
    }
}

bool isCheckpoint(std::string_view text)
{
    return !headOf(text).is_null();
}

nlohmann::json readCheckpoint(const std::string& path)
{
    const std::string text = readAll(path);
    const nlohmann::json head = headOf(text);
    if (head.is_null()) refuse(path, "is no checkpoint", "");
    const nlohmann::json made = head.contains("v") ? head["v"] : nlohmann::json();
    if (made != version) {
        refuse(path, fmt::format("is a checkpoint of version {}, this program reads version {}",
                                 made.dump(), version));
    }
    const std::string body = text.substr(text.find('\n') + 1);
    const bool whole = head.contains("bytes") && head["bytes"] == body.size() &&
                       head.contains("hash") && head["hash"] == plant::fingerprint(body) &&
                       body.find('\0') == std::string::npos;
    if (!whole) refuse(path, "is damaged");
    auto content = nlohmann::json::parse(body, nullptr, false);
    if (!content.is_object()) refuse(path, "is damaged");
    return content;
}

} // namespace app
