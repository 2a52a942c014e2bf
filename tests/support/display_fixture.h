#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "platform/display/window_module.h"

// The window system on an offscreen display, with `scale` pixels of it for a pixel of the handheld.
std::unique_ptr<platform::DisplayWindowSystem> OpenUnseen(int scale = 1);

// A message that a window's procedure has received.
struct ReceivedMessage {
    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    UINT code = 0;  // of WM_NOTIFY

    bool operator==(const ReceivedMessage&) const = default;
};

using ReceivedMessages = std::vector<ReceivedMessage>;
using Codes = std::vector<UINT>;

// The window on the desktop.
QWidget& Host();

// The widget of the control with this ID.
QWidget& Control(int id);

// Taps a widget, in its middle if no place is given.
void Click(QWidget& widget, QPoint at = {});

// Turns the wheel above a widget. Returns whether that was used.
bool TurnWheel(QWidget& widget, QPoint units);

// What a key that is held down sends again and again, whether or not the toolkit has seen that.
void RepeatKey(QWidget& widget, Qt::Key key, bool seen = true);

// Called by the procedure with every message that is kept; what it returns is the result.
extern LRESULT (*g_hook)(const ReceivedMessage& received);

// A window system with a main window and a page that scrolls on it. Their procedure keeps what it
// receives.
class WindowsTest : public testing::Test {
  public:
    explicit WindowsTest(std::unique_ptr<platform::WindowSystem> windows);
    ~WindowsTest() override { g_hook = nullptr; }

  protected:
    static constexpr RECT kPage = {4, 4, 236, 243};

    // Makes a top-level window with an OK.
    static HWND Open(const WCHAR* className);

    // Makes a control on the page.
    HWND Add(const WCHAR* className, DWORD style, const RECT& place, int id,
             const WCHAR* text = TEXT(""));

    // Makes the tabs at the foot of the main window, with these labels.
    HWND AddTabs(std::initializer_list<std::u16string> labels);

    // Takes and dispatches what waits in the queue, and what comes of it, until none is left.
    static void Dispatch();

    // What was received since the last call, of these messages alone: WM_COMMAND, WM_NOTIFY,
    // WM_VSCROLL, WM_HSCROLL and the stylus.
    static ReceivedMessages TakeReceived();

    // The same, of WM_COMMAND and WM_NOTIFY the codes alone.
    static Codes TakeCodes();

    static LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, const void* lParam = nullptr);
    static LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        return SendMessageW(window, message, wParam, lParam);
    }

    // What WM_GETTEXT gives.
    static std::u16string TextOf(HWND window);

    platform::WindowSystem& windows() { return *windows_; }

    HWND main_ = nullptr;
    HWND page_ = nullptr;

  private:
    std::unique_ptr<platform::WindowSystem> windows_;
    platform::WindowsInUse inUse_;
};

// The same on an offscreen display.
class DisplayTest : public WindowsTest {
  public:
    explicit DisplayTest(int scale = 1) : WindowsTest(OpenUnseen(scale)) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&Host()));
    }
};
