#include "platform/console_windows.h"

#include "platform/host_text.h"
#include "platform/safe_answer.h"

namespace platform {

int ConsoleWindows::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption,
                                UINT type) {
    const std::string line = '[' + ReadableText(caption) + "] " + ReadableText(text) + '\n';
    std::fputs(line.c_str(), lines_);
    return SafeAnswer(type);
}

}  // namespace platform
