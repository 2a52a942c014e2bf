#include "platform/host/settings_commands.h"

#include <sysexits.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "core/host_notes.h"
#include "platform/command_line/named_device.h"
#include "platform/device/directory_making_store.h"
#include "platform/device/files_alone.h"
#include "platform/diagnostics/run_log.h"
#include "platform/host/run_lock.h"
#include "platform/text/json_object.h"
#include "platform/text/readable_text.h"
#include "settings/settings_file.h"

namespace platform {

namespace {

// settings.dat, and what it holds.
struct StoredSettings {
    PathText path{};
    SettingsRead read = SettingsRead::NotOpened;
    bool isMissing = false;  // there is no such file
    std::uint32_t mask = 0;
    CSettings values{};
};

void Read(StoredSettings& stored) {
    stored.read = ReadSettings(stored.path, stored.values, stored.mask);
    stored.isMissing =
        stored.read == SettingsRead::NotOpened && IsNotThere(StoreInUse::Current().LastFailure());
    // A silent run takes nothing from it either.
    if (stored.mask == static_cast<std::uint32_t>(kNoMask)) {
        stored.read = SettingsRead::Damaged;
        stored.mask = 0;
    }
}

// A line about a file that cannot be read.
void NoteUnread(const StoredSettings& stored) {
    if (stored.read == SettingsRead::Unreadable) {
        NoteSettingsNotRead(stored.path.data());
    } else if (stored.read == SettingsRead::NotOpened) {
        NoteNoSettings(stored.path.data());
    }
}

bool CanBeShown(const StoredSettings& stored) {
    return stored.read == SettingsRead::Whole || stored.read == SettingsRead::Damaged ||
           stored.isMissing;
}

void Apply(const SettingChange& change, StoredSettings& stored) {
    const Option& option = *change.option;
    stored.mask = change.isTicked ? stored.mask | option.bit : stored.mask & ~option.bit;
    if (option.text != nullptr) {
        SettingsText& text = stored.values.*option.text;
        text = NewSettingsText();
        std::ranges::copy(change.text, text.get());
    }
    if (option.position != nullptr) {
        stored.values.*option.position = change.position;
    }
}

// The inverse: what is stored of one option.
SettingChange SettingOf(const Option& option, const StoredSettings& stored) {
    SettingChange setting{.option = &option, .isTicked = (stored.mask & option.bit) != 0};
    if (option.text != nullptr && stored.values.*option.text != nullptr) {
        setting.text = (stored.values.*option.text).get();
    }
    if (option.position != nullptr) {
        setting.position = stored.values.*option.position;
    }
    return setting;
}

// Bits of no option select nothing, and the windows do not keep them either.
std::uint32_t BitsOfOptions(std::uint32_t mask) {
    std::uint32_t bits = 0;
    for (const Option& option : AllOptions()) {
        bits |= mask & option.bit;
    }
    return bits;
}

bool Write(StoredSettings& stored) {
    if (std::FILE* const file = OpenSettingsForWriting()) {
        WriteSettings(file, BitsOfOptions(stored.mask), stored.values);
        if (std::fclose(file) == 0) {
            return true;
        }
    }
    NoteNotStored(stored.path.data());
    return false;
}

bool Print(const std::string& text, RunLog& log) {
    const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    if (!isWritten) {
        log.Say(Describe(Fail("write the settings to standard output", errno).value()));
    }
    return isWritten;
}

// What a run does from the day on which there are settings, whichever of them is wanted.
void WarnOfNewSettings(const StoredSettings& stored, RunLog& log) {
    constexpr std::uint32_t kFollowed =
        OPT_SILENT_STARTUP | OPT_NO_MENU_ANIMATION | OPT_NO_WINDOW_ANIMATION;
    if (stored.isMissing && (stored.mask & kFollowed) != kFollowed) {
        log.Say(
            "settings.dat is new: from now on a run also removes the startup shortcut and switches "
            "the two animations on, each where its option is off");
    }
}

// The options that were named, as --show-settings has them.
std::string LinesOf(const std::vector<SettingChange>& changes) {
    std::string lines;
    for (const SettingChange& change : changes) {
        lines += WordOf(change) + '\n';
    }
    return lines;
}

// Reads what is to be changed. Returns the exit code, 0 where it can be.
int ReadToChange(StoredSettings& stored, RunLog& log) {
    Read(stored);
    if (!CanBeShown(stored)) {
        NoteUnread(stored);
        return EX_IOERR;
    }
    if (stored.read == SettingsRead::Damaged) {
        log.Say(
            ReadableText(stored.path.data()) +
            " is damaged, so nothing is set: what cannot be read of it would be lost; OK in the "
            "program's windows saves what can");
        return EX_DATAERR;
    }
    return 0;
}

int Set(const CommandLine& line, StoredSettings& stored, RunLog& log) {
    if (const int refused = ReadToChange(stored, log); refused != 0) {
        return refused;
    }
    for (const SettingChange& change : line.changes) {
        Apply(change, stored);
        if (const std::string warning = WarningAbout(change); !warning.empty()) {
            log.Say(warning);
        }
    }
    if (!Write(stored)) {
        return EX_IOERR;
    }
    WarnOfNewSettings(stored, log);
    const bool isShown = line.shownSettings != ReportForm::None;  // with all others
    return isShown || Print(LinesOf(line.changes), log) ? 0 : EX_IOERR;
}

std::string Lines(const StoredSettings& stored) {
    std::string lines;
    for (const Option& option : AllOptions()) {
        lines += WordOf(SettingOf(option, stored)) + '\n';
    }
    return lines;
}

std::string JsonOf(const SettingChange& setting) {
    const Option& option = *setting.option;
    JsonObject object;
    object.Flag("ticked", setting.isTicked);
    if (setting.isTicked && option.text != nullptr) {
        object.Text("text", "units", setting.text);
    }
    if (setting.isTicked && option.position != nullptr) {
        const auto position = static_cast<std::uint32_t>(setting.position);
        object.Number("position", position);
        if (position < option.words->size()) {
            object.Text("value", (*option.words)[position]);
        }
    }
    return object.Take();
}

std::string Json(const std::string& device, const StoredSettings& stored) {
    JsonObject options;
    for (const Option& option : AllOptions()) {
        options.Raw(option.name, JsonOf(SettingOf(option, stored)));
    }
    JsonObject whole;
    whole.Text("device", ReadableBytes(device));
    if (ReadableBytes(device) != device) {
        whole.Text("bytes", HexOf(device));
    }
    whole.Text("path", "units", stored.path.data())
        .Text("state", stored.isMissing                       ? "missing"
                       : stored.read == SettingsRead::Damaged ? "damaged"
                                                              : "whole")
        .Raw("options", options.Take());
    return whole.Take() + '\n';
}

int Show(const CommandLine& line, StoredSettings& stored, RunLog& log) {
    Read(stored);
    NoteUnread(stored);
    if (!CanBeShown(stored)) {
        return EX_IOERR;
    }
    const std::string text =
        line.shownSettings == ReportForm::Json ? Json(line.device, stored) : Lines(stored);
    if (!Print(text, log)) {
        return EX_IOERR;
    }
    if (stored.read == SettingsRead::Damaged) {
        log.Say(ReadableText(stored.path.data()) + " is damaged: this is what can be read of it");
        return EX_DATAERR;
    }
    return log.ExitCode(line.strict);
}

}  // namespace

int RunSettingsCommands(const CommandLine& line) {
    RunLog log(line.device);
    const LogInUse logInUse(log);
    Result<DeviceDirectory> device = OpenNamedDevice(line);
    if (!device) {
        log.Say(Describe(device.error()));
        return EX_NOINPUT;
    }
    if (!line.changes.empty() &&
        TakeRunLock(*device, LockKind::Exclusive, log) == RunLock::Refused) {
        return EX_TEMPFAIL;
    }
    FilesAlone files(std::move(device->files), line.modulePath);
    DirectoryMakingStore store(files);
    const StoreInUse storeInUse(store);
    PathText path{};
    if (!FindSettings(path)) {
        log.Say('"' + ReadableText(line.modulePath) +
                "\": a path of fewer than 16 characters leads to no settings.dat");
        return EX_USAGE;
    }
    StoredSettings before{.path = path};
    const int result = line.changes.empty() ? 0 : Set(line, before, log);
    StoredSettings after{.path = path};
    return result != 0 || line.shownSettings == ReportForm::None ? result : Show(line, after, log);
}

}  // namespace platform
