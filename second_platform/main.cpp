// Runs the program on the devices of a drive: on the one in its directory 0, or in a silent run on
// as many as FENNELBRIGHT_DEVICES says, in the directories 0, 1 and so on. Writes a line for each.

#include <fcntl.h>
#include <io.h>

#include <cstdlib>

#include "core/host_notes.h"
#include "core/win_main.h"
#include "second_platform/handheld.h"

// The notes are for the report, which only the host makes.
void NoteStep(int /*number*/) {}
void NoteUnusablePath(const WCHAR* /*what*/, const WCHAR* /*content*/) {}
void NoteNotStored(const WCHAR* /*path*/) {}
void NoteCleans(std::uint32_t /*option*/, const WCHAR* /*directory*/) {}
void NoteNothingToClean(const WCHAR* /*directory*/) {}
void NoteNoSettings(const WCHAR* /*path*/) {}
void NoteSettingsNotRead(const WCHAR* /*path*/) {}
void NoteSettingsDamaged(const WCHAR* /*path*/) {}
void NoteTooLong(const WCHAR* /*directory*/, const WCHAR* /*name*/) {}
void NoteLookupFailed(const WCHAR* /*target*/) {}
void NoteKept(const WCHAR* /*kept*/) {}
void NoteNothingMoves(const WCHAR* /*source*/, const WCHAR* /*destination*/) {}
void NoteDirectoryMoves(const WCHAR* /*oldPath*/, const WCHAR* /*newPath*/) {}
void NoteDirectoryMoved(const WCHAR* /*oldPath*/, const WCHAR* /*newPath*/) {}

int wmain(int count, WCHAR** words) {
    _setmode(_fileno(stdout), _O_BINARY);
    std::wstring commandLine = count > 1 ? words[1] : L"";
    const bool isSilent = IsSilentCommandLine(commandLine.c_str());
    const char* const devices = std::getenv("FENNELBRIGHT_DEVICES");
    for (int device = 0; device < (isSilent && devices != nullptr ? std::atoi(devices) : 1);
         ++device) {
        std::printf("device %d\n", device);
        const std::wstring name = std::to_wstring(device);
        UseRoot(L"\\\\?\\X:\\" + name);
        UseRegistry(L"Devices\\" + name);
        UseWindows(!isSilent);
        WinMain(GetModuleHandleW(nullptr), nullptr, commandLine.data(), 0);
    }
    return 0;
}
