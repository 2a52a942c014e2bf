#include "platform/files/host_files.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "core/wide_text.h"
#include "platform/files/shortcut_file_format.h"
#include "platform/io/whole_file.h"
#include "platform/text/device_paths.h"

namespace platform {

namespace {

// The same for a place where nothing has the name.
tl::unexpected<Failure> NotThere(const char* tried) {
    return Fail(tried, ENOENT);
}

}  // namespace

BOOL HostFiles::KeepFailure(const Status& done) {
    if (!done) {
        lastFailure_ = done.error();
    }
    return done ? 1 : 0;
}

// Whatever walks a directory has it open already, and names the entries in it by the same path.
Status HostFiles::ReachDirectory(std::u16string_view path, Place& place) {
    place.search = searches_.InDirectory(path);
    if (place.search != nullptr) {
        return {};
    }
    Result<OpenedDirectory> opened = paths_.OpenDirectory(path, OpenFor::Reaching);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    place.owned = std::move(*opened);
    return {};
}

// Tries the exact name first; what it says when that fails for another reason than absence counts.
Status HostFiles::Examine(Place& place, std::u16string_view device) const {
    Result<EntryFacts> facts = tree_->FactsOf(place.directory(), place.name.c_str());
    if (!facts && facts.error().error == ENOENT) {
        const Result<std::optional<HostName>> spelling =
            paths_.lookup().Find(*tree_, place.directory(), device);
        if (!spelling) {
            return tl::unexpected<Failure>(spelling.error());
        }
        if (*spelling) {
            place.name = **spelling;
            facts = tree_->FactsOf(place.directory(), place.name.c_str());
        }
    }
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    place.facts = *facts;
    return {};
}

Result<HostFiles::Place> HostFiles::Locate(std::u16string_view path, Knowledge knowledge) {
    const SplitPath split = SplitAtName(path);
    Place place;
    if (!HostNameOf(split.name, place.name)) {
        return NotThere("look at");
    }
    if (Status reached = ReachDirectory(split.directory, place); !reached) {
        return tl::unexpected<Failure>(reached.error());
    }
    const bool isKnown = knowledge == Knowledge::OfSearch && place.search != nullptr;
    const std::optional<EntryFacts> known =
        isKnown ? place.search->FactsIfCurrent(place.name.view()) : std::nullopt;
    if (known) {
        place.facts = *known;
    } else if (Status examined = Examine(place, split.name); !examined) {
        return tl::unexpected<Failure>(examined.error());
    }
    if (split.directoryOnly && !place.facts.isDirectory()) {
        return Fail("open", S_ISLNK(place.facts.mode) ? ELOOP : ENOTDIR);
    }
    return place;
}

Result<HostFiles::Target> HostFiles::LocateTarget(std::u16string_view path) {
    const SplitPath split = SplitAtName(path);
    Target target{nullptr, split.name, {}};
    if (!HostNameOf(split.name, target.host)) {
        return FailBecause("make", "no entry can have that name", ERROR_INVALID_NAME);
    }
    const Result<DestinationDirectory*> directory = filled_.Get(paths_, split.directory);
    if (!directory) {
        return tl::unexpected<Failure>(directory.error());
    }
    target.directory = *directory;
    return target;
}

// A directory that the search around it has just come to is open already.
Result<OpenedDirectory> HostFiles::OpenForSearch(std::u16string_view path) {
    const SplitPath split = SplitAtName(path);
    Search* const around = searches_.InDirectory(split.directory);
    HostName name;
    if (around != nullptr && HostNameOf(split.name, name)) {
        if (std::optional<OpenedDirectory> opened = around->TakeSubdirectory(name.view())) {
            return std::move(*opened);
        }
    }
    return paths_.OpenDirectory(path, OpenFor::Reading);
}

Result<HANDLE> HostFiles::FindInDirectory(const SplitPath& pattern, WIN32_FIND_DATA& data) {
    Result<OpenedDirectory> directory = OpenForSearch(pattern.directory);
    if (!directory) {
        return tl::unexpected<Failure>(directory.error());
    }
    auto search =
        std::make_unique<Search>(pattern.directory, pattern.name, std::move(*directory), *tree_);
    const Result<bool> found = search->Next(paths_, data);
    if (!found) {
        return tl::unexpected<Failure>(found.error());
    }
    if (!*found) {
        return NotThere("find");
    }
    return searches_.Add(std::move(search));
}

Result<HANDLE> HostFiles::FindEntry(std::u16string_view path, WIN32_FIND_DATA& data) {
    if (SplitAtName(path).name.empty()) {
        if (path.empty() || !tree_->root().descriptor) {
            return Fail("look at", ENOTDIR);
        }
        // The root has no name and no directory around it: there is nothing to look it up in.
        PutFindData({}, EntryFacts{S_IFDIR}, 0, data);
        return searches_.Add(nullptr);
    }
    const Result<Place> place = Locate(path, Knowledge::Fresh);
    if (!place) {
        return tl::unexpected<Failure>(place.error());
    }
    DWORD attributes = 0;
    HostName listed = place->name;
    if (place->facts.isDirectory()) {
        listed = ListedName(*tree_, place->directory(), place->name);
        const Result<OpenedDirectory> opened =
            paths_.OpenSubdirectory(place->directory(), place->name.c_str(), OpenFor::Reading);
        attributes = opened ? tree_->HiddenAndSystem(*opened) : 0;
    }
    PutFindData(DeviceNameOf(listed.view()).view(), place->facts, attributes, data);
    return searches_.Add(nullptr);
}

Result<HANDLE> HostFiles::FindFirst(std::u16string_view pattern, WIN32_FIND_DATA& data) {
    const SplitPath split = SplitAtName(pattern);
    if (!HasWildcard(split.name)) {
        return FindEntry(pattern, data);
    }
    return split.directoryOnly ? NotThere("find") : FindInDirectory(split, data);
}

HANDLE HostFiles::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    const Result<HANDLE> found = FindFirst(pattern, *data);
    if (!found) {
        lastFailure_ = found.error();
    }
    return found.value_or(INVALID_HANDLE_VALUE);
}

