#include "platform/qt/screen/input_gate.h"

#include <QApplication>
#include <QEvent>

#include "platform/qt/base/message_queue.h"

namespace platform::qt {

namespace {

// What ends has begun before, and does no harm.
bool BeginsInput(const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
            return true;
        default:
            return false;
    }
}

}  // namespace

InputGate::InputGate(const MessageQueue& queue) : queue_(queue) {
    qApp->installEventFilter(this);
}

// Input comes to the desktop's windows first, and goes on to their widgets from there. A box must
// be answered whatever waits.
bool InputGate::eventFilter(QObject* watched, QEvent* event) {
    return (watched->isWindowType() && BeginsInput(*event) && queue_.HoldsTabChange() &&
            QApplication::activeModalWidget() == nullptr) ||
           QObject::eventFilter(watched, event);
}

}  // namespace platform::qt
