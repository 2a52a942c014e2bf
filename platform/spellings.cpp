#include "platform/spellings.h"

#include <fcntl.h>

#include <cerrno>
#include <ctime>

#include "platform/descriptor.h"
#include "platform/directory_reader.h"

namespace platform {

namespace {

constexpr std::size_t kBitsOfWord = 64;

// The time in which a file system's clock may stand still.
constexpr std::int64_t kClockStep = 20'000'000;  // nanoseconds

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

// Puts what `device` names into `found` and all names into `names`, unless that is null. Returns
// whether all of the directory was read; an exact name ends the reading.
bool ReadNames(int directory, std::u16string_view device, NameFilter* names,
               std::optional<HostName>& found) {
    HostName exact;
    const Descriptor reading(
        openat(directory, ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!reading || !HostNameOf(device, exact)) {
        return false;
    }
    DirectoryReader reader;
    errno = 0;
    while (reader.Next(reading.get())) {
        const std::string_view candidate = reader.entry().name;
        if (candidate == exact.view()) {
            found = exact;
            return false;
        }
        const DeviceName name = DeviceNameOf(candidate);
        if (names != nullptr) {
            names->Add(name.view());
        }
        HostName host;
        if (SameName(name.view(), device) && HostNameOf(name.view(), host) &&
            (!found || host.view() < found->view())) {
            found = host;
        }
    }
    return errno == 0;
}

}  // namespace

std::optional<HostName> FindSpelling(int directory, std::u16string_view device) {
    std::optional<HostName> found;
    ReadNames(directory, device, nullptr, found);
    return found;
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

std::optional<HostName> Spellings::Find(int directory, std::u16string_view device) {
    const std::optional<Version> version = LastingVersion(directory);
    if (!version) {
        return FindSpelling(directory, device);
    }
    if (const ReadDirectory* const known = Known(*version)) {
        return known->names.MayHold(device) ? FindSpelling(directory, device) : std::nullopt;
    }
    ReadDirectory& place = read_[next_];
    place.version = {};
    place.names.Clear();
    std::optional<HostName> found;
    if (ReadNames(directory, device, &place.names, found)) {
        place.version = *version;
        next_ = (next_ + 1) % read_.size();
    }
    return found;
}

}  // namespace platform
