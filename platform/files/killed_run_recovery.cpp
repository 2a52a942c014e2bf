#include "platform/files/killed_run_recovery.h"

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/diagnostics/run_log.h"
#include "platform/files/path_resolver.h"
#include "platform/io/directory_reader.h"
#include "platform/io/entry_facts.h"
#include "platform/moves/set_aside.h"
#include "platform/text/device_paths.h"
#include "platform/text/readable_text.h"
#include "platform/text/reserved_names.h"

namespace platform {

namespace {

void SayLeft(const std::string& name, const std::string& why) {
    LogInUse::Current().SayUndone(name + " stays: " + why);
}

void SayUnread(std::string_view volume, const Failure& failure) {
    SayLeft("what was left in " + ReadableBytes(volume), Describe(failure));
}

// Reserved names as well.
template <typename Act>
Status ForEachEntry(int directory, Act act) {
    const Result<Descriptor> opened = OpenToRead(directory);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    return ReadEntries(opened->get(), DirectoryReader::Names::All,
                       [&act](const DirectoryReader::Entry& entry) {
                           act(entry);
                           return true;
                       })
        .map([](bool /*all*/) {});
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

Status ReturnTo(const PathResolver& tree, std::u16string_view path, int volume,
                const HostName& aside) {
    const SplitPath split = SplitAtName(path);
    HostName name;
    if (!HostNameOf(split.name, name)) {
        return FailBecause("give the name back", "no entry can have that name");
    }
    const Result<OpenedDirectory> directory = tree.OpenDirectory(split.directory, OpenFor::Reading);
    if (!directory) {
        return tl::unexpected<Failure>(directory.error());
    }
    return ReturnSetAside(volume, aside, directory->get(), name.c_str());
}

// Does nothing, but remove the record, when there is no such file.
Status GiveBack(const PathResolver& tree, int volume, std::string_view record) {
    const HostName aside = ReservedCounterpart(record, ReservedFor::SetAside);
    const Result<EntryFacts> facts = FactsOf(volume, aside.c_str());
    if (!facts && facts.error().error == ENOENT) {
        RemoveRecord(volume, ReservedCounterpart(record, ReservedFor::WayBack));
        return {};
    }
    if (!facts) {
        return tl::unexpected<Failure>(facts.error());
    }
    if (!facts->isRegularFile()) {
        return FailBecause("give the name back", "it is no regular file");
    }
    const Result<std::u16string> path = ReadRecord(volume, record);
    if (!path) {
        return tl::unexpected<Failure>(path.error());
    }
    Status returned = ReturnTo(tree, *path, volume, aside);
    return returned ? returned : FailOf(returned.error(), ReadableText(*path));
}

void PutRight(const PathResolver& tree, int volume, const char* name, ReservedFor purpose) {
    if (purpose == ReservedFor::NewContent) {
        RemoveUnpublishedFile(volume, name);
    } else if (purpose == ReservedFor::SetAside && IsWithoutRecord(volume, name)) {
        SayLeft(name, "it is not known which file it was");
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

bool IsVolume(int root, const DirectoryReader::Entry& entry) {
    const bool mayBeDirectory = entry.type == DT_DIR || entry.type == DT_UNKNOWN;
    return mayBeDirectory && IsMountPoint(root, entry.name);
}

void ClearUpIfVolume(const PathResolver& tree, int root, const DirectoryReader::Entry& entry) {
    if (!IsVolume(root, entry)) {
        return;
    }
    const Result<OpenedDirectory> volume =
        tree.OpenSubdirectory(tree.tree().root(), entry.name, OpenFor::Reading);
    const Status done = volume ? ClearUpVolume(tree, volume->get(), [](const auto& /*entry*/) {})
                               : Status(tl::unexpected<Failure>(volume.error()));
    if (!done) {
        SayUnread(entry.name, done.error());
    }
}

}  // namespace

void RecoverVolumes(const PathResolver& tree) {
    if (!tree.tree().root().descriptor) {
        return;
    }
    const Status done = ClearUpVolume(tree, tree.tree().root().get(), [&tree](const auto& entry) {
        ClearUpIfVolume(tree, tree.tree().root().get(), entry);
    });
    if (!done) {
        SayUnread("\\", done.error());
    }
}

namespace {

// One that cannot be read is reported as the run reports it.
bool HasReservedName(const Result<OpenedDirectory>& volume, std::string_view name) {
    const Result<bool> none =
        volume ? ReadEntries(volume->get(), DirectoryReader::Names::All,
                             [](const auto& entry) { return !PurposeOf(entry.name).has_value(); })
               : tl::unexpected<Failure>(volume.error());
    if (!none) {
        SayUnread(name, none.error());
    }
    return none && !*none;
}

}  // namespace

bool HaveLeftovers(const PathResolver& tree) {
    if (!tree.tree().root().descriptor) {
        return false;
    }
    const Result<OpenedDirectory> root = tree.OpenDirectory(u"", OpenFor::Reading);
    if (HasReservedName(root, "\\") || !root) {
        return root.has_value();
    }
    const Result<OpenedDirectory> again = tree.OpenDirectory(u"", OpenFor::Reading);
    const auto isClean = [&](const DirectoryReader::Entry& entry) {
        return !IsVolume(root->get(), entry) ||
               !HasReservedName(tree.OpenSubdirectory(*root, entry.name, OpenFor::Reading),
                                entry.name);
    };
    const Result<bool> clean =
        again ? ReadEntries(again->get(), DirectoryReader::Names::Device, isClean)
              : tl::unexpected<Failure>(again.error());
    return clean && !*clean;
}

Status RemoveUnfinishedFilesIn(int directory) {
    return ForEachEntry(directory, [directory](const DirectoryReader::Entry& entry) {
        if (PurposeOf(entry.name) == ReservedFor::NewContent) {
            RemoveUnpublishedFile(directory, entry.name);
        }
    });
}

}  // namespace platform
