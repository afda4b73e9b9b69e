// The files of a run, and what each is for: one that is written is nothing else besides.
#pragma once

#include "text/FileIdentity.h"
#include "text/FileLock.h"

#include <optional>
#include <string>
#include <vector>

namespace app {

class FileRoles {
public:
    /// A file that is read; `-` is standard input. `role` as it stands in a message: "the telemetry".
    /// Throws FileFailure, with both roles, when the same file is written.
    void reads(const std::string& path, const std::string& role);
    /// A file that is written, the value of `option`; without a path nothing is.
    /// Throws FileFailure, with both roles, when the same file is read, or written in another role.
    void writes(const std::optional<std::string>& path, const std::string& role,
                const std::string& option);
    /// Standard output, which may be a file.
    void writesStandardOutput();

private:
    struct File {
        std::string path;
        std::string role;
        std::string option; ///< empty: it is read
        std::optional<text::FileIdentity> identity;
    };

    void add(File file);

    std::vector<File> files_;
};

/// Throws FileFailure: another process writes to the file that `option` names.
[[noreturn]] void refuseFileInUse(const std::string& path, const text::LockHolder& holder,
                                  const std::string& option);

} // namespace app
