#pragma once

#include "platform/qt/base/scroll_range.h"
#include "platform/qt/base/window.h"
#include "platform/qt/screen/page_scroll_bar.h"

namespace platform::qt {

// What a window of the program's own classes has beside a plain window's.
struct ProgramTraits {
    WNDPROC procedure;
    bool dialog;  // the procedure leaves a message to the window by returning 0
    bool topLevel;
    bool hasOk;  // on the caption bar
    QColor background;
};

// A window with a procedure of the program's: a top-level window, a dialog, a page.
class ProgramWindow : public Window {
  public:
    ProgramWindow(WindowContext& context, const CreateParams& params, const ProgramTraits& traits);
    ~ProgramWindow() override;

    QWidget& surface() const override;
    LRESULT Receive(UINT message, WPARAM wParam, LPARAM lParam) override;
    void CarryOut(const MSG& message) override;
    void Place(const QRect& place) override;

    bool IsTopLevel() const { return topLevel_; }
    bool IsDialog() const { return dialog_; }
    bool HasOk() const { return hasOk_; }
    void GiveOk() { hasOk_ = true; }

    // The range of its scroll bar; null when it has no bar.
    const ScrollRange* Range() const { return bar_ == nullptr ? nullptr : &range_; }

    // Sets the range of its bar and returns the position.
    int SetRange(const SCROLLINFO& info);

    // Moves all children.
    void MoveChildren(int dx, int dy);

  private:
    void ArrangeBar();
    void ScrollTo(long long position);
    void Reveal(HWND child);

    WNDPROC procedure_;
    bool dialog_;
    bool topLevel_;
    bool hasOk_;
    ScrollRange range_;
    QWidget* client_ = nullptr;  // both the widget's own
    PageScrollBar* bar_ = nullptr;
};

}  // namespace platform::qt
