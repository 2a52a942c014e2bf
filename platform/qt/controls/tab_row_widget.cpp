#include "platform/qt/controls/tab_row_widget.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace platform::qt {

namespace {

constexpr int kArrowWidth = 14;

class Tabs : public QTabBar {
  public:
    Tabs(QWidget* parent, std::function<void(int index)> tapped)
        : QTabBar(parent), tapped_(std::move(tapped)) {
        setDrawBase(false);
        setExpanding(false);
        setElideMode(Qt::ElideNone);
        setUsesScrollButtons(false);
        setFocusPolicy(Qt::NoFocus);
    }

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        const int index = tabAt(event->position().toPoint());
        if (event->button() == Qt::LeftButton && index >= 0) {
            tapped_(index);
        }
    }
    void mouseMoveEvent(QMouseEvent* event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent* event) override { event->accept(); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void wheelEvent(QWheelEvent* event) override { event->accept(); }
    void keyPressEvent(QKeyEvent* event) override { event->ignore(); }

  private:
    std::function<void(int index)> tapped_;
};

QToolButton* MakeArrow(QWidget* row, Qt::ArrowType direction, const QString& name) {
    auto* const arrow = new QToolButton(row);
    arrow->setArrowType(direction);
    arrow->setAccessibleName(name);
    arrow->setAutoRepeat(true);
    arrow->setFocusPolicy(Qt::NoFocus);
    return arrow;
}

}  // namespace

TabRowWidget::TabRowWidget(QWidget* parent, bool below, std::function<void(int index)> tapped)
    : QWidget(parent),
      tapped_(std::move(tapped)),
      view_(new QWidget(this)),
      bar_(new Tabs(view_, tapped_)),
      back_(MakeArrow(this, Qt::LeftArrow, QStringLiteral("Previous tabs"))),
      forth_(MakeArrow(this, Qt::RightArrow, QStringLiteral("Next tabs"))) {
    bar_->setAccessibleName(QStringLiteral("Pages"));
    bar_->setShape(below ? QTabBar::RoundedSouth : QTabBar::RoundedNorth);
    connect(back_, &QToolButton::clicked, this, [this] { BeginWith(first_ - 1); });
    connect(forth_, &QToolButton::clicked, this, [this] { BeginWith(first_ + 1); });
}

int TabRowWidget::Insert(int index, const QString& label) {
    const int place = bar_->insertTab(index, label);
    BeginWith(first_);
    return place;
}

void TabRowWidget::Choose(int index) {
    const int before = bar_->currentIndex();
    bar_->setCurrentIndex(index);
    for (const int changed : {before, index}) {
        QAccessible::State state;
        state.selected = true;
        QAccessibleStateChangeEvent event(bar_, state);
        event.setChild(changed);
        QAccessible::updateAccessibility(&event);
    }
    int first = std::min(first_, index);
    while (first < index && WidthOf(first, index) > Room()) {
        ++first;
    }
    BeginWith(first);
}

void TabRowWidget::resizeEvent(QResizeEvent* /*event*/) {
    BeginWith(first_);
}

int TabRowWidget::WidthOf(int first, int last) const {
    return bar_->tabRect(last).right() + 1 - bar_->tabRect(first).left();
}

int TabRowWidget::Room() const {
    const bool allFit = count() == 0 || WidthOf(0, count() - 1) <= width();
    return allFit ? width() : width() - 2 * kArrowWidth;
}

void TabRowWidget::BeginWith(int first) {
    bar_->setGeometry(0, 0, bar_->sizeHint().width(), height());
    const int end = count() - 1;
    int furthest = end;
    while (furthest > 0 && WidthOf(furthest - 1, end) <= Room()) {
        --furthest;
    }
    first_ = std::clamp(first, 0, std::max(furthest, 0));
    int last = first_;
    while (last < end && WidthOf(first_, last + 1) <= Room()) {
        ++last;
    }
    bar_->move(-bar_->tabRect(first_).left(), 0);
    view_->setGeometry(0, 0, std::min(Room(), WidthOf(first_, last)), height());
    back_->setGeometry(width() - 2 * kArrowWidth, 0, kArrowWidth, height());
    forth_->setGeometry(width() - kArrowWidth, 0, kArrowWidth, height());
    for (QToolButton* const arrow : {back_, forth_}) {
        arrow->setVisible(Room() < width());
    }
    back_->setEnabled(first_ > 0);
    forth_->setEnabled(first_ < furthest);
}

}  // namespace platform::qt
