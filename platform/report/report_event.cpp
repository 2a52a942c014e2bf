#include "platform/report/report_event.h"

namespace platform {

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

}  // namespace platform
