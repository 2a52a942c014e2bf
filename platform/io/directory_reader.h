#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// Reads the entries of an open directory in blocks. "." and ".." are passed over. Most directories
// are small, and a walk has a reader for each level of a tree; only one that has filled its block
// gets a larger one.
class DirectoryReader {
  public:
    // The device's entries, or those with reserved names as well, which the device does not have.
    enum class Names { Device, All };
    explicit DirectoryReader(Names names = Names::Device) : names_(names) {}
    DirectoryReader(const DirectoryReader&) = delete;
    DirectoryReader& operator=(const DirectoryReader&) = delete;

    struct Entry {
        const char* name;    // terminated; valid until the next call of Next
        unsigned char type;  // DT_DIR, DT_REG, ..., DT_UNKNOWN where the file system does not say
    };

    // Moves to the next entry of `directory`, always the same open descriptor. False at the end; a
    // directory that is removed meanwhile ends there.
    Result<bool> Next(int directory);
    const Entry& entry() const { return entry_; }

  private:
    Result<bool> FillBlock(int directory);

    Names names_;
    Entry entry_{};
    std::size_t position_ = 0;
    std::size_t length_ = 0;
    std::span<char> block_ = small_;
    alignas(8) std::array<char, 4096> small_;
    std::unique_ptr<char[]> large_;
};

// Opens a directory that is open in whatever way once more, to be read from its beginning.
Result<Descriptor> OpenToRead(int directory);

// Calls `act` with each entry that is left to be read, until it returns false. Returns whether all
// were read.
template <typename Act>
Result<bool> ReadEntries(int directory, DirectoryReader::Names names, Act act) {
    DirectoryReader reader(names);
    Result<bool> more = reader.Next(directory);
    while (more && *more && act(reader.entry())) {
        more = reader.Next(directory);
    }
    return more.map([](bool isLeft) { return !isLeft; });
}

// Whether an entry with exactly this name is listed. False where that could not be read.
bool IsListed(int directory, const char* name);

}  // namespace platform
