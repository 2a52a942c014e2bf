// Calls the platform's operations as the program and its neighbours do, and writes a line for each
// result. In the program's place on both platforms; the device is the one of
// make_transcript_device.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/file_operations.h"
#include "core/found_entries.h"
#include "core/handheld_operations.h"
#include "core/registry_operations.h"
#include "core/wide_text.h"
#include "core/win_main.h"
#include "core/window_operations.h"

void WriteWindowTranscript();

std::string Readable(WideView text) {
    std::string readable;
    for (const WCHAR unit : text.substr(0, 40)) {
        char part[8] = {static_cast<char>(unit)};
        if (unit < 0x20 || unit > 0x7E) {
            std::snprintf(part, sizeof part, "<%04X>", static_cast<unsigned>(unit));
        }
        readable += part;
    }
    return readable + (text.size() > 40 ? "... " + std::to_string(text.size()) : "");
}

void Write(const std::string& call, const std::string& result) {
    std::printf("%s = %s\n", call.c_str(), result.c_str());
    std::fflush(stdout);
}

void Write(const std::string& call, long long result) {
    Write(call, std::to_string(result));
}

namespace {

const WideString kLong(250, TEXT('n'));
const WideString kDeep = TEXT("\\T\\") + kLong + TEXT("\\") + kLong + TEXT("\\") + kLong;

const WideString kPaths[] = {TEXT("\\T\\file.txt"),
                             TEXT("\\t\\FILE.TXT"),
                             TEXT("T\\file.txt"),
                             TEXT("\\\\T\\\\file.txt"),
                             TEXT("\\T\\file.txt\\"),
                             TEXT("\\T\\sub"),
                             TEXT("\\T\\sub\\"),
                             TEXT("\\T\\SUB\\\\"),
                             TEXT("\\T\\empty"),
                             TEXT("\\T\\none"),
                             TEXT("\\T\\none\\"),
                             TEXT("\\T\\none\\x"),
                             TEXT("\\T\\file.txt\\x"),
                             TEXT(""),
                             TEXT("\\"),
                             TEXT("\\\\"),
                             TEXT("\\T\\."),
                             TEXT("\\T\\.."),
                             TEXT("\\T\\..\\T\\file.txt"),
                             TEXT("."),
                             TEXT("\\T/file.txt"),
                             TEXT("/T"),
                             TEXT("X:\\T"),
                             TEXT("\\T\\file.txt:s"),
                             TEXT("\\T\\*"),
                             TEXT("\\T\\f*"),
                             TEXT("\\T\\file.tx?"),
                             TEXT("\\T*\\file.txt"),
                             TEXT("\\T\\file.txt."),
                             TEXT("\\T\\file.txt "),
                             TEXT("\\T\\sub."),
                             TEXT(" \\T\\file.txt"),
                             TEXT("\\T\\CON"),
                             TEXT("\\T\\nul.txt"),
                             TEXT("\\T\\a<b"),
                             TEXT("\\T\\a|b"),
                             TEXT("\\T\\a\"b"),
                             TEXT("\\T\\tab\tx"),
                             TEXT("\\T\\ro.txt"),
                             TEXT("\\T\\hid"),
                             TEXT("\\T\\\u00E9.txt"),
                             TEXT("\\T\\\u00C9.TXT"),
                             TEXT("\\T\\\u00DF"),
                             TEXT("\\T\\SS"),
                             TEXT("\\T\\\u0131"),
                             TEXT("\\T\\\u03C3"),

                             TEXT("\\T\\\U00010428"),
                             TEXT("\\T\\\U00010400"),
                             TEXT("\\T\\\uFF41"),
                             TEXT("\\T\\e\u0301"),
                             TEXT("\\T\\a.lnk"),
                             TEXT("\\T\\") + kLong,
                             TEXT("\\T\\") + kLong + TEXT("123456"),
                             kDeep};

const WCHAR* const kPatterns[] = {TEXT("\\T\\*"),
                                  TEXT("\\T\\*.*"),
                                  TEXT("\\t\\*.TXT"),
                                  TEXT("\\T\\*.lnk"),
                                  TEXT("\\T\\a*"),
                                  TEXT("\\T\\?ile.txt"),
                                  TEXT("\\T\\file.???"),
                                  TEXT("\\T\\file.????"),
                                  TEXT("\\T\\file*.*"),
                                  TEXT("\\T\\sub.*"),
                                  TEXT("\\T\\s*b.*"),
                                  TEXT("\\T\\*."),
                                  TEXT("\\T\\*.t"),
                                  TEXT("\\T\\*t"),
                                  TEXT("\\T\\**"),
                                  TEXT("\\T\\*?*"),
                                  TEXT("\\T\\?"),
                                  TEXT("\\T\\*.*.*"),
                                  TEXT("\\T\\ *"),
                                  TEXT("\\T\\*\\"),
                                  TEXT("\\T\\\\*"),
                                  TEXT("\\T\\empty\\*"),
                                  TEXT("\\T\\none\\*"),
                                  TEXT("\\T\\file.txt\\*"),
                                  TEXT("\\*"),
                                  TEXT("*"),
                                  TEXT("\\T\\sub\\..\\*"),
                                  TEXT("\\T\\\u00C9*"),
                                  TEXT("\\T\\*\u03A3"),
                                  TEXT("\\T\\...")};

std::string Reason(bool isGood) {
    const bool isGone = !isGood && (LastWasNotThere() || GetLastError() == ERROR_INVALID_NAME);
    return isGood ? "good" : isGone ? "not there" : "failed " + std::to_string(GetLastError());
}

bool WriteFile(const WCHAR* path, const char* content) {
    std::FILE* const file = _wfopen(path, TEXT("wb"));
    return file != nullptr && std::fputs(content, file) >= 0 && std::fclose(file) == 0;
}

std::string ReadFile(const WCHAR* path, const WCHAR* mode) {
    std::FILE* const file = _wfopen(path, mode);
    if (file == nullptr) {
        return "not opened";
    }
    char content[16] = {};
    const std::size_t size = std::fread(content, 1, sizeof content - 1, file);
    std::fclose(file);
    return std::to_string(size) + ' ' + content;
}

std::string Found(const WCHAR* pattern) {
    WIN32_FIND_DATA data;
    const HANDLE find = FindFirstFileW(pattern, &data);
    if (find == INVALID_HANDLE_VALUE) {
        return Reason(false);
    }
    std::vector<std::string> names;
    BOOL found = TRUE;
    for (; found != 0; found = FindNextFileW(find, &data)) {
        const DWORD kept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                           FILE_ATTRIBUTE_DIRECTORY;
        names.push_back(' ' + Readable(data.cFileName) + ':' +
                        std::to_string(data.dwFileAttributes & kept) + ':' +
                        std::to_string(data.nFileSizeLow));
    }
    std::string all = Reason(false);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        all += name;
    }
    FindClose(find);
    return all;
}

