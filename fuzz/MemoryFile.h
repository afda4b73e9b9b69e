// A file in memory, for readers that open what they read by its name.
#pragma once

#include "fuzz/Require.h"

#include <string>
#include <sys/mman.h>
#include <unistd.h>

class MemoryFile {
public:
    MemoryFile(const void* data, std::size_t size) : file_(memfd_create("fuzzed", 0))
    {
        require(write(file_, data, size) == static_cast<ssize_t>(size), "the file can be written");
        path = "/proc/self/fd/" + std::to_string(file_);
    }
    ~MemoryFile() { close(file_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path;

private:
    int file_;
};
