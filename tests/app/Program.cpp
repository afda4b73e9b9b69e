#include "tests/app/Program.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

struct Pipe {
    int ends[2] = {-1, -1};

    Pipe()
    {
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    }
};

void closeEnd(int& end)
{
    if (end >= 0) close(end);
    end = -1;
}

// The child: never returns.
[[noreturn]] void become(const std::vector<std::string>& arguments, const ProgramSetting& setting,
                         int in, int out, int err)
{
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    for (const char* name : {"NO_COLOR", "CLICOLOR", "CLICOLOR_FORCE"}) {
        unsetenv(name);
    }
    for (const auto& [name, value] : setting.environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> argv{const_cast<char*>("itms")};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    if (chdir(ITMS_ROOT) == 0) execv(ITMS_PROGRAM, argv.data());
    _exit(127);
}

// Feeds the child and reads what it writes until both its outputs are closed. With a signal, standard input stays open, and
// the signal is sent after the first line.
void converse(pid_t child, std::string input, int& in, int& out, int& err, ProgramRun& run,
              int signal)
{
    bool sent = false;
    while (out >= 0 || err >= 0) {
        pollfd polled[3] = {{out, POLLIN, 0}, {err, POLLIN, 0}, {in, POLLOUT, 0}};
        if (input.empty() && signal == 0) closeEnd(in);
        polled[2].fd = input.empty() ? -1 : in;
        poll(polled, 3, -1);
        const auto take = [](int& end, std::string& text) {
            char buffer[4096];
            const ssize_t got = read(end, buffer, sizeof buffer);
            if (got > 0) {
                text.append(buffer, static_cast<std::size_t>(got));
            } else {
                closeEnd(end);
            }
        };
        if (polled[0].revents != 0) take(out, run.out);
        if (polled[1].revents != 0) take(err, run.err);
        if (polled[2].revents != 0) {
            const ssize_t put = write(in, input.data(), input.size());
            input.erase(0, put > 0 ? static_cast<std::size_t>(put) : input.size());
        }
        if (signal != 0 && !sent && run.out.find('\n') != std::string::npos) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            kill(child, signal);
            sent = true;
        }
    }
    closeEnd(in);
}

ProgramRun start(const std::vector<std::string>& arguments, const ProgramSetting& setting,
                 int signal)
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // the program need not read all of its input
    Pipe in;
    Pipe out;
    Pipe err;
    if (setting.terminal) {
        closeEnd(out.ends[0]);
        closeEnd(out.ends[1]);
        if (openpty(&out.ends[0], &out.ends[1], nullptr, nullptr, nullptr) != 0)
            throw std::runtime_error("no terminal");
    }
    const pid_t child = fork();
    if (child == 0) become(arguments, setting, in.ends[0], out.ends[1], err.ends[1]);
    closeEnd(in.ends[0]);
    closeEnd(out.ends[1]);
    closeEnd(err.ends[1]);
    ProgramRun run;
    converse(child, setting.input, in.ends[1], out.ends[0], err.ends[0], run, signal);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    for (std::size_t at = 0;
         setting.terminal && (at = run.out.find("\r\n", at)) != std::string::npos;) {
        run.out.erase(at, 1);
    }
    return run;
}

} // namespace

ProgramRun runProgram(const std::vector<std::string>& arguments, const ProgramSetting& setting)
{
    return start(arguments, setting, 0);
}

ProgramRun runUntilSignal(const std::vector<std::string>& arguments, const std::string& input,
                          int signal)
{
    return start(arguments, {input, {}, false}, signal);
}

bool runAndKill(const std::vector<std::string>& arguments, double seconds)
{
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    const pid_t child = fork();
    if (child == 0) become(arguments, {}, nothing, nothing, nothing);
    close(nothing);
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status);
}

std::vector<std::string> projectLines(const std::string& path)
{
    std::ifstream file(std::string(ITMS_ROOT "/") + path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string outputOf(const std::string& commandLine)
{
    std::FILE* pipe = popen(commandLine.c_str(), "r");
    if (!pipe) return "no shell\n";
    std::string text;
    std::array<char, 4096> buffer{};
    for (std::size_t got = 0; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        text.append(buffer.data(), got);
    }
    const int status = pclose(pipe);
    if (WEXITSTATUS(status) != 0) text += "[" + std::to_string(WEXITSTATUS(status)) + "]\n";
    return text;
}

std::string programFolder()
{
    return std::filesystem::path(ITMS_PROGRAM).parent_path();
}
