#include "telemetry/PackedFile.h"

#include "telemetry/LineSource.h"
#include "text/Diagnostic.h"

#include <cerrno>
#include <fmt/format.h>
#include <string_view>
#include <unistd.h>
#include <vector>
#include <zlib.h>
#include <zstd.h>

namespace telemetry {

namespace {

constexpr std::size_t packedBytes = 65536;

[[noreturn]] void failPacked(const std::string& name, std::string_view what)
{
    throw ReadFailure(fmt::format("{}: cannot be unpacked: {}\n", text::shownName(name), what));
}

// What gzip and zstd have in common: packed bytes are read, and unpacked piece by piece.
class Packed : public PackedFile {
public:
    Packed(int file, std::string name) : name_(std::move(name)), file_(file), buffer_(packedBytes)
    {
    }

    ssize_t read(char* to, std::size_t most) override
    {
        while (true) {
            if (begin_ == end_ && !atEnd_) {
                const ssize_t count = ::read(file_, buffer_.data(), buffer_.size());
                if (count < 0) return count;
                atEnd_ = count == 0;
                begin_ = 0;
                end_ = static_cast<std::size_t>(count);
                taken_ += end_;
            }
            const std::size_t given = unpack(to, most);
            if (given > 0) return static_cast<ssize_t>(given);
            if (begin_ == end_ && atEnd_) {
                if (!between_) failPacked(name_, "it is cut short");
                return 0;
            }
        }
    }
    std::uint64_t taken() const override { return taken_; }

protected:
    // Unpacks what is in the buffer, moves begin_ on, and sets between_. Returns how many bytes it gave.
    virtual std::size_t unpack(char* to, std::size_t most) = 0;

    std::string name_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool between_ = false; // what was begun is whole
    char* packed() { return buffer_.data() + begin_; }

private:
    int file_;
    std::vector<char> buffer_;
    bool atEnd_ = false;
    std::uint64_t taken_ = 0;
};

class Gzip : public Packed {
public:
    Gzip(int file, std::string name) : Packed(file, std::move(name))
    {
        constexpr int gzipWindow = 15 + 16;
        if (inflateInit2(&stream_, gzipWindow) != Z_OK) throw std::bad_alloc();
    }
    ~Gzip() override { inflateEnd(&stream_); }

private:
    std::size_t unpack(char* to, std::size_t most) override
    {
        // Several files packed one after the other are one.
        if (between_ && begin_ == end_) return 0;
        if (between_) inflateReset(&stream_);
        stream_.next_in = reinterpret_cast<Bytef*>(packed());
        stream_.avail_in = static_cast<uInt>(end_ - begin_);
        stream_.next_out = reinterpret_cast<Bytef*>(to);
        stream_.avail_out = static_cast<uInt>(most);
        const int result = inflate(&stream_, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            failPacked(name_, stream_.msg ? stream_.msg : "it is damaged");
        begin_ = end_ - stream_.avail_in;
        between_ = result == Z_STREAM_END;
        return most - stream_.avail_out;
    }

    z_stream stream_ = {};
};

class Zstd : public Packed {
public:
    Zstd(int file, std::string name) : Packed(file, std::move(name)), stream_(ZSTD_createDStream())
    {
        if (!stream_) throw std::bad_alloc();
    }
    ~Zstd() override { ZSTD_freeDStream(stream_); }

private:
    std::size_t unpack(char* to, std::size_t most) override
    {
        if (between_ && begin_ == end_) return 0;
        ZSTD_inBuffer in{packed(), end_ - begin_, 0};
        ZSTD_outBuffer out{to, most, 0};
        const std::size_t result = ZSTD_decompressStream(stream_, &out, &in);
        if (ZSTD_isError(result)) failPacked(name_, ZSTD_getErrorName(result));
        begin_ += in.pos;
        between_ = result == 0;
        return out.pos;
    }

    ZSTD_DStream* stream_;
};

} // namespace

std::unique_ptr<PackedFile> PackedFile::of(int file, const std::string& name)
{
    using namespace std::string_view_literals;
    char head[4] = {};
    ssize_t count = -1;
    do {
        count = pread(file, head, sizeof head, 0);
    } while (count < 0 && errno == EINTR);
    // A pipe cannot be looked into, nor a folder; reading will tell of anything else.
    if (count <= 0) return nullptr;
    const std::string_view begins(head, static_cast<std::size_t>(count));
    if (begins.starts_with("\x1f\x8b"sv)) return std::make_unique<Gzip>(file, name);
    if (begins == "\x28\xb5\x2f\xfd"sv) return std::make_unique<Zstd>(file, name);
    return nullptr;
}

} // namespace telemetry
