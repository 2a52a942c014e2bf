#pragma once

#include <QObject>

namespace platform::qt {

class MessageQueue;

// Keeps the user's input out between the tap on a tab and the program's change of the page: it
// would go to the page that is left, and the user would not see what it has done there.
class InputGate : public QObject {
  public:
    // `queue` must outlive the gate.
    explicit InputGate(const MessageQueue& queue);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    const MessageQueue& queue_;
};

}  // namespace platform::qt
