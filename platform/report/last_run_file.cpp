#include "platform/report/last_run_file.h"

#include "platform/report/report_lines.h"

namespace platform {

namespace {

constexpr char kLastRunName[] = "last-run.txt";

}  // namespace

void LastRunFile::Write(const ReportEvent& event) {
    file_.Append(ReportLine(event) + '\n');
}

Status LastRunFile::Finish(const ReportEnd& end) {
    if (!file_.isBegun()) {
        return {};
    }
    file_.Append(ReportLine(end.totals) + '\n');
    Status published = file_.PublishAs(kLastRunName);
    return published ? published : FailOf(published.error(), kLastRunName);
}

}  // namespace platform
