#include "tests/reference/Observed.h"

#include <algorithm>
#include <cctype>
#include <iostream>

namespace {

// Lines from a little before the first difference to a little after it.
std::string excerpt(const std::string& text, std::size_t position)
{
    std::size_t begin = std::min(position, text.size());
    for (int lines = 0; begin > 0 && lines < 6; --begin) {
        lines += text[begin - 1] == '\n' ? 1 : 0;
    }
    const std::size_t end = std::min(text.size(), position + 300);
    return text.substr(begin, end - begin);
}

std::string hideAddresses(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "0x") != 0) {
            out += text[i];
            continue;
        }
        out += "PTR";
        for (++i; i + 1 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1]));) {
            ++i;
        }
    }
    return out;
}

std::vector<const Observed::Piece*> compared(const Observed& run, bool traces)
{
    std::vector<const Observed::Piece*> pieces;
    for (const Observed::Piece& piece : run.pieces) {
        if (traces || !piece.trace) {
            pieces.push_back(&piece);
        }
    }
    return pieces;
}

} // namespace

std::string firstDifference(const Observed& expected, const Observed& seen, bool traces)
{
    const auto a = compared(expected, traces);
    const auto b = compared(seen, traces);
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (a[i]->what == b[i]->what && a[i]->text == b[i]->text) {
            continue;
        }
        const auto [left, right] = std::mismatch(a[i]->text.begin(), a[i]->text.end(),
                                                 b[i]->text.begin(), b[i]->text.end());
        const auto position = static_cast<std::size_t>(left - a[i]->text.begin());
        return (a[i]->trace ? "trace of " : "result of ") + a[i]->what + " / " + b[i]->what +
               "\n---- expected ----\n" + excerpt(a[i]->text, position) + "\n---- seen ----\n" +
               excerpt(b[i]->text, position) + "\n----\n";
    }
    return a.size() == b.size() ? "" : "one run has more to show than the other\n";
}

Capture::Capture(bool muted)
    : muted_(muted), previousOut_(std::cout.rdbuf(&out_)), previousErr_(std::cerr.rdbuf(&err_))
{
    if (muted_) {
        std::cout.setstate(std::ios::failbit);
    }
}

Capture::~Capture()
{
    std::cerr.rdbuf(previousErr_);
    std::cout.rdbuf(previousOut_);
    if (muted_) {
        std::cout.clear();
    }
}

std::string Capture::take()
{
    std::string text = hideAddresses(out_.str());
    if (!err_.str().empty()) {
        text += "[standard error] " + err_.str();
    }
    out_.str("");
    err_.str("");
    return text;
}