Status HostFiles::FindNext(HANDLE find, WIN32_FIND_DATA& data) {
    if (!searches_.IsOpen(find)) {
        return Fail("go on with the search", EBADF);
    }
    Search* const search = searches_.Get(find);
    const Result<bool> more = search != nullptr ? search->Next(paths_, data) : false;
    if (!more) {
        return tl::unexpected<Failure>(more.error());
    }
    return *more ? Status() : FailBecause("go on", "there is nothing more", ERROR_NO_MORE_FILES);
}

// The looks for the entry before have ended: what was read for them may be out of date by now.
BOOL HostFiles::FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    paths_.lookup().EndLooks();
    return KeepFailure(FindNext(find, *data));
}

BOOL HostFiles::FindClose(HANDLE find) {
    const bool closed = searches_.Remove(find);
    ForgetDestinationDirectories();
    return KeepFailure(closed ? Status() : Fail("close the search", EBADF));
}

Status HostFiles::Delete(std::u16string_view path) {
    const Result<Place> place = Locate(path, Knowledge::OfSearch);
    if (!place) {
        return tl::unexpected<Failure>(place.error());
    }
    if (place->facts.isDirectory()) {
        return Fail("delete", EISDIR);
    }
    if (place->facts.isReadOnly()) {
        return FailBecause("delete", "it is read-only", ERROR_ACCESS_DENIED);
    }
    // Asked last: what is refused anyway must not make the registry be stored.
    if (Status ready = BeforeChange(); !ready) {
        return ready;
    }
    if (Status deleted = tree_->Unlink(place->directory(), place->name.c_str()); !deleted) {
        return deleted;
    }
    deletedSize_ = place->facts.size;
    return {};
}

