#pragma once

#include "platform/forwarding_windows.h"
#include "platform/no_windows.h"

// Lets the n-th call of all come back with failure, without having done anything; all others go
// on.
class FailingWindows : public platform::ForwardingWindows {
  public:
    // `failing` counts from 1; 0 lets every call through. `result` is that of a message that fails.
    FailingWindows(platform::WindowSystem& inner, int failing, LRESULT result)
        : ForwardingWindows(inner), failing_(failing), failure_(result) {}

    int calls() const { return calls_; }

  protected:
    platform::WindowSystem& inner() override {
        return ++calls_ == failing_ ? failure_ : ForwardingWindows::inner();
    }

  private:
    struct Failure : platform::NoWindows {
        explicit Failure(LRESULT failed) : result(failed) {}
        BOOL GetMessageW(MSG* /*message*/, HWND /*window*/, UINT /*lowest*/,
                         UINT /*highest*/) override {
            return -1;
        }
        LRESULT SendMessageW(HWND /*window*/, UINT /*message*/, WPARAM /*wParam*/,
                             LPARAM /*lParam*/) override {
            return result;
        }
        int MessageBoxW(HWND /*owner*/, const WCHAR* /*text*/, const WCHAR* /*caption*/,
                        UINT /*type*/) override {
            return 0;
        }
        LRESULT result;
    };

    int failing_;
    Failure failure_;
    int calls_ = 0;
};
