#include "platform/qt/controls/list_box_control.h"

#include <QKeyEvent>
#include <QListView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>
#include <QStyledItemDelegate>
#include <QWheelEvent>
#include <algorithm>
#include <cstdlib>
#include <functional>

#include "platform/qt/base/key_groups.h"

namespace platform::qt {

// A list whose rows are as wide as the program has said, and which reports what its user selects.
class ListView : public QListView {
  public:
    ListView(QWidget* parent, std::function<void(bool twice)> picked)
        : QListView(parent), picked_(std::move(picked)) {}

    void SetExtent(int pixels) {
        extent_ = pixels;
        scheduleDelayedItemsLayout();
    }
    int extent() const { return extent_; }

    // A letter that is typed moves the current row on. What is selected is chosen by taps and the
    // blank alone.
    void keyboardSearch(const QString& search) override {
        if (search != QStringLiteral(" ")) {
            QListView::keyboardSearch(search);
        }
    }

  protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        const bool byProgram = event == nullptr && selectionMode() == MultiSelection;
        return byProgram ? QItemSelectionModel::NoUpdate
                         : QListView::selectionCommand(index, event);
    }
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override {
        QListView::selectionChanged(selected, deselected);
        changed_ = true;
    }
    void mousePressEvent(QMouseEvent* event) override {
        changed_ = false;
        QListView::mousePressEvent(event);
        ReportChange();
    }
    // An empty list with the keyboard has the mark where its first row would be.
    void paintEvent(QPaintEvent* event) override {
        QListView::paintEvent(event);
        if (hasFocus() && model()->rowCount() == 0) {
            QStyleOptionFocusRect mark;
            mark.initFrom(viewport());
            mark.rect = QRect(0, 0, viewport()->width(), fontMetrics().height());
            mark.state |= QStyle::State_KeyboardFocusChange;
            QPainter painter(viewport());
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &mark, &painter, this);
        }
    }
    // A drag selects nothing: each tap is one entry's.
    void mouseMoveEvent(QMouseEvent* event) override { event->accept(); }
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        QListView::mousePressEvent(event);
        picked_(true);
    }
    // A blank that is held down selects as one press does.
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Space && event->isAutoRepeat()) {
            return;
        }
        changed_ = false;
        QListView::keyPressEvent(event);
        ReportChange();
        if (IsPageKey(*event) && model()->rowCount() > 0) {
            event->accept();  // at its end too: the page does not jump below a key that is held
        }
    }

  private:
    void ReportChange() {
        if (changed_) {
            picked_(false);
        }
    }

    std::function<void(bool twice)> picked_;
    bool changed_ = false;
    int extent_ = 0;
};

namespace {

// Rows of one height, which no text has to be laid out for.
class RowDelegate : public QStyledItemDelegate {
  public:
    explicit RowDelegate(ListView* list) : QStyledItemDelegate(list), list_(*list) {}

    QSize sizeHint(const QStyleOptionViewItem& option,
                   const QModelIndex& /*index*/) const override {
        return {list_.extent(), option.fontMetrics.height()};
    }

  private:
    const ListView& list_;
};

// Up and down the wheel scrolls the page, also when this bar has come below a resting pointer.
class SidewaysBar : public QScrollBar {
  protected:
    void wheelEvent(QWheelEvent* event) override {
        const QPoint turn = event->angleDelta();
        std::abs(turn.x()) > std::abs(turn.y()) ? QScrollBar::wheelEvent(event) : event->ignore();
    }
};

void ShowBars(ListView& list, DWORD style) {
    list.setHorizontalScrollBar(new SidewaysBar);
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

ListBoxControl::ListBoxControl(WindowContext& context, const CreateParams& params)
    : Window(context, params),
      multiple_((params.style & LBS_MULTIPLESEL) != 0),
      notifies_((params.style & LBS_NOTIFY) != 0),
      model_(std::make_unique<ListBoxModel>((params.style & LBS_SORT) != 0)) {
    auto list = std::make_unique<ListView>(params.surface, [this](bool twice) {
        QueueNotice(LBN_SELCHANGE);
        if (twice) {
            QueueNotice(LBN_DBLCLK);
        }
    });
    list->setModel(model_.get());
    list->setItemDelegate(new RowDelegate(list.get()));
    list->setUniformItemSizes(true);
    list->setSelectionMode(multiple_ ? QAbstractItemView::MultiSelection
                                     : QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setTextElideMode(Qt::ElideNone);
    list->setTabKeyNavigation(false);
    list->setLineWidth((params.style & WS_BORDER) != 0 ? 1 : 0);
    ShowBars(*list, params.style);
    list_ = list.get();
    Adopt(std::move(list), params);
}

LRESULT ListBoxControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case LB_ADDSTRING:
            return model_->Add(TextOf(lParam));
        case LB_RESETCONTENT:
            model_->Clear();
            return 0;
        case LB_SETSEL:
            return Select(wParam != 0, lParam);
        case LB_GETTEXT:
            return CopyEntry(wParam, lParam);
        case LB_GETTEXTLEN:
            return TextLength(wParam);
        case LB_GETCOUNT:
            return model_->count();
        case LB_GETSELCOUNT:
            return multiple_ ? static_cast<LRESULT>(SelectedRows().size()) : LB_ERR;
        case LB_GETSELITEMS:
            return CopySelected(wParam, lParam);
        case LB_SETHORIZONTALEXTENT:
            list_->SetExtent(static_cast<int>(wParam));
            return 0;
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

void ListBoxControl::FocusChanged(bool gained, Qt::FocusReason reason) {
    Window::FocusChanged(gained, reason);
    QueueNotice(gained ? LBN_SETFOCUS : LBN_KILLFOCUS);
}

const QString* ListBoxControl::TextAt(WPARAM index) {
    model_->Settle();
    return model_->TextAt(index);
}

LRESULT ListBoxControl::TextLength(WPARAM index) {
    const QString* const text = TextAt(index);
    return text == nullptr ? LB_ERR : text->size();
}

LRESULT ListBoxControl::CopyEntry(WPARAM index, LPARAM buffer) {
    const QString* const text = TextAt(index);
    return text == nullptr ? LB_ERR
                           : CopyText(*text, static_cast<WPARAM>(text->size()) + 1, buffer);
}

// In ascending order.
std::vector<int> ListBoxControl::SelectedRows() {
    model_->Settle();
    std::vector<int> rows;
    for (const QModelIndex& index : list_->selectionModel()->selectedIndexes()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

LRESULT ListBoxControl::CopySelected(WPARAM room, LPARAM indices) {
    if (!multiple_) {
        return LB_ERR;
    }
    auto* const places = reinterpret_cast<LONG*>(indices);  // NOLINT(performance-no-int-to-ptr)
    const std::vector<int> rows = SelectedRows();
    const std::size_t count = places == nullptr ? 0 : std::min<std::size_t>(room, rows.size());
    std::copy_n(rows.begin(), count, places);
    return static_cast<LRESULT>(count);
}

LRESULT ListBoxControl::Select(bool selected, LPARAM index) {
    model_->Settle();
    const int count = model_->count();
    if (!multiple_ || index < -1 || index >= count) {
        return LB_ERR;
    }
    const int first = index < 0 ? 0 : static_cast<int>(index);
    const int last = index < 0 ? count - 1 : static_cast<int>(index);
    list_->selectionModel()->select(
        {model_->index(first), model_->index(last)},
        selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
    return 0;
}

void ListBoxControl::QueueNotice(WORD code) {
    if (notifies_) {
        QueueCommand(code);
    }
}

}  // namespace platform::qt
