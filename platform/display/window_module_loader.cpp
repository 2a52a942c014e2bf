#include "platform/display/window_module_loader.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/display/display_detection.h"
#include "platform/display/message_boxes_as_lines.h"

namespace platform {

namespace {

constexpr const char* kModuleIsMissing = "their module is not installed";
constexpr const char* kInstallLibraries =
    "what they need is not installed; on Debian: apt install libqt6widgets6 fonts-dejavu-extra";
constexpr char kLibraryFolder[] = "/../lib/fennelbright/";

std::string FolderOfExecutable() {
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string_view whole(path, length < 0 ? 0 : static_cast<std::size_t>(length));
    return std::string(whole.substr(0, whole.rfind('/')));
}

bool IsFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Whatever the environment says of folders, these two are tried.
std::string PathOfModule() {
    const std::string folder = FolderOfExecutable();
    const std::string beside = folder + '/' + kWindowModule;
    return IsFile(beside) ? beside : folder + kLibraryFolder + kWindowModule;
}

// The module's function of this name, loaded with the module.
Result<void*> FindInModule(const char* name) {
    const std::string path = PathOfModule();
    void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void* const found = module == nullptr ? nullptr : dlsym(module, name);
    if (found == nullptr) {
        const char* const reason = dlerror();
        return FailOf({kOpenWindows, {}, 0, IsFile(path) ? kInstallLibraries : kModuleIsMissing},
                      reason == nullptr ? kWindowModule : reason);
    }
    return found;
}

int AnswerUnseen(const WCHAR* text, const WCHAR* caption, UINT type) {
    return MessageBoxesAsLines(stderr).MessageBoxW(nullptr, text, caption, type);
}

}  // namespace

WindowModuleParams WindowParamsFor(const char* device, double scale, bool isRehearsal) {
    return {device, isRehearsal, scale, FindMenuResource, FindIconResource, AnswerUnseen};
}

Result<std::unique_ptr<DisplayWindowSystem>> OpenDisplayWindowSystem(
    const WindowModuleParams& params) {
    const Result<void*> make = FindInModule(kMakeDisplayWindowSystem);
    if (!make) {
        return tl::unexpected<Failure>(make.error());
    }
    std::unique_ptr<DisplayWindowSystem> windows(
        reinterpret_cast<MakeDisplayWindowSystem*>(*make)(&params));
    if (windows == nullptr) {
        return FailBecause(kOpenWindows,
                           "the display cannot be opened; the command line \"silent\" needs none");
    }
    return windows;
}

Result<std::unique_ptr<DeviceDialogs>> OpenDeviceDialogs(double scale) {
    const Result<void*> make = FindInModule(kMakeDeviceDialogs);
    if (!make) {
        return tl::unexpected<Failure>(make.error());
    }
    std::unique_ptr<DeviceDialogs> dialogs(reinterpret_cast<MakeDeviceDialogs*>(*make)(scale));
    if (dialogs == nullptr) {
        return FailBecause(kOpenWindows,
                           "the display cannot be opened; name the device with --device");
    }
    return dialogs;
}

Status ShowHelpPage(std::string_view page, const std::string& place, double scale) {
    const Result<void*> show = FindInModule(kShowHelpPage);
    if (!show) {
        return tl::unexpected<Failure>(show.error());
    }
    const HelpPageParams params = {page, place.c_str(), scale};
    return reinterpret_cast<ShowHelpPageFunction*>(*show)(&params)
               ? Status()
               : FailBecause(kOpenWindows, "the display cannot be opened");
}

}  // namespace platform
