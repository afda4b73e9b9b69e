// Which file a name means, whatever links lead there.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace text {

/// A file, or the place of one that is not there yet. Two names of one file have equal identities.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;  ///< of the file; of its folder while the file is not there
    std::string name; ///< in that folder; empty for a file that is there

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// The identity of what a name leads to. None for what keeps nothing, and may well have several uses at once (a terminal,
/// /dev/null, a pipe, a socket), and where the folder is not there either.
std::optional<FileIdentity> identityOf(const std::string& path);
/// The same for an open descriptor.
std::optional<FileIdentity> identityOf(int descriptor);

/// The name at the end of the symbolic links that `path` is; `path` itself when it is none. What it leads to need not be there.
std::string linkTarget(const std::string& path);

} // namespace text
