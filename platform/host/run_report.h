#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/command_line/command_line.h"
#include "platform/device/device_directory.h"
#include "platform/diagnostics/run_log.h"
#include "platform/report/html_page.h"
#include "platform/report/report_writer.h"

namespace platform {

// The report that the runs on several devices make together, each in a process of its own.
struct SharedReport {
    std::optional<ReportTotals>* totals;  // in memory of all: where a run leaves its own
    HtmlPage* page;                       // null where none is made
};

// The forms in which one run is reported, from their first line to their last.
class RunReport {
  public:
    // Begins those that the command line asks for, and of a silent run last-run.txt. What cannot be
    // begun is a line of the log. The device and `shared`, of one of several runs, stay the
    // caller's.
    RunReport(const CommandLine& line, const DeviceDirectory& device, bool isSilent, RunLog& log,
              const SharedReport* shared = nullptr);

    std::vector<ReportWriter*> writers() const;

    // Ends all of them. A form that was asked for and could not be written whole counts as not
    // done.
    void Finish(const ReportTotals& totals, bool strict);

  private:
    void BeginLastRun(const DeviceDirectory& device);
    void AddPage(const CommandLine& line, const DeviceDirectory& device);

    RunLog& log_;
    const SharedReport* shared_;
    Descriptor state_;                       // where that of a device by halves goes
    std::unique_ptr<ReportWriter> lastRun_;  // of a silent run
    std::vector<std::unique_ptr<ReportWriter>>
        asked_;  // the one on standard output is the last one
};

}  // namespace platform
