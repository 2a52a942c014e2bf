#include "platform/qt/screen/switched_off_screen.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>

#include "platform/qt/base/handheld_style.h"

namespace platform::qt {

class SwitchedOffScreen::Cover : public QLabel {
  public:
    explicit Cover(QWidget& screen) : QLabel(&screen) {
        setObjectName(QStringLiteral("screenOff"));
        setText(QStringLiteral("Off\n\nA key or a click switches it on."));
        setAccessibleName(QStringLiteral("The device is switched off"));
        setAccessibleDescription(text());
        setAlignment(Qt::AlignCenter);
        setGeometry(0, 0, kScreenWidth, kScreenHeight);
        setFocusPolicy(Qt::StrongFocus);
        setAutoFillBackground(true);
        QPalette colors = palette();
        colors.setColor(QPalette::Window, Qt::black);
        colors.setColor(QPalette::WindowText, QColor(0x80, 0x80, 0x80));
        setPalette(colors);
        hide();
    }

    void SwitchOff() {
        before_ = window()->focusWidget();
        isPressed_ = false;
        show();
        raise();
        setFocus(Qt::OtherFocusReason);
    }

  protected:
    // Nothing goes on to the screen below, nor to the menus, which have keys of their own. What is
    // let go without having been pressed here is what has switched the device off.
    bool event(QEvent* event) override {
        switch (event->type()) {
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
                FollowKey(static_cast<const QKeyEvent&>(*event));
                break;
            case QEvent::MouseButtonPress:
                isPressed_ = true;
                break;
            case QEvent::MouseButtonRelease:
                SwitchOnIfPressed();
                break;
            case QEvent::ShortcutOverride:
            case QEvent::MouseButtonDblClick:
            case QEvent::MouseMove:
            case QEvent::Wheel:
            case QEvent::ContextMenu:
                break;
            default:
                return QLabel::event(event);
        }
        event->accept();
        return true;
    }

  private:
    // A key that is held down is let go time and again.
    void FollowKey(const QKeyEvent& key) {
        if (key.isAutoRepeat()) {
            return;
        }
        if (key.type() == QEvent::KeyPress) {
            isPressed_ = true;
        } else {
            SwitchOnIfPressed();
        }
    }

    void SwitchOnIfPressed() {
        if (!isPressed_) {
            return;
        }
        // Before the cover goes: the toolkit would give the keyboard to the page's first control,
        // and the page would scroll to that.
        if (before_ != nullptr) {
            before_->setFocus(Qt::OtherFocusReason);
        }
        hide();
    }

    QPointer<QWidget> before_;  // had the keyboard
    bool isPressed_ = false;
};

SwitchedOffScreen::SwitchedOffScreen(QWidget& screen) : cover_(new Cover(screen)) {}

void SwitchedOffScreen::SwitchOff() {
    cover_->SwitchOff();
}

}  // namespace platform::qt
