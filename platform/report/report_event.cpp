#include "platform/report/report_event.h"

#include <cstring>

namespace platform {

std::optional<std::uint64_t> NumberOf(const ReportedValue& value) {
    const bool isNumber = (value.type == REG_DWORD && value.bytes.size() == sizeof(DWORD)) ||
                          (value.type == REG_QWORD && value.bytes.size() == sizeof(std::uint64_t));
    if (!isNumber) {
        return std::nullopt;
    }
    std::uint64_t number = 0;  // its low bytes come first
    std::memcpy(&number, value.bytes.data(), value.bytes.size());
    return number;
}

std::optional<std::u16string> TextOf(const ReportedValue& value) {
    const bool isText =
        value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MUI_SZ;
    if (!isText || value.bytes.size() % sizeof(WCHAR) != 0) {
        return std::nullopt;
    }
    std::u16string text(value.bytes.size() / sizeof(WCHAR), u'\0');
    if (!text.empty()) {
        std::memcpy(text.data(), value.bytes.data(), value.bytes.size());
    }
    text.erase(text.find_last_not_of(u'\0') + 1);
    return text;
}

void ReportTotals::Count(const ReportEvent& event) {
    if (event.failure) {
        ++notDone;
        return;
    }
    switch (event.action) {
        case ReportAction::DeleteFile:
            ++filesDeleted;
            bytesDeleted += event.bytes.value_or(0);
            break;
        case ReportAction::RemoveDirectory:
            ++directoriesRemoved;
            break;
        case ReportAction::MakeDirectory:
            ++directoriesMade;
            break;
        case ReportAction::MoveEntry:
            ++entriesMoved;
            break;
        case ReportAction::MakeShortcut:
            ++shortcutsMade;
            break;
        case ReportAction::WriteValue:
            ++valuesWritten;
            break;
        case ReportAction::DeleteKey:
            ++keysDeleted;
            break;
        case ReportAction::ReadDirectory:
        case ReportAction::Restart:
        case ReportAction::EraseDevice:
            break;
    }
}

void ReportTotals::Add(const ReportTotals& other) {
    filesDeleted += other.filesDeleted;
    bytesDeleted += other.bytesDeleted;
    entriesMoved += other.entriesMoved;
    directoriesMade += other.directoriesMade;
    directoriesRemoved += other.directoriesRemoved;
    shortcutsMade += other.shortcutsMade;
    valuesWritten += other.valuesWritten;
    keysDeleted += other.keysDeleted;
    notDone += other.notDone;
}

}  // namespace platform
