#pragma once

#include <QPushButton>

#include "platform/qt/base/key_groups.h"

namespace platform::qt {

// A button that Enter pushes while it has the keyboard, once however long it is held down.
class PushButton : public QPushButton {
  public:
    using QPushButton::QPushButton;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            event->isAutoRepeat() ? void() : click();
        } else {
            IsArrow(*event) ? event->ignore() : QPushButton::keyPressEvent(event);
        }
    }
};

}  // namespace platform::qt
