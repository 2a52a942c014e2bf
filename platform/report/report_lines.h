#pragma once

#include <cstdio>
#include <string>

#include "platform/report/report_stream.h"
#include "platform/report/report_writer.h"

namespace platform {

// The event as its words: "deleted \Temp\a.tmp (12 bytes)".
std::string DescriptionOf(const ReportEvent& event);

// Its line of a report, without a line end, "step 3: deleted \Temp\a.tmp (12 bytes)", and the line
// of the totals.
std::string ReportLine(const ReportEvent& event);
std::string ReportLine(const ReportTotals& totals, const std::string& title = "total");

// Why a run that ended with this code has no totals; its own lines on standard error say more.
std::string WhyWithoutTotals(int exitCode);

// The report as lines of text.
class ReportLines : public ReportWriter {
  public:
    explicit ReportLines(std::FILE* output) : stream_(output) {}  // as ReportStream

    void Begin(const ReportRun& run) override;
    void Write(const ReportEvent& event) override { stream_.WriteLine(ReportLine(event)); }
    Status Finish(const ReportEnd& end) override;

  private:
    ReportStream stream_;
};

// What stands around the lines of several runs.
class SumLines : public SumWriter {
  public:
    explicit SumLines(std::FILE* output) : stream_(output) {}  // as ReportStream

    void BeginDevice(const std::string& device) override;
    void NoteWithoutTotals(const std::string& device, int exitCode) override;
    Status Finish(const ReportSum& sum) override;

  private:
    ReportStream stream_;
};

}  // namespace platform
