#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/platform_types.h"
#include "platform/diagnostics/failure.h"

namespace platform {

// The name of the handheld's help viewer.
inline constexpr const WCHAR* kHelpViewerImage = TEXT("peghelp.exe");

// A page has to be shorter than this, in bytes, to be shown.
inline constexpr std::size_t kLargestHelpPage = std::size_t{1} << 20;

// What the help viewer is asked to show: "file:PAGE#PLACE".
struct HelpRequest {
    std::u16string path;  // of the page on the device; a bare name lies in "\Windows"
    std::u16string place;
};
HelpRequest ParseHelpRequest(std::u16string_view commandLine);

// Starts help viewers: each is a process of its own that has its page and nothing else of this one,
// no lock and no open file, and goes on when this one ends.
class HelpViewers {
  public:
    // `executable` is this host's own program; `scale` is that of its command line.
    HelpViewers(std::string executable, double scale)
        : executable_(std::move(executable)), scale_(scale) {}

    // Opens one more viewer on the bytes of a page, at a place of it.
    Status Open(std::string_view page, const std::string& place);

  private:
    std::string executable_;
    double scale_;
    std::vector<pid_t> started_;  // and not known to have ended
};

}  // namespace platform
