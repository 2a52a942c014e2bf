#pragma once

#include "platform/io/buffered_new_file.h"
#include "platform/report/report_writer.h"

namespace platform {

// The lines of the report as the file last-run.txt in a device directory. A run without events
// makes no file and leaves the old one.
class LastRunFile : public ReportWriter {
  public:
    // `device` is the open device directory and stays the caller's. The file is not worth waiting
    // for the disk.
    explicit LastRunFile(int device) : file_(device, Survives::Kill) {}

    void Begin(const ReportRun& /*run*/) override {}
    void Write(const ReportEvent& event) override;
    Status Finish(const ReportEnd& end) override;

  private:
    BufferedNewFile file_;
};

}  // namespace platform
