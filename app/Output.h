// Standard output and standard error, and what they are connected to.
//
// std::cout belongs to the engine's trace: a program that wants none puts it into a failed state, so what the program
// itself prints goes to the C stream.
#pragma once

#include <stdexcept>
#include <string_view>

namespace app {

/// An error that ends the program with a message and status 2. The message may have several lines; it is printed after
/// "itms: " or "itms VERB: ".
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The same for errors in a file: their messages begin with its name, and nothing is put before them.
class FileFailure : public Failure {
public:
    using Failure::Failure;
};

/// Opens those of descriptors 0 to 2 that are closed, so that no file that is opened later gets their numbers, and what the program
/// prints. Reading from a closed standard input, and writing to a closed output, stays an error. Called first of all.
void openStandardDescriptors();

/// Writes to standard output at once. Throws Failure when that fails.
void print(std::string_view text);
/// Writes to standard error, with control characters shown (text::printable).
void complain(std::string_view text);

bool outputIsTerminal();

enum class ColourChoice { always, never, automatic };
/// Whether to colour standard output: what was chosen, else as the environment asks (NO_COLOR, CLICOLOR_FORCE, CLICOLOR, in
/// this order), else whether it is a terminal.
bool wantsColour(ColourChoice choice);

/// Keeps the engine's trace off standard output.
void muteTrace();
/// Throws Failure when some of the engine's trace could not be written.
/// Requires: the trace is not muted.
void checkTrace();

/// A line on standard error that says what is going on. Only on a terminal; every other output has to clear it first.
class Progress {
public:
    explicit Progress(bool wanted);
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::string_view text);
    void clear();

private:
    bool on_;
    bool shown_ = false;
};

} // namespace app
