#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "core/error_codes.h"
#include "core/platform_types.h"

// The operations through which the program reaches the device's files and starts programs. Paths
// are absolute, with backslashes and without drive letters; a relative path is taken from the root
// "\". Names match without regard to case. A path with a component "." or "..", with "/", with a
// wildcard anywhere but in a search's last component, or the empty path names nothing. Doubled and
// trailing backslashes are accepted, the latter on directories only.
//
// An operation that fails leaves its reason for GetLastError; one that succeeds leaves it alone.
// "Not there" is ERROR_FILE_NOT_FOUND, or ERROR_PATH_NOT_FOUND if a directory on the way is missing
// or is not a directory; a path that names nothing by its spelling is not there either. Every other
// code leaves open whether the entry is there.

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

inline constexpr std::size_t MAX_PATH = 260;
inline const HANDLE INVALID_HANDLE_VALUE =
    reinterpret_cast<HANDLE>(std::intptr_t{-1});  // NOLINT(performance-no-int-to-ptr)

// One found entry. The size of a file in bytes stands in two halves; a directory has size 0.
struct WIN32_FIND_DATA {
    DWORD dwFileAttributes;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    WCHAR cFileName[MAX_PATH];  // terminated, at most 255 characters, never "." or ".."
};

// The reason of the last failure.
DWORD GetLastError();

// Starts a search for the entries that `pattern` names and puts the first one into `data`. The last
// component may hold the wildcards "*" and "?"; ".*" at the end also matches nothing, so that "*.*"
// matches every entry and "a.*" also "a". A pattern without a wildcard names one entry, the
// directory itself if it ends in a backslash; "\" names the root, whose `cFileName` is empty.
// Returns a handle for FindNextFileW that the caller closes with FindClose, or INVALID_HANDLE_VALUE
// if nothing matches, which is "not there", or if the directory cannot be read.
HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data);

// Puts the next entry into `data` and returns nonzero. Zero with ERROR_NO_MORE_FILES at the end,
// with ERROR_INVALID_HANDLE for a handle that is not open, and with another code if the rest of the
// directory cannot be read. Entries may be deleted, moved and made during the walk.
BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data);

// Ends a search and returns nonzero. Zero, and no effect, for a handle that is not open.
BOOL FindClose(HANDLE find);

// Deletes one file, or an entry that is neither file nor directory. Nonzero only if it is gone:
// zero if nothing has that name, and with ERROR_ACCESS_DENIED for a directory and for a read-only
// file.
BOOL DeleteFileW(const WCHAR* path);

// Removes one empty directory. Nonzero only if it is gone; ERROR_DIR_NOT_EMPTY if it has entries.
BOOL RemoveDirectoryW(const WCHAR* path);

// Makes one directory; its parent must exist. Zero with ERROR_ALREADY_EXISTS, and no effect, if an
// entry has that name in any case. `security` is null.
BOOL CreateDirectoryW(const WCHAR* path, void* security);

// Moves an entry to a path that names nothing yet, in any case. Nonzero only if it has left the old
// path, or if both paths name the same entry, so that there was nothing to do. On zero it is still
// there, with ERROR_ALREADY_EXISTS if the new name is taken. A file may go to another volume, a
// directory may not. ERROR_NO_SYSTEM_RESOURCES, which CreateDirectoryW may give as well: the
// registry could not be stored after the move, so nothing moves.
BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath);

// Opens a regular file in the mode "r", "rb" or "wb" for the C library's stream functions; the
// caller closes it with fclose. Null if it cannot be opened. A file opened with "wb" keeps its old
// content until fclose returns 0 and has the new one from then on; an fclose that fails sets errno
// and the reason for GetLastError.
std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode);

// Starts a program and returns nonzero; does not wait for it. `image` names it, and `commandLine`
// is passed to it. The only other program is the help viewer, "peghelp.exe", which shows the page
// and the place in it that a command line "file:PAGE#PLACE" names; every other image is not there.
// All other arguments are null or 0.
BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                    void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                    WCHAR* directory, void* startup, void* information);

// Puts the path of the running executable, terminated, into `buffer` of `limit` characters and
// returns its length; zero when it is not known or does not fit. `module` is null.
DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit);
