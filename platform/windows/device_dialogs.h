#pragma once

#include <QApplication>
#include <QString>
#include <memory>

#include "platform/display_windows.h"
#include "platform/windows/message_box.h"

namespace platform::windows {

// The toolkit's folder dialog, and boxes as the program has them.
class ToolkitDialogs : public DeviceDialogs {
  public:
    explicit ToolkitDialogs(std::unique_ptr<QApplication> application);

    std::string ChooseFolder() override;
    void Tell(const std::string& text) override;
    bool Confirm(const std::string& question) override;

  private:
    std::unique_ptr<QApplication> application_;
    MessageBoxes boxes_;
    QString folder_;  // that is shown first
};

}  // namespace platform::windows
