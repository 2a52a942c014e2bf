#include "platform/display/console_boxes.h"

#include "platform/display/unattended_answer.h"
#include "platform/text/readable_text.h"

namespace platform {

int ConsoleBoxes::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption, UINT type) {
    const std::string line = '[' + ReadableText(caption) + "] " + ReadableText(text) + '\n';
    std::fputs(line.c_str(), lines_);
    return UnattendedAnswer(type);
}

}  // namespace platform
