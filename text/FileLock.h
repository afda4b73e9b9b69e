// Locks between programs: one run at a time writes to a file. They end with the process, however that ends.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace text {

/// Who has a lock.
struct LockHolder {
    pid_t process = 0; ///< 0: not known
};

/// Locks the file behind an open descriptor that may be written to, until this process closes a descriptor of that file.
/// Returns who has the lock when that is another process. What cannot be locked counts as locked: a pipe, a device, a file on a
/// file system without locks.
std::optional<LockHolder> tryLock(int descriptor);

/// A file that only serves to be locked: it is empty, is made when it is not there, and is removed at the end. One that a killed
/// process left keeps nobody out.
class LockFile {
public:
    /// Locks it unless another process has it. Throws WriteFailure when no file can be made, and for a file that is no lock.
    explicit LockFile(std::string path);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// Who has it, when that is another process.
    const std::optional<LockHolder>& holder() const { return holder_; }

private:
    bool isAtItsPlace() const;

    std::string path_;
    int file_ = -1;
    std::optional<LockHolder> holder_;
};

} // namespace text
