#pragma once

#include <cstdint>

#include "core/error_codes.h"
#include "core/platform_types.h"

// The operations through which the program reaches the device's registry. Names of keys and values
// match without regard to case and keep the case they were made with. A path of keys has its names
// between backslashes; leading, trailing and doubled backslashes are accepted. Every operation
// returns ERROR_SUCCESS or another of the codes, ERROR_INVALID_HANDLE for a key that is not open,
// and ERROR_KEY_DELETED for one that was deleted while it was open. None of them changes what
// GetLastError gives.

using HKEY = HANDLE;

// The roots are always open and always there.
// NOLINTBEGIN(performance-no-int-to-ptr)
inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});
inline const HKEY HKEY_USERS = reinterpret_cast<HKEY>(std::uintptr_t{0x80000003});
// NOLINTEND(performance-no-int-to-ptr)

inline constexpr DWORD KEY_ALL_ACCESS = 0xF003F;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;
inline constexpr DWORD REG_MUI_SZ = 21;

// Opens the key at the path `subkey` below `key`, or `key` once more when the path is null or
// empty, and puts a handle into `result` that the caller closes with RegCloseKey.
// ERROR_FILE_NOT_FOUND when there is no such key; `result` is null then and after every other
// failure. `options` is 0; `access` may be 0 or KEY_ALL_ACCESS and makes no difference: every
// operation works through the handle.
LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access, HKEY* result);

// Reads a value; a null or empty name is the key's unnamed one. `size` is the size of `data` in
// bytes and receives the size of the value, `type` its type; both may be null where nobody asks.
// The stored bytes are copied and no others: a text ends in a terminator only if it was stored with
// one. A null `data` asks for the size alone. ERROR_MORE_DATA when the value does not fit: nothing
// is copied then, but size and type are given. ERROR_FILE_NOT_FOUND when there is no such value.
// `reserved` is null.
LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);

// Makes or replaces a value with exactly the `size` bytes at `data`; a null or empty name is the
// key's unnamed one. ERROR_INVALID_PARAMETER for a name of more than 255 characters and for what
// the registry's file has no form for. The value is read back at once; it is kept for good before
// the next change of the file tree, the next box, a restart and the end. `reserved` is 0.
LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);

// Gives the name of the subkey number `index`, counted from 0. `size` is the size of `name` in
// characters and receives the length of the name without its terminator. ERROR_NO_MORE_ITEMS behind
// the last one, ERROR_MORE_DATA when name and terminator do not fit. Deleting a subkey closes the
// gap: those behind it move up by one. The remaining arguments are null.
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                   WCHAR* className, DWORD* classSize, void* lastWriteTime);

// Deletes the key at the path `subkey` below `key` with its values and all its subkeys.
// ERROR_FILE_NOT_FOUND when there is none; an empty path deletes nothing and is
// ERROR_INVALID_PARAMETER. The deletion is kept for good when a changed value is.
LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey);

// Closes a handle; a root stays open. A handle that is not open, null among them, does no harm.
LONG RegCloseKey(HKEY key);
