#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <span>

#include "platform/diagnostics/failure.h"

namespace platform {

// Which file or directory of this machine something is, whatever its names are.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};
FileIdentity IdentityOf(const struct stat& status);

// Nothing where it could not be asked for. A link is looked at itself.
std::optional<FileIdentity> IdentityOf(int open);
std::optional<FileIdentity> IdentityOf(int directory, const char* name);

// Whether both are known to be one and the same.
bool IsSameFile(const std::optional<FileIdentity>& left, const std::optional<FileIdentity>& right);

// Whether the open directory is one of `places` or lies in one, whatever the names of either are.
Result<bool> IsWithin(int directory, std::span<const FileIdentity> places);

// Whether the name stands for this very file.
bool StandsFor(int directory, const char* name, const struct stat& file);

// Whether two entries are one regular file that has at least two names.
bool AreTwoNamesOfOneFile(int directory, const char* name, int otherDirectory, const char* other);

bool IsEqual(const timespec& left, const timespec& right);

// Shows whether a file is still the one that was read, with the content that it had.
class FileVersion {
  public:
    FileVersion() = default;  // of a file that is not there
    explicit FileVersion(const struct stat& status) : status_(status) {}

    bool exists() const { return status_.st_mode != 0; }
    std::size_t size() const { return static_cast<std::size_t>(status_.st_size); }
    bool operator==(const FileVersion& other) const;

  private:
    struct stat status_ {};
};

}  // namespace platform
