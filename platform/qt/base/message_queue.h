#pragma once

#include <algorithm>
#include <deque>

#include "core/window_operations.h"

namespace platform::qt {

// What the user does to a control or a scroll bar waits in the queue under a number of its own, so
// that it is decided when its turn comes, on what is true then. Such a message reaches no
// procedure.
inline constexpr UINT kFirstOwnMessage = 0x8000;
inline constexpr UINT kBarStep = 0x8000;      // wParam the scroll code of the bar's part
inline constexpr UINT kBarThumb = 0x8001;     // wParam where the thumb was let go
inline constexpr UINT kScrollBy = 0x8002;     // lParam pixels
inline constexpr UINT kRevealChild = 0x8003;  // lParam the child window
inline constexpr UINT kTabTaken = 0x8004;     // wParam the index of the tab
inline constexpr UINT kTabStep = 0x8005;      // lParam 1: the next tab, -1: the one before
inline constexpr UINT kAskForRows = 0x8006;

// The messages that wait, first come first served.
class MessageQueue {
  public:
    void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        messages_.push_back({window, message, wParam, lParam, 0, {0, 0}});
    }

    // Whether the user has chosen another tab and the program has not heard of it yet.
    bool HoldsTabChange() const {
        return std::any_of(messages_.begin(), messages_.end(), [](const MSG& message) {
            return message.message == kTabTaken || message.message == kTabStep;
        });
    }

    // Takes the oldest message; false when there is none.
    bool Pop(MSG& message) {
        if (messages_.empty()) {
            return false;
        }
        message = messages_.front();
        messages_.pop_front();
        return true;
    }

  private:
    std::deque<MSG> messages_;
};

}  // namespace platform::qt
