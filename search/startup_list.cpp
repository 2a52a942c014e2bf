#include "search/startup_list.h"

#include "core/found_entries.h"
#include "core/window_operations.h"

void FillStartupList(HWND listBox) {
    for (FoundEntries found(TEXT("\\Windows\\StartUp\\*.lnk")); found; found.Next()) {
        SendMessageW(listBox, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(found.name()));
    }
}
