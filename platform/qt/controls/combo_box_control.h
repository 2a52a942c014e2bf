#pragma once

#include "platform/qt/base/window.h"

class QComboBox;

namespace platform::qt {

// Class "COMBOBOX": a list to pick from. Closed, it is one field high, whatever its height says.
class ComboBoxControl : public Window {
  public:
    ComboBoxControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    QString Text() const override;
    void FocusChanged(bool gained, Qt::FocusReason reason) override;
    void Place(const QRect& place) override;

  private:
    LRESULT Select(LRESULT index);

    QComboBox* box_;
};

}  // namespace platform::qt
