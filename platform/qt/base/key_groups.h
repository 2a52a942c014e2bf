#pragma once

#include <QKeyEvent>

namespace platform::qt {

// With the toolkit, arrow keys wander from button to button, and on into a combo box, whose choice
// they change.
inline bool IsArrow(const QKeyEvent& event) {
    return event.key() >= Qt::Key_Left && event.key() <= Qt::Key_Down;
}

// A key that scrolls the page where the control with the keyboard has no use for it.
inline bool IsPageKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown ||
           event.key() == Qt::Key_Home || event.key() == Qt::Key_End;
}

}  // namespace platform::qt
