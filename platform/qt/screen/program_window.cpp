#include "platform/qt/screen/program_window.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <functional>

#include "platform/qt/base/handheld_style.h"
#include "platform/qt/base/message_queue.h"
#include "platform/qt/base/window_table.h"

namespace platform::qt {

namespace {

constexpr int kPixelsPerNotch = 24;
constexpr int kWheelUnitsPerNotch = 120;

// A window's background, which takes the stylus and the wheel.
class Pane : public QWidget {
  public:
    using Notify = std::function<void(UINT message, WPARAM wParam, LPARAM lParam)>;

    Pane(QWidget* parent, const QColor& background, Notify notify)
        : QWidget(parent), background_(background), notify_(std::move(notify)) {}

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter(this).fillRect(event->rect(), background_);
    }
    void mousePressEvent(QMouseEvent* event) override { TellStylus(WM_LBUTTONDOWN, *event); }
    void mouseReleaseEvent(QMouseEvent* event) override { TellStylus(WM_LBUTTONUP, *event); }

    void wheelEvent(QWheelEvent* event) override {
        turned_ += event->angleDelta().y();
        const int pixels = turned_ * kPixelsPerNotch / kWheelUnitsPerNotch;
        turned_ -= pixels * kWheelUnitsPerNotch / kPixelsPerNotch;
        if (pixels != 0) {
            notify_(kScrollBy, 0, -static_cast<LPARAM>(pixels));
        }
    }

  private:
    void TellStylus(UINT message, const QMouseEvent& event) {
        if (event.button() == Qt::LeftButton) {
            const QPoint at = event.position().toPoint();
            notify_(message, 0,
                    static_cast<LPARAM>(
                        MAKELONG(static_cast<WORD>(at.x()), static_cast<WORD>(at.y()))));
        }
    }

    QColor background_;
    Notify notify_;
    int turned_ = 0;  // of the wheel, not reported yet: fine wheels turn by less than a pixel
};

}  // namespace

ProgramWindow::ProgramWindow(WindowContext& context, const CreateParams& params,
                             const ProgramTraits& traits)
    : Window(context, params),
      procedure_(traits.procedure),
      dialog_(traits.dialog),
      topLevel_(traits.topLevel),
      hasOk_(traits.hasOk) {
    const auto notify = [this](UINT message, WPARAM wParam, LPARAM lParam) {
        QueueToSelf(message, wParam, lParam);
    };
    auto pane = std::make_unique<Pane>(params.surface, traits.background, notify);
    client_ = pane.get();
    if ((params.style & WS_VSCROLL) != 0) {
        client_ = new Pane(pane.get(), traits.background, notify);
        bar_ = new PageScrollBar(
            pane.get(), [this](UINT message, WPARAM wParam) { QueueToSelf(message, wParam, 0); });
        bar_->Show(range_);
    }
    Adopt(std::move(pane), params);
}

ProgramWindow::~ProgramWindow() = default;

QWidget& ProgramWindow::surface() const {
    return *client_;
}

LRESULT ProgramWindow::Receive(UINT message, WPARAM wParam, LPARAM lParam) {
    const WindowTable& windows = context().windows;
    const HWND self = handle();
    const bool dialog = dialog_;
    const LRESULT result = procedure_(self, message, wParam, lParam);
    Window* const left = dialog && result == 0 ? windows.Find(self) : nullptr;
    return left == nullptr ? result : left->HandleMessage(message, wParam, lParam);
}

void ProgramWindow::CarryOut(const MSG& message) {
    switch (message.message) {
        case kBarStep:
            if (const auto code = range_.CodeFor(static_cast<WORD>(message.wParam))) {
                Receive(WM_VSCROLL, *code, 0);
            }
            return;
        case kBarThumb:
            return ScrollTo(static_cast<long long>(message.wParam));
        case kScrollBy:
            return ScrollTo(static_cast<long long>(range_.position()) + message.lParam);
        case kRevealChild:
            // NOLINTNEXTLINE(performance-no-int-to-ptr)
            return Reveal(reinterpret_cast<HWND>(message.lParam));
        default:
            return;
    }
}

void ProgramWindow::Place(const QRect& place) {
    Window::Place(place);
    if (bar_ != nullptr) {
        ArrangeBar();
    }
}

int ProgramWindow::SetRange(const SCROLLINFO& info) {
    range_.Set(info);
    bar_->Show(range_);
    ArrangeBar();
    return range_.position();
}

void ProgramWindow::MoveChildren(int dx, int dy) {
    for (const Window* const child : context().windows.ChildrenOf(handle())) {
        if (child->widget().parentWidget() == client_) {
            child->widget().move(child->widget().pos() + QPoint(dx, dy));
        }
    }
}

void ProgramWindow::ArrangeBar() {
    const QRect whole = widget().rect();
    const int barWidth = bar_->isHidden() ? 0 : kScrollBarWidth;
    client_->setGeometry(0, 0, whole.width() - barWidth, whole.height());
    bar_->setGeometry(whole.width() - kScrollBarWidth, 0, kScrollBarWidth, whole.height());
}

// The page does not know the new place yet: it gets it as it gets the thumb's.
void ProgramWindow::ScrollTo(long long position) {
    const int target = range_.Nearest(position);
    if (bar_ != nullptr && range_.CanScroll() && target != range_.position()) {
        Receive(WM_VSCROLL, MAKELONG(SB_THUMBPOSITION, static_cast<WORD>(target)), 0);
    }
}

void ProgramWindow::Reveal(HWND child) {
    const Window* const window = context().windows.Find(child);
    if (window == nullptr || !window->widget().isVisible()) {
        return;
    }
    const QRect place = window->widget().geometry();
    const int below = place.bottom() + 1 - client_->height();
    if (place.top() < 0) {
        ScrollTo(static_cast<long long>(range_.position()) + place.top());
    } else if (below > 0) {
        ScrollTo(static_cast<long long>(range_.position()) + below);
    }
}

}  // namespace platform::qt
