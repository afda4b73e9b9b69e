// Stands before the system's calls on files in a program that is run with LD_PRELOAD, and lets one of them fail.
//
//     ITMS_CALLS=LOG              every call is written to LOG, a line each: its name and what it is about
//     ITMS_FAILING_CALL=7         the seventh of them fails ...
//     ITMS_FAILING_HOW=ENOSPC     ... with this error: ENOSPC, EIO, EINTR, EMFILE
//                      ENOSPC+    and so does every later one that needs room
//                      short      does half of what it is asked for
//                      cut        writes half of what it is asked for, and then there is no room any more
//                      kill       the process dies there (-9); a write has done half of its work
//                      killed     the process dies when it is done
//
// What happens within the C library, such as the writes of its streams, is not seen.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum class Need { nothing, room };
enum class Fate { goesOn, fails, isCut };

long callsMade = 0;
bool isFull = false;

const char* setting(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

void log(const char* call, const char* about)
{
    static const int file = [] {
        const char* name = setting("ITMS_CALLS");
        constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
        return *name ? static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, 0644)) : -1;
    }();
    if (file < 0) return;
    char line[512];
    const int length = std::snprintf(line, sizeof line, "%s %s\n", call, about);
    static_cast<void>(syscall(SYS_write, file, line, length));
}

void die()
{
    syscall(SYS_kill, getpid(), SIGKILL);
}

// What becomes of a call. Where it fails, errno is set.
Fate fateOf(const char* call, const char* about, Need need)
{
    static const long failing = std::atol(setting("ITMS_FAILING_CALL"));
    static const char* const how = setting("ITMS_FAILING_HOW");
    ++callsMade;
    log(call, about);
    if (isFull && need == Need::room) {
        errno = ENOSPC;
        return Fate::fails;
    }
    if (callsMade != failing) return Fate::goesOn;
    if (std::strcmp(how, "ENOSPC+") == 0 || std::strcmp(how, "cut") == 0) isFull = true;
    const bool writes = std::strcmp(call, "write") == 0;
    const bool halves = writes || std::strcmp(call, "read") == 0;
    if (std::strcmp(how, "kill") == 0 && !writes) die();
    if (std::strcmp(how, "cut") == 0 || std::strcmp(how, "short") == 0 ||
        std::strcmp(how, "kill") == 0)
        return halves ? Fate::isCut : Fate::goesOn;
    if (std::strcmp(how, "killed") == 0) return Fate::goesOn;
    errno = std::strcmp(how, "EIO") == 0      ? EIO
            : std::strcmp(how, "EINTR") == 0  ? EINTR
            : std::strcmp(how, "EMFILE") == 0 ? EMFILE
                                              : ENOSPC;
    return Fate::fails;
}

// After the call: whether the process was to die once it is done.
template <typename Result> Result done(Result result)
{
    static const long failing = std::atol(setting("ITMS_FAILING_CALL"));
    static const char* const how = setting("ITMS_FAILING_HOW");
    const int reason = errno;
    if (callsMade == failing && std::strncmp(how, "kill", 4) == 0) die();
    errno = reason;
    return result;
}

// What a descriptor leads to.
const char* target(int file)
{
    static char text[512];
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link, text, sizeof text - 1);
    text[length > 0 ? length : 0] = '\0';
    return text;
}

std::size_t length(std::size_t wanted, Fate fate)
{
    return fate == Fate::isCut && wanted > 1 ? wanted / 2 : wanted;
}

int openOne(const char* path, int flags, mode_t mode)
{
    const Need need = (flags & O_CREAT) != 0 ? Need::room : Need::nothing;
    if (fateOf("open", path, need) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode)));
}

int unary(const char* call, long which, int file, Need need = Need::room)
{
    if (fateOf(call, target(file), need) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(which, file)));
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openOne(path, flags, mode);
}
int __open_2(const char* path, int flags)
{
    return openOne(path, flags, 0);
}
int mkostemp(char* name, int flags)
{
    using Call = int (*)(char*, int);
    static const auto next = reinterpret_cast<Call>(dlsym(RTLD_NEXT, "mkostemp"));
    if (fateOf("mkostemp", name, Need::room) == Fate::fails) return -1;
    return done(next(name, flags));
}
std::FILE* fopen(const char* path, const char* mode)
{
    using Call = std::FILE* (*)(const char*, const char*);
    static const auto next = reinterpret_cast<Call>(dlsym(RTLD_NEXT, "fopen"));
    if (fateOf("fopen", path, Need::nothing) == Fate::fails) return nullptr;
    return done(next(path, mode));
}
std::FILE* fopen64(const char* path, const char* mode)
{
    return fopen(path, mode);
}

ssize_t read(int file, void* to, std::size_t most)
{
    const Fate fate = fateOf("read", target(file), Need::nothing);
    if (fate == Fate::fails) return -1;
    return done(static_cast<ssize_t>(syscall(SYS_read, file, to, length(most, fate))));
}
ssize_t pread(int file, void* to, std::size_t most, off_t from)
{
    const Fate fate = fateOf("read", target(file), Need::nothing);
    if (fate == Fate::fails) return -1;
    return done(static_cast<ssize_t>(syscall(SYS_pread64, file, to, length(most, fate), from)));
}
ssize_t write(int file, const void* from, std::size_t count)
{
    const Fate fate = fateOf("write", target(file), Need::room);
    if (fate == Fate::fails) return -1;
    return done(static_cast<ssize_t>(syscall(SYS_write, file, from, length(count, fate))));
}

int fsync(int file)
{
    return unary("fsync", SYS_fsync, file);
}
// Where closing fails the descriptor is closed all the same.
int close(int file)
{
    const bool fails = fateOf("close", target(file), Need::room) == Fate::fails;
    const int reason = errno;
    const int result = done(static_cast<int>(syscall(SYS_close, file)));
    if (fails) errno = reason;
    return fails ? -1 : result;
}
int ftruncate(int file, off_t size)
{
    if (fateOf("ftruncate", target(file), Need::room) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_ftruncate, file, size)));
}
int fchmod(int file, mode_t mode)
{
    if (fateOf("fchmod", target(file), Need::nothing) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_fchmod, file, mode)));
}
int fchown(int file, uid_t owner, gid_t group)
{
    if (fateOf("fchown", target(file), Need::nothing) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_fchown, file, owner, group)));
}
int rename(const char* from, const char* to)
{
    if (fateOf("rename", to, Need::room) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0)));
}
int unlink(const char* path)
{
    if (fateOf("unlink", path, Need::nothing) == Fate::fails) return -1;
    return done(static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, 0)));
}

// Locks only: other questions cannot fail in this way.
int fcntl(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (command == F_SETLK && fateOf("lock", target(file), Need::nothing) == Fate::fails) return -1;
    const int result = static_cast<int>(syscall(SYS_fcntl, file, command, argument));
    return command == F_SETLK ? done(result) : result;
}

} // extern "C"
