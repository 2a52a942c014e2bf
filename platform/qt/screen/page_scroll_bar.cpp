#include "platform/qt/screen/page_scroll_bar.h"

#include <QSignalBlocker>
#include <QWheelEvent>

#include "platform/qt/base/message_queue.h"

namespace platform::qt {

PageScrollBar::PageScrollBar(QWidget* parent, Notify notify)
    : QScrollBar(Qt::Vertical, parent), notify_(std::move(notify)) {
    setTracking(false);
    setAccessibleName(QStringLiteral("Scroll the page"));
    setContextMenuPolicy(Qt::PreventContextMenu);
    connect(this, &QScrollBar::actionTriggered, this, &PageScrollBar::PressPart);
    connect(this, &QScrollBar::sliderReleased, this,
            [this] { notify_(kBarThumb, static_cast<WPARAM>(sliderPosition())); });
}

void PageScrollBar::Show(const ScrollRange& range) {
    const QSignalBlocker quiet(this);
    setRange(range.lowest(), range.highest());
    setPageStep(static_cast<int>(range.page()));
    setValue(range.position());
    setEnabled(range.CanScroll());
    setVisible(range.CanScroll() || range.StaysOnView());
}

// What is done to a disabled bar is not done to the page below it either.
bool PageScrollBar::event(QEvent* event) {
    const bool stylus = event->type() == QEvent::MouseButtonPress ||
                        event->type() == QEvent::MouseButtonRelease ||
                        event->type() == QEvent::MouseButtonDblClick;
    if (stylus && !isEnabled()) {
        event->accept();
        return true;
    }
    return QScrollBar::event(event);
}

// The page is what the wheel scrolls.
void PageScrollBar::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void PageScrollBar::PressPart(int action) {
    if (action == SliderMove) {
        return;
    }
    setSliderPosition(value());
    switch (action) {
        case SliderSingleStepAdd:
            return notify_(kBarStep, SB_LINEDOWN);
        case SliderSingleStepSub:
            return notify_(kBarStep, SB_LINEUP);
        case SliderPageStepAdd:
            return notify_(kBarStep, SB_PAGEDOWN);
        case SliderPageStepSub:
            return notify_(kBarStep, SB_PAGEUP);
        default:
            return;
    }
}

}  // namespace platform::qt
