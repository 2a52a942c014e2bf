#include "platform/files/killed_run_recovery.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <string>

#include "platform/diagnostics/run_log.h"
#include "platform/files/path_resolver.h"
#include "platform/io/directory_reader.h"
#include "platform/io/set_aside.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

void SayLeft(const std::string& name, const std::string& why) {
    LogInUse::Current().SayUndone(name + " stays: " + why);
}

template <typename Act>
Status ForEachEntry(int directory, Act act) {
    const Descriptor reading(
        openat(directory, ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!reading) {
        return Fail("read the directory", errno);
    }
    DirectoryReader reader(DirectoryReader::Names::All);
    for (;;) {
        const Result<bool> more = reader.Next(reading.get());
        if (!more) {
            return tl::unexpected<Failure>(more.error());
        }
        if (!*more) {
            return {};
        }
        act(reader.entry());
    }
}

void RemoveUnpublishedFile(int directory, const char* name) {
    const Result<EntryFacts> facts = FactsOf(directory, name);
    if (facts && facts->isRegularFile()) {
        unlinkat(directory, name, 0);
    }
}

// What was read of the directory may be out of date: a file that was set aside has got its name
// back where its record came first.
bool IsWithoutRecord(int volume, const char* aside) {
    return FactsOf(volume, aside).has_value() && !HasRecord(volume, aside);
}

void PutRight(const PathResolver& tree, int volume, const char* name, ReservedFor purpose) {
    if (purpose == ReservedFor::NewContent) {
        RemoveUnpublishedFile(volume, name);
    } else if (purpose == ReservedFor::SetAside && IsWithoutRecord(volume, name)) {
        SayLeft(name, "nothing tells which file it was");
    } else if (purpose == ReservedFor::WayBack) {
        if (const Status given = GiveBack(tree, volume, name); !given) {
            SayLeft(ReservedCounterpart(name, ReservedFor::SetAside).c_str(),
                    Describe(given.error()));
        }
    }
}

// Calls `actOnOther` for what has no reserved name.
template <typename Act>
Status ClearUpVolume(const PathResolver& tree, int volume, Act actOnOther) {
    return ForEachEntry(volume, [&](const DirectoryReader::Entry& entry) {
        if (const std::optional<ReservedFor> purpose = PurposeOf(entry.name)) {
            PutRight(tree, volume, entry.name, *purpose);
        } else {
            actOnOther(entry);
        }
    });
}

void ClearUpIfVolume(const PathResolver& tree, int root, const DirectoryReader::Entry& entry) {
    const bool mayBeDirectory = entry.type == DT_DIR || entry.type == DT_UNKNOWN;
    if (!mayBeDirectory || !IsMountPoint(root, entry.name)) {
        return;
    }
    const Result<Descriptor> volume =
        tree.OpenSubdirectory(root, true, entry.name, OpenFor::Reading);
    const Status done = volume ? ClearUpVolume(tree, volume->get(), [](const auto& /*entry*/) {})
                               : Status(tl::unexpected<Failure>(volume.error()));
    if (!done) {
        SayLeft("what was left in " + ReadableBytes(entry.name), Describe(done.error()));
    }
}

}  // namespace

void RecoverVolumes(const PathResolver& tree) {
    if (tree.root() < 0) {
        return;
    }
    const Status done = ClearUpVolume(tree, tree.root(), [&tree](const auto& entry) {
        ClearUpIfVolume(tree, tree.root(), entry);
    });
    if (!done) {
        SayLeft("what was left in \\", Describe(done.error()));
    }
}

Status RemoveUnfinishedFilesIn(int directory) {
    return ForEachEntry(directory, [directory](const DirectoryReader::Entry& entry) {
        if (PurposeOf(entry.name) == ReservedFor::NewContent) {
            RemoveUnpublishedFile(directory, entry.name);
        }
    });
}

}  // namespace platform
