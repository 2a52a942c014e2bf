#pragma once

#include "platform/qt/base/window.h"

class QSlider;

namespace platform::qt {

// Class "msctls_trackbar32": a horizontal slider.
class SliderControl : public Window {
  public:
    SliderControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    QSlider* slider_;
};

}  // namespace platform::qt
