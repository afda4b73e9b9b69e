#include "app/Output.h"

#include "text/Wording.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace app {

namespace {

void writeError(std::string_view text)
{
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

} // namespace

void openStandardDescriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
        // The lowest number that is free is given: this one. It is opened for what nobody does with it.
        const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (open("/dev/null", mode) != descriptor) std::abort();
    }
}

void print(std::string_view text)
{
    // Not by the C stream, which gives up when a signal interrupts it.
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            throw Failure(fmt::format("cannot write to standard output: {}\n",
                                      std::generic_category().message(errno)));
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void complain(std::string_view text)
{
    writeError(text::printable(text));
}

bool outputIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

bool wantsColour(ColourChoice choice)
{
    if (choice != ColourChoice::automatic) return choice == ColourChoice::always;
    const auto variable = [](const char* name) -> std::string_view {
        const char* value = std::getenv(name);
        return value ? value : "";
    };
    if (!variable("NO_COLOR").empty()) return false;
    if (!variable("CLICOLOR_FORCE").empty() && variable("CLICOLOR_FORCE") != "0") return true;
    if (variable("CLICOLOR") == "0") return false;
    return outputIsTerminal();
}

void muteTrace()
{
    std::cout.setstate(std::ios::failbit);
}

void checkTrace()
{
    std::cout.flush();
    if (!std::cout.good()) throw Failure("cannot write to standard output\n");
}

Progress::Progress(bool wanted) : on_(wanted && isatty(STDERR_FILENO) == 1) {}

void Progress::show(std::string_view text)
{
    if (!on_) return;
    writeError(fmt::format("\r\x1b[K{}", text::printable(text)));
    shown_ = true;
}

void Progress::clear()
{
    if (!shown_) return;
    writeError("\r\x1b[K");
    shown_ = false;
}

} // namespace app
