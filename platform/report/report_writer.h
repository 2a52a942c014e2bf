#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "platform/diagnostics/failure.h"
#include "platform/report/report_event.h"

namespace platform {

// What a report says of its run as a whole.
struct ReportRun {
    std::string version;  // the program's
    std::string device;   // the device directory as its user named it
    std::u16string programLine;
    std::time_t started = 0;
    bool isRehearsal = false;  // nothing is changed, it is only found out what would be
};

// What is known when the run is over.
struct ReportEnd {
    ReportTotals totals;
    std::optional<int> exitCode;  // none where it is not decided yet
};

// A form of the report. Calls come in this order: Begin, Write for each event as it happens,
// Finish. A run that breaks off makes the first ones alone.
class ReportWriter {
  public:
    ReportWriter() = default;
    virtual ~ReportWriter() = default;
    ReportWriter(const ReportWriter&) = delete;
    ReportWriter& operator=(const ReportWriter&) = delete;

    virtual void Begin(const ReportRun& run) = 0;
    virtual void Write(const ReportEvent& event) = 0;

    // Fails when the report could not be written whole.
    virtual Status Finish(const ReportEnd& end) = 0;
};

}  // namespace platform
