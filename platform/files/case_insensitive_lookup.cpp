#include "platform/files/case_insensitive_lookup.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

#include "platform/text/name_matching.h"

namespace platform {

namespace {

// What is remembered at most; the directory read last is kept whatever its size.
constexpr std::size_t kMostDirectories = 64;
constexpr std::size_t kMostNames = 1 << 18;
constexpr std::size_t kMostSpellings = 16;  // of each directory

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
Result<Reading> ReadNames(const FileTree& tree, const OpenedDirectory& directory,
                          std::u16string_view device, NameHashSet* names) {
    HostName exact;
    if (!HostNameOf(device, exact)) {
        return Reading{};
    }
    const Result<OpenedDirectory> opened =
        tree.Open(directory, ".", OpenFor::Reading, Mounts::Refused);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    Reading result;
    const auto compare = [&](const DirectoryReader::Entry& entry) {
        const bool isExact = entry.name == exact.view();
        if (isExact) {
            result.found = exact;
            return false;
        }
        const DeviceName name = DeviceNameOf(entry.name);
        if (names != nullptr) {
            names->Add(name.view());
        }
        HostName host;
        if (SameName(name.view(), device) && HostNameOf(name.view(), host) &&
            (!result.found || host.view() < result.found->view())) {
            result.found = host;
        }
        return true;
    };
    return ReadEntries(*tree.List(*opened), compare).map([&](bool all) {
        result.whole = all;
        return result;
    });
}

}  // namespace

Result<std::optional<HostName>> FindHostName(const FileTree& tree, const OpenedDirectory& directory,
                                             std::u16string_view device) {
    return ReadNames(tree, directory, device, nullptr).map([](const Reading& reading) {
        return reading.found;
    });
}

HostName ListedName(const FileTree& tree, const OpenedDirectory& directory, const HostName& name) {
    if (!tree.IgnoresCase(directory, name)) {
        return name;
    }
    Result<std::optional<HostName>> listed =
        FindHostName(tree, directory, DeviceNameOf(name.view()).view());
    return listed ? listed->value_or(name) : name;
}

bool CaseInsensitiveLookup::Version::operator==(const Version& other) const {
    return directory == other.directory && IsEqual(changed, other.changed);
}

const CaseInsensitiveLookup::Spelling* CaseInsensitiveLookup::ReadDirectory::SpellingOf(
    std::u16string_view name) const {
    const auto found =
        std::find_if(spellings.begin(), spellings.end(),
                     [name](const Spelling& spelling) { return spelling.device == name; });
    return found == spellings.end() ? nullptr : &*found;
}

// A directory could change without getting a new time when it has changed just now, or when its
// file system counts in whole seconds.
std::optional<CaseInsensitiveLookup::Version> CaseInsensitiveLookup::VersionOf(
    const FileTree& tree, const OpenedDirectory& directory) {
    const Result<struct stat> entry = tree.StatusOf(directory, "");
    timespec now{};
    if (!entry || clock_gettime(CLOCK_REALTIME_COARSE, &now) != 0) {
        return std::nullopt;
    }
    const bool lasting =
        entry->st_ctim.tv_nsec != 0 && Nanoseconds(now) - Nanoseconds(entry->st_ctim) >= kClockStep;
    return Version{IdentityOf(*entry), entry->st_ctim, lasting};
}

CaseInsensitiveLookup::ReadDirectory* CaseInsensitiveLookup::Known(const Version& version) {
    const auto found =
        std::find_if(read_.begin(), read_.end(), [&version](const ReadDirectory& read) {
            return read.readForTheseLooks ? read.version.directory == version.directory
                                          : read.version == version;
        });
    return found == read_.end() ? nullptr : &*found;
}

void CaseInsensitiveLookup::Keep(ReadDirectory read) {
    std::erase_if(read_, [&read](const ReadDirectory& older) {
        return older.version.directory == read.version.directory;
    });
    read_.push_back(std::move(read));
    std::size_t names = 0;
    for (const ReadDirectory& kept : read_) {
        names += kept.names.size();
    }
    while (read_.size() > kMostDirectories || (names > kMostNames && read_.size() > 1)) {
        names -= read_.front().names.size();
        read_.pop_front();
    }
}

void CaseInsensitiveLookup::BeginLooks() {
    EndLooks();
    looksBelongTogether_ = true;
}

void CaseInsensitiveLookup::EndLooks() {
    if (!looksBelongTogether_) {
        return;
    }
    looksBelongTogether_ = false;
    std::erase_if(read_, [](const ReadDirectory& read) { return !read.version.lasting; });
    for (ReadDirectory& read : read_) {
        read.readForTheseLooks = false;
    }
}

// A name that may be there has to be found once, to know how it is spelt.
Result<std::optional<HostName>> CaseInsensitiveLookup::FindInKnown(const FileTree& tree,
                                                                   ReadDirectory& known,
                                                                   const OpenedDirectory& directory,
                                                                   std::u16string_view device) {
    if (!known.names.MayHold(device)) {
        return std::optional<HostName>();
    }
    if (const Spelling* const spelling = known.SpellingOf(device)) {
        return spelling->host;
    }
    Result<std::optional<HostName>> found = FindHostName(tree, directory, device);
    if (found) {
        if (known.spellings.size() == kMostSpellings) {
            known.spellings.clear();
        }
        known.spellings.push_back({std::u16string(device), *found});
    }
    return found;
}

Result<std::optional<HostName>> CaseInsensitiveLookup::FindInUnknown(
    const FileTree& tree, const Version& version, const OpenedDirectory& directory,
    std::u16string_view device) {
    ReadDirectory read{version, looksBelongTogether_, {}, {}};
    const Result<Reading> reading = ReadNames(tree, directory, device, &read.names);
    if (!reading) {
        return tl::unexpected<Failure>(reading.error());
    }
    if (reading->whole) {
        read.spellings.push_back({std::u16string(device), reading->found});
        Keep(std::move(read));
    }
    return reading->found;
}

Result<std::optional<HostName>> CaseInsensitiveLookup::Find(const FileTree& tree,
                                                            const OpenedDirectory& directory,
                                                            std::u16string_view device) {
    const std::optional<Version> version = VersionOf(tree, directory);
    if (!version) {
        return FindHostName(tree, directory, device);
    }
    if (ReadDirectory* const known = Known(*version)) {
        return FindInKnown(tree, *known, directory, device);
    }
    return version->lasting || looksBelongTogether_
               ? FindInUnknown(tree, *version, directory, device)
               : FindHostName(tree, directory, device);
}

}  // namespace platform
