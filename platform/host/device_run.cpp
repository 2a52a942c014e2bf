#include "platform/host/device_run.h"

#include <sysexits.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "core/win_main.h"
#include "platform/command_line/named_device.h"
#include "platform/device/assembled_device.h"
#include "platform/device/device_directory.h"
#include "platform/device/directory_making_store.h"
#include "platform/diagnostics/run_log.h"
#include "platform/display/device_naming_boxes.h"
#include "platform/display/display_detection.h"
#include "platform/display/message_boxes_as_lines.h"
#include "platform/display/message_boxes_of_silent_run.h"
#include "platform/display/registry_saving_windows.h"
#include "platform/display/retrying_store.h"
#include "platform/display/window_module_loader.h"
#include "platform/display/window_repainting_store.h"
#include "platform/files/killed_run_recovery.h"
#include "platform/host/run_lock.h"
#include "platform/host/run_report.h"
#include "platform/io/entry_facts.h"
#include "platform/report/reporting_store.h"

namespace platform {

namespace {

// One run of the program on one device. Each step returns the exit code with which the run ends
// there; nothing when it goes on.
class DeviceRun {
  public:
    DeviceRun(CommandLine& line, const SharedReport* shared)
        : line_(line),
          shared_(shared),
          log_(line.device),
          logInUse_(log_),
          isSilent_(IsSilent(line)) {}

    int Run();

  private:
    using ExitCode = std::optional<int>;

    static bool IsSilent(const CommandLine& line) {
        return IsSilentCommandLine(line.programLine.c_str());
    }

    ExitCode Refuse(int code, const Failure& failure);
    ExitCode OpenDevice();
    ExitCode Lock();
    void SayWhatIsNotRehearsed();
    void AssembleDevice(std::unique_ptr<Registry> registry);
    ExitCode OpenStore();
    ExitCode OpenWindows();
    ExitCode OpenReport();
    DeviceStore& store();
    int RunProgram(DeviceStore& store, WindowSystem& windows);
    int RunWithWindows();
    int Finish();
    [[noreturn]] void EndOnTheSpot(int code);