std::string Target(const WCHAR* path, int limit = 1024) {
    std::vector<WCHAR> text(1024, TEXT('x'));
    return SHGetShortcutTarget(path, text.data(), limit) != 0 ? Readable(text.data()) : "none";
}

// What each operation does with a path. What it has changed is changed back.
void WritePath(const WCHAR* path) {
    const std::string name = '"' + Readable(path) + '"';
    Write("FindFirstFile " + name, Found(path));
    Write("_wfopen r " + name, ReadFile(path, TEXT("r")));
    Write("_wfopen rb " + name, ReadFile(path, TEXT("rb")));
    Write("SHGetShortcutTarget " + name, Target(path));
    BOOL done = SHCreateShortcut(path, TEXT("\\x"));
    Write("SHCreateShortcut " + name, done);
    if (done != 0) {
        Write("DeleteFile of a new " + name, DeleteFileW(path));
    }
    done = CreateDirectoryW(path, nullptr);
    Write("CreateDirectory " + name, Reason(done != 0));
    if (done != 0) {
        Write("RemoveDirectory of a new " + name, RemoveDirectoryW(path));
    }
    done = MoveFileW(path, TEXT("\\T\\sub\\moved"));
    Write("MoveFile from " + name, Reason(done != 0));
    if (done != 0) {
        Write("MoveFile back to " + name, MoveFileW(TEXT("\\T\\sub\\moved"), path));
    }
    done = MoveFileW(TEXT("\\T\\sub\\in.txt"), path);
    Write("MoveFile to " + name, Reason(done != 0));
    if (done != 0) {
        Write("MoveFile back from " + name, MoveFileW(path, TEXT("\\T\\sub\\in.txt")));
    }
    done = RemoveDirectoryW(path);
    Write("RemoveDirectory " + name, Reason(done != 0));
    if (done != 0) {
        Write("CreateDirectory again " + name, CreateDirectoryW(path, nullptr));
    }
    done = DeleteFileW(path);
    Write("DeleteFile " + name, Reason(done != 0));
    if (done != 0) {
        Write("_wfopen wb " + name, WriteFile(path, "abc"));
    }
}

