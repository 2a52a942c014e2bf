#pragma once

#include "platform/qt/base/window.h"

class QAbstractButton;

namespace platform::qt {

// Class "BUTTON": a push button, or a box that toggles its own tick.
class ButtonControl : public Window {
  public:
    ButtonControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetText(const QString& text) override;
    QString LabelForNext() const override;

  private:
    QAbstractButton* button_;
};

}  // namespace platform::qt
