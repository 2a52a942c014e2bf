#pragma once

#include <QKeyEvent>
#include <QPushButton>

namespace platform::qt {

// With the toolkit, arrow keys wander from button to button, and on into a combo box, whose choice
// they change.
inline bool IsArrow(const QKeyEvent& event) {
    return event.key() >= Qt::Key_Left && event.key() <= Qt::Key_Down;
}

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
