#include "platform/io/buffered_new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/io/attribute_copy.h"
#include "platform/io/whole_file.h"

namespace platform {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;
constexpr mode_t kAnyWriter = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr const char* kReplace = "replace it";

}  // namespace

void BufferedNewFile::Append(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= kBufferSize) {
        [[maybe_unused]] const Status written = Flush();
    }
}

Status BufferedNewFile::Flush() {
    written_ = written_ ? WriteBuffer() : written_;
    buffer_.clear();
    return written_;
}

Status BufferedNewFile::WriteBuffer() {
    if (file_ == nullptr) {
        auto file = AtomicFile::Create(directory_, directory_, survives_);
        if (!file) {
            return tl::unexpected<Failure>(file.error());
        }
        file_ = std::move(*file);
    }
    return WriteWhole(file_->descriptor(), buffer_);
}

Status BufferedNewFile::CopyTo(BufferedNewFile& other) const {
    std::string block(kBufferSize, '\0');
    for (off_t offset = 0; written_ && file_ != nullptr;) {
        const ssize_t count = pread(file_->descriptor(), block.data(), block.size(), offset);
        if (count < 0) {
            return Fail("read", errno);
        }
        if (count == 0) {
            break;
        }
        other.Append(std::string_view(block).substr(0, static_cast<std::size_t>(count)));
        offset += count;
    }
    other.Append(buffer_);
    return written_;
}

void BufferedNewFile::AppendContentOf(BufferedNewFile& other) {
    const Status copied = other.CopyTo(*this);
    written_ = written_ ? copied : written_;
}

Status BufferedNewFile::PublishAs(const std::string& name) {
    const Status written = Flush();
    return written ? Replace(name) : written;
}

Status BufferedNewFile::Replace(const std::string& name) {
    struct stat old {};
    if (fstatat(directory_, name.c_str(), &old, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT ? file_->PublishNew(directory_, name.c_str())
                               : Fail(kReplace, errno);
    }
    if (!S_ISREG(old.st_mode)) {
        return FailBecause(kReplace, "it is not a regular file");
    }
    if ((old.st_mode & kAnyWriter) == 0) {
        return FailBecause(kReplace, "it is read-only");
    }
    ApplyModeAndOwner(file_->descriptor(), old);
    return file_->PublishInPlace(directory_, name.c_str());
}

}  // namespace platform
