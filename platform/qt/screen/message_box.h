#pragma once

#include <QString>
#include <QWidget>

#include "core/window_operations.h"

class QDialog;

namespace platform::qt {

// Shows message boxes, one at a time.
class MessageBoxes {
  public:
    // Shows a box over `over`, which may be null or hidden, and waits for the user's answer, which
    // is returned.
    int Show(QWidget* over, const QString& text, const QString& caption, UINT type);

    // Gives the open box its safe answer, if there is one.
    void AnswerOpen();

  private:
    QDialog* open_ = nullptr;  // lives in Show
};

}  // namespace platform::qt
