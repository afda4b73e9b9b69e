#include "app/Checkpoint.h"

#include "app/Output.h"
#include "plant/Fingerprint.h"
#include "text/File.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>

namespace app {

namespace {

constexpr const char* formatName = "itms-checkpoint";
constexpr int version = 2;

[[noreturn]] void refuse(const std::string& path, const std::string& what)
{
    throw FileFailure(
        fmt::format("{}: {}\n  expected: a checkpoint that itms run --checkpoint wrote\n"
                    "  hint: the file is left as it is; without --resume the run begins anew\n",
                    path, what));
}

std::string readAll(const std::string& path)
{
    text::FileText file = text::readFile(path);
    if (file.text) return std::move(*file.text);
    throw FileFailure(fmt::format(
        "{}: {}: {}\n", path, file.wasOpened ? "cannot be read" : "cannot be opened", file.failure));
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

nlohmann::json readCheckpoint(const std::string& path)
{
    const std::string text = readAll(path);
    const std::size_t end = text.find('\n');
    const auto head = nlohmann::json::parse(text.substr(0, end), nullptr, false);
    if (end == std::string::npos || !head.is_object() || head.value("format", "") != formatName)
        refuse(path, "is no checkpoint");
    if (head.value("v", 0) != version) {
        refuse(path, fmt::format("is a checkpoint of version {}, this program reads version {}",
                                 head.value("v", 0), version));
    }
    const std::string body = text.substr(end + 1);
    if (head.value("bytes", std::size_t{0}) != body.size() ||
        head.value("hash", "") != plant::fingerprint(body)) {
        refuse(path, "is damaged");
    }
    auto content = nlohmann::json::parse(body, nullptr, false);
    if (!content.is_object()) refuse(path, "is damaged");
    return content;
}

} // namespace app
