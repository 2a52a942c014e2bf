#include "platform/file_store.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "platform/dos_attributes.h"
#include "platform/moves.h"
#include "platform/shortcut_file.h"
#include "platform/unpublished_file.h"

namespace platform {

namespace {

bool IsSameDirectory(int left, int right) {
    struct stat one {};
    struct stat other {};
    return fstat(left, &one) == 0 && fstat(right, &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

// Whether the file may be replaced: it is a regular one that can be written.
bool IsWritable(int directory, const HostName& name, const EntryFacts& facts) {
    return facts.isRegularFile() && !facts.isReadOnly() &&
           faccessat(directory, name.c_str(), W_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0;
}

}  // namespace

FileStore::FileStore(Descriptor root, std::u16string modulePath)
    : tree_(std::move(root)), modulePath_(std::move(modulePath)) {
    RemoveUnpublishedFiles(tree_);
}

// Whatever walks a directory has it open already, and names the entries in it by the same path.
bool FileStore::ReachDirectory(std::u16string_view path, Place& place) {
    if (const Search* const search = searches_.InDirectory(path)) {
        place.directory = search->directory();
        place.directoryIsRoot = search->directoryIsRoot();
        return true;
    }
    place.owned = tree_.OpenDirectory(path, OpenFor::Reaching);
    place.directory = place.owned.descriptor.get();
    place.directoryIsRoot = place.owned.isRoot;
    return static_cast<bool>(place.owned.descriptor);
}

// Tries the exact name first; what it says when that fails for another reason than absence counts.
bool FileStore::Examine(Place& place, std::u16string_view device) const {
    std::optional<EntryFacts> facts = FactsOf(place.directory, place.name.c_str());
    if (!facts && errno == ENOENT) {
        const std::optional<HostName> spelling = tree_.spellings().Find(place.directory, device);
        if (spelling) {
            place.name = *spelling;
            facts = FactsOf(place.directory, place.name.c_str());
        }
    }
    place.facts = facts.value_or(EntryFacts());
    return facts.has_value();
}

std::optional<FileStore::Place> FileStore::Locate(std::u16string_view path, Knowledge knowledge) {
    const SplitPath split = SplitAtName(path);
    Place place;
    if (!HostNameOf(split.name, place.name) || !ReachDirectory(split.directory, place)) {
        return std::nullopt;
    }
    const Search* const search =
        knowledge == Knowledge::OfSearch ? searches_.InDirectory(split.directory) : nullptr;
    const std::optional<EntryFacts> known =
        search != nullptr ? search->FactsIfCurrent(place.name.view()) : std::nullopt;
    if (known) {
        place.facts = *known;
    } else if (!Examine(place, split.name)) {
        return std::nullopt;
    }
    if (split.directoryOnly && !place.facts.isDirectory()) {
        return std::nullopt;
    }
    return place;
}

FileStore::Target FileStore::LocateTarget(std::u16string_view path) {
    const SplitPath split = SplitAtName(path);
    Target target{nullptr, split.name, {}};
    if (HostNameOf(split.name, target.host)) {
        target.directory = filled_.Get(tree_, split.directory);
    }
    return target;
}

// A directory that the search around it has just come to is open already.
OpenedDirectory FileStore::OpenForSearch(std::u16string_view path) {
    const SplitPath split = SplitAtName(path);
    Search* const around = searches_.InDirectory(split.directory);
    HostName name;
    if (around != nullptr && HostNameOf(split.name, name)) {
        if (Descriptor subdirectory = around->TakeSubdirectory(name.view())) {
            return {std::move(subdirectory)};
        }
    }
    return tree_.OpenDirectory(path, OpenFor::Reading);
}

HANDLE FileStore::FindInDirectory(const SplitPath& pattern, WIN32_FIND_DATA& data) {
    OpenedDirectory directory = OpenForSearch(pattern.directory);
    if (!directory.descriptor) {
        return INVALID_HANDLE_VALUE;
    }
    auto search = std::make_unique<Search>(pattern.directory, pattern.name, std::move(directory));
    return search->Next(tree_, data) ? searches_.Add(std::move(search)) : INVALID_HANDLE_VALUE;
}

HANDLE FileStore::FindEntry(std::u16string_view path, WIN32_FIND_DATA& data) {
    if (SplitAtName(path).name.empty()) {
        if (path.empty() || tree_.root() < 0) {
            return INVALID_HANDLE_VALUE;
        }
        PutFindData({}, EntryFacts{S_IFDIR}, 0, data);
        return searches_.Add(nullptr);
    }
    const std::optional<Place> place = Locate(path, Knowledge::Fresh);
    if (!place) {
        return INVALID_HANDLE_VALUE;
    }
    DWORD attributes = 0;
    if (place->facts.isDirectory()) {
        const Descriptor opened = tree_.OpenSubdirectory(place->directory, place->directoryIsRoot,
                                                         place->name.c_str(), OpenFor::Reading);
        attributes = opened ? HiddenAndSystem(opened.get()) : 0;
    }
    PutFindData(DeviceNameOf(place->name.view()).view(), place->facts, attributes, data);
    return searches_.Add(nullptr);
}

HANDLE FileStore::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    const SplitPath split = SplitAtName(pattern);
    if (!HasWildcard(split.name)) {
        return FindEntry(pattern, *data);
    }
    return split.directoryOnly ? INVALID_HANDLE_VALUE : FindInDirectory(split, *data);
}

BOOL FileStore::FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    Search* const search = searches_.Get(find);
    return search != nullptr && search->Next(tree_, *data) ? 1 : 0;
}

BOOL FileStore::FindClose(HANDLE find) {
    const bool closed = searches_.Remove(find);
    ForgetFilledDirectories();
    return closed ? 1 : 0;
}

BOOL FileStore::DeleteFileW(const WCHAR* path) {
    const std::optional<Place> place = Locate(path, Knowledge::OfSearch);
    return place && !place->facts.isDirectory() && !place->facts.isReadOnly() &&
                   unlinkat(place->directory, place->name.c_str(), 0) == 0
               ? 1
               : 0;
}

BOOL FileStore::RemoveDirectoryW(const WCHAR* path) {
    const std::optional<Place> place = Locate(path, Knowledge::OfSearch);
    return place && unlinkat(place->directory, place->name.c_str(), AT_REMOVEDIR) == 0 ? 1 : 0;
}

BOOL FileStore::CreateDirectoryW(const WCHAR* path, void* /*security*/) {
    const Target target = LocateTarget(path);
    bool made = false;
    if (target.directory != nullptr && !target.directory->Existing(target.device, target.host)) {
        made = mkdirat(target.directory->descriptor.get(), target.host.c_str(), 0777) == 0;
    }
    if (made) {
        target.directory->names.Add(target.device);
    }
    ForgetFilledDirectories();
    return made ? 1 : 0;
}

BOOL FileStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const std::optional<Place> source = Locate(oldPath, Knowledge::OfSearch);
    const bool moved = source && Move(*source, newPath);
    ForgetFilledDirectories();
    return moved ? 1 : 0;
}

bool FileStore::Move(const Place& source, std::u16string_view newPath) {
    if (SplitAtName(newPath).directoryOnly && !source.facts.isDirectory()) {
        return false;
    }
    const Target target = LocateTarget(newPath);
    if (target.directory == nullptr) {
        return false;
    }
    const int into = target.directory->descriptor.get();
    if (const auto existing = target.directory->Existing(target.device, target.host)) {
        return existing->view() == source.name.view() && IsSameDirectory(source.directory, into);
    }
    bool moved =
        RenameWithoutReplacing(source.directory, source.name.c_str(), into, target.host.c_str());
    if (!moved && source.facts.isRegularFile() && (errno == EXDEV || errno == EINVAL)) {
        const Descriptor volume = tree_.OpenVolume(newPath);
        moved = MoveToVolume(source.directory, source.name.c_str(), into, target.host.c_str(),
                             volume.get());
    }
    if (moved) {
        target.directory->names.Add(target.device);
    }
    return moved;
}

// What a directory holds is only known to stay as it is for as long as the walk that fills it.
void FileStore::ForgetFilledDirectories() {
    if (searches_.empty()) {
        filled_.Clear();
    }
}

std::FILE* FileStore::_wfopen(const WCHAR* path, const WCHAR* mode) {
    const std::u16string_view wanted(mode);
    if (wanted == u"r" || wanted == u"rb") {
        return OpenForReading(path);
    }
    return wanted == u"wb" ? OpenForWriting(path, Existing::Replaced) : nullptr;
}

Descriptor FileStore::OpenFile(std::u16string_view path, Knowledge knowledge) {
    const std::optional<Place> place = Locate(path, knowledge);
    return place && place->facts.isRegularFile()
               ? OpenRegularFile(place->directory, place->name.c_str())
               : Descriptor();
}

std::FILE* FileStore::OpenForReading(std::u16string_view path) {
    Descriptor opened = OpenFile(path, Knowledge::Fresh);
    std::FILE* const file = opened ? fdopen(opened.get(), "rb") : nullptr;
    if (file != nullptr) {
        opened.Release();
    }
    return file;
}

std::FILE* FileStore::OpenForWriting(std::u16string_view path, Existing existing) {
    const SplitPath split = SplitAtName(path);
    Place place;
    if (split.directoryOnly || !HostNameOf(split.name, place.name)) {
        return nullptr;
    }
    place.owned = tree_.OpenDirectory(split.directory, OpenFor::Reading);
    place.directory = place.owned.descriptor.get();
    if (!place.owned.descriptor) {
        return nullptr;
    }
    std::optional<struct stat> replaced;
    if (Examine(place, split.name)) {
        replaced.emplace();
        if (existing == Existing::Kept || !IsWritable(place.directory, place.name, place.facts) ||
            fstatat(place.directory, place.name.c_str(), &*replaced, AT_SYMLINK_NOFOLLOW) != 0) {
            return nullptr;
        }
    }
    return OpenPublishingStream(std::move(place.owned.descriptor), tree_.OpenVolume(path),
                                place.name, replaced);
}

DWORD FileStore::GetModuleFileNameW(HINSTANCE /*module*/, WCHAR* buffer, DWORD limit) {
    if (modulePath_.size() >= limit) {
        return 0;
    }
    *std::copy(modulePath_.begin(), modulePath_.end(), buffer) = 0;
    return static_cast<DWORD>(modulePath_.size());
}

BOOL FileStore::SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) {
    const Descriptor file = OpenFile(path, Knowledge::OfSearch);
    const std::optional<std::u16string> target = file ? ReadShortcut(file.get()) : std::nullopt;
    if (!target || limit <= 0 || target->size() >= static_cast<std::size_t>(limit)) {
        return 0;
    }
    *std::copy(target->begin(), target->end(), buffer) = 0;
    return 1;
}

