#include "platform/console_windows.h"

#include "platform/host_text.h"

namespace platform {

int ConsoleWindows::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption,
                                UINT /*type*/) {
    const std::string line = '[' + ReadableText(caption) + "] " + ReadableText(text) + '\n';
    std::fputs(line.c_str(), lines_);
    return IDOK;
}

}  // namespace platform
