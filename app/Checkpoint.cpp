#include "app/Checkpoint.h"

#include "app/Output.h"
#include "plant/Fingerprint.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <system_error>
#include <unistd.h>

namespace app {

namespace {

constexpr const char* formatName = "itms-checkpoint";
constexpr int version = 1;

[[noreturn]] void fail(const std::string& path, const char* what)
{
    const std::string why = std::generic_category().message(errno);
    throw FileFailure(fmt::format("{}: {}: {}\n", path, what, why));
}

[[noreturn]] void refuse(const std::string& path, const std::string& what)
{
    throw FileFailure(
        fmt::format("{}: {}\n  expected: a checkpoint that itms run --checkpoint wrote\n"
                    "  hint: the file is left as it is; without --resume the run begins anew\n",
                    path, what));
}

// Closes the file in any case.
bool writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) break;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    const bool synced = text.empty() && fsync(file) == 0;
    return close(file) == 0 && synced;
}

// The name of a file is safe only when its folder is written, too.
void syncFolder(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) fail(path, "the folder cannot be opened");
    const bool synced = fsync(file) == 0 || errno == EINVAL;
    close(file);
    if (!synced) fail(path, "the folder cannot be written");
}

std::string readAll(const std::string& path)
{
    struct Close {
        void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rbe"));
    if (!file) fail(path, "cannot be opened");
    std::string text;
    char buffer[65536];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        text.append(buffer, count);
    }
    if (std::ferror(file.get()) != 0) fail(path, "cannot be read");
    return text;
}

} // namespace

void writeCheckpoint(const std::string& path, const nlohmann::json& content)
{
    const std::string body = content.dump();
    const nlohmann::json head{{"format", formatName},
                              {"v", version},
                              {"bytes", body.size()},
                              {"hash", plant::fingerprint(body)}};
    const std::string beside = path + ".new";
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) fail(beside, "cannot be opened");
    if (!writeAll(file, head.dump() + "\n" + body)) fail(beside, "cannot be written");
    if (std::rename(beside.c_str(), path.c_str()) != 0) fail(path, "cannot be replaced");
    syncFolder(path);
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
