#include "platform/moves/set_aside.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "platform/diagnostics/run_log.h"
#include "platform/io/entry_facts.h"
#include "platform/io/file_identity.h"
#include "platform/io/open_beneath.h"
#include "platform/io/rename_without_replacing.h"
#include "platform/io/whole_file.h"
#include "platform/text/device_paths.h"
#include "platform/text/readable_text.h"
#include "platform/text/reserved_names.h"
#include "platform/text/text_encoding.h"

namespace platform {

namespace {

constexpr char kNote[] = "note the name";
constexpr std::size_t kCheckDigits = 16;
constexpr std::size_t kLongestRecord = 8192;  // a path has 1024 units and a name 255 more

// A record is the path and, in front of it, a number that only the whole path leads to.
std::string RecordOf(const std::string& path) {
    std::uint64_t check = 14695981039346656037U;
    for (const char character : path) {
        check = (check ^ static_cast<unsigned char>(character)) * 1099511628211U;
    }
    std::array<char, kCheckDigits + 2> number{};
    static_cast<void>(std::snprintf(number.data(), number.size(), "%016" PRIx64 " ", check));
    return number.data() + path;
}

Status WriteRecord(int volume, const char* name, const std::string& record) {
    const Descriptor file(
        openat(volume, name, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) {
        return Fail(kNote, errno);
    }
    if (Status written = WriteWhole(file.get(), record); !written) {
        return written;
    }
    if (fsync(file.get()) != 0) {
        return Fail(kNote, errno);
    }
    return SyncEntries(volume);
}

bool IsThere(int directory, const char* name) {
    return FactsOf(directory, name).has_value();
}

// Where the file system does not know how to rename without replacing, a kill can have left both
// names.
Status Rename(int volume, const char* aside, int directory, const char* name) {
    Status renamed = RenameWithoutReplacing(volume, aside, directory, name);
    if (renamed || renamed.error().error != EEXIST ||
        !AreTwoNamesOfOneFile(volume, aside, directory, name)) {
        return renamed;
    }
    return unlinkat(volume, aside, 0) == 0 ? Status() : Fail("remove the second name", errno);
}

}  // namespace

Result<std::u16string> ReadRecord(int volume, std::string_view name) {
    const Result<Descriptor> file =
        OpenRegularFile(volume, ReservedCounterpart(name, ReservedFor::WayBack).c_str());
    if (!file) {
        return tl::unexpected<Failure>(file.error());
    }
    std::string record(kLongestRecord, '\0');
    const ssize_t length = read(file->get(), record.data(), record.size());
    if (length < 0) {
        return Fail("read", errno);
    }
    record.resize(static_cast<std::size_t>(length));
    const std::string path = record.size() > kCheckDigits ? record.substr(kCheckDigits + 1) : "";
    const std::optional<std::u16string> wide = WideText(path);
    if (record != RecordOf(path) || !wide) {
        return FailBecause("give the name back", "the record of it is damaged");
    }
    return *wide;
}

void RemoveRecord(int volume, const HostName& record) {
    const Result<EntryFacts> facts = FactsOf(volume, record.c_str());
    if (facts && facts->isRegularFile()) {
        unlinkat(volume, record.c_str(), 0);
    }
}

Status ReturnSetAside(int volume, const HostName& aside, int directory, const char* name) {
    if (Status renamed = Rename(volume, aside.c_str(), directory, name); !renamed) {
        return renamed;
    }
    SyncEntries(directory);
    RemoveRecord(volume, ReservedCounterpart(aside.view(), ReservedFor::WayBack));
    return {};
}

SetAside::SetAside(const SourceFile& source)
    : source_(source),
      record_(NewReservedName(ReservedFor::WayBack)),
      aside_(ReservedCounterpart(record_.view(), ReservedFor::SetAside)) {}

namespace {

// Where users may take away only what is theirs, another user's file could not come back.
Status CheckCanLeave(const SourceFile& source) {
    struct stat volume {};
    struct stat file {};
    if (geteuid() == 0 || fstat(source.volume, &volume) != 0 || (volume.st_mode & S_ISVTX) == 0 ||
        volume.st_uid == geteuid()) {
        return {};
    }
    const bool isOwn = fstatat(source.directory, source.name, &file, AT_SYMLINK_NOFOLLOW) == 0 &&
                       file.st_uid == geteuid();
    return isOwn ? Status() : Fail("set it aside", EPERM);
}

}  // namespace

Result<SetAside> SetAside::Create(const SourceFile& source) {
    if (const Status allowed = CheckCanLeave(source); !allowed) {
        return tl::unexpected<Failure>(allowed.error());
    }
    SetAside taken(source);
    const std::u16string path = std::u16string(SplitAtName(source.path).directory) +
                                std::u16string(DeviceNameOf(source.name).view());
    Status done = WriteRecord(source.volume, taken.record_.c_str(), RecordOf(Utf8Text(path)));
    if (done) {
        done = RenameIfFree(source.directory, source.name, source.volume, taken.name());
    }
    // A file server can have done what it reports as failed.
    if (done || IsThere(source.volume, taken.name())) {
        return taken;
    }
    RemoveRecord(source.volume, taken.record_);
    return tl::unexpected<Failure>(done.error());
}

Status SetAside::Delete() const {
    if (unlinkat(source_.volume, name(), 0) != 0) {
        return Fail("delete", errno);
    }
    RemoveRecord(source_.volume, record_);
    return {};
}

Status SetAside::GiveBack() const {
    Status returned = ReturnSetAside(source_.volume, aside_, source_.directory, source_.name);
    if (!returned) {
        LogInUse::Current().SayUndone(ReadableText(source_.path) + " stays set aside as " + name() +
                                      ": " + ReasonOf(returned.error()));
    }
    return returned;
}

bool HasRecord(int volume, std::string_view aside) {
    return IsThere(volume, ReservedCounterpart(aside, ReservedFor::WayBack).c_str());
}

}  // namespace platform
