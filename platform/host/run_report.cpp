#include "platform/host/run_report.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <utility>

#include "platform/device/device_halves.h"
#include "platform/io/file_identity.h"
#include "platform/report/last_run_file.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "platform/report/report_lines.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr const char* kWritePage = "write the report";

// Nothing of the device may be replaced by a report, and no run is to find one among the files that
// it cleans.
Status CheckOutside(const Descriptor& directory, const std::string& name,
                    const DeviceDirectory& device) {
    std::vector<FileIdentity> places;
    const auto whole = device.isByHalves ? std::nullopt : IdentityOf(device.directory.get());
    if (!device.isByHalves && !whole) {
        return Fail(kWritePage, errno);
    }
    for (const std::optional<FileIdentity>& part : {device.tree, whole}) {
        if (part) {
            places.push_back(*part);
        }
    }
    const Result<bool> isInside = IsWithin(directory.get(), places);
    if (!isInside) {
        return tl::unexpected<Failure>(isInside.error());
    }
    if (*isInside) {
        return FailBecause(kWritePage, device.isByHalves ? "it would be among the device's files"
                                                         : "it would be in the device directory");
    }
    return IsSameFile(IdentityOf(directory.get(), name.c_str()),
                      IdentityOf(device.directory.get(), device.registryName.c_str()))
               ? FailBecause(kWritePage, "it is the device's registry")
               : Status();
}

struct PagePlace {
    Descriptor directory;
    std::string name;
};

Result<PagePlace> OpenPlace(const std::string& file, const DeviceDirectory& device) {
    const std::size_t slash = file.rfind('/');
    const std::string parent = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    PagePlace place{Descriptor(open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
                    file.substr(slash + 1)};
    if (!place.directory) {
        return Fail(kWritePage, errno);
    }
    if (const Status outside = CheckOutside(place.directory, place.name, device); !outside) {
        return tl::unexpected<Failure>(outside.error());
    }
    return place;
}

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
                     RunLog& log)
    : log_(log) {
    if (isSilent) {
        BeginLastRun(device);
    }
    if (!line.reportPage.empty()) {
        AddPage(line.reportPage, device);
    }
    if (auto writer = WriterOnOutput(line.report)) {
        asked_.push_back(std::move(writer));
    }
    const ReportRun run = {.version = FENNELBRIGHT_VERSION,
                           .device = line.device,
                           .programLine = line.programLine,
                           .started = std::time(nullptr)};
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

void RunReport::AddPage(const std::string& file, const DeviceDirectory& device) {
    Result<PagePlace> place = OpenPlace(file, device);
    if (place) {
        asked_.push_back(
            std::make_unique<ReportHtml>(std::move(place->directory), std::move(place->name)));
    } else {
        log_.SayUndone(Describe(FailOf(place.error(), ReadableBytes(file)).value()));
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
