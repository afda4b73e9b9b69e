#include "app/Graphviz.h"

#include "app/Output.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

extern char** environ;

namespace app {

namespace {

std::string reason(int error)
{
    return std::generic_category().message(error);
}

struct Actions {
    Actions() { posix_spawn_file_actions_init(&list); }
    ~Actions() { posix_spawn_file_actions_destroy(&list); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    posix_spawn_file_actions_t list{};
};

} // namespace

// From a file rather than a pipe: then nobody waits for the other.
void drawSvg(const std::string& graph)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> input(std::tmpfile(), &std::fclose);
    const bool written = input &&
                         std::fwrite(graph.data(), 1, graph.size(), input.get()) == graph.size() &&
                         std::fflush(input.get()) == 0;
    if (!written) throw Failure(fmt::format("cannot write the graph for dot: {}\n", reason(errno)));
    std::rewind(input.get());
    Actions actions;
    posix_spawn_file_actions_adddup2(&actions.list, fileno(input.get()), STDIN_FILENO);
    std::string name = "dot";
    std::string format = "-Tsvg";
    char* const arguments[] = {name.data(), format.data(), nullptr};
    pid_t child = 0;
    if (const int error =
            posix_spawnp(&child, name.c_str(), &actions.list, nullptr, arguments, environ)) {
        throw Failure(fmt::format("--format svg: the program dot cannot be started: {}\n"
                                  "  expected: Graphviz, which has it, in PATH\n"
                                  "  hint: --format dot needs no other program\n",
                                  reason(error)));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throw Failure(fmt::format("dot: {}\n", reason(errno)));
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Failure("--format svg: dot failed\n  hint: --format dot shows what it was given\n");
}

} // namespace app
