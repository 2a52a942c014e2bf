#pragma once

#include <cstddef>
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

// What several runs have done together.
struct ReportSum {
    std::size_t devices = 0;
    ReportTotals totals;
    int exitCode = 0;
};

// What a form of the report on several devices has besides the report of each. Calls come in this
// order: for each device BeginDevice, its report, which another process writes, NoteWithoutTotals
// if that has not come to its totals; at last Finish.
class SumWriter {
  public:
    SumWriter() = default;
    virtual ~SumWriter() = default;
    SumWriter(const SumWriter&) = delete;
    SumWriter& operator=(const SumWriter&) = delete;

    virtual void BeginDevice(const std::string& device) = 0;
    virtual void NoteWithoutTotals(const std::string& device, int exitCode) = 0;

    // Fails when the report could not be written whole.
    virtual Status Finish(const ReportSum& sum) = 0;
};

}  // namespace platform