// Whether each letter and the upper case that Unicode gives it are one name.
template <std::size_t Count>
void WriteLetters(const std::string& call, const WCHAR (&letters)[Count][2]) {
    for (const auto& pair : letters) {
        const WideString first = WideString(TEXT("\\W\\")) + pair[0];
        const WideString second = WideString(TEXT("\\W\\")) + pair[1];
        CreateDirectoryW(first.c_str(), nullptr);
        Write(call + ' ' + Readable(first) + ' ' + Readable(second),
              CreateDirectoryW(second.c_str(), nullptr) == 0);
        RemoveDirectoryW(first.c_str());
        RemoveDirectoryW(second.c_str());
    }
}

const WCHAR kLetters[][2] = {{0xE9, 0xC9},     {0xFF, 0x178},    {0x153, 0x152},   {0x3C3, 0x3A3},
                             {0x3AC, 0x386},   {0x434, 0x414},   {0x451, 0x401},   {0x561, 0x531},
                             {0x1E01, 0x1E00}, {0x1F00, 0x1F08}, {0x2170, 0x2160}, {0x24D0, 0x24B6},
                             {0xFF41, 0xFF21}, {0x131, 0x49},    {0x17F, 0x53},    {0x130, 0x69},
                             {0x212A, 0x6B},   {0x10D0, 0x1C90}};

// Forms of letters whose upper case has another lower case.
const WCHAR kForms[][2] = {{0xB5, 0x39C},   {0xDF, 0x1E9E},   {0x1C5, 0x1C4}, {0x345, 0x399},
                           {0x3C2, 0x3A3},  {0x3D0, 0x392},   {0x3D1, 0x398}, {0x3D5, 0x3A6},
                           {0x3D6, 0x3A0},  {0x3F0, 0x39A},   {0x3F1, 0x3A1}, {0x3F5, 0x395},
                           {0x1C80, 0x412}, {0x1E9B, 0x1E60}, {0x1FBE, 0x399}};

void WriteWalk() {
    WIN32_FIND_DATA data;
    const HANDLE find = FindFirstFileW(TEXT("\\W\\*"), &data);
    int count = 1;
    CreateDirectoryW(TEXT("\\W\\sub"), nullptr);
    while (DeleteFileW((WideString(TEXT("\\W\\")) + data.cFileName).c_str()) != 0 &&
           FindNextFileW(find, &data) != 0) {
        ++count;
    }
    Write("a walk that deletes", count);
    Write("FindNextFile at the end", FindNextFileW(find, &data));
    Write("FindClose", FindClose(find));
    Write("what it has left", Found(TEXT("\\W\\*")));
    Write("MoveFile a directory", Reason(MoveFileW(TEXT("\\T\\sub"), TEXT("\\W\\sub2")) != 0));
    Write("MoveFile into itself", Reason(MoveFileW(TEXT("\\W"), TEXT("\\W\\sub2\\W")) != 0));
    Write("MoveFile back", Reason(MoveFileW(TEXT("\\W\\sub2"), TEXT("\\T\\sub")) != 0));
    Write("MoveFile, another case",
          Reason(MoveFileW(TEXT("\\T\\file.txt"), TEXT("\\T\\FILE.txt")) != 0));
    Write("its name", Found(TEXT("\\T\\file.txt")));
    WCHAR path[64] = {};
    Write("GetModuleFileName", GetModuleFileNameW(nullptr, path, 64));
    Write("GetModuleFileName", Readable(path));
    Write("GetModuleFileName, no room", GetModuleFileNameW(nullptr, path, 42));
    Write("GetModuleFileName, just room", GetModuleFileNameW(nullptr, path, 43));
}

