#include "platform/host/run_report.h"

#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <utility>

#include "platform/device/device_halves.h"
#include "platform/report/last_run_file.h"
#include "platform/report/page_place.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "platform/report/report_lines.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

std::unique_ptr<ReportWriter> WriterOnOutput(ReportForm form) {
    switch (form) {
        case ReportForm::Lines:
            return std::make_unique<ReportLines>(stdout);
        case ReportForm::Json:
            return std::make_unique<ReportJson>(stdout);
        case ReportForm::None:
            break;
    }
    return nullptr;
}

}  // namespace

RunReport::RunReport(const CommandLine& line, const DeviceDirectory& device, bool isSilent,
                     RunLog& log, const SharedReport* shared)
    : log_(log), shared_(shared) {
    if (isSilent && !line.rehearse) {
        BeginLastRun(device);
    }
    if (shared_ != nullptr && shared_->page != nullptr) {
        asked_.push_back(std::make_unique<ReportHtml>(*shared_->page));
    } else if (shared_ == nullptr && !line.reportPage.empty()) {
        AddPage(line, device);
    }
    if (auto writer = WriterOnOutput(line.report)) {
        asked_.push_back(std::move(writer));
    }
    const ReportRun run = {.version = FENNELBRIGHT_VERSION,
                           .device = line.device,
                           .programLine = line.programLine,
                           .started = std::time(nullptr),
                           .isRehearsal = line.rehearse};
    for (ReportWriter* const writer : writers()) {
        writer->Begin(run);
    }
}

// Nothing is kept on a card, where it would take its owner's room and be cleaned.
void RunReport::BeginLastRun(const DeviceDirectory& device) {
    if (!device.isByHalves) {
        lastRun_ = std::make_unique<LastRunFile>(device.directory.get());
        return;
    }
    Result<Descriptor> state = OpenKeptDirectory(device);
    if (!state) {
        log_.Say("last-run.txt is not written: " + Describe(state.error()));
        return;
    }
    state_ = std::move(*state);
    lastRun_ = std::make_unique<LastRunFile>(state_.get());
}

void RunReport::AddPage(const CommandLine& line, const DeviceDirectory& device) {
    const std::string& file = line.reportPage;
    Result<PagePlace> place = OpenPagePlace(file);
    const Status possible =
        place ? CheckOutside(*place, device) : Status(tl::unexpected<Failure>(place.error()));
    if (possible) {
        asked_.push_back(std::make_unique<ReportHtml>(std::move(place->directory),
                                                      std::move(place->name), line.rehearse));
    } else {
        log_.SayUndone(Describe(FailOf(possible.error(), ReadableBytes(file)).value()));
    }
}

std::vector<ReportWriter*> RunReport::writers() const {
    std::vector<ReportWriter*> writers;
    if (lastRun_ != nullptr) {
        writers.push_back(lastRun_.get());
    }
    for (const auto& writer : asked_) {
        writers.push_back(writer.get());
    }
    return writers;
}

void RunReport::Finish(const ReportTotals& totals, bool strict) {
    if (shared_ != nullptr) {
        *shared_->totals = totals;
    }
    if (lastRun_ != nullptr) {
        if (const Status written = lastRun_->Finish({totals, std::nullopt}); !written) {
            log_.Say(Describe(written.error()));
        }
    }
    for (const auto& writer : asked_) {
        const Status written = writer->Finish({totals, log_.ExitCode(strict)});
        if (!written) {
            log_.SayUndone(Describe(written.error()));
        }
    }
}

}  // namespace platform
