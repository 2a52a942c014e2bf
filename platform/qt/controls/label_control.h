#pragma once

#include "platform/qt/base/window.h"

class QLabel;

namespace platform::qt {

// Class "STATIC": a text.
class LabelControl : public Window {
  public:
    LabelControl(WindowContext& context, const CreateParams& params);

    void SetText(const QString& text) override;
    QString LabelForNext() const override { return Text(); }
    QString LabelForLater() const override { return Text(); }

  private:
    QLabel* label_;
};

}  // namespace platform::qt
