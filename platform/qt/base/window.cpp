#include "platform/qt/base/window.h"

#include <QEvent>
#include <QFocusEvent>
#include <QVariant>
#include <algorithm>

#include "platform/qt/base/message_queue.h"
#include "platform/qt/base/window_table.h"

namespace platform::qt {

namespace {

constexpr char kHandleProperty[] = "windowHandle";

// Sees the keyboard come to a window's widget and go.
class FocusWatch : public QObject {
  public:
    FocusWatch(QWidget& widget, Window& window) : window_(window) {
        widget.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
            const auto* const focus = static_cast<QFocusEvent*>(event);
            window_.FocusChanged(focus->gotFocus(), focus->reason());
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    Window& window_;
};

}  // namespace

Window::Window(WindowContext& context, const CreateParams& params)
    : context_(context),
      handle_(params.handle),
      parent_(params.parent),
      id_(params.id),
      text_(params.text) {}

Window::~Window() {
    // What the widget reports while it is destroyed finds no window any more.
    focusWatch_.reset();
    if (widget_ != nullptr) {
        widget_->disconnect();
    }
}

void Window::Adopt(std::unique_ptr<QWidget> widget, const CreateParams& params) {
    widget_ = std::move(widget);
    if (widget_->focusPolicy() == Qt::WheelFocus) {
        widget_->setFocusPolicy(Qt::StrongFocus);  // the wheel is the page's
    }
    widget_->setProperty(kHandleProperty, QVariant::fromValue(handle_));
    if (id_ != 0) {
        widget_->setObjectName(QString::number(id_));
    }
    focusWatch_ = std::make_unique<FocusWatch>(*widget_, *this);
    Place(QRect(params.place.left, params.place.top, params.place.right - params.place.left,
                params.place.bottom - params.place.top));
}

LRESULT Window::Receive(UINT message, WPARAM wParam, LPARAM lParam) {
    return HandleMessage(message, wParam, lParam);
}

LRESULT Window::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETTEXT:
            SetText(TextOf(lParam));
            return TRUE;
        case WM_GETTEXT:
            return CopyText(Text(), wParam, lParam);
        default:
            return 0;
    }
}

void Window::CarryOut(const MSG& /*message*/) {}

void Window::FocusChanged(bool gained, Qt::FocusReason reason) {
    const bool byKey = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    if (gained && byKey) {
        context_.queue.Post(parent_, kRevealChild, 0, reinterpret_cast<LPARAM>(handle_));
    }
}

void Window::SendCommand(WORD code) {
    if (id_ != 0) {
        context_.windows.Send(parent_, WM_COMMAND, MAKELONG(static_cast<WORD>(id_), code),
                              reinterpret_cast<LPARAM>(handle_));
    }
}

void Window::QueueCommand(WORD code) {
    if (id_ != 0) {
        context_.queue.Post(parent_, WM_COMMAND, MAKELONG(static_cast<WORD>(id_), code),
                            reinterpret_cast<LPARAM>(handle_));
    }
}

void Window::QueueToSelf(UINT message, WPARAM wParam, LPARAM lParam) {
    context_.queue.Post(handle_, message, wParam, lParam);
}

HWND HandleOf(const QWidget& widget) {
    return widget.property(kHandleProperty).value<HWND>();
}

LRESULT CopyText(const QString& text, WPARAM room, LPARAM buffer) {
    auto* const units = reinterpret_cast<WCHAR*>(buffer);  // NOLINT(performance-no-int-to-ptr)
    if (room == 0 || units == nullptr) {
        return 0;
    }
    const auto count = std::min(static_cast<WPARAM>(text.size()), room - 1);
    std::copy_n(reinterpret_cast<const WCHAR*>(text.utf16()), count, units);
    units[count] = 0;
    return static_cast<LRESULT>(count);
}

}  // namespace platform::qt
