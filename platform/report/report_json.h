#pragma once

#include <cstdio>

#include "platform/report/report_stream.h"
#include "platform/report/report_writer.h"

namespace platform {

// The report as lines of JSON, for programs; docs/report-format.md describes them.
class ReportJson : public ReportWriter {
  public:
    explicit ReportJson(std::FILE* output) : stream_(output) {}  // as ReportStream

    void Begin(const ReportRun& run) override;
    void Write(const ReportEvent& event) override;
    Status Finish(const ReportEnd& end) override;

  private:
    ReportStream stream_;
};

// What stands around the lines of several runs.
class SumJson : public SumWriter {
  public:
    explicit SumJson(std::FILE* output) : stream_(output) {}  // as ReportStream

    void BeginDevice(const std::string& /*device*/) override {}  // the run says it
    void NoteWithoutTotals(const std::string& device, int exitCode) override;
    Status Finish(const ReportSum& sum) override;

  private:
    ReportStream stream_;
};

}  // namespace platform
