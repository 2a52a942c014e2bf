#include "platform/tree/dos_attributes.h"

#include <linux/magic.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

#include "core/file_operations.h"

namespace platform {

namespace {

constexpr std::uint32_t kAttributesValid = 0x1;

DWORD ParseHexadecimal(std::string_view text) {
    DWORD attributes = 0;
    if (text.starts_with("0x")) {
        std::from_chars(text.data() + 2, text.data() + text.size(), attributes, 16);
    }
    return attributes;
}

std::uint32_t ReadNumber(std::span<const unsigned char> content, std::size_t at,
                         std::size_t width) {
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < width; ++index) {
        number |= static_cast<std::uint32_t>(content[at + index]) << (8 * index);
    }
    return number;
}

// The record follows the text and its terminator: a version twice, then, aligned to four
// bytes, which of its fields are valid and the attributes. Version 1 has the attributes at once.
DWORD ParseRecord(std::span<const unsigned char> content, std::size_t textEnd) {
    const std::size_t versionAt = (textEnd + 1 + 1) / 2 * 2;
    const std::size_t fieldsAt = (versionAt + 4 + 3) / 4 * 4;
    if (fieldsAt + 8 > content.size()) {
        return 0;
    }
    const std::uint32_t version = ReadNumber(content, versionAt, 2);
    if (version == 1) {
        return ReadNumber(content, fieldsAt, 4);
    }
    const bool valid =
        version >= 3 && version <= 5 && (ReadNumber(content, fieldsAt, 4) & kAttributesValid) != 0;
    return valid ? ReadNumber(content, fieldsAt + 4, 4) : 0;
}

DWORD FatAttributes(int directory) {
    struct statfs volume {};
    if (fstatfs(directory, &volume) != 0 || volume.f_type != MSDOS_SUPER_MAGIC) {
        return 0;
    }
    std::uint32_t attributes = 0;
    return ioctl(directory, FAT_IOCTL_GET_ATTRIBUTES, &attributes) == 0 ? attributes : 0;
}

}  // namespace

DWORD ParseDosAttributes(std::span<const unsigned char> content) {
    const auto end = std::find(content.begin(), content.end(), 0);
    const auto length = static_cast<std::size_t>(end - content.begin());
    // The text is always right where there is one: some writers do not align the record after it.
    const std::string_view text(reinterpret_cast<const char*>(content.data()), length);
    return text.empty() ? ParseRecord(content, length) : ParseHexadecimal(text);
}

DWORD HiddenAndSystem(int directory) {
    std::array<unsigned char, 256> content{};
    const ssize_t length = fgetxattr(directory, "user.DOSATTRIB", content.data(), content.size());
    DWORD attributes = 0;
    if (length >= 0) {
        attributes = ParseDosAttributes({content.data(), static_cast<std::size_t>(length)});
    } else if (errno == EOPNOTSUPP) {
        attributes = FatAttributes(directory);
    }
    return attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
}

}  // namespace platform