BOOL FileStore::SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    std::FILE* const file = OpenForWriting(path, Existing::Kept);
    if (file == nullptr) {
        return 0;
    }
    const std::string content = ShortcutContent(target);
    const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    return std::fclose(file) == 0 && written ? 1 : 0;
}

BOOL FileStore::KernelIoControl(DWORD /*code*/, void* /*input*/, DWORD /*inputSize*/,
                                void* /*output*/, DWORD /*outputSize*/, DWORD* /*returned*/) {
    return 0;
}

LONG FileStore::RegOpenKeyExW(HKEY /*key*/, const WCHAR* /*subkey*/, DWORD /*options*/,
                              DWORD /*access*/, HKEY* result) {
    *result = nullptr;
    return ERROR_FILE_NOT_FOUND;
}

LONG FileStore::RegQueryValueExW(HKEY /*key*/, const WCHAR* /*name*/, DWORD* /*reserved*/,
                                 DWORD* /*type*/, BYTE* /*data*/, DWORD* /*size*/) {
    return ERROR_FILE_NOT_FOUND;
}

LONG FileStore::RegSetValueExW(HKEY /*key*/, const WCHAR* /*name*/, DWORD /*reserved*/,
                               DWORD /*type*/, const BYTE* /*data*/, DWORD /*size*/) {
    return ERROR_INVALID_HANDLE;
}

LONG FileStore::RegEnumKeyExW(HKEY /*key*/, DWORD /*index*/, WCHAR* /*name*/, DWORD* /*size*/,
                              DWORD* /*reserved*/, WCHAR* /*className*/, DWORD* /*classSize*/,
                              void* /*lastWriteTime*/) {
    return ERROR_INVALID_HANDLE;
}

LONG FileStore::RegDeleteKeyW(HKEY /*key*/, const WCHAR* /*subkey*/) {
    return ERROR_INVALID_HANDLE;
}

LONG FileStore::RegCloseKey(HKEY /*key*/) {
    return ERROR_INVALID_HANDLE;
}

}  // namespace platform
