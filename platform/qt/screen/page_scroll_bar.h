#pragma once

#include <QScrollBar>
#include <functional>

#include "platform/qt/base/scroll_range.h"

namespace platform::qt {

// The bar at the side of a scrolling window. It reports what the user does to it and never moves
// the page itself: it stands where it was last set.
class PageScrollBar : public QScrollBar {
  public:
    // A part of the bar was pressed (kBarStep and the scroll code), or the thumb let go (kBarThumb
    // and the place). Called below the toolkit.
    using Notify = std::function<void(UINT message, WPARAM wParam)>;

    PageScrollBar(QWidget* parent, Notify notify);

    void Show(const ScrollRange& range);

  protected:
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void PressPart(int action);

    Notify notify_;
};

}  // namespace platform::qt
