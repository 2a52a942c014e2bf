#include "platform/qt/controls/button_control.h"

#include <QCheckBox>

#include "platform/qt/base/push_button.h"

namespace platform::qt {

namespace {

constexpr DWORD kKindMask = 0xF;

// A box that a tap anywhere on it toggles.
class CheckBox : public QCheckBox {
  public:
    using QCheckBox::QCheckBox;

  protected:
    bool hitButton(const QPoint& at) const override { return rect().contains(at); }
    void keyPressEvent(QKeyEvent* event) override {
        IsArrow(*event) ? event->ignore() : QCheckBox::keyPressEvent(event);
    }
};

std::unique_ptr<QAbstractButton> NewButton(const CreateParams& params) {
    if ((params.style & kKindMask) == BS_AUTOCHECKBOX) {
        return std::make_unique<CheckBox>(params.surface);
    }
    return std::make_unique<PushButton>(params.surface);
}

}  // namespace

ButtonControl::ButtonControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto button = NewButton(params);
    button_ = button.get();
    button_->setText(params.text);
    QObject::connect(button_, &QAbstractButton::clicked, button_,
                     [this] { QueueCommand(BN_CLICKED); });
    Adopt(std::move(button), params);
}

LRESULT ButtonControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case BM_GETCHECK:
            return button_->isChecked() ? 1 : 0;
        case BM_SETCHECK:
            button_->setChecked(wParam != 0);
            return 0;
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

void ButtonControl::SetText(const QString& text) {
    Window::SetText(text);
    button_->setText(text);
}

QString ButtonControl::LabelForNext() const {
    return button_->isCheckable() ? Text() : QString();
}

}  // namespace platform::qt
