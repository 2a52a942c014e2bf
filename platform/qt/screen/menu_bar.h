#pragma once

#include "platform/qt/base/window.h"
#include "shell/resources.h"

namespace platform::qt {

// The menu bar at the bottom of the screen. Its popups open upward; its items send their commands
// to the window that it was made for.
class MenuBar : public Window {
  public:
    MenuBar(WindowContext& context, const CreateParams& params, const MenuResource& menu);
};

}  // namespace platform::qt
