#pragma once

#include <QTabBar>
#include <QToolButton>
#include <functional>

namespace platform::qt {

// A row of tabs that shows whole tabs alone: where they do not all fit, two arrows move it by one
// tab. It never changes the tab by itself: it reports which one was tapped.
class TabRowWidget : public QWidget {
  public:
    TabRowWidget(QWidget* parent, bool below, std::function<void(int index)> tapped);

    int count() const { return bar_->count(); }
    int current() const { return bar_->currentIndex(); }  // -1 while there is no tab

    // Returns where the tab stands then.
    int Insert(int index, const QString& label);
    // Chooses a tab and brings it into view.
    void Choose(int index);
    // Does what a tap on a tab does.
    void Tap(int index) { tapped_(index); }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    // How many pixels the tabs from `first` to `last` take up.
    int WidthOf(int first, int last) const;
    // How many pixels are left for tabs beside the arrows.
    int Room() const;
    // Lets the row begin with this tab, or with the first one after which all others are in view.
    void BeginWith(int first);

    std::function<void(int index)> tapped_;
    QWidget* view_;  // as wide as the tabs that are shown
    QTabBar* bar_;
    QToolButton* back_;
    QToolButton* forth_;
    int first_ = 0;  // the tab at the left end
};

}  // namespace platform::qt