BOOL HostFiles::DeleteFileW(const WCHAR* path) {
    return KeepFailure(Delete(path));
}

Status HostFiles::RemoveDirectory(std::u16string_view path) {
    const Result<Place> place = Locate(path, Knowledge::OfSearch);
    if (!place) {
        return tl::unexpected<Failure>(place.error());
    }
    if (!place->facts.isDirectory()) {
        return FailBecause("remove", "it is no directory", ERROR_DIRECTORY);
    }
    if (Status ready = BeforeChange(); !ready) {
        return ready;
    }
    Status removed = tree_->RemoveDirectory(place->directory(), place->name.c_str());
    // Some file systems have the other name for a directory that is not empty.
    return removed || removed.error().error != EEXIST ? removed : Fail("remove", ENOTEMPTY);
}

BOOL HostFiles::RemoveDirectoryW(const WCHAR* path) {
    return KeepFailure(RemoveDirectory(path));
}

Status HostFiles::CreateDirectory(std::u16string_view path) {
    const Result<Target> target = LocateTarget(path);
    if (!target) {
        return tl::unexpected<Failure>(target.error());
    }
    DestinationDirectory& directory = *target->directory;
    const auto existing = directory.Existing(*tree_, target->device, target->host);
    if (!existing) {
        return tl::unexpected<Failure>(existing.error());
    }
    if (*existing) {
        return Fail("make", EEXIST);
    }
    if (Status ready = BeforeMove(); !ready) {
        return ready;
    }
    if (Status made =
            tree_->MakeDirectory(directory.opened, target->host.c_str(), moved_.ModeFor(path));
        !made) {
        return made;
    }
    moved_.Made(path);
    directory.names.Add(target->device);
    return {};
}

BOOL HostFiles::CreateDirectoryW(const WCHAR* path, void* /*security*/) {
    const BOOL made = KeepFailure(CreateDirectory(path));
    ForgetDestinationDirectories();
    return made;
}

BOOL HostFiles::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const Result<Place> source = Locate(oldPath, Knowledge::OfSearch);
    const BOOL moved = KeepFailure(source ? Move(*source, oldPath, newPath)
                                          : Status(tl::unexpected<Failure>(source.error())));
    ForgetDestinationDirectories();
    return moved;
}

Status HostFiles::Move(const Place& source, std::u16string_view oldPath,
                       std::u16string_view newPath) {
    if (SplitAtName(newPath).directoryOnly && !source.facts.isDirectory()) {
        return FailBecause("move", "it is no directory", ERROR_DIRECTORY);
    }
    const Result<Target> target = LocateTarget(newPath);
    if (!target) {
        return tl::unexpected<Failure>(target.error());
    }
    DestinationDirectory& directory = *target->directory;
    const auto existing = directory.Existing(*tree_, target->device, target->host);
    if (!existing) {
        return tl::unexpected<Failure>(existing.error());
    }
    const bool isItself =
        *existing && (*existing)->view() == source.name.view() &&
        IsSameFile(tree_->Identity(source.directory()), tree_->Identity(directory.opened));
    if (isItself) {
        return {};
    }
    if (*existing && (*existing)->view() != target->host.view()) {
        return Fail("move", EEXIST);
    }
    if (Status ready = BeforeMove(); !ready) {
        return ready;
    }
    // A name that is taken in exactly this spelling can be what a killed run has moved already.
    Status moved = *existing ? FinishMoveTo(source, oldPath, *target)
                             : MoveTo(source, oldPath, newPath, *target);
    if (moved) {
        directory.names.Add(target->device);
    }
    return moved;
}

