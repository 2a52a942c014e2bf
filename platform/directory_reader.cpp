#include "platform/directory_reader.h"

#include <dirent.h>
#include <sys/types.h>

#include <string_view>

#include "platform/host_names.h"

namespace platform {

bool DirectoryReader::FillBlock(int directory) {
    const ssize_t length = getdents64(directory, block_.data(), block_.size());
    position_ = 0;
    length_ = length > 0 ? static_cast<std::size_t>(length) : 0;
    return length_ > 0;
}

bool DirectoryReader::Next(int directory) {
    while (position_ < length_ || FillBlock(directory)) {
        const auto* const record = reinterpret_cast<const dirent64*>(&block_[position_]);
        position_ += record->d_reclen;
        const std::string_view name = record->d_name;
        if (name != "." && name != ".." && (names_ == Names::All || !IsReservedName(name))) {
            entry_ = {record->d_name, record->d_type};
            return true;
        }
    }
    return false;
}

}  // namespace platform
