#pragma once

#include <cstdio>
#include <string>

#include "platform/diagnostics/failure.h"
#include "platform/report/report_event.h"

namespace platform {

// The report as lines of text: "step 3: deleted \Temp\a.tmp (12 bytes)".
class ReportLines {
  public:
    // `output` stays the caller's. Each line is written out at once: what is reported was done, and
    // a run that is killed must not take lines with it.
    explicit ReportLines(std::FILE* output);

    void Write(const ReportEvent& event);
    void WriteTotals(const ReportTotals& totals);

    // Fails when not every line could be written.
    Status Finish();

  private:
    void WriteLine(const std::string& line);

    std::FILE* output_;
    bool isWritten_ = true;
};

}  // namespace platform
