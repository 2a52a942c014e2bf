#include "platform/display/message_boxes_as_lines.h"

#include "platform/display/message_box_default_answer.h"
#include "platform/text/readable_text.h"

namespace platform {

int MessageBoxesAsLines::MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption,
                                     UINT type) {
    const std::string line = '[' + ReadableText(caption) + "] " + ReadableText(text) + '\n';
    std::fputs(line.c_str(), lines_);
    return UnattendedAnswer(type);
}

}  // namespace platform
