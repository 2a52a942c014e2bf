#pragma once

#include "core/platform_types.h"

// The platform's error codes, with its own values.
inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;  // no such entry, no such key or value
inline constexpr LONG ERROR_PATH_NOT_FOUND = 3;  // a directory on the way is not there
inline constexpr LONG ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr LONG ERROR_BAD_FORMAT = 11;
inline constexpr LONG ERROR_NOT_SAME_DEVICE = 17;
inline constexpr LONG ERROR_NO_MORE_FILES = 18;
inline constexpr LONG ERROR_WRITE_PROTECT = 19;
inline constexpr LONG ERROR_WRITE_FAULT = 29;
inline constexpr LONG ERROR_GEN_FAILURE = 31;  // any other failure
inline constexpr LONG ERROR_SHARING_VIOLATION = 32;
inline constexpr LONG ERROR_NOT_SUPPORTED = 50;
inline constexpr LONG ERROR_INVALID_PARAMETER = 87;
inline constexpr LONG ERROR_DISK_FULL = 112;
inline constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr LONG ERROR_INVALID_NAME = 123;
inline constexpr LONG ERROR_DIR_NOT_EMPTY = 145;
inline constexpr LONG ERROR_ALREADY_EXISTS = 183;
inline constexpr LONG ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;
inline constexpr LONG ERROR_DIRECTORY = 267;  // not a directory
inline constexpr LONG ERROR_KEY_DELETED = 1018;
inline constexpr LONG ERROR_IO_DEVICE = 1117;
inline constexpr LONG ERROR_NO_SYSTEM_RESOURCES = 1450;  // no room for the registry itself
inline constexpr LONG ERROR_CANT_ACCESS_FILE = 1920;     // a link or a mount is on the way
