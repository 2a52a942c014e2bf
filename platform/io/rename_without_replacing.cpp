#include "platform/io/rename_without_replacing.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/io/entry_facts.h"
#include "platform/io/file_identity.h"

namespace platform {

namespace {

constexpr char kMove[] = "move";

// A link and then the removal of the old name: there is no moment in which one name holds part of
// the file. A file that got the old name in between is left alone.
Status LinkAndUnlink(int fromDirectory, const char* from, int toDirectory, const char* to) {
    struct stat moved {};
    if (linkat(fromDirectory, from, toDirectory, to, 0) != 0 ||
        fstatat(toDirectory, to, &moved, AT_SYMLINK_NOFOLLOW) != 0) {
        return Fail(kMove, errno);
    }
    if (!StandsFor(fromDirectory, from, moved) || unlinkat(fromDirectory, from, 0) == 0) {
        return {};
    }
    const int error = errno;
    if (!StandsFor(fromDirectory, from, moved)) {
        return {};
    }
    unlinkat(toDirectory, to, 0);
    return Fail(kMove, error);
}

// Whether a file cannot have a second name, not whether this one is taken.
bool KnowsNoLinks(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == EMLINK || error == ENOSYS ||
           error == EINVAL;
}

}  // namespace

Status RenameWithoutReplacing(int fromDirectory, const char* from, int toDirectory,
                              const char* to) {
    if (renameat2(fromDirectory, from, toDirectory, to, RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return Fail(kMove, errno);
    }
    // The file system does not know the flag, or a directory would go into itself.
    const Result<EntryFacts> facts = FactsOf(fromDirectory, from);
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    if (!facts->isDirectory()) {
        Status linked = LinkAndUnlink(fromDirectory, from, toDirectory, to);
        if (linked || !KnowsNoLinks(linked.error().error)) {
            return linked;
        }
    }
    return RenameIfFree(fromDirectory, from, toDirectory, to);
}

Status RenameIfFree(int fromDirectory, const char* from, int toDirectory, const char* to) {
    const Result<EntryFacts> taken = FactsOf(toDirectory, to);
    if (taken || taken.error().error != ENOENT) {
        return Fail(kMove, taken ? EEXIST : taken.error().error);
    }
    return renameat(fromDirectory, from, toDirectory, to) == 0 ? Status() : Fail(kMove, errno);
}

}  // namespace platform