Status HostFiles::MoveTo(const Place& source, std::u16string_view oldPath,
                         std::u16string_view newPath, const Target& target) {
    const OpenedDirectory& into = target.directory->opened;
    const char* const name = target.host.c_str();
    // Tried whatever the volumes are: to ask for them first would cost calls for every file.
    Status moved = tree_->Rename(source.directory(), source.name.c_str(), into, name);
    if (moved || moved.error().error != EXDEV) {
        return moved;
    }
    if (!source.facts.isRegularFile()) {
        return FailBecause("move", "only files can go to another volume", ERROR_NOT_SAME_DEVICE);
    }
    const Result<const OpenedDirectory*> from = VolumeOf(oldPath, from_);
    const Result<const OpenedDirectory*> to = VolumeOf(newPath, to_);
    if (!from || !to) {
        return tl::unexpected<Failure>((from ? to : from).error());
    }
    return tree_->MoveToVolume(
        {source.directory(), source.name.c_str(), **from, oldPath, into, name, *to});
}

Result<const OpenedDirectory*> HostFiles::VolumeOf(std::u16string_view path,
                                                   KeptVolume& kept) const {
    const std::u16string_view directory = SplitAtName(path).directory;
    if (!kept.root || kept.directory != directory) {
        Result<OpenedDirectory> opened = paths_.OpenVolume(path);
        if (!opened) {
            return tl::unexpected<Failure>(opened.error());
        }
        kept = {std::u16string(directory), std::move(*opened)};
    }
    return &*kept.root;
}

// A move that was cut off left the entry under both names.
Status HostFiles::FinishMoveTo(const Place& source, std::u16string_view oldPath,
                               const Target& target) {
    const Result<const OpenedDirectory*> volume = VolumeOf(oldPath, from_);
    if (!volume || !source.facts.isRegularFile()) {
        return Fail("move", EEXIST);
    }
    return tree_->FinishMove({source.directory(), source.name.c_str(), **volume, oldPath,
                              target.directory->opened, target.host.c_str(), nullptr});
}

// What a directory holds is only known to stay as it is for as long as the walk that fills it.
void HostFiles::ForgetDestinationDirectories() {
    paths_.lookup().EndLooks();
    if (searches_.empty()) {
        filled_.Clear();
        from_ = {};
        to_ = {};
    }
}

std::FILE* HostFiles::_wfopen(const WCHAR* path, const WCHAR* mode) {
    const std::u16string_view wanted(mode);
    Result<std::FILE*> opened =
        FailBecause("open", "the mode is not known", ERROR_INVALID_PARAMETER);
    if (wanted == u"r" || wanted == u"rb") {
        opened = OpenForReading(path);
    } else if (wanted == u"wb") {
        opened = OpenForWriting(path, Existing::Replaced);
    }
    if (!opened) {
        lastFailure_ = opened.error();
    }
    return opened.value_or(nullptr);
}

Result<Descriptor> HostFiles::OpenFile(std::u16string_view path, Knowledge knowledge) {
    const Result<Place> place = Locate(path, knowledge);
    if (!place) {
        return tl::unexpected<Failure>(place.error());
    }
    if (!place->facts.isRegularFile()) {
        return FailBecause("open", "it is no regular file", ERROR_ACCESS_DENIED);
    }
    return tree_->OpenFile(place->directory(), place->name.c_str());
}

Result<std::FILE*> HostFiles::OpenForReading(std::u16string_view path) {
    // Not what a search found: the program may keep it open for long, and reads what is there now.
    Result<Descriptor> opened = OpenFile(path, Knowledge::Fresh);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    std::FILE* const file = fdopen(opened->get(), "rb");
    if (file == nullptr) {
        return Fail("open", errno);
    }
    opened->Release();
    return file;
}

