#pragma once

#include <QApplication>
#include <memory>
#include <optional>

#include "platform/display/window_module.h"
#include "platform/qt/base/message_queue.h"
#include "platform/qt/base/window_table.h"
#include "platform/qt/desktop/close_request_watch.h"
#include "platform/qt/desktop/termination_signal_watch.h"
#include "platform/qt/screen/host_window.h"
#include "platform/qt/screen/input_gate.h"
#include "platform/qt/screen/message_box.h"
#include "platform/qt/screen/switched_off_screen.h"
#include "platform/qt/screen/window_stack.h"
#include "platform/qt/window_classes.h"

namespace platform::qt {

// The window system over the toolkit.
class QtWindowSystem : public DisplayWindowSystem {
  public:
    QtWindowSystem(const WindowModuleParams& params, std::unique_ptr<QApplication> application);
    ~QtWindowSystem() override;

    void ServeDesktop() override;
    bool WantsToTryAgain(const std::string& failure) override;

    WORD RegisterClassW(const WNDCLASS* windowClass) override;
    BOOL UnregisterClassW(const WCHAR* className, HINSTANCE instance) override;
    HWND CreateWindowExW(DWORD extendedStyle, const WCHAR* className, const WCHAR* text,
                         DWORD style, int x, int y, int width, int height, HWND parent, HMENU menu,
                         HINSTANCE instance, void* parameter) override;
    BOOL DestroyWindow(HWND window) override;
    BOOL ShowWindow(HWND window, int command) override;
    BOOL UpdateWindow(HWND window) override;
    BOOL GetClientRect(HWND window, RECT* rectangle) override;
    BOOL GetWindowRect(HWND window, RECT* rectangle) override;
    BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override;
    HWND SetFocus(HWND window) override;
    BOOL SetWindowTextW(HWND window, const WCHAR* text) override;
    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override;
    BOOL TranslateMessage(const MSG* message) override;
    LRESULT DispatchMessageW(const MSG* message) override;
    LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT SendDlgItemMessageW(HWND parent, int id, UINT message, WPARAM wParam,
                                LPARAM lParam) override;
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;
    BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO* info) override;
    int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL redraw) override;
    int ScrollWindowEx(HWND window, int dx, int dy, const RECT* scroll, const RECT* clip,
                       HRGN updateRegion, RECT* update, UINT flags) override;
    void keybd_event(BYTE key, BYTE scanCode, DWORD flags, DWORD_PTR extra) override;
    BOOL SHCreateMenuBar(SHMENUBARINFO* info) override;
    HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                                    DLGPROC procedure, LPARAM parameter) override;
    BOOL SHInitDialog(const SHINITDLGINFO* info) override;
    DWORD_PTR SHGetFileInfo(const WCHAR* path, DWORD attributes, SHFILEINFO* info, UINT size,
                            UINT flags) override;

  private:
    ProgramWindow* FindProgramWindow(HWND window) const;
    HWND AddProgramWindow(const CreateParams& params, DWORD extendedStyle,
                          const WindowClasses::Class& made);
    void Open(const Window& window);
    bool HasReceiver(const MSG& message) const;
    void QueueTabStep(int step);
    void QueuePageScroll(Qt::Key key);
    void WatchSignals();
    // Ends the run as OK does, after running work; from then on every box is answered at once.
    void RequestExit();

    const MenuResource* (*findMenu_)(UINT id);
    int (*answerUnseen_)(const WCHAR* text, const WCHAR* caption, UINT type);
    std::unique_ptr<QApplication> application_;
    MessageQueue queue_;
    InputGate gate_{queue_};
    HostWindow host_;
    SwitchedOffScreen screenOff_{host_.handheld()};
    WindowTable windows_;
    WindowContext context_;
    WindowClasses classes_;
    WindowStack stack_;
    MessageBoxes boxes_;
    CloseRequestWatch closeWatch_;
    std::optional<TerminationSignalWatch> signals_;
    bool ending_ = false;
    bool isSignalled_ = false;
};

}  // namespace platform::qt
