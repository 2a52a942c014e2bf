// The registry's part of the transcript.

#include <cstring>

#include "core/registry_operations.h"
#include "tests/second_platform/transcript.h"

namespace {

HKEY Opened(HKEY key, const WCHAR* path) {
    HKEY result = nullptr;
    RegOpenKeyExW(key, path, 0, 0, &result);
    return result;
}

void WriteKeys(HKEY root, const std::string& rootName) {
    DWORD access = 0;
    for (const WCHAR* const path :
         {TEXT("Software\\K"), TEXT("software\\k"), TEXT("\\Software\\K"), TEXT("\\\\Software\\K"),
          TEXT("Software\\K\\"), TEXT("Software\\\\K"), TEXT("Software\\K\\\\"),
          TEXT("Software\\none"), TEXT("none\\K"), TEXT(""), TEXT("\\"), TEXT("Software/K"),
          TEXT("Software\\K\\Sub"), TEXT(" Software\\K"), TEXT("Software\\K "),
          TEXT("Software\\K\\\u00C9")}) {
        HKEY key = root;
        const LONG result = RegOpenKeyExW(root, path, 0, access, &key);
        const std::string name = rootName + Readable(path) + ", " + std::to_string(access);
        Write("RegOpenKeyEx " + name, result, key != nullptr ? " key" : "");
        if (result == ERROR_SUCCESS) {
            const auto* const data = reinterpret_cast<const BYTE*>(&access);
            Write("RegSetValueEx in " + name,
                  RegSetValueExW(key, TEXT("n"), 0, REG_DWORD, data, sizeof access));
            Write("RegCloseKey of " + name, RegCloseKey(key));
        }
        access = access == 0 ? DWORD{KEY_ALL_ACCESS} : 0;
    }
}

void WriteValue(HKEY key, const WCHAR* name, DWORD room) {
    BYTE data[64];
    std::memset(data, 0xEE, sizeof data);
    DWORD size = room;
    DWORD type = 77;
    const LONG result = RegQueryValueExW(key, name, nullptr, &type, data, &size);
    std::string bytes;
    for (int at = 0; at < 24; ++at) {
        char part[4];
        std::snprintf(part, sizeof part, " %02X", data[at]);
        bytes += part;
    }
    Write("RegQueryValueEx " + Readable(name) + ", room " + std::to_string(room), result, " type ",
          type, " size ", size, bytes);
}

void WriteValues(HKEY key) {
    for (const WCHAR* const name :
         {TEXT("text"), TEXT("TEXT"), TEXT("empty"), TEXT("expand"), TEXT("multi"), TEXT("number"),
          TEXT("binary"), TEXT("none"), TEXT("typed"), TEXT(""), TEXT("missing"), TEXT("quo\"te"),
          TEXT("back\\slash"), TEXT("\u00E9"), TEXT("\u00C9"), TEXT("odd"), TEXT("nul")}) {
        for (const DWORD room : {64U, 0U, 3U, 8U}) {
            WriteValue(key, name, room);
        }
        DWORD size = 0;
        const LONG result = RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &size);
        Write("RegQueryValueEx without data " + Readable(name), result, ' ', size);
    }
    const BYTE data[] = "\\\0T\0e\0m\0p\0x\0y";
    for (const DWORD type : {DWORD{REG_NONE}, DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ},
                             DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{99}}) {
        for (const DWORD size : {0U, 1U, 4U, 10U, 11U}) {
            Write("RegSetValueEx of type " + std::to_string(type) + ", " + std::to_string(size),
                  RegSetValueExW(key, TEXT("new"), 0, type, data, size));
            WriteValue(key, TEXT("NEW"), 64);
        }
    }
    for (const std::size_t length : {255U, 256U}) {
        const WideString name(length, TEXT('v'));
        Write("RegSetValueEx, a long name", RegSetValueExW(key, name.c_str(), 0, REG_SZ, data, 10));
    }
}

std::string Subkey(HKEY key, DWORD index, DWORD room) {
    WCHAR name[64] = {};
    DWORD size = room;
    const LONG result = RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
    return ' ' + std::to_string(result) +
           (result == ERROR_SUCCESS ? ':' + std::to_string(size) + ':' + Readable(name) : "");
}

void WriteSubkeys(HKEY key, DWORD room) {
    std::string all;
    for (DWORD index = 0; index < 7; ++index) {
        all += Subkey(key, index, room);
    }
    Write("RegEnumKeyEx of all, room " + std::to_string(room), all);
}

// A key that is gone, and none.
void WriteWithout(const std::string& name, HKEY key) {
    Write("RegQueryValueEx in " + name,
          RegQueryValueExW(key, TEXT("x"), nullptr, nullptr, nullptr, nullptr));
    Write("RegSetValueEx in " + name, RegSetValueExW(key, TEXT("x"), 0, REG_SZ, nullptr, 0));
    Write("RegEnumKeyEx in " + name, Subkey(key, 0, 64));
    Write("RegOpenKeyEx in " + name, Opened(key, TEXT("x")) != nullptr);
    Write("RegDeleteKey in " + name, RegDeleteKeyW(key, TEXT("x")));
}

}  // namespace

void WriteRegistry() {
    WriteKeys(HKEY_LOCAL_MACHINE, "HKLM ");
    WriteKeys(HKEY_CURRENT_USER, "HKCU ");
    const HKEY key = Opened(HKEY_LOCAL_MACHINE, TEXT("Software\\K"));
    WriteValues(key);
    for (const DWORD room : {64U, 3U, 4U}) {
        WriteSubkeys(key, room);
    }
    const HKEY subkey = Opened(key, TEXT("Full\\Sub"));
    for (const WCHAR* const path : {TEXT(""), TEXT("\\"), TEXT("gone"), TEXT("full"), TEXT("Full"),
                                    TEXT("\\Abc\\"), TEXT("Deep\\Er"), TEXT("Deep")}) {
        Write("RegDeleteKey " + Readable(path), RegDeleteKeyW(key, path));
        WriteSubkeys(key, 64);
    }
    WriteWithout("a deleted key", subkey);
    WriteWithout("no key", nullptr);
    Write("RegCloseKey", RegCloseKey(key));
}