Result<std::FILE*> HostFiles::OpenForWriting(std::u16string_view path, Existing existing) {
    paths_.lookup().EndLooks();
    const SplitPath split = SplitAtName(path);
    Place place;
    if (split.directoryOnly || !HostNameOf(split.name, place.name)) {
        return FailBecause("write", "no file can have that name", ERROR_INVALID_NAME);
    }
    // Open for reading, because the file's name is safe only once its directory is stored.
    Result<OpenedDirectory> opened = paths_.OpenDirectory(split.directory, OpenFor::Reading);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    place.owned = std::move(*opened);
    const Result<std::optional<struct stat>> replaced = Replaced(place, split.name, existing);
    if (!replaced) {
        return tl::unexpected<Failure>(replaced.error());
    }
    Result<OpenedDirectory> volume = paths_.OpenVolume(path);
    if (!volume) {
        return tl::unexpected<Failure>(volume.error());
    }
    if (Status ready = BeforeChange(); !ready) {
        return tl::unexpected<Failure>(ready.error());
    }
    return tree_->OpenPublishingStream(std::move(place.owned), std::move(*volume), place.name,
                                       *replaced, lastFailure_);
}

// The file that the one to be written takes the place of, if there is one.
Result<std::optional<struct stat>> HostFiles::Replaced(Place& place, std::u16string_view device,
                                                       Existing existing) const {
    const Status examined = Examine(place, device);
    if (!examined && examined.error().error == ENOENT) {
        return std::optional<struct stat>();
    }
    if (!examined) {
        return tl::unexpected<Failure>(examined.error());
    }
    if (existing == Existing::Kept) {
        return Fail("make", EEXIST);
    }
    if (!place.facts.isRegularFile()) {
        return FailBecause("write", "it is no regular file", ERROR_ACCESS_DENIED);
    }
    const char* const name = place.name.c_str();
    if (Status writable = tree_->CheckWritable(place.directory(), name, place.facts.mode);
        !writable) {
        return tl::unexpected<Failure>(writable.error());
    }
    return tree_->StatusOf(place.directory(), name).map([](const struct stat& status) {
        return std::optional(status);
    });
}

Result<std::u16string> HostFiles::TargetOf(std::u16string_view path, int limit) {
    const Result<Descriptor> file = OpenFile(path, Knowledge::OfSearch);
    if (!file) {
        return tl::unexpected<Failure>(file.error());
    }
    Result<std::u16string> target = ReadShortcut(file->get());
    if (target && (limit <= 0 || target->size() >= static_cast<std::size_t>(limit))) {
        return FailBecause("read", "its target does not fit", ERROR_INSUFFICIENT_BUFFER);
    }
    return target;
}

// The looks that follow are for its target, of which a text can name very many.
BOOL HostFiles::SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) {
    paths_.lookup().BeginLooks();
    const Result<std::u16string> target = TargetOf(path, limit);
    if (!target) {
        lastFailure_ = target.error();
        return 0;
    }
    *std::copy(target->begin(), target->end(), buffer) = 0;
    return 1;
}

Status HostFiles::CreateShortcut(std::u16string_view path, std::u16string_view target) {
    const Result<std::FILE*> file = OpenForWriting(path, Existing::Kept);
    if (!file) {
        return tl::unexpected<Failure>(file.error());
    }
    const std::string content = ShortcutContent(target);
    std::fwrite(content.data(), 1, content.size(), *file);
    if (std::fclose(*file) != 0) {
        return tl::unexpected<Failure>(lastFailure_);
    }
    return {};
}

BOOL HostFiles::SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    return KeepFailure(CreateShortcut(path, target));
}

Result<std::string> HostFiles::ReadWhole(std::u16string_view path, std::size_t limit) {
    const Result<Descriptor> file = OpenFile(path, Knowledge::Fresh);
    return file ? ReadToEnd(file->get(), limit) : tl::unexpected<Failure>(file.error());
}

void HostFiles::DirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) {
    moved_.Begin(paths_, oldPath, newPath);
}

void HostFiles::DirectoryMoved(const WCHAR* oldPath, const WCHAR* /*newPath*/) {
    moved_.End(paths_, oldPath);
}

void HostFiles::RecoverFromKilledRuns() {
    RecoverVolumes(paths_);
}

}  // namespace platform
