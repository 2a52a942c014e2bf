#include "platform/host/run_report.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <utility>

#include "platform/io/file_identity.h"
#include "platform/report/last_run_file.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "platform/report/report_lines.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr const char* kWritePage = "write the report";

// Whether `directory` is one of the device's, whatever its name is. Nothing of the device may be
// replaced by a report, and no run is to find one among the files that it cleans.
Result<bool> IsOfDevice(const Descriptor& directory, const DeviceDirectory& device) {
    constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    const std::array devices = {IdentityOf(device.directory.get()),
                                device.files ? IdentityOf(device.files.get()) : std::nullopt};
    Descriptor here(openat(directory.get(), ".", kFlags));
    for (std::optional<FileIdentity> below; here;) {
        const std::optional<FileIdentity> identity = IdentityOf(here.get());
        if (!identity) {
            break;
        }
        if (std::find(devices.begin(), devices.end(), identity) != devices.end()) {
            return true;
        }
        if (identity == below) {
            return false;
        }
        below = identity;
        here = Descriptor(openat(here.get(), "..", kFlags));
    }
    return Fail(kWritePage, errno);
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
    const Result<bool> isOfDevice = IsOfDevice(place.directory, device);
    if (!isOfDevice) {
        return tl::unexpected<Failure>(isOfDevice.error());
    }
    if (*isOfDevice) {
        return FailBecause(kWritePage, "it would be in the device directory");
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
    if (isSilent && !line.rehearse) {
        lastRun_ = std::make_unique<LastRunFile>(device.directory.get());
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
                           .started = std::time(nullptr),
                           .isRehearsal = line.rehearse};
    for (ReportWriter* const writer : writers()) {
        writer->Begin(run);
    }
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
