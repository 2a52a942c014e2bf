#include "platform/host/help_viewer_process.h"

#include <sysexits.h>
#include <unistd.h>

#include "platform/device/help_viewer_start.h"
#include "platform/diagnostics/run_log.h"
#include "platform/display/window_module_loader.h"
#include "platform/io/whole_file.h"

namespace platform {

int RunHelpViewer(const CommandLine& line) {
    RunLog log("");
    const Result<std::string> page = ReadToEnd(STDIN_FILENO, kLargestHelpPage);
    const Status shown = page ? ShowHelpPage(*page, line.helpPlace, line.scale)
                              : Status(tl::unexpected<Failure>(page.error()));
    if (!shown) {
        log.Say(Describe(shown.error()));
    }
    return shown ? 0 : EX_UNAVAILABLE;
}

}  // namespace platform
