// The files' part of the transcript.

#include <algorithm>
#include <functional>
#include <vector>

#include "core/file_operations.h"
#include "core/found_entries.h"
#include "core/handheld_operations.h"
#include "tests/second_platform/transcript.h"

namespace {

const WideString kLong(250, TEXT('n'));

// With a comma after each.
const WideString kPaths =
    TEXT("\\T\\file.txt,\\t\\FILE.TXT,T\\file.txt,\\\\T\\\\file.txt,\\T\\file.txt\\,\\T\\sub,")
        TEXT(
            "\\T\\sub\\,\\T\\SUB\\\\,\\T\\empty,\\T\\none,\\T\\none\\,\\T\\none\\x,\\T\\file."
            "txt\\x,")
            TEXT(
                ",\\,\\\\,\\T\\.,\\T\\..,\\T\\..\\T\\file.txt,.,\\T/file.txt,/"
                "T,X:\\T,\\T\\file.txt:s,")
                TEXT(
                    "\\T\\*,\\T\\f*,\\T\\file.tx?,\\T*\\file.txt,\\T\\file.txt.,\\T\\file.txt "
                    ",\\T\\sub.,")
                    TEXT(
                        " \\T\\file.txt,\\T\\CON,\\T\\nul.txt,\\T\\a<b,\\T\\a|b,\\T\\a\"b,"
                        "\\T\\tab\tx,\\T\\ro.txt,")
                        TEXT(
                            "\\T\\hid,\\T\\\u00E9.txt,\\T\\\u00C9.TXT,\\T\\\U00010428,"
                            "\\T\\\U00010400,\\T\\e\u0301,") TEXT("\\T\\a.lnk,\\T\\b.lnk,\\T\\") +
    kLong + TEXT(",\\T\\") + kLong + TEXT("123456,\\T\\") + kLong + TEXT('\\') + kLong +
    TEXT('\\') + kLong + TEXT(',');

const WideString kPatterns = TEXT(
    "\\T\\*,\\T\\*.*,\\t\\*.TXT,\\T\\*.lnk,\\T\\a*,\\T\\?ile.txt,\\T\\file.???,\\T\\file.????,")
    TEXT("\\T\\file*.*,\\T\\sub.*,\\T\\s*b.*,\\T\\*.,\\T\\*.t,\\T\\*t,\\T\\**,\\T\\*?*,\\T\\?,")
        TEXT(
            "\\T\\*.*.*,\\T\\ "
            "*,\\T\\*\\,\\T\\\\*,\\T\\empty\\*,\\T\\none\\*,\\T\\file.txt\\*,\\*,*,")
            TEXT("\\T\\sub\\..\\*,\\T\\\u00C9*,\\T\\*\u03A3,\\T\\...,");

// Each letter and what Unicode gives as its upper case.
const WideString kLetters = TEXT(
    "\u00E9\u00C9\u00FF\u0178\u0153\u0152\u03C3\u03A3\u03AC\u0386\u0434\u0414\u0451\u0401")
    TEXT("\u0561\u0531\u1E01\u1E00\u1F00\u1F08\u2170\u2160\u24D0\u24B6\uFF41\uFF21\u0131I\u017FS")
        TEXT("\u0130i\u212Ak\u10D0\u1C90");

// Forms of letters whose upper case has another lower case.
const WideString kForms =
    TEXT("\u00B5\u039C\u00DF\u1E9E\u01C5\u01C4\u0345\u0399\u03C2\u03A3\u03D0\u0392\u03D1\u0398")
        TEXT("\u03D5\u03A6\u03D6\u03A0\u03F0\u039A\u03F1\u03A1\u03F5\u0395\u1C80\u0412\u1E9B\u1E60")
            TEXT("\u1FBE\u0399");

std::string Reason(bool isGood) {
    const bool isGone = !isGood && (LastWasNotThere() || GetLastError() == ERROR_INVALID_NAME);
    return isGood ? "good" : isGone ? "not there" : "failed " + std::to_string(GetLastError());
}

BOOL WriteFile(const WCHAR* path) {
    std::FILE* const file = _wfopen(path, TEXT("wb"));
    return file != nullptr && std::fputs("abc", file) >= 0 && std::fclose(file) == 0;
}

std::string ReadFile(const WCHAR* path) {
    std::FILE* const file = _wfopen(path, TEXT("rb"));
    if (file == nullptr) {
        return "not opened";
    }
    char content[16] = {};
    const std::size_t size = std::fread(content, 1, sizeof content - 1, file);
    std::fclose(file);
    return std::to_string(size) + ' ' + content;
}

std::string Found(const WCHAR* pattern) {
    constexpr DWORD kShown = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                             FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY;
    WIN32_FIND_DATA data;
    std::vector<std::string> names;
    const HANDLE find = FindFirstFileW(pattern, &data);
    for (BOOL found = find != INVALID_HANDLE_VALUE; found != 0;
         found = FindNextFileW(find, &data)) {
        names.push_back(' ' + Readable(data.cFileName) + ':' +
                        std::to_string(data.dwFileAttributes & kShown) + ':' +
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

std::string Target(const WCHAR* path) {
    WCHAR text[64] = TEXT("unchanged");
    const BOOL result = SHGetShortcutTarget(path, text, 64);
    return std::to_string(result) + ' ' + (result != 0 ? Readable(text) : "");
}

// What was done is undone.
void WriteChange(const std::string& call, BOOL done, const std::function<BOOL()>& undo) {
    Write(call, Reason(done != 0));
    if (done != 0) {
        Write(call + ", undone", undo());
    }
}

void WritePath(const WideString& text) {
    const WCHAR* const path = text.c_str();
    const WCHAR* const other = TEXT("\\T\\sub\\moved");
    const WCHAR* const file = TEXT("\\T\\sub\\in.txt");
    const std::string name = " \"" + Readable(path) + '"';
    Write("FindFirstFile" + name, Found(path));
    Write("_wfopen" + name, ReadFile(path));
    Write("SHGetShortcutTarget" + name, Target(path));
    BOOL done = SHCreateShortcut(path, TEXT("\\x"));
    Write("SHCreateShortcut" + name, done);
    if (done != 0) {
        Write("DeleteFile of a new" + name, DeleteFileW(path));
    }
    done = CreateDirectoryW(path, nullptr);
    WriteChange("CreateDirectory" + name, done, [&] { return RemoveDirectoryW(path); });
    done = MoveFileW(path, other);
    WriteChange("MoveFile from" + name, done, [&] { return MoveFileW(other, path); });
    done = MoveFileW(file, path);
    WriteChange("MoveFile to" + name, done, [&] { return MoveFileW(path, file); });
    done = RemoveDirectoryW(path);
    WriteChange("RemoveDirectory" + name, done, [&] { return CreateDirectoryW(path, nullptr); });
    done = DeleteFileW(path);
    WriteChange("DeleteFile" + name, done, [&] { return WriteFile(path); });
}

void ForEach(const WideString& texts, const std::function<void(const WideString&)>& write) {
    std::size_t end = 0;
    for (std::size_t begin = 0; begin < texts.size(); begin = end + 1) {
        end = texts.find(TEXT(','), begin);
        write(texts.substr(begin, end - begin));
    }
}

// Whether the letters of each pair are one name.
void WriteLetters(const std::string& call, const WideString& letters) {
    for (std::size_t index = 0; index < letters.size(); index += 2) {
        const WideString first = WideString(TEXT("\\W\\")) + letters[index];
        const WideString second = WideString(TEXT("\\W\\")) + letters[index + 1];
        CreateDirectoryW(first.c_str(), nullptr);
        Write(call + ' ' + Readable(first) + ' ' + Readable(second),
              CreateDirectoryW(second.c_str(), nullptr) == 0);
        RemoveDirectoryW(first.c_str());
        RemoveDirectoryW(second.c_str());
    }
}

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
    const WCHAR* const moves[][2] = {{TEXT("\\T\\sub"), TEXT("\\W\\sub2")},
                                     {TEXT("\\W"), TEXT("\\W\\sub2\\W")},
                                     {TEXT("\\W\\sub2"), TEXT("\\T\\sub")},
                                     {TEXT("\\T\\file.txt"), TEXT("\\T\\FILE.txt")}};
    for (const auto& [from, to] : moves) {
        Write("MoveFile " + Readable(from) + " to " + Readable(to), Reason(MoveFileW(from, to)));
    }
    Write("its name", Found(TEXT("\\T\\file.txt")));
    for (const DWORD room : {64U, 42U, 43U}) {
        WCHAR path[64] = {};
        const DWORD length = GetModuleFileNameW(nullptr, path, room);
        Write("GetModuleFileName, room " + std::to_string(room), length,
              length > 0 ? path : path + 63);
    }
}

}  // namespace

void WriteFiles() {
    ForEach(kPaths, WritePath);
    ForEach(kPatterns, [](const WideString& pattern) {
        Write("search " + Readable(pattern), Found(pattern.c_str()));
    });
    WriteWalk();
    WriteLetters("one name", kLetters);
    WriteLetters("a form of the letter", kForms);
}
