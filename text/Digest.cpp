#include "text/Digest.h"

namespace text {

void Digest::add(std::string_view piece)
{
    constexpr std::uint64_t prime = 1099511628211U;
    for (const char c : piece) {
        value_ = (value_ ^ static_cast<unsigned char>(c)) * prime;
    }
}

std::string Digest::hex() const
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) {
        text += digits[(value_ >> shift) & 0xfU];
    }
    return text;
}

} // namespace text
