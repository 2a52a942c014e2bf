#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>

#include "platform/descriptor.h"

namespace platform {

// Tells whether a file is still the one that was read, with the content that it had.
class FileVersion {
  public:
    FileVersion() = default;  // of a file that is not there
    explicit FileVersion(const struct stat& status);

    bool operator==(const FileVersion&) const = default;

  private:
    bool exists_ = false;
    dev_t device_ = 0;
    ino_t number_ = 0;
    off_t size_ = 0;
    time_t modified_ = 0;
    long modifiedNanoseconds_ = 0;
    time_t changed_ = 0;
    long changedNanoseconds_ = 0;
};

// The file registry.reg in a device directory. Nothing but a regular file is ever opened: a link is
// not followed, a pipe not waited for. Functions that return false have put the reason, for people,
// into `error`.
class RegistryFile {
  public:
    // `directory` is the open device directory; it stays the caller's and must outlive the object.
    explicit RegistryFile(int directory) : directory_(directory) {}

    // Reads the whole file, which is empty when it is not there.
    bool Read(std::string& bytes, FileVersion& version, std::string& error) const;

    // What is there now. An error when it is neither a regular file nor nothing.
    bool Look(FileVersion& version, std::string& error) const;

    // Puts a file with these bytes in the place of the old one, which keeps its content after any
    // failure. Mode and owner stay as they were, as far as that is allowed. A file that may not be
    // written is left alone.
    bool Replace(std::string_view bytes, FileVersion& version, std::string& error) const;

    // Waits, some seconds at the most, until no other process holds the device directory, and holds
    // it then as long as the descriptor is open. An empty descriptor when that failed.
    Descriptor Lock(std::string& error) const;

  private:
    int directory_;
};

}  // namespace platform
