#pragma once

#include "platform/qt/base/window.h"

namespace platform::qt {

class TabRowWidget;

// Class "SysTabControl32": a display area and its row of tabs.
class TabControl : public Window {
  public:
    TabControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void CarryOut(const MSG& message) override;
    void Place(const QRect& place) override;

  private:
    LRESULT Insert(WPARAM index, LPARAM item);
    LRESULT Select(WPARAM index);
    LRESULT Adjust(LPARAM rectangle) const;
    void ChooseTab(int index);
    LRESULT Notify(UINT code) const;

    bool below_;  // the tabs stand below the display area
    TabRowWidget* row_;
};

}  // namespace platform::qt
