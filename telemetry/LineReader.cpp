#include "telemetry/LineReader.h"

#include "text/Diagnostic.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace telemetry {

namespace {

constexpr std::size_t chunkBytes = 65536;

[[noreturn]] void fail(const std::string& name)
{
    throw ReadFailure(fmt::format("{}: cannot be read: {}\n", text::shownName(name),
                                  std::generic_category().message(errno)));
}

} // namespace

LineReader::LineReader(const std::string& path, std::size_t mostBytes)
    : name_(path == "-" ? "standard input" : path),
      file_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      mostBytes_(mostBytes), buffer_(chunkBytes)
{
    if (file_ < 0) fail(name_);
    packed_ = PackedFile::of(file_, name_);
    struct stat status = {};
    if (fstat(file_, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0)
        fileBytes_ = static_cast<std::uint64_t>(status.st_size);
}

LineReader::~LineReader()
{
    if (file_ != STDIN_FILENO) close(file_);
}

// Reads once, and takes what is there: it does not wait until the buffer is full.
LineReader::Filled LineReader::fill()
{
    if (atEnd_) return Filled::end;
    if (begin_ > 0 && buffer_.size() - end_ < chunkBytes) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (buffer_.size() - end_ < chunkBytes) buffer_.resize(2 * buffer_.size());
    char* const to = buffer_.data() + end_;
    const std::size_t most = buffer_.size() - end_;
    const ssize_t count = packed_ ? packed_->read(to, most) : read(file_, to, most);
    if (count < 0) {
        if (errno != EINTR) fail(name_);
        interrupted_ = true;
        return Filled::interrupted;
    }
    atEnd_ = count == 0;
    end_ += static_cast<std::size_t>(count);
    bytesRead_ += static_cast<std::uint64_t>(count);
    return atEnd_ ? Filled::end : Filled::some;
}

double LineReader::doneShare() const
{
    if (fileBytes_ == 0) return 0.0;
    const std::uint64_t returned = packed_ ? packed_->taken() : bytesRead_ - (end_ - begin_);
    return std::min(1.0, static_cast<double>(returned) / static_cast<double>(fileBytes_));
}

bool LineReader::take(std::string_view& line, std::size_t length, std::size_t withEnd)
{
    line = {buffer_.data() + begin_, length};
    begin_ += withEnd;
    searched_ = 0;
    tooLong_ = cutting_;
    if (cutting_) line = cut_;
    cutting_ = false;
    while (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    if (line.size() > mostBytes_) {
        tooLong_ = true;
        line = line.substr(0, mostBytes_);
    }
    ++lineNumber_;
    return true;
}

bool LineReader::next(std::string_view& line)
{
    interrupted_ = false;
    while (true) {
        const std::size_t length = end_ - begin_;
        const char* from = buffer_.data() + begin_;
        const void* newline = std::memchr(from + searched_, '\n', length - searched_);
        if (newline) {
            const auto at = static_cast<std::size_t>(static_cast<const char*>(newline) - from);
            return take(line, at, at + 1);
        }
        searched_ = length;
        // A CR that turns out to belong to the line's end does not count.
        if (cutting_ || (length > mostBytes_ && length - mostBytes_ > 1)) {
            if (!cutting_) cut_.assign(from, mostBytes_);
            cutting_ = true;
            begin_ = end_ = searched_ = 0;
        }
        switch (fill()) {
        case Filled::some: break;
        case Filled::interrupted: return false;
        case Filled::end:
            if (begin_ == end_ && !cutting_) return false;
            unended_ = true;
            return take(line, end_ - begin_, end_ - begin_);
        }
    }
}

} // namespace telemetry
