#include "platform/host/several_devices.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <sysexits.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/command_line/named_device.h"
#include "platform/diagnostics/run_log.h"
#include "platform/host/device_run.h"
#include "platform/host/run_report.h"
#include "platform/host/worst_exit_code.h"
#include "platform/report/page_place.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "platform/report/report_lines.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

using LeftTotals = std::optional<ReportTotals>;

// Where each run leaves its totals for this process.
LeftTotals* ShareTotals() {
    static_assert(std::is_trivially_copyable_v<LeftTotals>);
    void* const memory = mmap(nullptr, sizeof(LeftTotals), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : new (memory) LeftTotals();
}

class SeveralRuns {
  public:
    SeveralRuns(CommandLine& line, LeftTotals* totals) : line_(line), totals_(totals) {
        devices_ = {line.device};
        devices_.insert(devices_.end(), line.furtherDevices.begin(), line.furtherDevices.end());
    }

    int Run();

  private:
    Status CheckOutsideOfAll(const PagePlace& place);
    void OpenPage();
    void OpenWriters();
    void RunOne();
    int WaitFor(pid_t run);
    void Finish();
    void NoteUndone(const Failure& failure);

    CommandLine& line_;
    LeftTotals* totals_;
    RunLog log_{""};
    std::vector<std::string> devices_;
    std::unique_ptr<HtmlPage> page_;  // null where none is made
    std::vector<std::unique_ptr<SumWriter>> writers_;
    ReportSum sum_;
};

void SeveralRuns::NoteUndone(const Failure& failure) {
    log_.SayUndone(Describe(failure));
    sum_.exitCode = WorseExitCode(sum_.exitCode, log_.ExitCode(line_.strict));
}

// A device that cannot be opened has nothing that could be replaced, and its own run says so.
Status SeveralRuns::CheckOutsideOfAll(const PagePlace& place) {
    for (const std::string& name : devices_) {
        line_.device = name;
        const Result<DeviceDirectory> device = OpenNamedDevice(line_);
        if (Status outside = device ? CheckOutside(place, *device) : Status(); !outside) {
            return outside;
        }
    }
    return {};
}

void SeveralRuns::OpenPage() {
    Result<PagePlace> place = OpenPagePlace(line_.reportPage);
    Status possible =
        place ? CheckOutsideOfAll(*place) : Status(tl::unexpected<Failure>(place.error()));
    if (possible) {
        page_ = std::make_unique<HtmlPage>(std::move(place->directory), std::move(place->name),
                                           line_.rehearse);
        possible = page_->Flush();
    }
    if (!possible) {
        page_.reset();
        NoteUndone(FailOf(possible.error(), ReadableBytes(line_.reportPage)).value());
    }
}

void SeveralRuns::OpenWriters() {
    if (!line_.reportPage.empty()) {
        OpenPage();
    }
    if (page_ != nullptr) {
        writers_.push_back(std::make_unique<SumHtml>(*page_));
    }
    if (line_.report == ReportForm::Lines) {
        writers_.push_back(std::make_unique<SumLines>(stdout));
    } else if (line_.report == ReportForm::Json) {
        writers_.push_back(std::make_unique<SumJson>(stdout));
    }
}

int SeveralRuns::WaitFor(pid_t run) {
    int status = 0;
    while (run > 0 && waitpid(run, &status, 0) != run) {
        if (errno != EINTR) {
            return EX_OSERR;
        }
    }
    if (run > 0) {
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    log_.Say(ReadableBytes(line_.device) + ": " + Describe(Fail("start its run", errno).value()));
    return EX_OSERR;
}

// The run ends its process without this one's destructors: the page stays as it is, to go on.
void SeveralRuns::RunOne() {
    totals_->reset();
    for (const auto& writer : writers_) {
        writer->BeginDevice(line_.device);
    }
    std::fflush(nullptr);  // else both processes would write what waits
    const pid_t run = fork();
    if (run == 0) {
        const SharedReport shared{totals_, page_.get()};
        std::exit(RunOnDevice(line_, &shared));
    }
    const int code = WaitFor(run);
    sum_.exitCode = WorseExitCode(sum_.exitCode, code);
    sum_.totals.Add(totals_->value_or(ReportTotals()));
    if (!*totals_) {
        for (const auto& writer : writers_) {
            writer->NoteWithoutTotals(line_.device, code);
        }
    }
}

void SeveralRuns::Finish() {
    sum_.devices = devices_.size();
    for (const auto& writer : writers_) {
        if (const Status written = writer->Finish(sum_); !written) {
            NoteUndone(written.error());
        }
    }
}

int SeveralRuns::Run() {
    OpenWriters();
    for (std::size_t index = 0; index < devices_.size(); ++index) {
        line_.device = devices_[index];
        if (isatty(STDERR_FILENO) != 0) {
            log_.Say("device " + std::to_string(index + 1) + " of " +
                     std::to_string(devices_.size()) + ": " + ReadableBytes(line_.device));
        }
        RunOne();
    }
    Finish();
    return sum_.exitCode;
}

}  // namespace

int RunOnSeveralDevices(CommandLine& line) {
    LeftTotals* const totals = ShareTotals();
    if (totals == nullptr) {
        RunLog("").Say(Describe(Fail("share memory with the runs", errno).value()));
        return EX_OSERR;
    }
    return SeveralRuns(line, totals).Run();
}

}  // namespace platform
