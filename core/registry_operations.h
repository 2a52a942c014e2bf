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

// Opens the key at the path `subkey` below `key`, or `key` itself again if the path is null or
// empty, and puts a handle into `result` that the caller closes with RegCloseKey.
// ERROR_FILE_NOT_FOUND if there is no such key; `result` is null then and after every other
// failure. `options` is 0; `access` may be 0 or KEY_ALL_ACCESS and makes no difference: every
// operation works through the handle.
LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access, HKEY* result);

// Reads a value; a null or empty name is the key's unnamed one. `size` is the size of `data` in
// bytes and receives the size of the value, `type` receives its type; either may be null. Exactly
// the stored bytes are copied: a text ends in a terminator only if it was stored with one. With a
// null `data` only size and type are given. ERROR_MORE_DATA if the value does not fit: size and
// type are given, but nothing is copied. ERROR_FILE_NOT_FOUND if there is no such value. `reserved`
// is null.
LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);

// Makes or replaces a value with exactly the `size` bytes at `data`; a null or empty name is the
// key's unnamed one. ERROR_INVALID_PARAMETER for a name of more than 255 characters and for data
// that the registry file cannot express. The new value can be read at once. It is stored before the
// next change of the file tree, before the next box, before a restart and at the end. `reserved` is
// 0.
LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);

// Gives the name of the subkey number `index`, counted from 0. `size` is the size of `name` in
// characters and receives the length of the name without its terminator. ERROR_NO_MORE_ITEMS after
// the last one, ERROR_MORE_DATA if name and terminator do not fit. Deleting a subkey closes the
// gap: those after it move up by one. The remaining arguments are null.
LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                   WCHAR* className, DWORD* classSize, void* lastWriteTime);

// Deletes the key at the path `subkey` below `key` with its values and all its subkeys.
// ERROR_FILE_NOT_FOUND if there is none, ERROR_INVALID_PARAMETER for an empty path, which deletes
// nothing. The deletion is stored when a changed value would be.
LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey);

// Closes a handle; a root stays open. A handle that is not open, such as null, is ignored.
LONG RegCloseKey(HKEY key);
