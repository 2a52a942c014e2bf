#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/registry_operations.h"

namespace platform {

// What a run does to a device.
enum class ReportAction {
    DeleteFile,
    RemoveDirectory,
    MakeDirectory,
    MoveEntry,
    MakeShortcut,
    WriteValue,
    DeleteKey,
    ReadDirectory,  // reported only when it could not be read
    Restart,
    EraseDevice,
};

// A value of the registry, as it was read or written.
struct ReportedValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

// What the value says; nothing where its type or its size is that of another kind. A text comes
// without the terminators at its end.
std::optional<std::uint64_t> NumberOf(const ReportedValue& value);
std::optional<std::u16string> TextOf(const ReportedValue& value);

// One thing that was done to the device, or could not be.
struct ReportEvent {
    ReportAction action{};
    std::u16string path{};   // of the entry; of a key, which begins with "HKCU" or the like
    std::u16string other{};  // the place moved to, a shortcut's target, a value's name
    std::optional<std::uint64_t> bytes{};   // of the file; none where that is not known
    std::optional<ReportedValue> before{};  // none where there was no such value
    std::optional<ReportedValue> after{};
    std::optional<std::string> failure{};  // why it was not done; none when it was
    int step = 0;                          // of the Apply sequence; 0 outside of it
};

// How many things were done, by their kind.
struct ReportTotals {
    std::uint64_t filesDeleted = 0;
    std::uint64_t bytesDeleted = 0;
    std::uint64_t entriesMoved = 0;
    std::uint64_t directoriesMade = 0;
    std::uint64_t directoriesRemoved = 0;
    std::uint64_t shortcutsMade = 0;
    std::uint64_t valuesWritten = 0;
    std::uint64_t keysDeleted = 0;
    std::uint64_t notDone = 0;

    void Count(const ReportEvent& event);
    void Add(const ReportTotals& other);
};

}  // namespace platform