std::string Bytes(const BYTE* data, std::size_t count) {
    std::string text;
    for (; count > 0; --count, ++data) {
        char part[4];
        std::snprintf(part, sizeof part, " %02X", *data);
        text += part;
    }
    return text;
}

void WriteValue(HKEY key, const WCHAR* name, DWORD room) {
    BYTE data[64];
    std::memset(data, 0xEE, sizeof data);
    DWORD size = room;
    DWORD type = 77;
    const LONG result = RegQueryValueExW(key, name, nullptr, &type, data, &size);
    Write("RegQueryValueEx " + Readable(name) + ", room " + std::to_string(room),
          std::to_string(result) + " type " + std::to_string(type) + " size " +
              std::to_string(size) + Bytes(data, 24));
}

void WriteKeys() {
    const WCHAR* const paths[] = {TEXT("Software\\K"),
                                  TEXT("software\\k"),
                                  TEXT("\\Software\\K"),
                                  TEXT("\\\\Software\\K"),
                                  TEXT("Software\\K\\"),
                                  TEXT("Software\\\\K"),
                                  TEXT("Software\\K\\\\"),
                                  TEXT("Software\\none"),
                                  TEXT("none\\K"),
                                  TEXT(""),
                                  TEXT("\\"),
                                  TEXT("Software/K"),
                                  TEXT("Software\\K\\Sub"),
                                  TEXT(" Software\\K"),
                                  TEXT("Software\\K "),
                                  TEXT("Software\\K\\\u00C9")};
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const WCHAR* const path : paths) {
            for (const DWORD access : {DWORD{0}, DWORD{KEY_ALL_ACCESS}}) {
                HKEY key = root;
                const LONG result = RegOpenKeyExW(root, path, 0, access, &key);
                const std::string name = (root == HKEY_LOCAL_MACHINE ? "HKLM " : "HKCU ") +
                                         Readable(path) + ", " + std::to_string(access);
                Write("RegOpenKeyEx " + name, std::to_string(result) + (key ? " key" : ""));
                DWORD number = access;
                if (result == ERROR_SUCCESS) {
                    Write("RegSetValueEx in " + name,
                          RegSetValueExW(key, TEXT("n"), 0, REG_DWORD,
                                         reinterpret_cast<const BYTE*>(&number), sizeof number));
                    Write("RegCloseKey of " + name, RegCloseKey(key));
                }
            }
        }
    }
}

void WriteValues(HKEY key) {
    const WCHAR* const names[] = {
        TEXT("text"),    TEXT("TEXT"),    TEXT("empty"),       TEXT("expand"), TEXT("multi"),
        TEXT("number"),  TEXT("binary"),  TEXT("none"),        TEXT("typed"),  TEXT(""),
        TEXT("missing"), TEXT("quo\"te"), TEXT("back\\slash"), TEXT("\u00E9"), TEXT("\u00C9"),
        TEXT("odd"),     TEXT("nul")};
    for (const WCHAR* const name : names) {
        for (const DWORD room : {DWORD{64}, DWORD{0}, DWORD{3}, DWORD{8}}) {
            WriteValue(key, name, room);
        }
        DWORD size = 0;
        Write("RegQueryValueEx without data " + Readable(name),
              RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &size) * 1000 +
                  static_cast<LONG>(size));
    }
    const BYTE data[] = "\\\0T\0e\0m\0p\0x\0y";
    for (const DWORD type : {DWORD{REG_NONE}, DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ},
                             DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{REG_MULTI_SZ}, DWORD{99}}) {
        for (const DWORD size : {DWORD{0}, DWORD{1}, DWORD{4}, DWORD{10}, DWORD{11}}) {
            Write("RegSetValueEx of type " + std::to_string(type) + ", " + std::to_string(size),
                  RegSetValueExW(key, TEXT("new"), 0, type, data, size));
            WriteValue(key, TEXT("NEW"), 64);
        }
    }
    for (const std::size_t length : {std::size_t{255}, std::size_t{256}}) {
        Write("RegSetValueEx, a long name",
              RegSetValueExW(key, WideString(length, TEXT('v')).c_str(), 0, REG_SZ, data, 10));
    }
}

