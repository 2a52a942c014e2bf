#pragma once

#include <QWidget>

namespace platform::qt {

// The screen of the device while that is switched off: it covers everything, until its user presses
// and lets go of a key or a button of the mouse, which the program does not get.
class SwitchedOffScreen {
  public:
    // `screen` is the handheld's screen and must outlive the object.
    explicit SwitchedOffScreen(QWidget& screen);

    void SwitchOff();

  private:
    class Cover;
    Cover* cover_;  // the screen's own
};

}  // namespace platform::qt
