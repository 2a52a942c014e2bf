#include "platform/spellings.h"

#include <fcntl.h>

#include <cerrno>
#include <ctime>

#include "platform/descriptor.h"
#include "platform/directory_reader.h"

namespace platform {

namespace {

constexpr std::size_t kBitsOfWord = 64;
constexpr std::size_t kMostDirectories = 64;  // of 4 KiB each

// The time in which a file system's clock may stand still.
constexpr std::int64_t kClockStep = 20'000'000;  // nanoseconds

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

// What a reading of a directory for one name found.
struct Reading {
    std::optional<HostName> found;
    bool whole = false;  // all of it was read; an exact name ends the reading
};

// Reads the directory and puts all names into `names`, unless that is null.
Result<Reading> ReadNames(int directory, std::u16string_view device, NameFilter* names) {
    HostName exact;
    if (!HostNameOf(device, exact)) {
        return Reading{};
    }
    const Descriptor reading(
        openat(directory, ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!reading) {
        return Fail("read the directory", errno);
    }
    Reading result;
    DirectoryReader reader;
    for (;;) {
        const Result<bool> more = reader.Next(reading.get());
        if (!more) {
            return tl::unexpected<Failure>(more.error());
        }
        if (!*more) {
            result.whole = true;
            return result;
        }
        const std::string_view candidate = reader.entry().name;
        if (candidate == exact.view()) {
            result.found = exact;
            return result;
        }
        const DeviceName name = DeviceNameOf(candidate);
        if (names != nullptr) {
            names->Add(name.view());
        }
        HostName host;
        if (SameName(name.view(), device) && HostNameOf(name.view(), host) &&
            (!result.found || host.view() < result.found->view())) {
            result.found = host;
        }
    }
}

}  // namespace

Result<std::optional<HostName>> FindSpelling(int directory, std::u16string_view device) {
    return ReadNames(directory, device, nullptr).map([](const Reading& reading) {
        return reading.found;
    });
}

namespace {

// The name with its letters in another case; the same name when it has no letters.
DeviceName InOtherCase(std::u16string_view name) {
    DeviceName upper;
    for (const WCHAR unit : name) {
        upper.Append(FoldUnit(unit));
    }
    if (upper.view() != name) {
        return upper;
    }
    DeviceName lower;
    for (const WCHAR unit : name) {
        lower.Append(unit >= u'A' && unit <= u'Z' ? static_cast<WCHAR>(unit - u'A' + u'a') : unit);
    }
    return lower;
}

bool IsSameEntry(int directory, const char* left, const char* right) {
    struct stat one {};
    struct stat other {};
    return fstatat(directory, left, &one, AT_SYMLINK_NOFOLLOW) == 0 &&
           fstatat(directory, right, &other, AT_SYMLINK_NOFOLLOW) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

HostName ListedName(int directory, const HostName& name) {
    const DeviceName device = DeviceNameOf(name.view());
    HostName other;
    if (!HostNameOf(InOtherCase(device.view()).view(), other) || other.view() == name.view() ||
        !IsSameEntry(directory, other.c_str(), name.c_str())) {
        return name;
    }
    const Result<std::optional<HostName>> listed = FindSpelling(directory, device.view());
    return listed ? listed->value_or(name) : name;
}

// Two bits for each name, from the two halves of its hash.
void NameFilter::Add(std::u16string_view name) {
    for (std::uint32_t hash = NameHash(name), half = 0; half < 2; ++half, hash >>= 16) {
        const std::size_t bit = hash % (bits_.size() * kBitsOfWord);
        bits_[bit / kBitsOfWord] |= std::uint64_t{1} << bit % kBitsOfWord;
    }
}

bool NameFilter::MayHold(std::u16string_view name) const {
    for (std::uint32_t hash = NameHash(name), half = 0; half < 2; ++half, hash >>= 16) {
        const std::size_t bit = hash % (bits_.size() * kBitsOfWord);
        if ((bits_[bit / kBitsOfWord] >> bit % kBitsOfWord & 1) == 0) {
            return false;
        }
    }
    return true;
}

bool Spellings::Version::operator==(const Version& other) const {
    return device == other.device && number == other.number &&
           Nanoseconds(changed) == Nanoseconds(other.changed);
}

// Nothing when the directory could change without getting a new version: it has changed just now,
// or its file system counts in whole seconds.
std::optional<Spellings::Version> Spellings::LastingVersion(int directory) {
    struct stat entry {};
    timespec now{};
    if (fstat(directory, &entry) != 0 || clock_gettime(CLOCK_REALTIME_COARSE, &now) != 0 ||
        entry.st_ctim.tv_nsec == 0 || Nanoseconds(now) - Nanoseconds(entry.st_ctim) < kClockStep) {
        return std::nullopt;
    }
    return Version{entry.st_dev, entry.st_ino, entry.st_ctim};
}

const Spellings::ReadDirectory* Spellings::Known(const Version& version) const {
    for (const ReadDirectory& directory : read_) {
        if (directory.version == version) {
            return &directory;
        }
    }
    return nullptr;
}

Spellings::ReadDirectory& Spellings::NextPlace() {
    if (next_ == read_.size()) {
        read_.emplace_back();
    }
    ReadDirectory& place = read_[next_];
    place.version = {};
    place.names.Clear();
    return place;
}

Result<std::optional<HostName>> Spellings::Find(int directory, std::u16string_view device) {
    const std::optional<Version> version = LastingVersion(directory);
    if (!version) {
        return FindSpelling(directory, device);
    }
    if (const ReadDirectory* const known = Known(*version)) {
        return known->names.MayHold(device) ? FindSpelling(directory, device)
                                            : std::optional<HostName>();
    }
    ReadDirectory& place = NextPlace();
    const Result<Reading> reading = ReadNames(directory, device, &place.names);
    if (reading && reading->whole) {
        place.version = *version;
        next_ = (next_ + 1) % kMostDirectories;
    }
    return reading.map([](const Reading& read) { return read.found; });
}

}  // namespace platform
