#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/device_store.h"
#include "platform/device_tree.h"
#include "platform/filled_directories.h"
#include "platform/find_table.h"

namespace platform {

// The device store of a device that has files and shortcuts but no registry and no power switch:
// the handheld's files are the host's files below one root directory.
class FileStore : public DeviceStore {
  public:
    // `root` is the open root directory of the device's files, none for a device without files.
    // `modulePath` is where the program's executable lies on the device. Removes what earlier
    // processes left unfinished.
    FileStore(Descriptor root, std::u16string modulePath);

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override;
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override;
    BOOL FindClose(HANDLE find) override;
    BOOL DeleteFileW(const WCHAR* path) override;
    BOOL RemoveDirectoryW(const WCHAR* path) override;
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override;
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override;
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override;
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override;
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override;
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override;
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;

    // Without a registry no key is ever there.
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override;
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override;
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override;
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override;
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override;
    LONG RegCloseKey(HKEY key) override;

  private:
    // An entry that is there, reached through its open directory.
    struct Place {
        int directory = -1;
        OpenedDirectory owned;  // empty where a search has the directory open
        bool directoryIsRoot = false;
        HostName name;
        EntryFacts facts;
    };
    // A name in a directory that is being filled.
    struct Target {
        FilledDirectory* directory;  // null: no such directory, or no name that an entry can have
        std::u16string_view device;
        HostName host;
    };
    // Whether facts that a search found a moment ago will do.
    enum class Knowledge { Fresh, OfSearch };
    // What becomes of a file that has the name of the one to be written.
    enum class Existing { Replaced, Kept };

    bool ReachDirectory(std::u16string_view path, Place& place);
    std::optional<Place> Locate(std::u16string_view path, Knowledge knowledge);
    bool Examine(Place& place, std::u16string_view device) const;
    Target LocateTarget(std::u16string_view path);
    OpenedDirectory OpenForSearch(std::u16string_view path);
    HANDLE FindInDirectory(const SplitPath& pattern, WIN32_FIND_DATA& data);
    HANDLE FindEntry(std::u16string_view path, WIN32_FIND_DATA& data);
    bool Move(const Place& source, std::u16string_view newPath);
    void ForgetFilledDirectories();
    Descriptor OpenFile(std::u16string_view path, Knowledge knowledge);
    std::FILE* OpenForReading(std::u16string_view path);
    std::FILE* OpenForWriting(std::u16string_view path, Existing existing);

    DeviceTree tree_;
    std::u16string modulePath_;
    FindTable searches_;
    FilledDirectories filled_;
};

}  // namespace platform
