// Files that gzip or zstd packed, read as what was packed into them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <sys/types.h>

namespace telemetry {

class PackedFile {
public:
    PackedFile() = default;
    virtual ~PackedFile() = default;
    PackedFile(const PackedFile&) = delete;
    PackedFile& operator=(const PackedFile&) = delete;

    /// The file's content, unpacked; null for one that is not packed, and for what is no file, such as a pipe. The first bytes
    /// tell, not the name, which is for messages. The descriptor stays the caller's, and is at its beginning.
    static std::unique_ptr<PackedFile> of(int file, const std::string& name);

    /// As read(2): up to `most` bytes, 0 at the end, -1 with errno for an error or an interruption. Throws ReadFailure where the file is
    /// damaged or cut short.
    virtual ssize_t read(char* to, std::size_t most) = 0;
    /// How many bytes of the file were taken.
    virtual std::uint64_t taken() const = 0;
};

} // namespace telemetry
