#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// A file that is being moved. Nobody begins to write to it unnoticed for as long as it is watched.
class WatchedFile {
  public:
    // EBUSY when another program has it open for writing.
    static Result<WatchedFile> Open(int directory, const char* name);

    int descriptor() const { return file_.get(); }
    const struct stat& facts() const { return facts_; }

    bool isLeased() const { return leased_; }

    // Whether no other program wants to write to it.
    bool IsLeftAlone() const { return !leased_ || fcntl(descriptor(), F_GETLEASE) == F_RDLCK; }

    // Whether nothing about it has changed at all; setting it aside is a change.
    bool IsUntouched() const;

    // Whether the name stands for it and its content has not changed.
    bool IsWholeAt(int directory, const char* name) const;

  private:
    explicit WatchedFile(Descriptor file) : file_(std::move(file)) {}
    Status Watch();

    Descriptor file_;
    struct stat facts_ {};
    bool leased_ = false;
};

}  // namespace platform
