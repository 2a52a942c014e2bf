#pragma once

#include <QMenuBar>
#include <QPushButton>
#include <QWidget>
#include <functional>

#include "platform/qt/base/window.h"
#include "shell/resources.h"

class QLabel;

namespace platform::qt {

// What the user does to the desktop's window or the caption. Called below the toolkit.
struct HostEvents {
    std::function<void()> okPressed;
    std::function<void()> closePressed;
    std::function<void(int step)> tabKeyPressed;      // 1: the next tab, -1: the one before
    std::function<void(Qt::Key key)> pageKeyPressed;  // PageUp, PageDown, Home or End
};

// The window on the desktop with the handheld's screen, in its middle where the desktop gives it
// another size. Caption bar, windows and menu bar stand on the screen. Title and frame of a
// rehearsal say that it is one.
class HostWindow : public QWidget {
  public:
    HostWindow(const QString& title, bool isRehearsal, HostEvents events);

    // The handheld's screen, 240 by 320 pixels.
    QWidget& handheld() const { return *handheld_; }

    // Shows the title of the front window, and the OK button if it has one.
    void SetCaption(const QString& text, bool hasOk);

    // Gives the keyboard to the OK button.
    void FocusOk() { ok_->setFocus(Qt::OtherFocusReason); }

    // Keeps the menu bar before all windows.
    void RaiseMenuBar();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    HostEvents events_;
    QLabel* banner_;  // all of them its own; null but in a rehearsal
    QWidget* handheld_;
    QLabel* title_;
    QPushButton* ok_;
    bool isShown_ = false;
};

}  // namespace platform::qt
