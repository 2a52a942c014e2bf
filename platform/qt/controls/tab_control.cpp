#include "platform/qt/controls/tab_control.h"

#include <QPainter>
#include <algorithm>

#include "platform/qt/base/handheld_shapes.h"
#include "platform/qt/base/message_queue.h"
#include "platform/qt/base/window_table.h"
#include "platform/qt/controls/tab_row_widget.h"

namespace platform::qt {

namespace {

constexpr int kFrame = 4;
constexpr int kRowHeight = 21;

// The page's white with its frame, one edge of which the tabs stand on. The chosen tab covers its
// part of that edge.
class PageFrame : public QWidget {
  public:
    PageFrame(QWidget* parent, bool below) : QWidget(parent), below_(below) {}

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const int tabs = kRowHeight - 1;
        const QRect page = rect().adjusted(0, below_ ? 0 : tabs, 0, below_ ? -tabs : 0);
        painter.fillRect(rect(), kFace);
        painter.fillRect(page, Qt::white);
        DrawFrame(painter, page, kEdge);
    }

  private:
    bool below_;
};

}  // namespace

TabControl::TabControl(WindowContext& context, const CreateParams& params)
    : Window(context, params), below_((params.style & TCS_BOTTOM) != 0) {
    auto pane = std::make_unique<PageFrame>(params.surface, below_);
    row_ = new TabRowWidget(pane.get(), below_, [this](int index) {
        QueueToSelf(kTabTaken, static_cast<WPARAM>(index), 0);
    });
    Adopt(std::move(pane), params);
}

LRESULT TabControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case TCM_INSERTITEM:
            return Insert(wParam, lParam);
        case TCM_GETCURSEL:
            return row_->current();
        case TCM_SETCURSEL:
            return Select(wParam);
        case TCM_ADJUSTRECT:
            return Adjust(lParam);
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

void TabControl::CarryOut(const MSG& message) {
    if (message.message == kTabTaken) {
        ChooseTab(static_cast<int>(message.wParam));
    } else if (message.message == kTabStep && row_->count() > 0) {
        const int next = row_->current() + static_cast<int>(message.lParam);
        ChooseTab((next + row_->count()) % row_->count());
    }
}

void TabControl::Place(const QRect& place) {
    Window::Place(place);
    row_->setGeometry(0, below_ ? place.height() - kRowHeight : 0, place.width(), kRowHeight);
}

LRESULT TabControl::Insert(WPARAM index, LPARAM item) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto* const tab = reinterpret_cast<const TCITEM*>(item);
    if (tab == nullptr || static_cast<int>(index) < 0) {
        return -1;
    }
    const bool hasText = (tab->mask & TCIF_TEXT) != 0;
    const int place = std::min(static_cast<int>(index), row_->count());
    return row_->Insert(place, hasText ? TextOf(tab->pszText) : QString());
}

LRESULT TabControl::Select(WPARAM index) {
    const int before = row_->current();
    if (index >= static_cast<WPARAM>(row_->count())) {
        return -1;
    }
    row_->Choose(static_cast<int>(index));
    return before;
}

LRESULT TabControl::Adjust(LPARAM rectangle) const {
    auto* const area = reinterpret_cast<RECT*>(rectangle);  // NOLINT(performance-no-int-to-ptr)
    if (area == nullptr) {
        return -1;
    }
    area->left += kFrame;
    area->right -= kFrame;
    area->top += kFrame + (below_ ? 0 : kRowHeight);
    area->bottom -= kFrame + (below_ ? kRowHeight : 0);
    return 0;
}

// The parent is notified before and after, and may destroy this control both times.
void TabControl::ChooseTab(int index) {
    const WindowTable& windows = context().windows;
    const HWND self = handle();
    if (index == row_->current() || index >= row_->count()) {
        return;
    }
    const LRESULT refused = Notify(TCN_SELCHANGING);
    if (windows.Find(self) == nullptr || refused != 0) {
        return;
    }
    row_->Choose(index);
    Notify(TCN_SELCHANGE);
}

LRESULT TabControl::Notify(UINT code) const {
    const auto number = static_cast<DWORD_PTR>(id());
    NMHDR header = {handle(), number, code};
    return context().windows.Send(parent(), WM_NOTIFY, number, reinterpret_cast<LPARAM>(&header));
}

}  // namespace platform::qt
