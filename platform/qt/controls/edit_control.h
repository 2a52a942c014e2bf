#pragma once

#include "platform/qt/base/window.h"

class QLineEdit;

namespace platform::qt {

// Class "EDIT": one line that the user types.
class EditControl : public Window {
  public:
    EditControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    QString Text() const override;
    void SetText(const QString& text) override;
    void FocusChanged(bool gained, Qt::FocusReason reason) override;

  private:
    QLineEdit* line_;
};

}  // namespace platform::qt
