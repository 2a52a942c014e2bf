#include "platform/qt/controls/slider_control.h"

#include <QSignalBlocker>
#include <QSlider>
#include <QWheelEvent>

#include "platform/qt/base/message_queue.h"

namespace platform::qt {

namespace {

class Slider : public QSlider {
  public:
    using QSlider::QSlider;

  protected:
    // The page is what the wheel scrolls.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

}  // namespace

SliderControl::SliderControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto slider = std::make_unique<Slider>(Qt::Horizontal, params.surface);
    slider_ = slider.get();
    slider_->setRange(0, 100);
    slider_->setPageStep(1);
    if ((params.style & TBS_AUTOTICKS) != 0) {
        slider_->setTickPosition(QSlider::TicksBelow);
        slider_->setTickInterval(1);
    }
    QObject::connect(slider_, &QSlider::valueChanged, slider_, [this](int value) {
        this->context().queue.Post(this->parent(), WM_HSCROLL,
                                   MAKELONG(SB_THUMBPOSITION, static_cast<WORD>(value)),
                                   reinterpret_cast<LPARAM>(this->handle()));
    });
    Adopt(std::move(slider), params);
}

LRESULT SliderControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const QSignalBlocker quiet(slider_);
    switch (message) {
        case TBM_GETPOS:
            return slider_->value();
        case TBM_SETPOS:
            slider_->setValue(static_cast<int>(lParam));
            return 0;
        case TBM_SETRANGE: {
            const auto range = static_cast<DWORD_PTR>(lParam);
            slider_->setRange(LOWORD(range), HIWORD(range));
            return 0;
        }
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

}  // namespace platform::qt
