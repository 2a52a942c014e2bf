#include "platform/moves/watched_file.h"

#include <linux/magic.h>
#include <sys/vfs.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"

namespace platform {

namespace {

// File servers refuse a lease for reasons of their own.
bool IsOnFileServer(int file) {
    struct statfs system {};
    if (fstatfs(file, &system) != 0) {
        return false;
    }
    const auto type = static_cast<std::uint32_t>(system.f_type);
    return type == NFS_SUPER_MAGIC || type == CIFS_SUPER_MAGIC || type == SMB2_SUPER_MAGIC;
}

}  // namespace

Result<WatchedFile> WatchedFile::Open(int directory, const char* name) {
    Result<Descriptor> opened = OpenRegularFile(directory, name);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    WatchedFile file(std::move(*opened));
    if (const Status watched = file.Watch(); !watched) {
        return tl::unexpected<Failure>(watched.error());
    }
    return file;
}

// A lease is granted only while no program has the file open for writing, and then lets such an
// opening wait until it ends or has been held for very long.
Status WatchedFile::Watch() {
    // A program that waits is announced by a signal; the default one would end the process.
    leased_ =
        fcntl(descriptor(), F_SETSIG, SIGURG) == 0 && fcntl(descriptor(), F_SETLEASE, F_RDLCK) == 0;
    if (!leased_ && errno == EAGAIN && !IsOnFileServer(descriptor())) {
        return Fail("move", EBUSY);
    }
    return fstat(descriptor(), &facts_) == 0 ? Status() : Fail("move", errno);
}

bool WatchedFile::IsUntouched() const {
    struct stat now {};
    return IsLeftAlone() && fstat(descriptor(), &now) == 0 && IsEqual(now.st_ctim, facts_.st_ctim);
}

bool WatchedFile::IsWholeAt(int directory, const char* name) const {
    struct stat now {};
    return fstatat(directory, name, &now, AT_SYMLINK_NOFOLLOW) == 0 &&
           IdentityOf(now) == IdentityOf(facts_) && now.st_size == facts_.st_size &&
           IsEqual(now.st_mtim, facts_.st_mtim) && IsLeftAlone();
}

}  // namespace platform
