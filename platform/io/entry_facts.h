#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>

#include "platform/diagnostics/failure.h"

namespace platform {

// What the file system says about an entry.
struct EntryFacts {
    mode_t mode = 0;
    std::uint64_t size = 0;  // bytes; 0 for a directory

    bool isDirectory() const;
    bool isRegularFile() const;
    bool isReadOnly() const;  // a file without any write permission
};

EntryFacts FactsOf(const struct statx& entry);
dev_t VolumeOf(const struct statx& entry);        // the number of its file system
inline constexpr std::uint64_t kStatBlock = 512;  // bytes in which statx counts what it takes

// ENOENT when there is no such entry. A link is looked at itself, and nothing is mounted for it.
Result<EntryFacts> FactsOf(int directory, const char* name);

// Whether `name` in `directory`, or `directory` itself for "", is where a file system is mounted.
bool IsMountPoint(int directory, const char* name);

// Whether the open directory is on a read-only file system; without one, -1, it is not.
bool IsOnReadOnly(int directory);

// Whether this process may write a file of that mode: a file without any write permission is
// read-only, for the superuser too.
Status CheckWritable(int directory, const char* name, mode_t mode);

}  // namespace platform
