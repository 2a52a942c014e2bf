#include "core/host_notes.h"

#include <string>

#include "platform/diagnostics/cleaning_warnings.h"
#include "platform/diagnostics/run_log.h"
#include "platform/seam/device_store.h"
#include "platform/text/readable_text.h"

namespace {

std::string g_failedLook;  // in readable form, with its reason

std::string Quoted(const WCHAR* text) {
    return '"' + platform::ReadableText(text) + '"';
}

std::string LastReason() {
    return platform::ReasonOf(platform::StoreInUse::Current().LastFailure());
}

// Whether the file is surely not there. Another failure becomes the last one.
bool IsMissing(const WCHAR* path) {
    platform::DeviceStore& store = platform::StoreInUse::Current();
    WIN32_FIND_DATA found{};
    const HANDLE find = store.FindFirstFileW(path, &found);
    if (find != INVALID_HANDLE_VALUE) {
        store.FindClose(find);
    }
    return find == INVALID_HANDLE_VALUE && platform::IsNotThere(store.LastFailure());
}

}  // namespace

void NoteStep(int number) {
    platform::LogInUse::Current().BeginStep(number);
}

void NoteUnusablePath(const WCHAR* what, const WCHAR* content) {
    platform::LogInUse::Current().SayUndone(platform::ReadableText(what) + " is skipped: " +
                                            Quoted(content) + " is not a path that can be used");
}

void NoteNotStored(const WCHAR* path) {
    platform::RunLog& log = platform::LogInUse::Current();
    log.NoteNotStored();
    const std::string reason = LastReason();
    const char* const result = IsMissing(path) ? "so no options are saved" : "so the old one stays";
    log.SayUndone(platform::ReadableText(path) + " cannot be written, " + result + ": " + reason);
}

void NoteCleans(std::uint32_t option, const WCHAR* directory) {
    const std::string warning = platform::WarningAboutCleaning(option, directory);
    if (!warning.empty()) {
        platform::LogInUse::Current().Say(warning);
    }
}

void NoteNothingToClean(const WCHAR* directory) {
    platform::StoreInUse::Current().NothingToClean(directory);
}

void NoteNoSettings(const WCHAR* path) {
    const std::u16string_view text(path);
    const std::size_t end = text.rfind(u'\\');
    const std::string name = platform::ReadableText(text.substr(end + 1));
    const std::string place = platform::ReadableText(text.substr(0, end));
    platform::RunLog& log = platform::LogInUse::Current();
    if (platform::IsNotThere(platform::StoreInUse::Current().LastFailure())) {
        log.NoteNoSettings();
        log.Say("no " + name + " in " + place + ": no options are ticked");
    } else {
        log.SayUndone(name + " in " + place +
                      " cannot be read, so nothing is done: " + LastReason());
    }
}

void NoteSettingsNotRead(const WCHAR* path) {
    platform::LogInUse::Current().SayUndone(platform::ReadableText(path) +
                                            " cannot be read to its end, so nothing is done");
}

void NoteSettingsDamaged(const WCHAR* path) {
    platform::LogInUse::Current().SayUndone(
        platform::ReadableText(path) +
        " is damaged: only its readable part is used; it stays as it is until options are saved");
}

void NoteTooLong(const WCHAR* directory, const WCHAR* name) {
    platform::LogInUse::Current().SayUndone(platform::ReadableText(name) + " is left alone in " +
                                            platform::ReadableText(directory) +
                                            ": its path would be longer than 1023 characters");
}

void NoteLookupFailed(const WCHAR* target) {
    g_failedLook = platform::ReadableText(target) + " cannot be looked up: " + LastReason();
}

void NoteKept(const WCHAR* kept) {
    platform::LogInUse::Current().SayUndone(platform::ReadableText(kept) +
                                            " stays: " + g_failedLook);
}

void NoteDirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) {
    platform::StoreInUse::Current().DirectoryMoves(oldPath, newPath);
}

void NoteDirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath) {
    platform::StoreInUse::Current().DirectoryMoved(oldPath, newPath);
}

void NoteNothingMoves(const WCHAR* source, const WCHAR* destination) {
    platform::StoreInUse::Current().NothingMoves(source, destination);
}