    CommandLine& line_;
    const SharedReport* shared_;
    RunLog log_;
    LogInUse logInUse_;
    bool isSilent_;
    bool isLocked_ = false;
    bool isOnReadOnly_ = false;
    DeviceDirectory device_;
    std::unique_ptr<AssembledDevice> store_;
    std::unique_ptr<DisplayWindowSystem> windows_;  // of an interactive run
    std::optional<RunReport> report_;               // where anything is to be reported
    std::optional<ReportingStore> recorder_;        // with the report
};

DeviceRun::ExitCode DeviceRun::Refuse(int code, const Failure& failure) {
    log_.Say(Describe(failure));
    return code;
}

DeviceRun::ExitCode DeviceRun::OpenDevice() {
    Result<DeviceDirectory> device = OpenNamedDevice(line_);
    if (!device) {
        return Refuse(EX_NOINPUT, device.error());
    }
    device_ = std::move(*device);
    return {};
}

DeviceRun::ExitCode DeviceRun::Lock() {
    const RunLock lock =
        TakeRunLock(device_, line_.rehearse ? LockKind::Shared : LockKind::Exclusive, log_);
    isLocked_ = lock == RunLock::Taken;
    return lock == RunLock::Refused ? ExitCode(EX_TEMPFAIL) : ExitCode();
}

void DeviceRun::SayWhatIsNotRehearsed() {
    if (isOnReadOnly_) {
        log_.Say("it is on a read-only file system: a run could not change it as it is now");
    }
    if (isLocked_ && store_->HaveLeftovers()) {
        log_.Say(
            "a run that was killed has left files here; the next run puts them right before "
            "it begins, which the rehearsal does not show");
    }
}

void DeviceRun::AssembleDevice(std::unique_ptr<Registry> registry) {
    const auto exit = [this](int code) { EndOnTheSpot(code); };
    isOnReadOnly_ = line_.rehearse &&
                    (IsOnReadOnly(device_.directory.get()) || IsOnReadOnly(device_.files.get()));
    store_ =
        line_.rehearse
            ? AssembledDevice::Rehearsed(std::make_unique<RehearsedTree>(std::move(device_.files)),
                                         line_.modulePath, std::move(registry), exit)
            : std::make_unique<AssembledDevice>(std::move(device_.files), line_.modulePath,
                                                std::move(registry), exit);
}

DeviceRun::ExitCode DeviceRun::OpenStore() {
    auto registry = Registry::Open(device_.directory.get(), device_.registryName,
                                   line_.rehearse ? AccessTime::Kept : AccessTime::Shown);
    if (!registry) {
        return Refuse(EX_DATAERR, registry.error());
    }
    if (const std::string advice = AdviceOnExport(**registry); !advice.empty()) {
        log_.Say(advice);
    }
    AssembleDevice(std::move(*registry));
    if (device_.isByHalves) {
        store_->KeepFromErasing();
    }
    if (line_.rehearse) {
        SayWhatIsNotRehearsed();
        return {};
    }
    if (isLocked_) {
        store_->RecoverFromKilledRuns();
        if (device_.directory) {
            RemoveUnfinishedFilesIn(device_.directory.get());
        }
    }
    return {};
}

DeviceStore& DeviceRun::store() {
    if (recorder_) {
        return *recorder_;
    }
    return *store_;
}

// The registry is asked before its owner ticks and chooses what could not be stored then.
DeviceRun::ExitCode DeviceRun::OpenWindows() {
    if (isSilent_) {
        return {};
    }
    if (const Status storable = store_->CheckStorable(); !storable) {
        return Refuse(EX_CANTCREAT, storable.error());
    }
    const Status display =
        line_.noDisplay
            ? FailBecause(kOpenWindows,
                          "--no-display was given; the command line \"silent\" needs none")
            : CheckDisplay();
    auto windows = display.and_then([this] {
        return OpenDisplayWindowSystem(
            WindowParamsFor(line_.device.c_str(), line_.scale, line_.rehearse));
    });
    if (!windows) {
        return Refuse(EX_UNAVAILABLE, windows.error());
    }
    windows_ = std::move(*windows);
    store_->OfferHelp(std::make_unique<HelpViewers>("/proc/self/exe", line_.scale));
    return {};
}

DeviceRun::ExitCode DeviceRun::OpenReport() {
    const bool isAsked = line_.report != ReportForm::None || !line_.reportPage.empty();
    if (isSilent_ || isAsked || line_.strict) {
        report_.emplace(line_, device_, isSilent_, log_, shared_);
        recorder_.emplace(*store_, report_->writers(), log_);
    }
    return {};
}

int DeviceRun::RunProgram(DeviceStore& store, WindowSystem& windows) {
    DeviceNamingBoxes naming(windows, log_);
    RegistrySavingWindows storing(shared_ != nullptr ? naming : windows, store, log_);
    const StoreInUse storeInUse(store);
    const WindowsInUse windowsInUse(storing);
    return WinMain(nullptr, nullptr, line_.programLine.data(), 0);
}

int DeviceRun::RunWithWindows() {
    if (windows_ != nullptr) {
        DirectoryMakingStore making(store());
        RetryingStore retrying(making, [this](const std::string& failure) {
            return windows_->WantsToTryAgain(failure);
        });
        WindowRepaintingStore answering(retrying, [this] { windows_->ServeDesktop(); });
        return RunProgram(answering, *windows_);
    }
    if (line_.noDisplay) {
        MessageBoxesAsLines console(stderr);
        return RunProgram(store(), console);
    }
    MessageBoxesOfSilentRun boxes(
        WindowParamsFor(line_.device.c_str(), line_.scale, line_.rehearse), stderr);
    return RunProgram(store(), boxes);
}

int DeviceRun::Finish() {
    if (windows_ != nullptr) {
        store_->OfferRetry([this](const Failure& failure) {
            return windows_->WantsToTryAgain("Changes to the registry are not stored.\n\n" +
                                             Describe(failure));
        });
    }
    [[maybe_unused]] const Status stored = store().StoreRegistry();
    if (recorder_) {
        report_->Finish(recorder_->WriteLastEvents(), line_.strict);
    }
    return log_.ExitCode(line_.strict);
}

// What a process that ends on the spot still holds is written first, because no destructor runs.
void DeviceRun::EndOnTheSpot(int code) {
    const int result = code == 0 ? Finish() : code;
    report_.reset();  // its unfinished files go with it
    std::fflush(nullptr);
    std::_Exit(result);
}

int DeviceRun::Run() {
    for (const auto step : {&DeviceRun::OpenDevice, &DeviceRun::Lock, &DeviceRun::OpenStore,
                            &DeviceRun::OpenWindows, &DeviceRun::OpenReport}) {
        if (const ExitCode refused = (this->*step)()) {
            return *refused;
        }
    }
    RunWithWindows();
    return Finish();
}

}  // namespace

int RunOnDevice(CommandLine& line, const SharedReport* shared) {
    return DeviceRun(line, shared).Run();
}

}  // namespace platform
