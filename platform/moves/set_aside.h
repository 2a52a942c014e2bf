#pragma once

#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/text/name_translation.h"

namespace platform {

// A regular file that is to be moved. The directories stay the caller's to keep open.
struct SourceFile {
    int directory;
    const char* name;          // in it
    int volume;                // the root directory of its volume
    std::u16string_view path;  // its device path as its caller named it
};

// A file that has a reserved name in its volume's root instead of its own: no program reaches it by
// that any more, and the own name shows what else stands there. A record beside it, which is stored
// first and removed last, keeps the own name, so that a later process can give it back. The object
// does nothing when it goes.
class SetAside {
  public:
    // Sets the file aside. After a failure it has its own name.
    static Result<SetAside> Create(const SourceFile& source);

    // The name it has now in the root of its volume.
    const char* name() const { return aside_.c_str(); }

    // Deletes it. After a failure it is still set aside, or gone all the same.
    Status Delete() const;

    // Gives it its own name back, unless something else has that by now: then it stays set aside,
    // and the run says so.
    Status GiveBack() const;

  private:
    explicit SetAside(const SourceFile& source);

    SourceFile source_;
    HostName record_;
    HostName aside_;
};

// What is left of a run that was killed, in the root of `volume`: whether a record belongs to the
// file set aside as `aside`, the device path that a record keeps, and the ways to be done with
// both.
bool HasRecord(int volume, std::string_view aside);
Result<std::u16string> ReadRecord(int volume, std::string_view record);
void RemoveRecord(int volume, const HostName& record);
Status ReturnSetAside(int volume, const HostName& aside, int directory, const char* name);

}  // namespace platform
