#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/diagnostics/run_log.h"
#include "platform/report/report_event.h"
#include "platform/report/report_writer.h"
#include "platform/seam/forwarding_store.h"

namespace platform {

// Reports what is done to the device and what could not be: an event for each thing, after it was
// done, with the step of the Apply sequence that did it, and the totals when asked. A change of the
// registry is done when it is stored. Paths have their canonical spelling.
class ReportingStore : public ForwardingStore {
  public:
    // All stay the caller's. Without writers the log alone counts what could not be done.
    ReportingStore(DeviceStore& inner, std::vector<ReportWriter*> writers, RunLog& log)
        : ForwardingStore(inner), writers_(std::move(writers)), log_(log) {}

    // What could not be done because it was done already, or is not there, is not reported.
    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override;
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override;
    BOOL FindClose(HANDLE find) override;
    BOOL DeleteFileW(const WCHAR* path) override;
    BOOL RemoveDirectoryW(const WCHAR* path) override;
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override;
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override;
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override;
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;
    void SetCleanRebootFlag() override;

    // A value that is written as it was already is not reported.
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override;
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override;
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override;
    LONG RegCloseKey(HKEY key) override;

    Status StoreRegistry() override;
    void NothingToClean(const WCHAR* directory) override;
    void NothingMoves(const WCHAR* source, const WCHAR* destination) override;

    // Writes the last events. Returns the totals, with which the writers can be finished.
    ReportTotals WriteLastEvents();

  private:
    // A change of the registry that is not known to be stored yet.
    struct Pending {
        std::uint64_t number;  // of the change, as the inner store counts them
        ReportEvent event;
    };

    void Write(const ReportEvent& event);
    void Report(ReportEvent event);
    void ReportUndone(ReportEvent event);
    void ReportSearch(const std::u16string& pattern);
    void SettleRegistry();
    LONG NoteChange(LONG result, ReportEvent change, std::uint64_t before);
    std::u16string PathBelow(HKEY key, std::u16string_view subkey) const;

    std::vector<ReportWriter*> writers_;
    RunLog& log_;
    std::map<HKEY, std::u16string> openKeys_;    // the path of each
    std::map<HANDLE, std::u16string> searches_;  // the pattern of each open search
    std::deque<Pending> pending_;
    std::string whyNotStored_;
    bool erases_ = false;  // the next restart does
    ReportTotals totals_;
};

}  // namespace platform
