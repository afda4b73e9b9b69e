#include "app/FileRoles.h"

#include "app/Output.h"
#include "text/Diagnostic.h"

#include <fmt/format.h>
#include <unistd.h>
#include <utility>

namespace app {

void FileRoles::reads(const std::string& path, const std::string& role)
{
    if (path == "-") {
        add({"standard input", role, {}, text::identityOf(STDIN_FILENO)});
    } else {
        add({path, role, {}, text::identityOf(path)});
    }
}

void FileRoles::writes(const std::optional<std::string>& path, const std::string& role,
                       const std::string& option)
{
    if (path) add({*path, role, option, text::identityOf(*path)});
}

void FileRoles::writesStandardOutput()
{
    add({"standard output", "what is printed", "standard output", text::identityOf(STDOUT_FILENO)});
}

void FileRoles::add(File file)
{
    for (const File& other : files_) {
        if (!file.identity || file.identity != other.identity) continue;
        if (file.option.empty() && other.option.empty()) continue;
        const File& written = file.option.empty() ? other : file;
        const File& first = file.option.empty() ? file : other;
        const std::string elsewhere =
            first.path == written.path ? "" : fmt::format(", {},", text::shownName(first.path));
        throw FileFailure(fmt::format("{}: is both {}{} and {}\n  expected: another file for {}\n",
                                      text::shownName(written.path), first.role, elsewhere,
                                      written.role, written.option));
    }
    files_.push_back(std::move(file));
}

void refuseFileInUse(const std::string& path, const text::LockHolder& holder,
                     const std::string& option)
{
    const std::string process =
        holder.process > 0 ? fmt::format(", process {}", holder.process) : std::string();
    throw FileFailure(fmt::format("{}: another run is writing to it{}\n  expected: another file "
                                  "for {}, or the end of that run\n",
                                  text::shownName(path), process, option));
}

} // namespace app
