#include "platform/io/directory_reader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/types.h>

#include <cerrno>
#include <string_view>

#include "platform/text/reserved_names.h"

namespace platform {

namespace {

constexpr std::size_t kLargeBlock = 32768;
constexpr std::size_t kLargestEntry = sizeof(dirent64);  // what may be left of a block that is full

}  // namespace

Result<bool> DirectoryReader::FillBlock(int directory) {
    if (large_ == nullptr && length_ + kLargestEntry > block_.size()) {
        large_ = std::make_unique_for_overwrite<char[]>(kLargeBlock);
        block_ = {large_.get(), kLargeBlock};
    }
    const ssize_t length = getdents64(directory, block_.data(), block_.size());
    position_ = 0;
    length_ = length > 0 ? static_cast<std::size_t>(length) : 0;
    if (length < 0 && errno != ENOENT) {
        return Fail("read the directory", errno);
    }
    return length_ > 0;
}

Result<bool> DirectoryReader::Next(int directory) {
    for (;;) {
        if (position_ >= length_) {
            Result<bool> filled = FillBlock(directory);
            if (!filled || !*filled) {
                return filled;
            }
        }
        const auto* const record = reinterpret_cast<const dirent64*>(&block_[position_]);
        position_ += record->d_reclen;
        const std::string_view name = record->d_name;
        if (name != "." && name != ".." && (names_ == Names::All || !IsReservedName(name))) {
            entry_ = {record->d_name, record->d_type};
            return true;
        }
    }
}

Result<Descriptor> OpenToRead(int directory) {
    Descriptor opened(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!opened) {
        return Fail("read the directory", errno);
    }
    return opened;
}

bool IsListed(int directory, const char* name) {
    const Result<Descriptor> opened = OpenToRead(directory);
    bool found = false;
    const auto isOther = [&](const DirectoryReader::Entry& entry) {
        found = std::string_view(entry.name) == name;
        return !found;
    };
    return opened &&
           ReadEntries(opened->get(), DirectoryReader::Names::Device, isOther).has_value() && found;
}

}  // namespace platform
