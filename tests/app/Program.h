// Runs the program as a user does.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// What a run left behind.
struct ProgramRun {
    int status = -1; ///< the exit status; 128 + the signal when one ended it
    std::string out;
    std::string err;
};

/// How to run it.
struct ProgramSetting {
    std::string input;                                            ///< given on standard input
    std::vector<std::pair<std::string, std::string>> environment; ///< added to one without colour variables
    bool terminal =
        false; ///< standard output is a terminal; `out` has what is written to it, with LF for CR LF
};

/// Runs itms with the arguments, at the root of the project.
ProgramRun runProgram(const std::vector<std::string>& arguments, const ProgramSetting& setting = {});

/// Runs itms with an input that never ends; sends `signal` a second after standard output has a line, by when the program is at
/// what comes next, and waits for the end.
ProgramRun runUntilSignal(const std::vector<std::string>& arguments, const std::string& input,
                          int signal);

/// Runs itms without input, its output thrown away, and kills it (-9) after so many seconds. True when it had not ended
/// before.
bool runAndKill(const std::vector<std::string>& arguments, double seconds);

/// The lines of a file of the project, without their ends.
std::vector<std::string> projectLines(const std::string& path);

/// What a command line prints, on standard output and error, when /bin/sh runs it; then `[STATUS]` where that is not 0.
std::string outputOf(const std::string& commandLine);

/// The folder of the program, for PATH.
std::string programFolder();
