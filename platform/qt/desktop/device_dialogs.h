#pragma once

#include <QApplication>
#include <QString>
#include <memory>

#include "platform/display/window_module.h"
#include "platform/qt/screen/message_box.h"

namespace platform::qt {

// The toolkit's folder dialog, and boxes as the program has them.
class ToolkitDialogs : public DeviceDialogs {
  public:
    explicit ToolkitDialogs(std::unique_ptr<QApplication> application);

    std::string ChooseFolder() override;
    void ShowText(const std::string& text) override;
    bool Confirm(const std::string& question) override;

  private:
    std::unique_ptr<QApplication> application_;
    MessageBoxes boxes_;
    QString folder_;  // that is shown first
};

}  // namespace platform::qt
