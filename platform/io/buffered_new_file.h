#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/io/atomic_file.h"

namespace platform {

// A new file that is written from its beginning to its end through a buffer. It takes a name whole,
// or goes with the object.
class BufferedNewFile {
  public:
    // `directory` is where it will have its name; it stays the caller's to keep open. Nothing is
    // made there before there is content.
    BufferedNewFile(int directory, Survives survives)
        : directory_(directory), survives_(survives) {}

    // A failure shows when the file is to be published; nothing more is written after one.
    void Append(std::string_view text);
    void AppendContentOf(BufferedNewFile& other);

    bool isBegun() const { return !buffer_.empty() || file_ != nullptr; }

    // Writes what waits in the buffer; a failure of this or of earlier writing.
    Status Flush();

    // Gives the file this name, which stands for nothing yet, or for a regular file that may be
    // written, which it replaces. Links are neither followed nor replaced. Once at most.
    Status PublishAs(const std::string& name);

  private:
    Status WriteBuffer();
    Status CopyTo(BufferedNewFile& other) const;
    Status Replace(const std::string& name);

    int directory_;
    Survives survives_;
    std::unique_ptr<AtomicFile> file_;  // from the first full buffer on
    std::string buffer_;
    Status written_;
};

}  // namespace platform