void WriteEnumeration(HKEY key) {
    for (DWORD index = 0; index < 7; ++index) {
        for (const DWORD room : {DWORD{64}, DWORD{3}, DWORD{4}}) {
            WCHAR name[64] = {};
            DWORD size = room;
            const LONG result =
                RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
            Write("RegEnumKeyEx " + std::to_string(index) + ", room " + std::to_string(room),
                  std::to_string(result) + ' ' + std::to_string(result == 0 ? size : 0) + ' ' +
                      Readable(result == 0 ? name : TEXT("")));
        }
    }
}

void WriteRegistry() {
    WriteKeys();
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\K"), 0, 0, &key);
    WriteValues(key);
    WriteEnumeration(key);
    HKEY open = nullptr;
    RegOpenKeyExW(key, TEXT("Full\\Sub"), 0, 0, &open);
    for (const WCHAR* const path : {TEXT(""), TEXT("\\"), TEXT("gone"), TEXT("full"), TEXT("Full"),
                                    TEXT("\\Abc\\"), TEXT("Deep\\Er"), TEXT("Deep")}) {
        Write("RegDeleteKey " + Readable(path), RegDeleteKeyW(key, path));
        WriteEnumeration(key);
    }
    Write("RegQueryValueEx in a deleted key",
          RegQueryValueExW(open, TEXT("x"), nullptr, nullptr, nullptr, nullptr));
    Write("RegSetValueEx in a deleted key", RegSetValueExW(open, TEXT("x"), 0, REG_SZ, nullptr, 0));
    WCHAR name[64] = {};
    DWORD size = 64;
    Write("RegEnumKeyEx in a deleted key",
          RegEnumKeyExW(open, 0, name, &size, nullptr, nullptr, nullptr, nullptr));
    HKEY none = key;
    Write("RegOpenKeyEx in a deleted key", RegOpenKeyExW(open, TEXT("x"), 0, 0, &none));
    Write("RegDeleteKey in a deleted key", RegDeleteKeyW(open, TEXT("x")));
    Write("RegCloseKey", RegCloseKey(key));
    Write("RegQueryValueEx in no key",
          RegQueryValueExW(nullptr, TEXT("x"), nullptr, nullptr, nullptr, nullptr));
    Write("RegSetValueEx in no key", RegSetValueExW(nullptr, TEXT("x"), 0, REG_SZ, nullptr, 0));
    Write("RegDeleteKey in no key", RegDeleteKeyW(nullptr, TEXT("x")));
}

}  // namespace

bool IsSilentCommandLine(const WCHAR* commandLine) {
    return commandLine[0] != 0;
}

int WinMain(HINSTANCE /*hInstance*/, HINSTANCE /*hPrevInstance*/, WCHAR* lpCmdLine,
            int /*nShowCmd*/) {
    for (const WideString& path : kPaths) {
        WritePath(path.c_str());
    }
    for (const WCHAR* const pattern : kPatterns) {
        Write("search " + Readable(pattern), Found(pattern));
    }
    WriteWalk();
    WriteLetters("one name", kLetters);
    WriteLetters("a form of the letter", kForms);
    WriteRegistry();
    if (!IsSilentCommandLine(lpCmdLine)) {
        WriteWindowTranscript();
    }
    return 0;
}
