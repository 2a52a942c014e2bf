#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>

SystemCalls g_calls;

namespace {

template <typename... Arguments>
long Counted(bool isKnown, int otherwise, long number, Arguments... arguments) {
    const bool isFault = isKnown && g_calls.faultAt > 0 && --g_calls.faultAt == 0;
    if (!isKnown || (isFault && g_calls.error != 0)) {
        errno = isKnown ? g_calls.error : otherwise;
        return -1;
    }
    const long result = syscall(number, arguments...);
    if (isFault) {
        raise(SIGKILL);
    }
    return result;
}

template <typename... Arguments>
int Call(long number, Arguments... arguments) {
    return static_cast<int>(Counted(true, 0, number, arguments...));
}

}  // namespace

int RunWithFault(const SystemCalls& calls, const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        g_calls = calls;
        const int result = work();
        _exit(g_calls.faultAt > 0 ? kNoSuchCall : result);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) || (calls.error == 0 && WTERMSIG(status) == SIGKILL));
    return WIFEXITED(status) ? WEXITSTATUS(status) : kKilled;
}

extern "C" {

int openat(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool isKnown = (flags & O_TMPFILE) != O_TMPFILE || g_calls.namelessFiles;
    return static_cast<int>(Counted(isKnown, EOPNOTSUPP, SYS_openat, directory, path, flags, mode));
}

// The kernel itself looks for other mounts and taken names before the file system is asked.
int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
    struct statx one {};
    struct statx other {};
    int otherwise = statx(to, newName, AT_SYMLINK_NOFOLLOW, 0, &other) == 0 ? EEXIST : EINVAL;
    statx(from, "", AT_EMPTY_PATH, STATX_MNT_ID, &one);
    statx(to, "", AT_EMPTY_PATH, STATX_MNT_ID, &other);
    otherwise = one.stx_mnt_id != other.stx_mnt_id ? EXDEV : otherwise;
    return static_cast<int>(Counted(flags == 0 || g_calls.renamingFlags, otherwise, SYS_renameat2,
                                    from, name, to, newName, flags));
}

int linkat(int from, const char* name, int to, const char* newName, int flags) noexcept {
    return static_cast<int>(Counted(g_calls.links || (flags & AT_SYMLINK_FOLLOW) != 0, EPERM,
                                    SYS_linkat, from, name, to, newName, flags));
}

int renameat(int from, const char* name, int to, const char* newName) noexcept {
    return Call(SYS_renameat2, from, name, to, newName, 0);
}
int unlinkat(int directory, const char* name, int flags) noexcept {
    return Call(SYS_unlinkat, directory, name, flags);
}
int mkdirat(int directory, const char* name, mode_t mode) noexcept {
    return Call(SYS_mkdirat, directory, name, mode);
}
int fsync(int file) {
    return Call(SYS_fsync, file);
}
int fchmod(int file, mode_t mode) noexcept {
    return Call(SYS_fchmod, file, mode);
}
int fchown(int file, uid_t user, gid_t group) noexcept {
    return Call(SYS_fchown, file, user, group);
}
int futimens(int file, const timespec* times) noexcept {
    return Call(SYS_utimensat, file, nullptr, times, 0);
}
ssize_t write(int file, const void* bytes, size_t count) {
    return Counted(true, 0, SYS_write, file, bytes, count);
}

}  // extern "C"
