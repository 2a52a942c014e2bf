#pragma once

#include "platform/qt/base/window.h"

class QLineEdit;

namespace platform::qt {

// Class "EDIT": one line that the user types.
class EditControl : public Window {
  public:
    EditControl(Station& station, const Birth& birth);

    LRESULT Answer(UINT message, WPARAM wParam, LPARAM lParam) override;
    QString Text() const override;
    void SetText(const QString& text) override;
    void FocusChanged(bool gained, Qt::FocusReason reason) override;

  private:
    QLineEdit* line_;
};

}  // namespace platform::qt
