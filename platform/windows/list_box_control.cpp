#include "platform/windows/list_box_control.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <functional>

#include "platform/windows/text_order.h"

namespace platform::windows {

namespace {

// A list whose rows are as wide as the program has said, and which tells what its user selects.
class ListView : public QListWidget {
  public:
    ListView(QWidget* parent, std::function<void(bool twice)> picked)
        : QListWidget(parent), picked_(std::move(picked)) {}

    void SetExtent(int pixels) {
        extent_ = pixels;
        scheduleDelayedItemsLayout();
    }
    int extent() const { return extent_; }

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        const QList<QListWidgetItem*> before = selectedItems();
        QListWidget::mousePressEvent(event);
        TellIfOther(before);
    }
    // A drag selects nothing: each tap is one entry's.
    void mouseMoveEvent(QMouseEvent* event) override { event->accept(); }
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        QListWidget::mousePressEvent(event);
        picked_(true);
    }
    void keyPressEvent(QKeyEvent* event) override {
        const QList<QListWidgetItem*> before = selectedItems();
        QListWidget::keyPressEvent(event);
        TellIfOther(before);
    }

  private:
    void TellIfOther(const QList<QListWidgetItem*>& before) {
        if (selectedItems() != before) {
            picked_(false);
        }
    }

    std::function<void(bool twice)> picked_;
    int extent_ = 0;
};

class RowDelegate : public QStyledItemDelegate {
  public:
    explicit RowDelegate(ListView* list) : QStyledItemDelegate(list), list_(*list) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize own = QStyledItemDelegate::sizeHint(option, index);
        return {list_.extent(), own.height()};
    }

  private:
    const ListView& list_;
};

void ShowBars(QListWidget& list, DWORD style) {
    const bool always = (style & LBS_DISABLENOSCROLL) != 0;
    const auto policy = [&](DWORD bar) {
        if ((style & bar) == 0) {
            return Qt::ScrollBarAlwaysOff;
        }
        return always ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded;
    };
    list.setVerticalScrollBarPolicy(policy(WS_VSCROLL));
    list.setHorizontalScrollBarPolicy(policy(WS_HSCROLL));
    list.verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    list.horizontalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
}

}  // namespace

ListBoxControl::ListBoxControl(Station& station, const Birth& birth)
    : Window(station, birth),
      sorted_((birth.style & LBS_SORT) != 0),
      multiple_((birth.style & LBS_MULTIPLESEL) != 0),
      notifies_((birth.style & LBS_NOTIFY) != 0) {
    auto list = std::make_unique<ListView>(birth.surface, [this](bool twice) {
        QueueNotice(LBN_SELCHANGE);
        if (twice) {
            QueueNotice(LBN_DBLCLK);
        }
    });
    list->setItemDelegate(new RowDelegate(list.get()));
    list->setSelectionMode(multiple_ ? QAbstractItemView::MultiSelection
                                     : QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setTextElideMode(Qt::ElideNone);
    list->setTabKeyNavigation(false);
    list->setLineWidth((birth.style & WS_BORDER) != 0 ? 1 : 0);
    ShowBars(*list, birth.style);
    list_ = list.get();
    Adopt(std::move(list), birth);
}

LRESULT ListBoxControl::Answer(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case LB_ADDSTRING:
            return Add(TextOf(lParam));
        case LB_RESETCONTENT:
            list_->clear();
            return 0;
        case LB_SETSEL:
            return Select(wParam != 0, lParam);
        case LB_GETTEXT:
            return CopyEntry(wParam, lParam);
        case LB_GETTEXTLEN: {
            const QListWidgetItem* const entry = list_->item(static_cast<int>(wParam));
            return entry == nullptr ? LB_ERR : entry->text().size();
        }
        case LB_GETCOUNT:
            return list_->count();
        case LB_GETSELCOUNT:
            return SelectedCount();
        case LB_GETSELITEMS:
            return CopySelected(wParam, lParam);
        case LB_SETHORIZONTALEXTENT:
            static_cast<ListView*>(list_)->SetExtent(static_cast<int>(wParam));
            return 0;
        default:
            return Window::Answer(message, wParam, lParam);
    }
}

void ListBoxControl::FocusChanged(bool gained, Qt::FocusReason reason) {
    Window::FocusChanged(gained, reason);
    QueueNotice(gained ? LBN_SETFOCUS : LBN_KILLFOCUS);
}

LRESULT ListBoxControl::Add(const QString& text) {
    int low = sorted_ ? 0 : list_->count();
    int high = list_->count();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (ComesBefore(list_->item(middle)->text(), text)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    list_->insertItem(low, text);
    return low;
}

LRESULT ListBoxControl::CopyEntry(WPARAM index, LPARAM buffer) const {
    const QListWidgetItem* const entry = index < static_cast<WPARAM>(list_->count())
                                             ? list_->item(static_cast<int>(index))
                                             : nullptr;
    if (entry == nullptr) {
        return LB_ERR;
    }
    return CopyText(entry->text(), static_cast<WPARAM>(entry->text().size()) + 1, buffer);
}

LRESULT ListBoxControl::SelectedCount() const {
    return multiple_ ? list_->selectedItems().size() : LB_ERR;
}

LRESULT ListBoxControl::CopySelected(WPARAM room, LPARAM indices) const {
    if (!multiple_) {
        return LB_ERR;
    }
    auto* const places = reinterpret_cast<LONG*>(indices);  // NOLINT(performance-no-int-to-ptr)
    WPARAM copied = 0;
    for (int row = 0; row < list_->count() && copied < room && places != nullptr; ++row) {
        if (list_->item(row)->isSelected()) {
            places[copied++] = row;
        }
    }
    return static_cast<LRESULT>(copied);
}

LRESULT ListBoxControl::Select(bool selected, LPARAM index) {
    if (!multiple_ || index < -1 || index >= list_->count()) {
        return LB_ERR;
    }
    const int first = index < 0 ? 0 : static_cast<int>(index);
    const int last = index < 0 ? list_->count() - 1 : static_cast<int>(index);
    for (int row = first; row <= last; ++row) {
        list_->item(row)->setSelected(selected);
    }
    return 0;
}

void ListBoxControl::QueueNotice(WORD code) {
    if (notifies_) {
        QueueCommand(code);
    }
}

}  // namespace platform::windows
