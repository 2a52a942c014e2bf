#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/registry_operations.h"
#include "platform/registry_file.h"
#include "platform/registry_text.h"

namespace platform {

// The registry of a device: the operations of core/registry_operations.h on the file registry.reg
// of a device directory. The functions that bear the platform's names keep the contracts there.
//
// Changes are seen at once and stored when the key through which they were made is closed, and by
// Flush(). What other processes have changed in the file by then is kept: the file is read anew,
// and the changes of this process alone are applied to it. A change to a key that another process
// has deleted is dropped with the key. Nothing is locked between two operations.
class Registry {
  public:
    // Reads the registry of the open device directory, which stays the caller's and must outlive
    // the object; one without keys when there is no file, which is then made with the first change.
    // Null when the file cannot be read, with the reason for people, the line number in it, in
    // `error`.
    static std::unique_ptr<Registry> Open(int directory, std::string& error);

    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access, HKEY* result);
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size);
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size);
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime);
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey);
    LONG RegCloseKey(HKEY key);

    // Stores the changes that are not stored yet. False when that failed: the file is as it was,
    // and the changes are tried again with the next ones.
    bool Flush();

    // Why storing failed the last time, for people.
    const std::string& error() const { return error_; }

  private:
    // An open key, or a root. Paths are folded and have one backslash between names.
    struct OpenKey {
        std::u16string path;
        bool changed = false;  // there are changes that its closing stores
        bool deleted = false;
    };

    // What was done to the registry since it was stored.
    struct Change {
        std::u16string path;
        bool deletion = false;
        std::u16string name;
        RegistryData data;
    };

    // A text that was set without a terminator, which its form in the file does not show.
    struct OpenText {
        RegistryData stored;  // as the file gives it
        RegistryData set;
    };

    Registry(int directory, RegistryText text, const FileVersion& version);

    static std::optional<RegistryText> Read(const RegistryFile& file, FileVersion& version,
                                            std::string& error);
    OpenKey* FindOpen(HKEY key);
    LONG FindKey(HKEY handle, OpenKey*& open, KeyIndex& key);
    std::optional<RegistryData> Value(const OpenKey& open, KeyIndex key,
                                      std::u16string_view name) const;
    void NoteText(const std::u16string& path, std::u16string_view name, const RegistryData& data);
    void AddChange(Change change);
    static void Apply(const Change& change, RegistryText& text);
    bool Refresh();
    bool Store();

    RegistryFile file_;
    RegistryText text_;
    FileVersion version_;
    std::unordered_map<std::uintptr_t, OpenKey> open_;
    std::uintptr_t lastHandle_ = 0;
    std::vector<Change> pending_;
    std::unordered_map<std::u16string, OpenText> openTexts_;  // by path and name
    std::string error_;
};

}  // namespace platform
